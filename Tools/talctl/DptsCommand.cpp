#include <BasePlatform/AroDP.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxZelMapping.h>

#include <functional>
#include <ostream>

#include <Format/ValueText.h>
#include "Commands.h"
#include "ConverterOption.h"
#include "ReasonLog.h"
#include "Reference.h"
#include "Suggestion.h"
#include "Table.h"

namespace Talctl {
namespace {

/// "temperature difference (K)"
std::string InWords(const Tal::DptMeaning& meaning) {
  return meaning.name + (meaning.unit.empty() ? "" : " (" + meaning.unit + ")");
}

void Add(Json& json, const Tal::DptMeaning& meaning) {
  json["meaning"] = meaning.name;
  json["unit"] = meaning.unit.empty() ? Json() : Json(meaning.unit);
}

/// One line of the listing: the cells of the table and the JSON object.
struct Row {  // NOLINT(bugprone-exception-escape): what it sees is in the JSON library's destructor
  std::vector<std::string> cells;
  Json json;
};

const std::vector<std::string>& Heading(Converter converter) {
  static const std::vector<std::string> direct = {"DPT", "TYPE", "SUB TYPE", "BITS", "DEFAULT", "MEANING", "VALUES"};
  static const std::vector<std::string> map = {"DPT", "TYPE", "SUB TYPE", "BITS", "CODEC", "MEANING", "RANGE"};
  return converter == Converter::Direct ? direct : map;
}

Row Describe(const Tal::MainTypeDescription& main) {
  const Dpt dpt{main.main, 0};
  AROVALUE value;
  value.Deserialize(Tal::KnxZelMapping::GetDefaultValueFromDpt(dpt.Number(), true));
  unsigned bits = 0;  // as the group value's setter makes them
  if (main.isEncoded) bits = Tal::AroValueToGroupValue(value, dpt.Number()).value().GetDefinedSize();
  const char* const type = AROVALUE::GetNameFromValueType(main.valueType);
  const char* const subType = AroDP::GetNameFromValueSubType(main.subType);
  const std::string text = main.valueType == avtString ? "''" : FormatValue(value);

  Row row;
  row.cells = {std::to_string(main.main) + ".x",
               type,
               subType,
               main.isEncoded ? std::to_string(bits) : "-",
               text.empty() ? "-" : text,
               InWords(main.meaning),
               main.isEncoded   ? Expectation(dpt, Converter::Direct)
               : main.isDecoded ? "received only"
                                : "neither encoded nor decoded"};
  row.json["main"] = main.main;
  row.json["type"] = type;
  row.json["subType"] = subType;
  row.json["encoded"] = main.isEncoded;
  row.json["decoded"] = main.isDecoded;
  row.json["bits"] = main.isEncoded ? Json(bits) : Json();
  row.json["default"] = ToJson(value);
  Add(row.json, main.meaning);
  return row;
}

Row Describe(const Tal::DptDescription& entry) {
  const Dpt dpt{entry.dpt.main, entry.dpt.sub};
  const std::string label = dpt.sub == 0 ? std::to_string(dpt.main) + ".x" : FormatDpt(dpt);
  const char* const type = AROVALUE::GetNameFromValueType(entry.valueType);
  const char* const subType = AroDP::GetNameFromValueSubType(entry.subType);

  Row row;
  row.cells = {label, type, subType, std::to_string(entry.dpt.size), entry.codec, InWords(entry.meaning), "-"};
  row.json["dpt"] = label;
  row.json["type"] = type;
  row.json["subType"] = subType;
  row.json["bits"] = entry.dpt.size;
  row.json["codec"] = entry.codec;
  Add(row.json, entry.meaning);
  if (!entry.range) return row;
  const auto& [internalMin, internalMax, externalMin, externalMax] = *entry.range;
  row.cells.back() = FormatNumber(internalMin) + " .. " + FormatNumber(internalMax);
  row.json["range"] = {internalMin, internalMax};
  if (internalMin != externalMin || internalMax != externalMax) {
    row.cells.back() += " as " + FormatNumber(externalMin) + " .. " + FormatNumber(externalMax);
    row.json["externalRange"] = {externalMin, externalMax};
  }
  return row;
}

/// The rows of a converter that are asked for by @p dpt; none asked for: all.
std::vector<Row> Select(Converter converter, const Dpt* dpt) {
  std::vector<Row> rows;
  if (converter == Converter::Direct) {
    for (const auto& main : MainTypes()) {
      if (dpt == nullptr || main.main == dpt->main) rows.push_back(Describe(main));
    }
    return rows;
  }
  for (const auto& entry : DptTable()) {
    const bool isServing = dpt != nullptr && dpt->sub != 0 && FindDptRow(*dpt) == &entry;
    const bool isOfMain = dpt != nullptr && dpt->sub == 0 && entry.dpt.main == dpt->main;
    if (dpt == nullptr || isServing || isOfMain) rows.push_back(Describe(entry));
  }
  return rows;
}

}  // namespace

CLI::App* DptsCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("dpts", "What the library knows of datapoint types");
  SetHelp(
      *command, {"[DPT...]", "--html FILE", "--markdown FILE"},
      "Lists datapoint types with the type and sub type of their values and the bits of their group values. On the\n"
      "direct converter by main type, with the default value and what `encode` takes; on the table converter the rows "
      "of the\n"
      "table, with codec and range. With DPT only those. As a page: everything of both converters, to look things up "
      "in.");
  AddConverterOption(*command, m_converter);
  command->add_option("--html", m_html, "Write one page with a search and pictures of the layouts (-: to the output)")
      ->type_name("FILE");
  command->add_option("--markdown", m_markdown, "Write the table as Markdown (-: to the output)")->type_name("FILE");
  command->footer(
      "Examples:\n  talctl dpts\n  talctl dpts 9.001 232\n  talctl dpts --converter table 9\n  talctl dpts --json\n"
      "  talctl dpts --html datapoints.html");
  return command;
}

ExitStatus DptsCommand::Run(const Invocation& invocation) {
  const auto& [options, operands, streams] = invocation;
  const ReasonLog log(options.logLevel, streams.err);
  if (m_html || m_markdown) {
    if (!operands.empty() || (m_html && m_markdown))
      throw WrongUse("a page holds everything: expected --html FILE or --markdown FILE alone");
    return m_html ? WritePage(invocation, *m_html, DatapointsInHtml())
                  : WritePage(invocation, *m_markdown, DatapointsInMarkdown());
  }
  std::vector<Row> wanted;
  if (operands.empty()) wanted = Select(m_converter, nullptr);
  ExitStatus status = kDone;
  for (std::size_t i = 0; i < operands.size(); ++i) {
    Dpt dpt;
    std::string error;
    std::size_t fault = 0;
    std::vector<Row> rows;
    if (!ParseDpt(operands[i], dpt, error, &fault)) {
      error += DidYouMeanDpt(operands[i]);
    } else {
      rows = Select(m_converter, &dpt);
      if (rows.empty())
        error = FormatDpt(dpt) + " is not known on this converter; `talctl dpts --converter " + NameOf(m_converter) +
                "` lists what is" + DidYouMeanDpt(dpt, m_converter);
    }
    if (rows.empty()) status = Refuse(invocation, error, AtOperand(i, fault));
    wanted.insert(wanted.end(), rows.begin(), rows.end());
  }
  if (options.json) {
    for (const Row& row : wanted) streams.out << Line(row.json);
  } else if (!wanted.empty()) {
    Table table(Heading(m_converter));
    for (const Row& row : wanted) table.Add(row.cells);
    table.Print(streams.out, options.out);
  }
  return status;
}

}  // namespace Talctl
