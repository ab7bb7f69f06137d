#include <Tal/KnxZelMapping.h>

#include <algorithm>
#include <iomanip>
#include <ostream>

#include <Format/Cursor.h>
#include <Format/ObjectId.h>
#include <Format/Quoted.h>
#include <Format/ValueText.h>
#include "Choice.h"
#include "Commands.h"
#include "Reference.h"

namespace Talctl {
namespace {

using namespace Tal::KnxZelMapping;
using Tal::LogicalDeviceId;

void Print(const Invocation& invocation, const std::string& id, const ObjectExplanation& explanation) {
  std::ostream& out = invocation.streams.out;
  if (!invocation.options.json) {
    out << std::left << std::setw(10) << id << "  " << explanation.text << '\n';
    return;
  }
  Json json;
  std::uint64_t number;
  json["id"] = Cursor(id).Number(number) ? Json(number) : Json(id);
  json["kind"] = NameOf(explanation.kind);
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
  for (std::size_t i = 0; i < invocation.operands.size(); ++i) {
    const std::string& operand = invocation.operands[i];
    const auto fault = std::find_if_not(operand.begin(), operand.end(), IsDigit);
    if (operand.empty() || fault != operand.end()) {
      status = Refuse(invocation, Quoted(operand) + " is not an identifier: expected a whole number",
                      AtOperand(i, static_cast<std::size_t>(fault - operand.begin())));
      continue;
    }
    ObjectId id;
    Print(invocation, operand, Cursor(operand).Number(id) ? Explain(id) : ObjectExplanation());  // or beyond 32 bits
  }
  return status;
}

ExitStatus PrintCo(const Invocation& invocation, LogicalDeviceId dev, const std::string& text) {
  Cursor cursor(text);
  unsigned short co = 0;
  const auto value = cursor.Number(co) && cursor.AtEnd() ? GetCoValueObjModelId(co, dev) : boost::optional<ObjectId>();
  if (!value) {
    return Refuse(invocation, "there is no communication object " + Quoted(text) + ": expected a number from 1 to 4095",
                  AtOption("--co", cursor.AtEnd() ? 0 : text.size() - cursor.Rest().size()));
  }
  PrintChannelAndValue(invocation, *GetCoChannelObjModelId(co, dev), *value);
  return kDone;
}

ExitStatus PrintParameter(const Invocation& invocation, LogicalDeviceId dev, const std::string& text) {
  for (const ParameterKind& kind : ParameterKinds()) {
    Cursor cursor(text);
    unsigned short n = 0;
    if (!cursor.Word(kind.name) || !cursor.Word(":")) continue;
    const auto channel = cursor.Number(n) && cursor.AtEnd() ? GetParameterChannelObjModelId(n, dev, kind.type)
                                                            : boost::optional<ObjectId>();
    if (!channel) {
      return Refuse(invocation,
                    "there is no parameter " + Quoted(text) + ": expected a number from 0 to " +
                        std::to_string(GetMaxParametersOfType(kind.type)),
                    AtOption("--parameter", cursor.AtEnd() ? 0 : text.size() - cursor.Rest().size()));
    }
    PrintChannelAndValue(invocation, *channel, *GetParameterValueObjModelId(n, dev, kind.type));
    return kDone;
  }
  throw WrongUse("--parameter: " + Quoted(text) + " is not ip:N, number:N or text:N", AtOption("--parameter"));
}

}  // namespace

CLI::App* IdCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("id", "What an object-model identifier stands for");
  SetHelp(*command,
          {"NUMBER...", "--device D --co N", "--device D --parameter TYPE:N", "--device D --app-control WHAT",
           "--markdown FILE"},
          "Explains identifiers, or computes them for a logical device.");
  command->add_option("--device", m_device, "Logical device, 1 or 2")->type_name("D")->transform(OneOf({"1", "2"}));
  command->add_option("--co", m_co, "Communication object, 1 to 4095")->type_name("N");
  command->add_option("--parameter", m_parameter, "Application parameter: ip:N, number:N or text:N")
      ->type_name("TYPE:N");
  std::vector<std::string> names;
  for (const AppControlKind& kind : AppControlKinds()) names.emplace_back(kind.name);
  command->add_option("--app-control", m_appControl, "App host control: channel, state, event, alive or app-debug")
      ->type_name("WHAT")
      ->transform(OneOf(names));
  command->add_option("--markdown", m_markdown, "Write a table of all identifiers as Markdown (-: to the output)")
      ->type_name("FILE");
  command->footer(
      "Examples:\n  talctl id 100101 281000 1000\n  talctl id --device 1 --co 4095\n"
      "  talctl id --device 2 --parameter text:500\n  talctl id --device 1 --app-control alive --json");
  return command;
}

ExitStatus IdCommand::Run(const Invocation& invocation) {
  const int computed = (m_co ? 1 : 0) + (m_parameter ? 1 : 0) + (m_appControl ? 1 : 0);
  if (m_markdown) {
    if (computed > 0 || m_device || !invocation.operands.empty())
      throw WrongUse("a page holds everything: expected --markdown FILE alone");
    return WritePage(invocation, *m_markdown, IdentifiersInMarkdown());
  }
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
  for (const AppControlKind& kind : AppControlKinds()) {
    if (*m_appControl == kind.name) Print(invocation, std::to_string(kind.idOf(dev)), Explain(kind.idOf(dev)));
  }
  return kDone;
}

}  // namespace Talctl
