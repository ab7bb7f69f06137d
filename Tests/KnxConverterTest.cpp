// Codecs alone, taken out of the rows of the standard table.
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <cmath>
#include <set>

#include "Support/Cases.h"
#include "Support/LogCapture.h"
#include "Support/Map.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;
using Tal::KnxConverter;
using testing::HasSubstr;

/// The codec of a row of the standard table.
KnxConverter& CodecOf(const KNXDPT& row) { return *Map().GetEntry(row).GetConverter(); }
KnxConverter& RawCodec() {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);  // there is no row
  return CodecOf({0, 22, 1});
}

KNXDPT Row(std::uint16_t main, std::uint16_t sub = 0) { return {0, main, sub}; }

/// What a call comes to: @p after, or its records above DEBUG and "false", and "untouched" when nothing has changed.
template <class Call>
std::string Outcome(Call call) {
  ScopedLogCapture log(Tal::LogLevel::Info);
  std::string shown;
  const bool done = call(shown);
  std::string records;
  for (const std::string& line : log.Take()) records += line.substr(line.find(' ') + 1) + ": ";
  return records + (done ? "" : "false ") + shown;
}

std::string Encoded(KnxConverter& codec, const KNXDPT& dpt, const AROVALUE& value) {
  return Outcome([&](std::string& shown) {
    GroupValue groupValue({0xAA}, 77);
    const bool done = codec.ToKnxValue(dpt, value, groupValue);
    shown = Wire(groupValue) == "AA/77" ? "untouched" : Wire(groupValue);
    return done;
  });
}

std::string Decoded(KnxConverter& codec, const KNXDPT& dpt, const GroupValue& groupValue, const AROVALUE& before) {
  return Outcome([&](std::string& shown) {
    AROVALUE value = before;
    const bool done = codec.FromKnxValue(dpt, groupValue, value);
    value.Serialize(shown, false);
    if (value.avt == avtInvalid && before.avt == avtDayTime) shown += value.time.ToString();
    if (value == before) shown = "untouched";
    return done;
  });
}

TEST(KnxConverters, EncodeOrRefuseWithOneRecordAndLeaveTheGroupValue) {
  ForEachCase("Codecs.txt", "encode",
              [](const Case& c) { EXPECT_EQ(Encoded(CodecOf(ReadDpt(c[0])), ReadDpt(c[1]), Value(c[2])), c[3]); });
}

TEST(KnxConverters, DecodeOrRefuseWithOneRecord) {
  ForEachCase("Codecs.txt", "decode", [](const Case& c) {
    const bool isTime = c[0] == "10" || c[0] == "11" || c[0] == "19";
    const AROVALUE before = Value(isTime ? "15:1 2 3 4 5 6 0 7 0 1 0" : "14:0000000000000000");
    EXPECT_EQ(Decoded(CodecOf(ReadDpt(c[0])), ReadDpt(c[1]), Octets(c[2]), before), c[3]);
  });
}

TEST(KnxConverters, EightAndSixteenBitsAgreeWithAPlainOracleForEveryWord) {
  const auto serialised = [](const KNXDPT& dpt, const KnxStack::BinaryData& octets) {
    AROVALUE value;
    EXPECT_TRUE(CodecOf(dpt).FromKnxValue(dpt, GroupValue(octets, 0), value));
    return value;
  };
  GroupValue groupValue;
  ScopedLogCapture log(Tal::LogLevel::Fatal);
  for (unsigned word = 0; word <= 0xFF; ++word) {
    const auto octet = static_cast<std::uint8_t>(word);
    const int number = word < 128 ? static_cast<int>(word) : static_cast<int>(word) - 256;
    ASSERT_EQ(serialised(Row(5), {octet}), Byte(octet));
    ASSERT_EQ(serialised(Row(6), {octet}), Integer(number));
    ASSERT_TRUE(CodecOf(Row(6)).ToKnxValue(Row(6), Integer(number), groupValue));
    ASSERT_EQ(groupValue.GetRawData(), KnxStack::BinaryData{octet});
    AROVALUE value;
    ASSERT_EQ(CodecOf(Row(6, 20)).FromKnxValue(Row(6, 20), GroupValue({octet}, 8), value),
              word % 8 == 1 || word % 8 == 2 || word % 8 == 4);
    ASSERT_EQ(CodecOf(Row(17)).FromKnxValue(Row(17), GroupValue({octet}, 8), value), word < 64);
    ASSERT_EQ(CodecOf(Row(18)).FromKnxValue(Row(18, 1), GroupValue({octet}, 8), value), word / 64 % 2 == 0);
    ASSERT_EQ(CodecOf(Row(26)).FromKnxValue(Row(26, 1), GroupValue({octet}, 8), value), word < 128);
  }
  for (unsigned word = 0; word <= 0xFFFF; ++word) {
    const KnxStack::BinaryData octets{static_cast<std::uint8_t>(word / 256), static_cast<std::uint8_t>(word % 256)};
    const int number = word < 32768 ? static_cast<int>(word) : static_cast<int>(word) - 65536;
    ASSERT_EQ(serialised(Row(7), octets), Word(word));
    ASSERT_EQ(serialised(Row(8), octets), Integer(number));
    ASSERT_TRUE(CodecOf(Row(7)).ToKnxValue(Row(7), Word(word), groupValue));
    ASSERT_EQ(groupValue.GetRawData(), octets);
    ASSERT_TRUE(CodecOf(Row(8)).ToKnxValue(Row(8), Integer(number), groupValue));
    ASSERT_EQ(groupValue.GetRawData(), octets);
    if (word == 0x7FFF) continue;
    const double mantissa = static_cast<int>(word % 2048) - (word >= 32768 ? 2048 : 0);
    ASSERT_EQ(serialised(Row(9), octets).GetFloat(), mantissa * std::pow(2, word / 2048 % 16) / 100);
  }
}

TEST(KnxConverters, TwoOctetFloatsEndAtTheBoundsOfTheirRow) {
  ForEachCase("Codecs.txt", "two-octet floats", [](const Case& c) {
    const KNXDPT dpt = ReadDpt("9." + c[0]);
    for (const std::size_t i : {1u, 2u, 3u, 4u}) {
      const bool isAccepted =
          Encoded(CodecOf(dpt), dpt, Value("3:" + c[i])).find("out of the allowed range") == c[i].npos;
      EXPECT_EQ(isAccepted, i % 2 == 1) << c[i];
    }
  });
}

TEST(KnxConverters, EveryRowOfTheTableHasAWireCase) {
  std::set<const Tal::DptValueEntry*> tried;
  for (const Case& c : ReadCases("Codecs.txt", "two-octet floats")) tried.insert(&Map().GetEntry(ReadDpt("9." + c[0])));
  for (const char* section : {"encode", "decode"}) {
    for (const Case& c : ReadCases("Codecs.txt", section)) {
      if (c[3].find("false") == std::string::npos) tried.insert(&Map().GetEntry(ReadDpt(c[0])));
    }
  }
  for (const Tal::DptDescription& row : Tal::DescribeDptTable()) {
    EXPECT_EQ(tried.count(&Map().GetEntry(row.dpt)), 1u) << row.dpt;
  }
}

TEST(KnxConverters, WriteAnEntryRecordUnderTheirOwnName) {
  for (const Tal::DptDescription& row : Tal::DescribeDptTable()) {
    ScopedLogCapture log;
    GroupValue groupValue({0x0C, 0x1A}, 16);
    AROVALUE value = Float(0.5);
    CodecOf(row.dpt).ToKnxValue(KNXDPT{0, 9, 2}, value, groupValue);
    const auto encode = log.Records().at(0);
    EXPECT_EQ(encode.level, Tal::LogLevel::Debug);
    EXPECT_EQ(encode.message, "DPT is used. DPT = 9.2 avt=3 val=0.5");
    EXPECT_EQ(encode.file, "TalObjectModel/KnxConverter");
    EXPECT_THAT(encode.function, HasSubstr("Tal::" + row.codec + "::ToKnxValue("));
    log.Take();
    CodecOf(row.dpt).FromKnxValue(KNXDPT{0, 250, 2}, GroupValue({0x0C, 0x1A, 0, 0}, 32), value);
    if (row.codec == "KnxConverter1Bit") {
      EXPECT_TRUE(log.Records().empty());
      continue;
    }
    const auto decode = log.Records().at(0);
    EXPECT_EQ(decode.level, Tal::LogLevel::Debug);
    EXPECT_EQ(decode.message, "DPT is used. DPT = 250.2 grp.size=32 grp.val=0C 1A 00 00");
    EXPECT_THAT(decode.function, HasSubstr("Tal::" + row.codec + "::FromKnxValue("));
#if defined(__GNUC__) && !defined(__clang__)  // each compiler writes signatures its own way
    EXPECT_EQ(encode.function,
              "virtual bool Tal::" + row.codec + "::ToKnxValue(const KNXDPT&, const AROVALUE&, KnxStack::GroupValue&)");
#endif
  }
}

TEST(KnxConverterDefault, PacksAndUnpacksRawOctets) {
  ForEachCase("Codecs.txt", "raw encode",
              [](const Case& c) { EXPECT_EQ(Encoded(RawCodec(), ReadDpt(c[0]), Value(c[1])), c[2]); });
  ForEachCase("Codecs.txt", "raw decode",
              [](const Case& c) { EXPECT_EQ(Decoded(RawCodec(), Row(22, 1), Octets(c[0]), Text("before")), c[1]); });
}

}  // namespace
}  // namespace TalTest
