#include "Commands.h"
#include "ConverterOption.h"

namespace Talctl {
namespace {

constexpr char kExamples[] = R"(Values by type:
  truth values   true false on off 1 0
  numbers        21.5, -30, 0x1F; floats also nan, inf, -inf
  time of day    12:30:15 or Mon 12:30:15
  date           2023-01-01, with time 2023-01-01T12:30:15
  text           the rest of the line; \n \t \r \xHH are escapes, \\ is a backslash
  colour (232)   1193046 or #123456
A value may begin with a minus; one that looks like an option goes behind --.

Examples:
  talctl encode 9.001 21            0C1A
  talctl encode 10.001 Sun 23:59:59
  talctl encode 16.000 -- --text
  talctl encode 9.001 -300 --converter table   # refused: 9.001 starts at -273 there
  printf '9.001 21\n1.001 on\n' | talctl encode --json)";

}  // namespace

CLI::App* EncodeCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("encode", "Values to the octets that go on the bus");
  SetHelp(*command, {"[DPT VALUE]"},
          "Prints the octets of VALUE as datapoint type DPT (9.001, 9, DPST-9-1) in upper-case hex; a value shorter "
          "than an\n"
          "octet as one octet. Without operands, answers lines `DPT VALUE` from standard input one by one; blank lines "
          "and\n"
          "# comments are skipped, and a refused line is answered with `error: `, its place and the reason.");
  AddConverterOption(*command, m_converter);
  command->footer(kExamples);
  return command;
}

Conversion EncodeCommand::Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const {
  return Encode(dpt, rest, m_converter, log);
}

std::string EncodeCommand::Text(const Conversion& conversion) const { return Hex(conversion.groupValue->GetRawData()); }

void EncodeCommand::Describe(const Conversion& conversion, JsonLine& json) const {
  if (conversion.value && conversion.value->avt != avtEmpty) {
    json.Add("value", ToJson(*conversion.value));
  } else if (!conversion.text.empty()) {
    json.Add("value", conversion.text);  // as it was given
  }
  if (!conversion.groupValue) return;
  json.Add("type", AROVALUE::GetNameFromValueType(conversion.value->avt));
  json.Add("octets", Hex(conversion.groupValue->GetRawData()));
  json.Add("bits", Json(conversion.groupValue->GetDefinedSize()));
}

}  // namespace Talctl
