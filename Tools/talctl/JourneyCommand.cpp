#include <Format/Octets.h>
#include <Knx/LogBus.h>
#include <Knx/TelegramLog.h>
#include <Samples.h>

#include <atomic>
#include <ostream>
#include <sstream>

#include "Commands.h"
#include "House.h"
#include "Table.h"
#include "TelegramTable.h"

namespace Talctl {
namespace {

using DeviceStack::BusEvent;
using DeviceStack::Fault;
using DeviceStack::Operation;
using Knx::LogBus;

/// What the application sets, and what must come of it.
struct SetRow {
  const char* object;
  const char* value;
  const char* octets;  ///< on the bus; "-": nothing is sent; null: refused
};
constexpr SetRow kSets[] = {
    {"kitchen.light", "on", "01"},          {"living.setpoint", "21.5", "0C33"},
    {"living.colour", "#123456", "123456"}, {"house.time", "Mon 12:30:15", "2C1E0F"},
    {"living.temperature", "-3.5", "-"},    {"living.setpoint", "700000", nullptr},
};

/// What the application asks for while the service loses answers, and how often it must be asked.
struct LossRow {
  const char* object;
  unsigned lost;  ///< answers, from the first
  bool isAnswered;
};
constexpr LossRow kLosses[] = {{"living.setpoint", 0, true}, {"living.setpoint", 1, true}, {"hall.mode", 99, false}};
constexpr unsigned kRetries = 2;
const boost::posix_time::milliseconds kTimeout(250);

// What the log of the sample house must come to.
constexpr std::uint64_t kDecoded = 16;
constexpr std::uint64_t kRefusedValues = 2;

/// The journey, step by step; every difference from what must come is counted.
class Journey {
 public:
  Journey(std::ostream& out, const Paint& paint, House& house, LogBus& bus)
      : m_out(out), m_paint(paint), m_house(house), m_bus(bus) {
    m_house.Stack().SetFaultPlan([this](Operation) {
      ++m_sent;
      if (m_toLose == 0) return Fault();
      --m_toLose;
      return Fault{Fault::Kind::Drop, {}};
    });
  }

  bool Run() {
    Load();
    Play();
    Set();
    Lose();
    return Summarise();
  }

 private:
  /// Counts a request that is answered, also with a refusal.
  template <class Ask>
  auto Asked(Ask ask) {
    ++m_asked;
    ++m_answered;
    return ask();
  }

  void Load() {
    const DeviceStack::Installation& installation = m_house.Installed();
    m_out << installation.name << ": " << installation.objects.size() << " communication objects, device "
          << FormatAddress(installation.address) << "\n";
    m_house.Register("journey", TALCTL_VERSION, "");
    ++m_asked;
    ++m_answered;
    m_out << "Application 'journey' is registered.\n\n";
  }

  void Play() {
    m_out << "From the bus: a morning's telegrams, decoded, and answered where they ask.\n\n";
    TelegramTable table(m_house.Installed(), false, m_out, m_paint);
    table.PrintHeading();
    {
      const BusWatch watch(m_house, [&](const BusEvent& event) { table.Print(event); });
      m_bus.Play([] { return false; });
      m_house.Stack().WaitUntilIdle();
    }
    const DeviceStack::Counters counters = m_house.Stack().GetCounters();
    Expect(counters.valuesDecoded == kDecoded && counters.valuesRefused == kRefusedValues);
  }

  void Set() {
    m_out << "\nFrom the application: values set and read back.\n\n";
    Table table({"OBJECT", "SET TO", "OCTETS", "READ BACK", "NOTES"});
    std::string octets;
    const BusWatch watch(m_house, [&](const BusEvent& event) {
      if (event.kind == BusEvent::Kind::Sent) octets = Hex(event.telegram.value.GetRawData());
    });
    for (const SetRow& row : kSets) {
      octets = "-";
      std::string back = "-";
      std::string note;
      bool isSame = false;
      try {
        const HouseObject object = Asked([&] { return m_house.Find(row.object); });
        const AROVALUE value = Asked([&] { return m_house.Set(object, row.value); });
        const AROVALUE read = Asked([&] { return m_house.Get(object); });
        back = FormatOneLine(read);
        isSame = read == value && row.octets != nullptr && octets == row.octets;
        if (octets == "-") note = "the object does not transmit";
      } catch (const Refusal& refusal) {
        note = refusal.what();
        isSame = row.octets == nullptr && octets == "-";
      }
      Expect(isSame);
      table.Add({row.object, row.value, octets, back, note + (isSame ? "" : "  DIFFERS")});
    }
    table.Print(m_out, m_paint);
  }

  void Lose() {
    m_out << "\nWhen answers are lost: asked again after " << kTimeout.total_milliseconds() << " ms, " << kRetries
          << " times at most.\n\n";
    Table table({"OBJECT", "ASKED", "ANSWER"});
    table.SetColour("given up", Colour::Bad);
    for (const LossRow& row : kLosses) {
      const unsigned before = m_sent;
      m_toLose = row.lost;
      ++m_asked;
      const std::string request = Json({{"request", "describe"}, {"object", row.object}}).dump();
      const Tal::Docket docket = m_house.Messenger().Request(request, kTimeout);
      m_toLose = 0;
      m_answered += docket.IsAnswered() ? 1 : 0;
      const bool isSame =
          docket.IsAnswered() == row.isAnswered && m_sent - before == (row.isAnswered ? row.lost + 1 : kRetries + 1);
      Expect(isSame);
      const std::string answer =
          docket.IsAnswered() ? "its value is " + Json::parse(docket.ReadReply())["value"].dump() : "given up";
      table.Add({row.object, std::to_string(m_sent - before) + (m_sent - before == 1 ? " time" : " times"),
                 answer + (isSame ? "" : "  DIFFERS")});
    }
    table.Print(m_out, m_paint);
  }

  bool Summarise() {
    const DeviceStack::Counters counters = m_house.Stack().GetCounters();
    m_out << "\nBus:      " << counters.telegramsReceived << " telegrams in, " << counters.valuesDecoded
          << " values decoded, " << counters.valuesRefused << " refused, " << counters.telegramsIgnored
          << " telegrams for no object; " << counters.telegramsSent << " telegrams out\n"
          << "Requests: " << m_asked << " made, " << m_answered << " answered, " << m_sent - m_asked << " retried, "
          << m_asked - m_answered << " given up\n"
          << m_paint(m_different == 0 ? Colour::Good : Colour::Bad, VerdictOn(m_different)) << '\n';
    return m_different == 0;
  }

  void Expect(bool isSame) { m_different += isSame ? 0 : 1; }

  std::ostream& m_out;
  const Paint m_paint;
  House& m_house;
  LogBus& m_bus;
  unsigned m_asked = 0;
  unsigned m_answered = 0;
  unsigned m_different = 0;
  std::atomic<unsigned> m_sent{0};    ///< requests, retries among them
  std::atomic<unsigned> m_toLose{0};  ///< answers
};

}  // namespace

CLI::App* JourneyCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("journey", "The way of values between an application and a house");
  SetHelp(*command, {""},
          "Starts the sample house, registers an application, plays a morning's telegrams, sets and reads values "
          "through the\nmessenger, loses answers on purpose, and sums up. Exit status 1 when something comes out other "
          "than it must.");
  command->footer("Examples:\n  talctl journey");
  return command;
}

ExitStatus JourneyCommand::Run(const Invocation& invocation) {
  if (!invocation.operands.empty()) throw WrongUse("journey takes no operands");
  const ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return Answering(invocation, [&] {
    std::istringstream sample(kHouseLog);
    LogBus bus(Knx::ReadTelegramLog(sample, "the sample log"), LogBus::Speed::Full, nullptr);
    HouseOptions options;
    options.retries = kRetries;
    House house(options, bus);
    return Journey(invocation.streams.out, invocation.options.out, house, bus).Run() ? kDone : kRefused;
  });
}

}  // namespace Talctl
