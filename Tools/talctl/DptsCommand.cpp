#include <BasePlatform/AroDP.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxZelMapping.h>
#include <Tal/TableDescription.h>

#include <algorithm>
#include <ostream>

#include "Commands.h"
#include "ReasonLog.h"
#include "Table.h"
#include "ValueText.h"

namespace Talctl {
namespace {

using Row = Tal::MainTypeDescription;

struct Description {
  AROVALUE defaultValue;
  boost::optional<unsigned> bits;  ///< nothing: not encoded
};

Description Describe(const Row& row) {
  Description description;
  const unsigned long dpt = Dpt{row.main, 0}.Number();
  description.defaultValue.Deserialize(Tal::KnxZelMapping::GetDefaultValueFromDpt(dpt, true));
  if (!row.isEncoded) return description;
  const auto groupValue = Tal::AroValueToGroupValue(description.defaultValue, dpt);
  if (groupValue) description.bits = groupValue->GetDefinedSize();
  return description;
}

void PrintJson(const std::vector<Row>& rows, std::ostream& out) {
  for (const Row& row : rows) {
    const Description description = Describe(row);
    Json json;
    json["main"] = row.main;
    json["type"] = AROVALUE::GetNameFromValueType(row.valueType);
    json["subType"] = AroDP::GetNameFromValueSubType(row.subType);
    json["encoded"] = row.isEncoded;
    json["bits"] = description.bits ? Json(*description.bits) : Json();
    json["default"] = ToJson(description.defaultValue);
    out << Line(json);
  }
}

void PrintTable(const std::vector<Row>& rows, std::ostream& out) {
  Table table({"DPT", "TYPE", "SUB TYPE", "BITS", "DEFAULT", "VALUES"});
  for (const Row& row : rows) {
    const Description description = Describe(row);
    const std::string defaultText = FormatValue(description.defaultValue);
    table.Add({std::to_string(row.main) + ".x", AROVALUE::GetNameFromValueType(row.valueType),
               AroDP::GetNameFromValueSubType(row.subType), description.bits ? std::to_string(*description.bits) : "-",
               row.valueType == avtString ? "''"
               : defaultText.empty()      ? "-"
                                          : defaultText,
               row.isEncoded ? Expectation({row.main, 0}) : "not encoded"});
  }
  table.Print(out);
}

}  // namespace

CLI::App* DptsCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("dpts", "What the library knows of datapoint types");
  SetHelp(
      *command, {"[DPT...]"},
      "Lists main types with the type and sub type of their values, the bits of their group values, the default value\n"
      "and what `encode` takes. With DPT only those; the sub number plays no part.");
  command->footer("Examples:\n  talctl dpts\n  talctl dpts 9.001 232\n  talctl dpts --json");
  return command;
}

ExitStatus DptsCommand::Run(const Invocation& invocation) {
  const auto& [options, operands, streams] = invocation;
  const ReasonLog log(options.logLevel, streams.err);
  const std::vector<Row> known = Tal::DescribeMainTypes();
  std::vector<Row> wanted = operands.empty() ? known : std::vector<Row>();
  ExitStatus status = kDone;
  for (const std::string& operand : operands) {
    Dpt dpt;
    std::string error;
    if (ParseDpt(operand, dpt, error)) {
      const auto row = std::find_if(known.begin(), known.end(), [&](const Row& r) { return r.main == dpt.main; });
      if (row != known.end()) {
        wanted.push_back(*row);
        continue;
      }
      error = FormatDpt(dpt) + " is of no known main type; `talctl dpts` lists them";
    }
    status = Refuse(invocation, error);
  }
  if (options.json) {
    PrintJson(wanted, streams.out);
  } else if (!wanted.empty()) {
    PrintTable(wanted, streams.out);
  }
  return status;
}

}  // namespace Talctl
