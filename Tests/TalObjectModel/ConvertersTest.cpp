// The table of Docs/Converters.md against what the two converters do.
#include <Tal/KnxZelMapping.h>
#include <gmock/gmock.h>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <fstream>
#include <limits>
#include <map>
#include <set>

#include "Support/Converters.h"
#include "Support/LogCapture.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;

/// What a converter makes of an input: "" for nothing.
std::string EncodedOn(Converter converter, const KNXDPT& dpt, const AROVALUE& value) {
  const std::string wire = Encode(converter, dpt, value);
  return wire == "none" || wire == "/0" ? "" : wire;
}

/// Type and content: "Byte 7".
std::string DecodedOn(Converter converter, const KNXDPT& dpt, const GroupValue& groupValue) {
  const auto value = Decode(converter, dpt, groupValue);
  if (!value || value->avt == avtInvalid || value->avt == avtEmpty) return "";
  return std::string(AROVALUE::GetNameFromValueType(value->avt)) + ' ' + value->ToString();
}

/// The same content under a converter's type.
AROVALUE Probe(AroValueType type, std::int64_t number) {
  AROVALUE value = Timed(type, Time(2023, 1, 1, 12, 30, 15, 0x40));
  value.text = number < 0 ? "" : number < 100 ? "A" : "\u00E9";
  value.SetDWord(static_cast<std::uint32_t>(number));
  if (type == avtFloat) value.SetFloat(static_cast<double>(number));
  if (type == avtBool) value.SetBool(number != 0);
  return value;
}

struct Row {
  std::string types, encoded, decoded;
  std::set<std::string> differences;
};

std::string Who(bool direct, bool map) {
  return direct && map ? "both" : direct ? "direct" : map ? "table" : "neither";
}

Row Observe(std::uint16_t main) {
  const AroValueType directType = Tal::KnxZelMapping::GetAvtFromDpt(static_cast<unsigned>(Dpt(main)));
  const AroValueType mapType = Map().GetEntry({0, main, 1}).GetValueType();
  bool encodes[2] = {};
  bool decodes[2] = {};
  Row row;
  const auto note = [&](const char* way, const std::string& direct, const std::string& map, bool(&does)[2]) {
    does[0] = does[0] || !direct.empty();
    does[1] = does[1] || !map.empty();
    if (direct == map) return;
    row.differences.insert(std::string(way) + (map.empty() ? " direct" : direct.empty() ? " table" : " other"));
  };
  for (const unsigned sub : {1u, 0u, 2u, 6u, 20u, 102u}) {
    const KNXDPT dpt{0, main, static_cast<std::uint16_t>(sub)};
    const auto encode = [&](const AROVALUE& direct, const AROVALUE& map) {
      note("E", EncodedOn(Converter::Direct, dpt, direct), EncodedOn(Converter::Table, dpt, map), encodes);
    };
    for (const int number : {0, 1, 4, 5, 12, 63, 64, 128, 254, 255, 32768, 65535, 65536, -1, -300}) {
      encode(Probe(directType, number), Probe(mapType, number));
    }
    if (directType == avtFloat && mapType == avtFloat) {
      for (const double number : {0.35, 670760.96, std::numeric_limits<double>::quiet_NaN()}) {
        encode(Float(number), Float(number));
      }
    }
    for (const unsigned octet :
         {0u, 1u, 3u, 4u, 5u, 7u, 12u, 31u, 38u, 63u, 64u, 99u, 100u, 127u, 128u, 133u, 233u, 255u}) {
      const auto o = static_cast<std::uint8_t>(octet);
      const auto hour = static_cast<std::uint8_t>(0xE0 | (octet & 0x1F));
      for (const GroupValue& groupValue :
           {GroupValue({o}, 6), GroupValue({o}, 8), GroupValue({o, 0xFF}, 16), GroupValue({1, 1, o}, 24),
            GroupValue({o, 1, 1, 2}, 32), GroupValue({123, 1, 1, hour, 30, 15, 0x20, 0}, 64),
            GroupValue({o, 0xE9, 0, 'x', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 112)}) {
        note("D", DecodedOn(Converter::Direct, dpt, groupValue), DecodedOn(Converter::Table, dpt, groupValue), decodes);
      }
    }
  }
  const auto name = [](AroValueType type) { return type == avtEmpty ? "-" : AROVALUE::GetNameFromValueType(type); };
  row.types = directType == mapType ? name(directType) : std::string(name(directType)) + ", " + name(mapType);
  row.encoded = Who(encodes[0], encodes[1]);
  row.decoded = Who(decodes[0], decodes[1]);
  return row;
}

/// The rows of the page's table by main type, as "types|encoded|decoded|differences".
std::map<unsigned, std::string> ReadPage() {
  std::map<unsigned, std::string> rows;
  std::ifstream page(TAL_CONVERTERS_PAGE);
  for (std::string line; std::getline(page, line);) {
    std::vector<std::string> cells;
    boost::split(cells, line, [](char c) { return c == '|'; });
    if (cells.size() != 8 || cells[1].find(".x") == std::string::npos) continue;
    for (std::string& cell : cells) boost::trim(cell);
    rows[static_cast<unsigned>(std::stoul(cells[1]))] = cells[2] + '|' + cells[3] + '|' + cells[4] + '|' + cells[5];
    EXPECT_EQ(cells[5] == "none", cells[6] == "-") << line;
  }
  return rows;
}

TEST(Converters, DoForEveryMainTypeWhatThePageSays) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  std::map<unsigned, std::string> observed;
  for (std::uint16_t main = 1; main <= 300; ++main) {  // 0 is no datapoint type
    const Row row = Observe(main);
    if (row.types == "-" && row.encoded == "neither" && row.decoded == "neither") continue;
    observed[main] = row.types + '|' + row.encoded + '|' + row.decoded + '|' +
                     (row.differences.empty() ? "none" : boost::join(row.differences, ", "));
  }
  auto page = ReadPage();
  for (const auto& [main, row] : observed) {
    EXPECT_EQ(page[main], row) << main << ".x";
    page.erase(main);
  }
  EXPECT_TRUE(page.empty()) << "the page tells of " << page.begin()->first << ".x, which no converter knows";
}

}  // namespace
}  // namespace TalTest
