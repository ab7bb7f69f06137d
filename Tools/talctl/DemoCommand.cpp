#include <Samples.h>

#include <array>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <ostream>
#include <sstream>

#include "Commands.h"
#include "Table.h"

namespace Talctl {
namespace {

/// A row of the sample: what is said when, and what must come of it.
struct SampleRow {
  std::string time;
  std::string what;
  std::string dpt;
  std::string value;
  std::array<std::string, 4>
      expected;  ///< octets and way back, and the same through the table converter, as Journey shows them
};

std::vector<SampleRow> ReadSample() {
  std::vector<SampleRow> rows;
  std::istringstream sample(kHouseDay);
  for (std::string line; std::getline(sample, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream cells(line);
    SampleRow row;
    auto& [octets, back, mapOctets, mapBack] = row.expected;
    for (std::string* cell : {&row.time, &row.what, &row.dpt, &row.value, &octets, &back, &mapOctets, &mapBack}) {
      std::getline(cells, *cell, '|');
      boost::algorithm::trim(*cell);
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

constexpr char kSame[] = "=";
constexpr char kNotSent[] = "refused";
constexpr char kNone[] = "-";

/// What became of a value on one converter.
struct Journey {
  std::string octets = kNotSent;
  std::string back = kNone;  ///< "=" when the value came back, else what came back instead
  std::string why;           ///< why something is refused or other than it was
};

/// Why a value comes back other than it went, when nothing was refused.
std::string WhyOther(const Dpt& dpt) {
  switch (dpt.main) {
    case 9: return "rounded to a two-octet float";
    case 14: return "rounded to single precision";
    case 16: return "cut to 14 characters of ISO 8859-1";
    default: return "not all of it is sent, or the local time has no such hour";
  }
}

Journey Travel(const SampleRow& row, Converter converter, ReasonLog& log) {
  Journey journey;
  const Conversion sent = Encode(row.dpt, row.value, converter, log);
  if (!sent.groupValue) {
    journey.why = sent.error;
    return journey;
  }
  journey.octets = Hex(sent.groupValue->GetRawData());
  const Conversion received = Decode(*sent.dpt, *sent.groupValue, converter, log);
  if (!received.value) {
    journey.back = kNotSent;
    journey.why = received.error;
    return journey;
  }
  journey.back = FormatOneLine(*received.value);
  if (journey.back == FormatOneLine(*sent.value)) {
    journey.back = kSame;
  } else {
    journey.why = WhyOther(*sent.dpt);
  }
  return journey;
}

/// Counts and prints what the journeys come to.
class Summary {
 public:
  void Count(const Journey& direct, const Journey& map, bool isExpected) {
    ++m_values;
    CountConverter(direct, m_direct);
    CountConverter(map, m_map);
    if (!isExpected) ++m_different;
  }
  bool AllExpected() const { return m_different == 0; }
  void Print(std::ostream& out, const Paint& paint) const {
    out << m_values << " values\n";
    PrintConverter(out, "direct converter: ", m_direct);
    PrintConverter(out, "table converter:    ", m_map);
    out << paint(AllExpected() ? Colour::Good : Colour::Bad, VerdictOn(m_different)) << '\n';
  }

 private:
  struct ConverterCount {
    unsigned back = 0;
    unsigned other = 0;
    unsigned refused = 0;
  };
  static void CountConverter(const Journey& journey, ConverterCount& count) {
    ++(journey.octets == kNotSent ? count.refused : journey.back == kSame ? count.back : count.other);
  }
  static void PrintConverter(std::ostream& out, const char* converter, const ConverterCount& count) {
    out << converter << count.back << " came back, " << count.other << " came back other or not at all, "
        << count.refused << " refused\n";
  }

  unsigned m_values = 0;
  unsigned m_different = 0;
  ConverterCount m_direct;
  ConverterCount m_map;
};

std::string Notes(const Journey& direct, const Journey& map) {
  if (direct.why == map.why) return direct.why;
  std::string notes = direct.why.empty() ? "" : "direct: " + direct.why;
  if (!map.why.empty()) notes += (notes.empty() ? "map: " : "; map: ") + map.why;
  return notes;
}

}  // namespace

CLI::App* DemoCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("demo", "A day of a house, from values to octets and back");
  SetHelp(
      *command, {""},
      "Sends the values that a sample house sees in a day through both converters to octets and back, and prints them "
      "as a\n"
      "table: `=` for the same again, else what came of it, and why. Some values are wrong on purpose. Exit status 1\n"
      "when a row comes out other than it must.");
  command->add_flag("--lines", m_lines, "Print the values as lines for `talctl encode` instead");
  command->footer("Examples:\n  talctl demo\n  talctl demo --lines | talctl encode");
  return command;
}

ExitStatus DemoCommand::Run(const Invocation& invocation) {
  if (!invocation.operands.empty()) throw WrongUse("demo takes no operands");
  std::ostream& out = invocation.streams.out;
  const bool json = invocation.options.json;
  const std::vector<SampleRow> rows = ReadSample();
  if (m_lines) {
    for (const SampleRow& row : rows) out << row.dpt << ' ' << row.value << '\n';
    return kDone;
  }
  ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  Table table({"TIME", "WHAT", "DPT", "VALUE", "OCTETS", "BACK", "MAP", "BACK", "NOTES"});
  Summary summary;
  for (const SampleRow& row : rows) {
    const Journey direct = Travel(row, Converter::Direct, log);
    Journey map = Travel(row, Converter::Table, log);
    if (map.octets == direct.octets && map.octets != kNotSent) map.octets = kSame;
    const std::array<std::string, 4> came = {direct.octets, direct.back, map.octets, map.back};
    const bool isExpected = came == row.expected;
    summary.Count(direct, map, isExpected);
    const std::string notes =
        Notes(direct, map) + (isExpected ? "" : "  DIFFERS: expected " + boost::algorithm::join(row.expected, " | "));
    if (!json) {
      table.Add({row.time, row.what, row.dpt, row.value, direct.octets, direct.back, map.octets, map.back, notes});
      continue;
    }
    out << Line({{"time", row.time},
                 {"what", row.what},
                 {"dpt", row.dpt},
                 {"value", row.value},
                 {"octets", direct.octets},
                 {"back", direct.back},
                 {"map", map.octets},
                 {"mapBack", map.back},
                 {"notes", notes},
                 {"asExpected", isExpected}});
  }
  if (!json) {
    table.SetColour(kSame, Colour::Good);
    table.SetColour(kNotSent, Colour::Bad);
    table.Print(out, invocation.options.out);
    out << '\n';
    summary.Print(out, invocation.options.out);
  }
  return summary.AllExpected() ? kDone : kRefused;
}

}  // namespace Talctl
