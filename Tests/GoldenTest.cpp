// Golden.txt: what conversions give, written on one machine and compared on every other, 32 bits or 64.
// After an intended change: TAL_TEST_WRITE_GOLDEN=Tests/Golden.txt build/dev/bin/golden_tests
#include <Tal/AroValueHelper.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxValueConverter.h>
#include <Tal/KnxZelMapping.h>
#include <gtest/gtest.h>

#include <boost/algorithm/string/replace.hpp>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::BinaryData;
using KnxStack::GroupValue;
using namespace Tal::KnxZelMapping;

/// FNV-1a of all that it is given, for what would fill pages.
class Digest {
 public:
  void Add(const std::string& text) {
    for (const char c : text + '\n') m_hash = (m_hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  }
  std::string Text() const {
    char text[20];
    std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(m_hash));
    return text;
  }

 private:
  std::uint64_t m_hash = 0xCBF29CE484222325u;
};

Tal::KnxValueConverter& Map() {
  static Tal::KnxValueConverter converter;
  static const bool isFilled = (converter.Init(), true);
  static_cast<void>(isFilled);
  return converter;
}

std::string Shown(const AROVALUE& value) {
  std::string text;
  value.Serialize(text, true);
  return text;
}

boost::optional<AROVALUE> Decode(bool map, const KNXDPT& given, const GroupValue& groupValue) {
  if (!map) {
    try {
      return Tal::GroupValueToAroValue(groupValue, Dpt(given.main, given.sub));
    } catch (const std::out_of_range&) {
      return boost::none;
    }
  }
  KNXDPT dpt = given;
  AROVALUE value;
  return Map().FromKnxValue(dpt, groupValue, value) ? boost::make_optional(value) : boost::none;
}

std::string Encode(bool map, const KNXDPT& given, const AROVALUE& value) {
  if (!map) {
    try {
      const auto groupValue = Tal::AroValueToGroupValue(value, Dpt(given.main, given.sub));
      return groupValue ? Wire(*groupValue) : "none";
    } catch (const std::out_of_range&) {
      return "range";
    }
  }
  KNXDPT dpt = given;
  GroupValue groupValue;
  return Map().ToKnxValue(dpt, value, groupValue) ? Wire(groupValue) : "none";
}

/// There and back on both roads.
std::string Travelled(const KNXDPT& dpt, const GroupValue& groupValue) {
  std::string text;
  for (const bool map : {false, true}) {
    const auto value = Decode(map, dpt, groupValue);
    text += (map ? " | " : "") + (value ? Shown(*value) + " > " + Encode(map, dpt, *value) : "none");
  }
  return text;
}

class Golden {
 public:
  void Add(const std::string& name, const std::string& text) {
    m_lines.push_back(name + ": " + boost::algorithm::replace_all_copy(text, "\n", "\\n"));
  }
  const std::vector<std::string>& Lines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
};

void AddWords(Golden& golden) {
  for (const unsigned main : {7u, 8u, 9u}) {
    for (unsigned high = 0; high < 256; ++high) {
      Digest digest;
      for (unsigned low = 0; low < 256; ++low) {
        const GroupValue word({static_cast<std::uint8_t>(high), static_cast<std::uint8_t>(low)}, 16);
        digest.Add(Travelled({0, static_cast<std::uint16_t>(main), 1}, word));
      }
      golden.Add(std::to_string(main) + ".001 " + std::to_string(high) + "xx", digest.Text());
    }
  }
}

void AddOctets(Golden& golden) {
  ScopedLogCapture log(Tal::LogLevel::Warn);
  for (const unsigned main : {1u, 2u, 3u, 4u, 5u, 6u, 17u, 18u, 20u, 21u, 23u, 25u, 26u, 31u, 236u, 238u}) {
    for (const unsigned sub : {1u, 2u, 6u, 10u, 20u, 102u}) {
      Digest digest;
      for (unsigned octet = 0; octet < 512; ++octet) {
        const GroupValue groupValue({static_cast<std::uint8_t>(octet)}, octet < 256 ? 8 : 6);
        digest.Add(Travelled({0, static_cast<std::uint16_t>(main), static_cast<std::uint16_t>(sub)}, groupValue));
        for (const std::string& line : log.Take()) digest.Add(line);
      }
      golden.Add(std::to_string(main) + '.' + std::to_string(sub) + " octets and records", digest.Text());
    }
  }
}

void AddBoundaries(Golden& golden) {
  const struct {
    std::uint16_t main, sub;
    std::vector<std::vector<std::uint8_t>> octets;
  } rows[] = {
      {10, 1, {{0, 0, 0}, {0xF7, 0x3B, 0x3B}, {0x18, 0, 0}, {0, 0x3C, 0}, {0xFF, 0xFF, 0xFF}}},
      {11,
       1,
       {{1, 2, 90},
        {1, 1, 0},
        {31, 12, 37},
        {29, 2, 0},
        {29, 2, 99},
        {31, 4, 23},
        {0, 1, 23},
        {1, 13, 23},
        {31, 12, 89}}},
      {12, 1, {{0, 0, 0, 0}, {0x7F, 0xFF, 0xFF, 0xFF}, {0x80, 0, 0, 0}, {0xFF, 0xFF, 0xFF, 0xFF}}},
      {13, 1, {{0, 0, 0, 0}, {0x7F, 0xFF, 0xFF, 0xFF}, {0x80, 0, 0, 0}, {0xFF, 0xFF, 0xFF, 0xFF}}},
      {14,
       56,
       {{0, 0, 0, 0}, {0x80, 0, 0, 0}, {0, 0, 0, 1}, {0x7F, 0x7F, 0xFF, 0xFF}, {0x7F, 0x80, 0, 0}, {0x7F, 0xC0, 0, 0}}},
      {15, 0, {{0, 0, 0, 0}, {0xFF, 0xFF, 0xFF, 0xFF}}},
      {16,
       1,
       {{'A', 0xE9, 0, 'x', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {0xFF, 0x80, 0x9F, 7, 10, 1, 1, 1, 1, 1, 1, 1, 1, 1}}},
      {19,
       1,
       {{123, 1, 1, 0xEC, 30, 15, 0x20, 0},
        {0, 1, 1, 0, 0, 0, 0, 0},
        {90, 2, 1, 24, 0, 0, 0, 0},
        {255, 12, 31, 23, 59, 59, 0, 0},
        {90, 2, 30, 0, 0, 0, 0, 0}}},
      {232, 600, {{0, 0, 0}, {0xFF, 0xFF, 0xFF}, {0x12, 0x34, 0x56}}},
  };
  for (const auto& row : rows) {
    for (const auto& octets : row.octets) {
      ScopedLogCapture log(Tal::LogLevel::Warn);
      const GroupValue groupValue(BinaryData(octets.data(), octets.size()), static_cast<unsigned>(8 * octets.size()));
      const std::string name = std::to_string(row.main) + '.' + std::to_string(row.sub) + ' ' + groupValue.ToString();
      golden.Add(name, Travelled({0, row.main, row.sub}, groupValue));
      for (const std::string& line : log.Take()) golden.Add(name, line);
    }
  }
}

void AddValues(Golden& golden) {
  const double numbers[] = {0.0,       -0.0,         0.005,    -0.005,    0.015,        20.47,
                            20.48,     670433.28,    670760.9, 670760.96, 670760.97,    -671088.64,
                            -671088.7, 3.4028235e38, 3.41e38,  1e-46,     4294967295.0, 1e300};
  for (const double number : numbers) {
    for (const auto& dpt : {KNXDPT{0, 9, 1}, KNXDPT{0, 9, 2}, KNXDPT{0, 14, 1}}) {
      ScopedLogCapture log(Tal::LogLevel::Warn);
      const AROVALUE value = Float(number);
      const std::string name = std::to_string(dpt.main) + '.' + std::to_string(dpt.sub) + ' ' + value.ToString();
      const std::string direct = Encode(false, dpt, value);  // before the other: both leave records
      golden.Add(name, direct + " | " + Encode(true, dpt, value));
      for (const std::string& line : log.Take()) golden.Add(name, line);
    }
  }
  for (const AroValueType type : {avtEmpty, avtBool, avtFloat, avtInteger, avtByte, avtWord, avtDWord, avtString,
                                  avtDate, avtTime, avtDateTime, avtDayTime}) {
    AROVALUE value = Timed(type, Time(2023, 12, 31, 23, 59, 58, 0x40));
    value.SetPayload(0xC05EDD2F1A9FBE77u);
    value.text = "Gr\u00FC\u00DFe";
    std::string text;
    value.Serialize(text, false);
    golden.Add("serialised " + std::to_string(type), text + ' ' + Shown(value));
  }
}

void AddFloatTexts(Golden& golden) {
  std::mt19937_64 random(1);
  for (int block = 0; block < 16; ++block) {
    Digest digest;
    for (int i = 0; i < 4096; ++i) {
      AROVALUE value = Typed(avtFloat);
      value.SetPayload(random());
      AROVALUE again;
      EXPECT_TRUE(again.Deserialize(Shown(value)));
      digest.Add(Shown(value) + ' ' + Shown(again));
    }
    golden.Add("floats " + std::to_string(block), digest.Text());
  }
}

void AddIdentifiers(Golden& golden) {
  const auto number = [](const auto& optional) {
    return optional ? std::to_string(static_cast<unsigned>(*optional)) : "-";
  };
  for (ObjectId block = 0; block < 40; ++block) {
    Digest digest;
    for (ObjectId id = block * 10000; id < (block + 1) * 10000; ++id) {
      std::string text = std::to_string(IsCoChannel(id)) + std::to_string(IsCoValue(id)) +
                         std::to_string(IsParameterChannel(id)) + ' ' + number(GetCoValueObjModelId(id)) + ' ' +
                         number(GetParameterValueObjModelId(id));
      for (const auto dev : {Tal::LogicalDeviceId::Of<1>(), Tal::LogicalDeviceId::Of<2>()}) {
        text += ' ' + number(GetCoNumberFromObjModelId(id, dev)) + ' ' +
                number(GetParameterTypeFromObjModelId(id, dev)) + ' ' +
                number(GetParameterNumberFromObjModelId(id, dev));
      }
      digest.Add(text);
    }
    golden.Add("identifiers " + std::to_string(block) + "0000", digest.Text());
  }
}

TEST(Golden, IsTheSameOnEveryMachine) {
  Golden golden;
  {
    const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
    AddWords(golden);
    AddFloatTexts(golden);
    AddIdentifiers(golden);
  }
  AddOctets(golden);
  AddBoundaries(golden);
  AddValues(golden);
  if (const char* const path = std::getenv("TAL_TEST_WRITE_GOLDEN")) {
    std::ofstream out(path);
    for (const std::string& line : golden.Lines()) out << line << '\n';
    ASSERT_TRUE(out.flush()) << path;
    return;
  }
  std::ifstream in(TAL_GOLDEN_FILE);
  std::size_t count = 0;
  for (std::string line; std::getline(in, line); ++count) {
    ASSERT_LT(count, golden.Lines().size());
    EXPECT_EQ(golden.Lines()[count], line) << "line " << count + 1;
  }
  EXPECT_EQ(count, golden.Lines().size());
}

}  // namespace
}  // namespace TalTest
