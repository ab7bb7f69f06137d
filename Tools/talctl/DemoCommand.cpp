#include <HouseDay.h>

#include <boost/algorithm/string/trim.hpp>
#include <ostream>
#include <sstream>

#include "Commands.h"
#include "Encoding.h"
#include "Table.h"

namespace Talctl {
namespace {

constexpr char kRefusedMark[] = "refused";

/// A row of the sample: "time | what | DPT | value | octets or refused".
struct SampleRow {
  std::string time;
  std::string what;
  std::string dpt;
  std::string value;
  std::string expected;
};

std::vector<SampleRow> ReadSample() {
  std::vector<SampleRow> rows;
  std::istringstream sample(kHouseDay);
  for (std::string line; std::getline(sample, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream cells(line);
    SampleRow row;
    for (std::string* cell : {&row.time, &row.what, &row.dpt, &row.value, &row.expected}) {
      std::getline(cells, *cell, '|');
      boost::algorithm::trim(*cell);
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string Verdict(const SampleRow& row, const Encoding& encoding) {
  if (!encoding.groupValue) return row.expected == kRefusedMark ? "" : "DIFFERS: expected " + row.expected;
  return row.expected == encoding.Answer() ? "" : "DIFFERS: expected " + row.expected;
}

}  // namespace

CLI::App* DemoCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("demo", "A day of a house, from values to octets");
  SetHelp(*command, {""},
          "Encodes the values that a sample house sees in a day and prints them as a table with their octets or the "
          "reason\n"
          "of their refusal; some are wrong on purpose. Exit status 1 when a row comes out other than it must.");
  command->add_flag("--lines", m_lines, "Print the values as lines for `talctl encode` instead");
  command->footer("Examples:\n  talctl demo\n  talctl demo --lines | talctl encode");
  return command;
}

ExitStatus DemoCommand::Run(const Invocation& invocation) {
  if (!invocation.operands.empty()) throw WrongUse("demo takes no operands");
  const auto& [in, out, err] = invocation.streams;
  ReasonLog log(invocation.options.logLevel, err);
  Table table({"TIME", "WHAT", "DPT", "VALUE", "OCTETS, OR WHY NOT"});
  unsigned encoded = 0;
  unsigned refused = 0;
  unsigned different = 0;
  unsigned long number = 0;
  for (const SampleRow& row : ReadSample()) {
    const std::string line = row.dpt + ' ' + row.value;
    if (m_lines) {
      out << line << '\n';
      continue;
    }
    const Encoding encoding = EncodeLine(line, log);
    const std::string verdict = Verdict(row, encoding);
    ++(encoding.groupValue ? encoded : refused);
    different += verdict.empty() ? 0 : 1;
    if (invocation.options.json) {
      Json json = encoding.ToJson(++number);
      json["time"] = row.time;
      json["what"] = row.what;
      json["asExpected"] = verdict.empty();
      out << Line(json);
    } else {
      table.Add({row.time, row.what, row.dpt, row.value, encoding.Answer() + (verdict.empty() ? "" : "  " + verdict)});
    }
  }
  if (m_lines) return kDone;
  if (!invocation.options.json) {
    table.Print(out);
    out << '\n'
        << encoded + refused << " values: " << encoded << " encoded, " << refused << " refused, " << different
        << (different == 0 ? " other than expected: all is well\n" : " other than expected\n");
  }
  return different == 0 ? kDone : kRefused;
}

}  // namespace Talctl
