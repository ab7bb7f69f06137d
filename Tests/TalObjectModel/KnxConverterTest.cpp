// Codecs alone, taken out of the rows of the standard table.
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <cmath>
#include <set>

#include "Support/Cases.h"
#include "Support/Converters.h"
#include "Support/LogCapture.h"
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

TEST(KnxConverters, ReadEveryOctetAndWordAsAPlainOracleDoes) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  AROVALUE value;
  const auto reads = [&](const KNXDPT& dpt, const KnxStack::BinaryData& octets) {
    value = AROVALUE();
    return CodecOf(dpt).FromKnxValue(dpt, GroupValue(octets, 0), value);
  };
  for (unsigned word = 0; word <= 0xFFFF; ++word) {
    const auto octet = static_cast<std::uint8_t>(word % 256);
    const KnxStack::BinaryData octets{static_cast<std::uint8_t>(word / 256), octet};
    const int number = word < 32768 ? static_cast<int>(word) : static_cast<int>(word) - 65536;
    ASSERT_TRUE(reads(Row(7), octets) && value == Word(word));
    ASSERT_TRUE(reads(Row(8), octets) && value == Integer(number));
    const double mantissa = static_cast<int>(word % 2048) - (word >= 32768 ? 2048 : 0);
    ASSERT_TRUE(reads(Row(9), octets));
    ASSERT_TRUE(word == 0x7FFF || value.GetFloat() == mantissa * std::pow(2, word / 2048 % 16) / 100) << word;
    if (word > 0xFF) continue;
    ASSERT_TRUE(reads(Row(5), {octet}) && value == Byte(octet));
    ASSERT_TRUE(reads(Row(6), {octet}) && value == Integer(word < 128 ? number : number - 256));
    ASSERT_EQ(reads(Row(6, 20), {octet}), word % 8 == 1 || word % 8 == 2 || word % 8 == 4);
    ASSERT_EQ(reads(Row(17), {octet}), word < 64);
    ASSERT_EQ(reads(Row(18, 1), {octet}), word / 64 % 2 == 0);
    ASSERT_EQ(reads(Row(26, 1), {octet}), word < 128);
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
    SCOPED_TRACE(row.codec);
    ScopedLogCapture log;
    GroupValue groupValue;
    AROVALUE value = Float(0.5);
    CodecOf(row.dpt).ToKnxValue(Row(9, 2), value, groupValue);
    const auto encode = log.Records().at(0);
    EXPECT_THAT(encode.function, HasSubstr("Tal::" + row.codec + "::ToKnxValue("));
    EXPECT_EQ(encode.file, "TalObjectModel/KnxConverter");
    EXPECT_EQ(log.Take().at(0), "DEBUG DPT is used. DPT = 9.2 avt=3 val=0.5");
    CodecOf(row.dpt).FromKnxValue(Row(250, 2), Octets("0C 1A 00 00/32"), value);
    const auto decode = log.Records();
    ASSERT_EQ(decode.empty(), row.codec == "KnxConverter1Bit");
    if (decode.empty()) continue;
    EXPECT_THAT(decode[0].function, HasSubstr("Tal::" + row.codec + "::FromKnxValue("));
    EXPECT_EQ(log.Take().at(0), "DEBUG DPT is used. DPT = 250.2 grp.size=32 grp.val=0C 1A 00 00");
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
