#include "Reference.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <map>
#include <ostream>
#include <sstream>

#include <Format/Quoted.h>
#include "Pages.h"

namespace Talctl {
namespace {

/// The last column of the table of Docs/Converters.md by main type.
std::map<unsigned, std::string> ReadDifferences() {
  std::map<unsigned, std::string> differences;
  std::istringstream page(kConvertersPage);
  std::string line;
  while (std::getline(page, line) && line.rfind("| DPT |", 0) != 0) {
  }
  while (std::getline(page, line) && line.rfind("| ", 0) != 0) {  // the line below the heading
  }
  for (; line.rfind("| ", 0) == 0; std::getline(page, line)) {
    unsigned main = 0;
    std::from_chars(line.data() + 2, line.data() + line.size(), main);
    const std::size_t cell = line.rfind('|', line.size() - 2) + 2;
    const std::string text = line.substr(cell, line.size() - 2 - cell);
    if (text != "-") differences[main] = text;
  }
  return differences;
}

/// The example on a converter. A main type of which only a sub type is converted is tried as its first.
Conversion Example(const Dpt& dpt, Converter converter, const std::string& example, ReasonLog& log) {
  const Conversion whole = Encode(FormatDpt(dpt), example, converter, log);
  return whole.groupValue || dpt.sub != 0 ? whole : Encode(FormatDpt({dpt.main, 1}), example, converter, log);
}

/// What a converter reads of a group value: of the datapoint type, or where it reads nothing as that, of its first sub
/// type.
Conversion DecodedExample(const Dpt& dpt, Converter converter, const KnxStack::GroupValue& groupValue, ReasonLog& log) {
  const Conversion whole = Decode(dpt, groupValue, converter, log);
  return whole.value || dpt.sub != 0 ? whole : Decode(Dpt{dpt.main, 1}, groupValue, converter, log);
}

/// The octets that a converter reads of a type of at most eight bits: "the octets 00 to 3F, 80 to BF"; "" when it reads
/// them all.
std::string OctetsRead(const Dpt& dpt, Converter converter, unsigned bits, ReasonLog& log) {
  const unsigned count = 1u << bits;
  std::string ranges;
  unsigned rangeCount = 0;
  unsigned read = 0;
  for (unsigned octet = 0, first = 0; octet <= count; ++octet) {
    const KnxStack::GroupValue groupValue({static_cast<std::uint8_t>(octet)}, bits);
    const bool isRead = octet < count && DecodedExample(dpt, converter, groupValue, log).value;
    if (isRead) {
      ++read;
      continue;
    }
    const auto hex = [](unsigned number) { return Hex(KnxStack::BinaryData{static_cast<std::uint8_t>(number)}); };
    if (first < octet) {
      ++rangeCount;
      ranges += (ranges.empty() ? "" : ", ") + hex(first) + (first + 1 < octet ? " to " + hex(octet - 1) : "");
    }
    first = octet + 1;
  }
  constexpr unsigned kWorthListing = 4;
  if (read == count) return "";
  return rangeCount > kWorthListing ? std::to_string(read) + " of " + std::to_string(count) + " octets"
                                    : "the octets " + ranges;
}

/// " (26.001 only)" for a conversion that only the first sub type takes.
std::string OnlyFirst(const Dpt& dpt, const Conversion& conversion) {
  const bool isOther = conversion.dpt && conversion.dpt->sub != dpt.sub;
  return isOther ? " (" + FormatDpt(*conversion.dpt) + " only)" : "";
}

/// @param sent  an example of what goes over the bus, from any converter.
ConverterFacts FactsOf(const Dpt& dpt, Converter converter, const Conversion& example, const Conversion& sent,
                       ReasonLog& log) {
  ConverterFacts facts;
  facts.isEncoded = example.groupValue.has_value();
  if (facts.isEncoded) facts.octets = example.groupValue->GetRawData();
  Conversion read;
  if (sent.groupValue) read = DecodedExample(dpt, converter, *sent.groupValue, log);
  const auto* const main = converter == Converter::Direct ? FindMainType(dpt) : nullptr;
  facts.isDecoded = read.value || (main != nullptr && main->isDecoded);
  if (!facts.isEncoded && !facts.isDecoded) {
    facts.values = "not converted";
    return facts;
  }
  const auto nameOf = [](std::int32_t type) {
    return std::string(AROVALUE::GetNameFromValueType(static_cast<AroValueType>(type)));
  };
  const std::string type = nameOf(ValueTypeOf(dpt, converter));
  const std::string typeRead = read.value ? nameOf(read.value->avt) : type;
  facts.values = facts.isEncoded ? type + ": " + Expectation(dpt, converter) + OnlyFirst(dpt, example)
                                 : typeRead + ": received only";
  if (facts.isEncoded && typeRead != type) facts.values += "; read as " + typeRead;
  const boost::optional<unsigned> bits = Tal::DescribeExpectedBits(dpt.main);
  const std::string octetsRead = bits && *bits <= 8 ? OctetsRead(dpt, converter, *bits, log) : "";
  if (!octetsRead.empty()) facts.values += "; reads only " + octetsRead + OnlyFirst(dpt, read);
  return facts;
}

ReferenceRow Describe(const Dpt& dpt, const Tal::DptMeaning& meaning, const std::string& differences, ReasonLog& log) {
  ReferenceRow row;
  row.dpt = dpt;
  row.label = dpt.sub == 0 ? std::to_string(dpt.main) + ".x" : FormatDpt(dpt);
  row.meaning = meaning;
  const auto bits = Tal::DescribeExpectedBits(dpt.main);
  row.bits = bits ? std::to_string(*bits) : "any";
  row.differences = differences;
  const Conversion direct = Example(dpt, Converter::Direct, meaning.example, log);
  const Conversion map =
      FindDptRow(dpt) != nullptr ? Example(dpt, Converter::Table, meaning.example, log) : Conversion();
  const Conversion& sent = map.groupValue ? map : direct;
  row.direct = FactsOf(dpt, Converter::Direct, direct, sent, log);
  row.map = FactsOf(dpt, Converter::Table, map, FindDptRow(dpt) != nullptr ? sent : Conversion(), log);
  return row;
}

}  // namespace

std::vector<ReferenceRow> Reference() {
  std::ostringstream nowhere;
  ReasonLog log(boost::none, nowhere);
  std::map<unsigned long, std::pair<Dpt, Tal::DptMeaning>> meanings;
  for (const auto& main : MainTypes()) {
    const Dpt dpt{main.main, 0};
    meanings[dpt.Number()] = {dpt, main.meaning};
  }
  for (const auto& entry : DptTable()) {
    const Dpt dpt{entry.dpt.main, entry.dpt.sub};
    meanings[dpt.Number()] = {dpt, entry.meaning};
  }
  std::map<unsigned, std::string> differences = ReadDifferences();
  std::vector<ReferenceRow> rows;
  for (const auto& [number, meaning] : meanings) {
    const auto& [dpt, words] = meaning;
    rows.push_back(Describe(dpt, words, differences[dpt.main], log));
  }
  return rows;
}

std::vector<Field> FieldsOf(const std::string& layout) {
  std::vector<Field> fields;
  std::istringstream words(layout);
  Field field;
  while (std::getline(words >> std::ws, field.name, ':') && words >> field.bits) {
    unsigned count = 1;
    if (words.peek() == '*') words.ignore() >> count;
    fields.insert(fields.end(), count, field);
  }
  return fields;
}

std::string ExampleOf(const ReferenceRow& row) {
  return row.meaning.example + (row.meaning.unit.empty() ? "" : " " + row.meaning.unit);
}

ExitStatus WritePage(const Invocation& invocation, const std::string& file, const std::string& page) {
  if (file == "-") {
    invocation.streams.out << page;
    return kDone;
  }
  errno = 0;
  std::ofstream out(file, std::ios::binary);
  if (out << page && out.flush()) return kDone;
  return Refuse(invocation,
                OneLine(file) + ": cannot be written" + (errno != 0 ? ": " + std::string(std::strerror(errno)) : ""));
}

}  // namespace Talctl
