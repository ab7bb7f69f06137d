#include <Format/Quoted.h>
#include <Knx/LogBus.h>
#include <Knx/TelegramLog.h>
#include <Samples.h>

#include <atomic>
#include <fstream>
#include <ostream>
#include <sstream>
#include <thread>

#include "Choice.h"
#include "Commands.h"
#include "House.h"
#include "Interrupts.h"
#include "TelegramTable.h"

namespace Talctl {
namespace {

using Knx::LogBus;
using Knx::Telegram;

std::vector<Telegram> ReadLog(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw Refusal(OneLine(path) + ": cannot be read");
  try {
    return Knx::ReadTelegramLog(file, path);
  } catch (const Knx::TelegramLogError& error) {
    throw Refusal(error.what());
  }
}

void PrintSummary(const Invocation& invocation, const DeviceStack::Counters& counters) {
  std::ostream& out = invocation.streams.out;
  if (invocation.options.json) {
    out << Line({{"summary", true},
                 {"telegramsReceived", counters.telegramsReceived},
                 {"valuesDecoded", counters.valuesDecoded},
                 {"valuesRefused", counters.valuesRefused},
                 {"telegramsIgnored", counters.telegramsIgnored},
                 {"telegramsSent", counters.telegramsSent}});
    return;
  }
  out << '\n'
      << counters.telegramsReceived << " telegrams received: " << counters.valuesDecoded << " values decoded, "
      << counters.valuesRefused << " refused, " << counters.telegramsIgnored << " telegrams for no object; "
      << counters.telegramsSent << " sent\n";
}

}  // namespace

CLI::App* MonitorCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("monitor", "What happens on the bus of a house");
  SetHelp(
      *command, {""},
      std::string("Plays a telegram log to a house, or waits for its bus, and prints every telegram with the "
                  "objects that it is\nfor. Ctrl-C ends it with a summary. Telegrams that are refused do not make "
                  "it fail.\nWithout --log, the sample house plays its own log; another installation waits, in vain as "
                  "long as there is no\nconnection to a real bus.\n") +
          kHouseHelp);
  AddHouseOptions(*command, m_house);
  command->add_option("--log", m_log, "Telegram log to play")->type_name("FILE");
  command->add_option("--speed", m_speed, "full (default), or real: with the pauses of the log")
      ->type_name("SPEED")
      ->transform(OneOf({"real", "full"}));
  command->add_option("--record", m_record, "Where the house's own telegrams are added, in the form of a log")
      ->type_name("FILE");
  command->add_flag("--wait", m_wait, "Go on waiting when the log has been played");
  command->footer("Examples:\n  talctl monitor\n  talctl monitor --installation house.json --log bus.log --json");
  return command;
}

ExitStatus MonitorCommand::Run(const Invocation& invocation) {
  if (!invocation.operands.empty()) throw WrongUse("monitor takes no operands");
  const ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return Answering(invocation, [&] {
    std::vector<Telegram> telegrams;
    if (m_log) {
      telegrams = ReadLog(*m_log);
    } else if (!m_house.installation) {
      std::istringstream sample(kHouseLog);
      telegrams = Knx::ReadTelegramLog(sample, "the sample log");
    }
    const bool waits = m_wait || (!m_log && m_house.installation);
    std::ofstream record;
    if (m_record) {
      record.open(*m_record, std::ios::app);
      if (!record) throw Refusal(OneLine(*m_record) + ": cannot be written");
    }
    LogBus bus(std::move(telegrams), m_speed == "real" ? LogBus::Speed::Real : LogBus::Speed::Full,
               m_record ? &record : nullptr);
    House house(m_house, bus);
    const Interrupts interrupts;
    TelegramTable table(house.Installed(), invocation.options.json, invocation.streams.out, invocation.options.out);
    table.PrintHeading();
    std::atomic<bool> isBroken{false};  // nobody reads on
    {
      const BusWatch watch(house, [&](const DeviceStack::BusEvent& event) {
        table.Print(event);
        if (!invocation.streams.out.flush()) isBroken = true;
      });
      const auto isStopped = [&] { return Interrupts::Signal() != 0 || isBroken; };
      bus.Play(isStopped);
      house.Stack().WaitUntilIdle();
      while (waits && !isStopped() && !IsReaderGone(invocation.streams.outDescriptor))
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const DeviceStack::Counters counters = house.Stack().GetCounters();
    PrintSummary(invocation, counters);
    if (counters.telegramsNotSent == 0) return kDone;
    throw Refusal(OneLine(m_record.value_or("the bus")) + ": " + std::to_string(counters.telegramsNotSent) +
                  " telegrams could not be written");
  });
}

}  // namespace Talctl
