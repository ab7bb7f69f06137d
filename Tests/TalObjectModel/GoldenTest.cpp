// Golden.txt: what conversions give, written on one machine and compared on every other, 32 bits or 64. What stands
// before a row's colon says what is converted; records follow under the same name. After an intended change, or with
// more names: TAL_TEST_WRITE_GOLDEN=Tests/Golden.txt build/dev/bin/golden_tests
#include <Tal/KnxZelMapping.h>
#include <gtest/gtest.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <cstdlib>
#include <fstream>
#include <random>

#include "Support/Converters.h"
#include "Support/LogCapture.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;
using namespace Tal::KnxZelMapping;

/// FNV-1a of lines that would fill pages.
std::string Digest(const std::string& lines) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : lines) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  char text[20];
  std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(hash));
  return text;
}

std::string Shown(const AROVALUE& value) {
  std::string text;
  value.Serialize(text, true);
  return text;
}

/// There and back on both converters.
std::string Travelled(const KNXDPT& dpt, const GroupValue& groupValue) {
  std::string text;
  for (const Converter converter : {Converter::Direct, Converter::Table}) {
    const auto value = Decode(converter, dpt, groupValue);
    text += (converter == Converter::Table ? " | " : "") +
            (value ? Shown(*value) + " > " + Encode(converter, dpt, *value) : "none");
  }
  return text;
}

/// All words that begin with an octet.
std::string Words(const KNXDPT& dpt, unsigned high) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  std::string lines;
  for (unsigned low = 0; low < 256; ++low) {
    lines += Travelled(dpt, GroupValue({static_cast<std::uint8_t>(high), static_cast<std::uint8_t>(low)}, 16)) + '\n';
  }
  return Digest(lines);
}

/// All octets, in 8 bits and in 6, with their records.
std::string OctetsAndRecords(const KNXDPT& dpt, ScopedLogCapture& log) {
  std::string lines;
  for (unsigned octet = 0; octet < 512; ++octet) {
    lines += Travelled(dpt, GroupValue({static_cast<std::uint8_t>(octet)}, octet < 256 ? 8 : 6)) + '\n';
    for (const std::string& line : log.Take()) lines += line + '\n';
  }
  return Digest(lines);
}

std::string Serialised(int type) {
  AROVALUE value = Timed(static_cast<AroValueType>(type), Time(2023, 12, 31, 23, 59, 58, 0x40));
  value.SetPayload(0xC05EDD2F1A9FBE77u);
  value.text = "Gr\u00FC\u00DFe";
  std::string text;
  value.Serialize(text, false);
  return text + ' ' + Shown(value);
}

/// The texts of a block of random floats.
std::string Floats(unsigned block) {
  constexpr unsigned kBlock = 4096;
  std::mt19937_64 random(1);
  random.discard(kBlock * block);
  std::string lines;
  for (unsigned i = 0; i < kBlock; ++i) {
    AROVALUE value = Typed(avtFloat);
    value.SetPayload(random());
    AROVALUE again;
    EXPECT_TRUE(again.Deserialize(Shown(value)));
    lines += Shown(value) + ' ' + Shown(again) + '\n';
  }
  return Digest(lines);
}

/// Ten thousand identifiers.
std::string Identifiers(ObjectId first) {
  const auto number = [](const auto& optional) {
    return optional ? std::to_string(static_cast<unsigned>(*optional)) : "-";
  };
  std::string lines;
  for (ObjectId id = first; id < first + 10000; ++id) {
    std::string text = std::to_string(IsCoChannel(id)) + std::to_string(IsCoValue(id)) +
                       std::to_string(IsParameterChannel(id)) + ' ' + number(GetCoValueObjModelId(id)) + ' ' +
                       number(GetParameterValueObjModelId(id));
    for (const auto dev : {Tal::LogicalDeviceId::Of<1>(), Tal::LogicalDeviceId::Of<2>()}) {
      text += ' ' + number(GetCoNumberFromObjModelId(id, dev)) + ' ' + number(GetParameterTypeFromObjModelId(id, dev)) +
              ' ' + number(GetParameterNumberFromObjModelId(id, dev));
    }
    lines += text + '\n';
  }
  return Digest(lines);
}

/// What stands behind the colon of a name's first row: "9.1 0.005", "19.1 7B 01 01 EC 1E 0F 20 00", "floats 3", ...
std::string Converted(const std::string& name, ScopedLogCapture& log) {
  const std::size_t blank = name.find(' ');
  const std::string what = name.substr(0, blank);
  const std::string of = name.substr(blank + 1);
  if (what == "floats") return Floats(static_cast<unsigned>(std::stoul(of)));
  if (what == "identifiers") return Identifiers(static_cast<ObjectId>(std::stoul(of)));
  if (what == "serialised") return Serialised(std::stoi(of));
  const KNXDPT dpt = ReadDpt(what);
  if (boost::ends_with(of, "xx")) return Words(dpt, static_cast<unsigned>(std::stoul(of)));
  if (of == "octets and records") return OctetsAndRecords(dpt, log);
  if (of.find(' ') != of.npos) return Travelled(dpt, Octets(of));
  const AROVALUE value = Value("3:" + of);
  const std::string direct = Encode(Converter::Direct, dpt, value);  // before the other: both leave records
  return direct + " | " + Encode(Converter::Table, dpt, value);
}

TEST(Golden, IsTheSameOnEveryMachine) {
  std::vector<std::string> expected;
  std::vector<std::string> lines;
  std::ifstream in(TAL_GOLDEN_FILE);
  std::string before;
  for (std::string line; std::getline(in, line);) {
    expected.push_back(line);
    const std::string name = line.substr(0, line.find(": "));
    if (name == before) continue;
    ScopedLogCapture log(Tal::LogLevel::Warn);
    const auto add = [&](const std::string& text) {
      lines.push_back(name + ": " + boost::algorithm::replace_all_copy(text, "\n", "\\n"));
    };
    add(Converted(name, log));
    for (const std::string& record : log.Take()) add(record);
    before = name;
  }
  if (const char* const path = std::getenv("TAL_TEST_WRITE_GOLDEN")) {
    std::ofstream out(path);
    for (const std::string& line : lines) out << line << '\n';
    ASSERT_TRUE(out.flush()) << path;
    return;
  }
  EXPECT_GE(expected.size(), 1099u);  // no row gets lost
  for (std::size_t i = 0; i < expected.size() || i < lines.size(); ++i) {
    ASSERT_TRUE(i < expected.size() && i < lines.size()) << "there are other records; line " << i;
    EXPECT_EQ(lines[i], expected[i]) << "line " << i + 1;
  }
}

}  // namespace
}  // namespace TalTest
