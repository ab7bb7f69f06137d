#include "House.h"

#include <Format/Converter.h>
#include <Format/Cursor.h>
#include <Format/Quoted.h>
#include <Samples.h>

#include <algorithm>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include "Choice.h"
#include "Suggestion.h"

namespace Talctl {
namespace {

using boost::posix_time::time_duration;

constexpr int kDefaultTimeout = 5;  // seconds

// The service of a house answers as one in another process would, not at once: so a time-out that is too short for a
// real one is too short here.
constexpr std::chrono::milliseconds kLatency(10);

time_duration ReadTimeout(const std::string& text) {
  constexpr double kLargest = 1e9;  // seconds
  AROVALUE seconds;
  const bool isNumber = ParseValue(text, Dpt{14, 0}, avtFloat, seconds);
  const double number = isNumber ? seconds.GetFloat() : -1.0;
  if (number == std::numeric_limits<double>::infinity()) return boost::posix_time::pos_infin;
  if (!(number >= 0.0 && number <= kLargest)) {
    throw WrongUse("--timeout: " + Quoted(text) + " is no time-out: expected seconds from 0 to 1000000000, or inf",
                   AtOption("--timeout", isNumber ? 0 : FaultIn(text, Dpt{14, 0}, avtFloat)));
  }
  if (number == 0.0) return boost::posix_time::seconds(kDefaultTimeout);
  return boost::posix_time::microseconds(std::max(std::int64_t{1}, static_cast<std::int64_t>(number * 1e6)));
}

std::string InSeconds(const time_duration& timeout) {
  return timeout.is_special() ? "any time"
                              : FormatNumber(static_cast<double>(timeout.total_microseconds()) / 1e6) + " s";
}

}  // namespace

const char kHouseHelp[] =
    "Every command starts the house anew: what is set is gone when it ends.\n"
    "An object is named as in the installation, or by the identifier of its value.";

void AddHouseOptions(CLI::App& command, HouseOptions& options) {
  command.add_option("--installation", options.installation, "Installation in JSON (default: the sample house)")
      ->type_name("FILE");
  command.add_option("--timeout", options.timeout, "Seconds to wait for an answer; 0: the default, 5; inf: for ever")
      ->type_name("SECONDS");
  command.add_option("--retries", options.retries, "How often a request without an answer is sent again (default: 2)")
      ->type_name("N")
      ->check(CLI::Range(0u, 1000000u));
  command.add_option("--format", options.format, "How values travel: default or internal")
      ->type_name("FORMAT")
      ->transform(OneOf({"default", "internal"}));
}

DeviceStack::Installation InstallationOf(const HouseOptions& options) {
  return options.installation ? DeviceStack::LoadInstallation(*options.installation)
                              : DeviceStack::ParseInstallation(kHouse, "the sample house");
}

House::House(const HouseOptions& options, Knx::Bus& bus)
    : m_timeout(ReadTimeout(options.timeout)),
      m_retries(options.retries),
      m_installation(InstallationOf(options)),
      m_stack(m_installation, bus),
      m_adapter(m_stack),
      m_messenger(m_adapter, m_timeout, m_retries) {
  m_stack.SetFaultPlan([](DeviceStack::Operation) { return DeviceStack::Fault{{}, kLatency}; });
  m_messenger.SetAsResponseHandler();
  if (options.format == "internal") m_adapter.EnableInternalValueFormat();
}

House::~House() {
  m_messenger.UnsetAsResponseHandler();
  m_stack.Stop();
}

std::string House::ReplyOf(const Tal::Docket& docket) const {
  if (!docket.IsAnswered()) {
    const std::string times = m_retries == 0 ? "once" : std::to_string(m_retries + 1) + " times";
    throw Refusal("no answer within " + InSeconds(m_timeout) + ", asked " + times +
                  ": take a longer --timeout, or more --retries");
  }
  if (!docket.IsReplyValid()) throw Refusal(docket.ReadDeliveryError());
  return docket.ReadReply();
}

void House::Register(const std::string& first, const std::string& second, const std::string& third) {
  ReplyOf(m_messenger.RegisterApplication(first, second, third));
}

std::string House::Request(const std::string& text) { return ReplyOf(m_messenger.Request(text, m_timeout)); }

HouseObject House::Find(const std::string& idOrName) {
  Json request = {{"request", "describe"}};
  Cursor cursor(idOrName);
  std::uint64_t id = 0;
  const bool isNumber = !idOrName.empty() && std::all_of(idOrName.begin(), idOrName.end(), IsDigit);
  if (isNumber) {
    if (!cursor.Number(id) || id > 0xFFFFFFFF) throw Refusal("there is no object " + Quoted(idOrName), AtOperand(0));
    request["id"] = id;
  } else {
    request["object"] = AROVALUE::EnsureUTF8(idOrName);
  }
  const Tal::Docket docket = m_messenger.Request(request.dump(), m_timeout);
  if (docket.IsAnswered() && !docket.IsReplyValid()) {
    std::vector<std::string> names;
    for (const auto& installed : m_installation.objects) names.push_back(installed.name);
    throw Refusal(docket.ReadDeliveryError() + DidYouMean(idOrName, names), AtOperand(0));
  }
  const Json described = Json::parse(ReplyOf(docket));
  HouseObject object;
  object.id = isNumber ? static_cast<unsigned long>(id) : described["id"].get<unsigned long>();
  object.name = described.value("name", "");
  std::string error;
  Dpt dpt;
  if (described.contains("dpt") && ParseDpt(described["dpt"].get<std::string>(), dpt, error)) object.dpt = dpt;
  return object;
}

AROVALUE House::Get(const HouseObject& object) {
  const std::string text = ReplyOf(m_messenger.GetValue(object.id, false));
  AROVALUE value;
  if (!value.Deserialize(text)) throw Refusal("the service answered " + Quoted(text) + ", which is no value");
  return value;
}

AROVALUE House::Set(const HouseObject& object, const std::string& text) {
  const Dpt dpt = object.dpt.value_or(Dpt());
  const AroValueType type =
      object.dpt ? ValueTypeOf(dpt, Converter::Direct) : static_cast<AroValueType>(Get(object).avt);
  AROVALUE value;
  if (!ParseValue(type == avtString ? Unescaped(text) : text, dpt, type, value)) {
    const std::string what = object.dpt ? FormatDpt(dpt) : AROVALUE::GetNameFromValueType(type);
    throw Refusal(Quoted(text) + " is no value of " + what +
                      (object.dpt ? ": expected " + Expectation(dpt, Converter::Direct) : ""),
                  AtOperand(1, FaultIn(text, dpt, type)));
  }
  const Tal::Docket docket = m_messenger.SetValue(object.id, value, false);
  if (docket.IsAnswered() && !docket.IsReplyValid()) throw Refusal(docket.ReadDeliveryError(), AtOperand(1));
  ReplyOf(docket);
  return value;
}

}  // namespace Talctl
