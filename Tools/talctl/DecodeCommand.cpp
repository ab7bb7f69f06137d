#include <Format/Cursor.h>
#include <Format/Quoted.h>

#include "Commands.h"
#include "ConverterOption.h"

namespace Talctl {
namespace {

void AddBitsOption(CLI::App& command, std::optional<std::string>& bits) {
  command
      .add_option("--bits", bits,
                  "Defined size of the group value (default: 8 bits an octet; 6, the bus's short form, for one octet "
                  "of a type of at most six bits)")
      ->type_name("N")
      ->expected(1);
}

constexpr char kOctets[] =
    "OCTETS are two hex digits each: 0C1A, 0c 1a or 0x0C1A. Without operands, answers lines `DPT OCTETS` from "
    "standard\n"
    "input one by one; blank lines and # comments are skipped, and a refused line is answered with `error: `, its\n"
    "place and the reason.";

void DescribeOctets(const Conversion& conversion, JsonLine& json) {
  if (conversion.groupValue) {
    json.Add("octets", Hex(conversion.groupValue->GetRawData()));
    json.Add("bits", Json(conversion.groupValue->GetDefinedSize()));
  } else if (!conversion.text.empty()) {
    json.Add("octets", conversion.text);  // as it was given
  }
}

boost::optional<unsigned> ReadBits(const std::optional<std::string>& text) {
  if (!text) return boost::none;
  Cursor cursor(*text);
  unsigned bits = 0;
  if (cursor.Number(bits) && cursor.AtEnd()) return bits;
  throw WrongUse("--bits: " + Quoted(*text) + " is no number of bits",
                 AtOption("--bits", text->size() - cursor.Rest().size()));
}

}  // namespace

CLI::App* DecodeCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("decode", "Octets from the bus to the value that they stand for");
  SetHelp(*command, {"[DPT OCTETS]"},
          std::string("Prints the value that OCTETS stand for as datapoint type DPT, in the form that `encode` takes; "
                      "control\ncharacters of a text as escapes. ") +
              kOctets);
  AddConverterOption(*command, m_converter);
  AddBitsOption(*command, m_bits);
  command->footer(
      "Examples:\n  talctl decode 9.001 0C1A               21\n  talctl decode 6.001 FF --converter table      -1\n"
      "  talctl decode 1.001 01 --bits 6        true\n  printf '9.001 0C1A\\n5.010 FF\\n' | talctl decode --json");
  return command;
}

Conversion DecodeCommand::Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const {
  return Decode(dpt, rest, ReadBits(m_bits), m_converter, log);
}

std::string DecodeCommand::Text(const Conversion& conversion) const { return FormatOneLine(*conversion.value); }

void DecodeCommand::Describe(const Conversion& conversion, JsonLine& json) const {
  DescribeOctets(conversion, json);
  if (!conversion.value) return;
  json.Add("value", ToJson(*conversion.value));
  json.Add("type", AROVALUE::GetNameFromValueType(conversion.value->avt));
}

CLI::App* CheckCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("check", "Whether octets from the bus can be decoded");
  SetHelp(*command, {"[DPT OCTETS]"},
          std::string("Prints `valid` when the table of datapoint types decodes OCTETS as DPT; a type that it does not "
                      "know is\ntaken for valid. ") +
              kOctets);
  AddBitsOption(*command, m_bits);
  command->footer("Examples:\n  talctl check 9.001 0C1A\n  talctl check 9.001 0C               # refused: 8 bits");
  return command;
}

Conversion CheckCommand::Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const {
  return Check(dpt, rest, ReadBits(m_bits), log);
}

std::string CheckCommand::Text(const Conversion& conversion) const {
  return FindDptRow(*conversion.dpt) != nullptr ? "valid" : "valid (not in the table, so not checked)";
}

void CheckCommand::Describe(const Conversion& conversion, JsonLine& json) const {
  DescribeOctets(conversion, json);
  json.Add("valid", Json(conversion.error.empty()));
  json.Add("checked", Json(conversion.dpt && FindDptRow(*conversion.dpt) != nullptr));
}

}  // namespace Talctl
