#include <Tal/KnxZelMapping.h>

#include <algorithm>
#include <iomanip>
#include <ostream>

#include "Commands.h"
#include "Cursor.h"
#include "Quoted.h"
#include "ValueText.h"

namespace Talctl {
namespace {

using namespace Tal::KnxZelMapping;
using Tal::LogicalDeviceId;
using Tal::ParameterType;

/// What an identifier stands for.
struct Explanation {
  const char* kind = "none";
  std::string text = "not an identifier of the KNX side";
  boost::optional<LogicalDeviceId> device;
  boost::optional<unsigned> number;
};

struct ParameterKind {
  ParameterType type;
  const char* name;   ///< on the command line
  const char* title;  ///< in a sentence
};
constexpr ParameterKind kParameterKinds[] = {{ParameterType::Ip, "ip", "IP"},
                                             {ParameterType::Number, "number", "number"},
                                             {ParameterType::Text, "text", "text"}};

struct AppControlKind {
  const char* name;
  const char* title;
  ObjectId (*idOf)(LogicalDeviceId) noexcept;
};
constexpr AppControlKind kAppControlKinds[] = {
    {"channel", "app host control: channel", GetAppHostAppControlChannelObjModelId},
    {"state", "app host control: state", GetAppHostAppControlStateObjModelId},
    {"event", "app host control: event", GetAppHostAppControlEventObjModelId},
    {"alive", "app host control: alive heartbeat", GetAppHostAppControlAliveObjModelId},
    {"app-debug", "app host control: app debug", GetAppHostAppControlAppDebugObjModelId},
};

std::string OfDevice(LogicalDeviceId dev) { return " of logical device " + std::to_string(dev.Get()); }

Explanation Explained(const char* kind, const std::string& what, LogicalDeviceId dev,
                      boost::optional<unsigned> number = boost::none) {
  const std::string numberText = number ? " " + std::to_string(*number) : "";
  return {kind, what + numberText + OfDevice(dev), dev, number};
}

/// Deliberate: a parameter is found by computing identifiers forwards. GetParameterNumberFromObjModelId() keeps the low
/// 8 bits only and would call text parameter 500 number 244.
boost::optional<Explanation> ExplainParameter(ObjectId id, LogicalDeviceId dev) {
  for (const ParameterKind& kind : kParameterKinds) {
    for (unsigned short n = 0; n <= GetMaxParametersOfType(kind.type); ++n) {
      const auto channel = GetParameterChannelObjModelId(n, dev, kind.type);
      const std::string what = std::string(kind.title) + " parameter";
      if (id == *channel) return Explained("parameter-channel", "channel of " + what, dev, n);
      if (id == *channel + 1) return Explained("parameter-value", "value of " + what, dev, n);
    }
  }
  return boost::none;
}

Explanation Explain(ObjectId id) {
  if (id == GetDeviceObjModelId()) return {"device", "the device, and the KNX device", boost::none, boost::none};
  const boost::optional<LogicalDeviceId> dev = GetLogicalDeviceIdFromObject(id);
  if (!dev) return {};
  if (id == GetLogicalKnxDeviceObjModelId(*dev)) {
    return {"logical-device", "logical KNX device " + std::to_string(dev->Get()), dev, boost::none};
  }
  for (const AppControlKind& kind : kAppControlKinds) {
    if (id == kind.idOf(*dev)) return Explained("app-control", kind.title, *dev);
  }
  if (IsCoChannel(id)) {
    return Explained("co-channel", "channel of communication object", *dev, *GetCoNumberFromObjModelId(id + 1, *dev));
  }
  if (IsCoValue(id)) {
    return Explained("co-value", "value of communication object", *dev, *GetCoNumberFromObjModelId(id, *dev));
  }
  if (const auto parameter = ExplainParameter(id, *dev)) return *parameter;
  if (id == GetLastObjModelId(*dev)) return Explained("last", "the last identifier", *dev);
  return {};
}

void Print(const Invocation& invocation, const std::string& id, const Explanation& explanation) {
  std::ostream& out = invocation.streams.out;
  if (!invocation.options.json) {
    out << std::left << std::setw(10) << id << "  " << explanation.text << '\n';
    return;
  }
  Json json;
  std::uint64_t number;
  json["id"] = Cursor(id).Number(number) ? Json(number) : Json(id);
  json["kind"] = explanation.kind;
  if (explanation.device) json["device"] = explanation.device->Get();
  if (explanation.number) json["number"] = *explanation.number;
  json["text"] = explanation.text;
  out << Line(json);
}

void PrintChannelAndValue(const Invocation& invocation, ObjectId channel, ObjectId value) {
  for (const ObjectId id : {channel, value}) Print(invocation, std::to_string(id), Explain(id));
}

ExitStatus ExplainAll(const Invocation& invocation) {
  ExitStatus status = kDone;
  for (const std::string& operand : invocation.operands) {
    if (operand.empty() || !std::all_of(operand.begin(), operand.end(), IsDigit)) {
      status = Refuse(invocation, Quoted(operand) + " is not an identifier: expected a whole number");
      continue;
    }
    ObjectId id;
    Print(invocation, operand, Cursor(operand).Number(id) ? Explain(id) : Explanation());  // or beyond 32 bits
  }
  return status;
}

ExitStatus PrintCo(const Invocation& invocation, LogicalDeviceId dev, const std::string& text) {
  Cursor cursor(text);
  unsigned short co = 0;
  const auto value = cursor.Number(co) && cursor.AtEnd() ? GetCoValueObjModelId(co, dev) : boost::optional<ObjectId>();
  if (!value) {
    return Refuse(invocation,
                  "there is no communication object " + Quoted(text) + ": expected a number from 1 to 4095");
  }
  PrintChannelAndValue(invocation, *GetCoChannelObjModelId(co, dev), *value);
  return kDone;
}

ExitStatus PrintParameter(const Invocation& invocation, LogicalDeviceId dev, const std::string& text) {
  for (const ParameterKind& kind : kParameterKinds) {
    Cursor cursor(text);
    unsigned short n = 0;
    if (!cursor.Word(kind.name) || !cursor.Word(":")) continue;
    const auto channel = cursor.Number(n) && cursor.AtEnd() ? GetParameterChannelObjModelId(n, dev, kind.type)
                                                            : boost::optional<ObjectId>();
    if (!channel) {
      return Refuse(invocation, "there is no parameter " + Quoted(text) + ": expected a number from 0 to " +
                                    std::to_string(GetMaxParametersOfType(kind.type)));
    }
    PrintChannelAndValue(invocation, *channel, *GetParameterValueObjModelId(n, dev, kind.type));
    return kDone;
  }
  throw WrongUse("--parameter: " + Quoted(text) + " is not ip:N, number:N or text:N");
}

}  // namespace

CLI::App* IdCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("id", "What an object-model identifier stands for");
  SetHelp(*command,
          {"NUMBER...", "--device D --co N", "--device D --parameter TYPE:N", "--device D --app-control WHAT"},
          "Explains identifiers, or computes them for a logical device.");
  command->add_option("--device", m_device, "Logical device, 1 or 2")->type_name("D")->check(CLI::IsMember({"1", "2"}));
  command->add_option("--co", m_co, "Communication object, 1 to 4095")->type_name("N");
  command->add_option("--parameter", m_parameter, "Application parameter: ip:N, number:N or text:N")
      ->type_name("TYPE:N");
  std::vector<std::string> names;
  for (const AppControlKind& kind : kAppControlKinds) names.push_back(kind.name);
  command->add_option("--app-control", m_appControl, "App host control: channel, state, event, alive or app-debug")
      ->type_name("WHAT")
      ->check(CLI::IsMember(names));
  command->footer(
      "Examples:\n  talctl id 100101 281000 1000\n  talctl id --device 1 --co 4095\n"
      "  talctl id --device 2 --parameter text:500\n  talctl id --device 1 --app-control alive --json");
  return command;
}

ExitStatus IdCommand::Run(const Invocation& invocation) {
  const int computed = (m_co ? 1 : 0) + (m_parameter ? 1 : 0) + (m_appControl ? 1 : 0);
  if (computed == 0 && !m_device) {
    if (invocation.operands.empty()) throw WrongUse("expected NUMBER..., or --device with what to compute");
    return ExplainAll(invocation);
  }
  if (!invocation.operands.empty()) throw WrongUse("either NUMBER... or --device with what to compute, not both");
  if (!m_device) throw WrongUse("--device is missing: expected --device 1 or --device 2");
  if (computed != 1) throw WrongUse("--device needs exactly one of --co, --parameter and --app-control");

  const LogicalDeviceId dev = *m_device == "1" ? LogicalDeviceId::Of<1>() : LogicalDeviceId::Of<2>();
  if (m_co) return PrintCo(invocation, dev, *m_co);
  if (m_parameter) return PrintParameter(invocation, dev, *m_parameter);
  for (const AppControlKind& kind : kAppControlKinds) {
    if (*m_appControl == kind.name) Print(invocation, std::to_string(kind.idOf(dev)), Explain(kind.idOf(dev)));
  }
  return kDone;
}

}  // namespace Talctl
