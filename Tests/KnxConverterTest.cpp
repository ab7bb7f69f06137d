#include <Tal/KnxValueConverter.h>
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <set>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;
using Tal::KnxConverter;
using testing::HasSubstr;

Tal::KnxValueConverter& Standard() {
  static Tal::KnxValueConverter converter;
  static const bool isFilled = (converter.Init(), true);
  EXPECT_TRUE(isFilled);
  return converter;
}

/// The codec of a row of the standard table; of the raw codec for a main type without one.
KnxConverter& CodecOf(const KNXDPT& row) { return *Standard().GetEntry(row).GetConverter(); }

KNXDPT Row(std::uint16_t main, std::uint16_t sub = 0) { return {0, main, sub}; }
AroValueType Type(int number) { return static_cast<AroValueType>(number); }
AROVALUE Moment(int type, std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour = 0,
                std::uint8_t minute = 0, std::uint8_t second = 0, std::uint16_t days = 0) {
  return Timed(Type(type), Time(year, month, day, hour, minute, second, days));
}

/// What ToKnxValue() comes to: "0C 1A/16", or its records above DEBUG and "untouched" or what was written all the same.
std::string Encoded(const KNXDPT& row, const KNXDPT& dpt, const AROVALUE& value) {
  ScopedLogCapture log(Tal::LogLevel::Info);
  const GroupValue before({0xAA}, 77);
  GroupValue groupValue = before;
  const bool done = CodecOf(row).ToKnxValue(dpt, value, groupValue);
  std::string result;
  for (const std::string& line : log.Take()) result += line.substr(line.find(' ') + 1) + ": ";
  const std::string wire = Wire(groupValue) == Wire(before) ? "untouched" : Wire(groupValue);
  return done ? result + wire : result + "false " + wire;
}

/// What FromKnxValue() comes to for a value prepared with type 14, which shows whether the type is set: the serialised
/// value, or its records above DEBUG and the value.
std::string Decoded(const KNXDPT& row, const KNXDPT& dpt, const GroupValue& groupValue) {
  ScopedLogCapture log(Tal::LogLevel::Info);
  AROVALUE value = Typed(Type(14));
  const bool done = CodecOf(row).FromKnxValue(dpt, groupValue, value);
  std::string result;
  for (const std::string& line : log.Take()) result += line.substr(line.find(' ') + 1) + ": ";
  std::string text;
  value.Serialize(text, false);
  return done ? result + text : result + "false " + text;
}

struct EncodeCase {
  KNXDPT row;  // whose codec
  KNXDPT dpt;  // what it is called with
  AROVALUE value;
  const char* result;
};

// clang-format off
const EncodeCase kEncodeCases[] = {
    {Row(1), Row(1, 1), Bool(true), "01/1"}, {Row(1), Row(2, 1), Bool(true), "false untouched"},
    {Row(1), Row(1, 1), Byte(1), "false untouched"},
    {Row(2), Row(2, 1), Byte(0xFE), "02/2"},
    {Row(2), Row(1, 1), Byte(1), "Wrong aro value type (avtByte) or DPT main number (2.x)!: false untouched"},
    {Row(2), Row(2, 1), Bool(true), "Wrong aro value type (avtByte) or DPT main number (2.x)!: false untouched"},
    {Row(3), Row(3, 7), Byte(15), "0F/4"}, {Row(3), Row(3, 7), Byte(16), "Value out of raw range [0..15]: 16: false untouched"},
    {Row(3), Row(3, 7), Float(1), "Wrong aro value type (avtByte) or DPT main number (3.x)!: false untouched"},
    {Row(3), Row(4, 7), Byte(1), "Wrong aro value type (avtByte) or DPT main number (3.x)!: false untouched"},
    {Row(4), Row(4, 1), Text("AB"), "41/8"}, {Row(4), Row(4, 1), Text(""), "00/8"}, {Row(4), Row(4, 2), Text("\u00E9"), "E9/8"},
    {Row(4, 1), Row(4, 1), Text("\x7F"), "7F/8"}, {Row(4, 2), Row(4, 2), Text("\u00FF"), "FF/8"},
    {Row(4), Row(4, 1), Text("\u00E9"), "Value out of raw range [0..127] for DPT 4.001: 233: false untouched"},
    {Row(4), Row(5, 1), Text("A"), "Wrong aro value type (avtString) or DPT main number (4.x)!: false untouched"},
    {Row(4), Row(4, 1), Byte(65), "Wrong aro value type (avtString) or DPT main number (4.x)!: false untouched"},
    {Row(5), Row(5, 1), Byte(255), "FF/8"}, {Row(5, 6), Row(5, 6), Byte(254), "FE/8"},
    {Row(5, 6), Row(5, 6), Byte(255), "Value out of raw range [0..254] for DPT 5.006: 255: false untouched"},
    {Row(5), Row(9, 1), Byte(7), "07/8"}, {Row(20, 102), Row(20, 102), Byte(5), "05/8"},
    {Row(5), Row(5, 1), Integer(7), "Wrong aro value type (avtByte)!: false untouched"},
    {Row(20), Row(20, 1), Byte(255), "FF/8"}, {Row(20, 103), Row(20, 103), Byte(4), "04/8"}, {Row(21), Row(21, 1), Byte(255), "FF/8"},
    {Row(23), Row(23, 1), Byte(255), "FF/8"}, {Row(236), Row(236, 1), Byte(255), "FF/8"}, {Row(238), Row(238, 1), Byte(255), "FF/8"},
    {Row(6), Row(6, 10), Integer(200), "C8/8"}, {Row(6), Row(6, 10), Integer(-1), "FF/8"},
    {Row(6), Row(5, 10), Integer(1), "Wrong aro value type (avtInteger) or DPT main number (6.x)!: false untouched"},
    {Row(6), Row(6, 10), Byte(1), "Wrong aro value type (avtInteger) or DPT main number (6.x)!: false untouched"},
    {Row(6, 20), Row(6, 20), Byte(0x0C), "0C/8"}, {Row(6, 20), Row(9, 1), Byte(0x01), "01/8"},
    {Row(6, 20), Row(6, 20), Byte(0x13), "The internal value of DPT=6.20, f=3 is out of the allowed range.: false 13/8"},
    {Row(6, 20), Row(9, 1), Integer(1), "Wrong aro value type (avtByte) or DPT main number (6.020)!: false untouched"},
    {Row(7), Row(7, 1), Word(65535), "FF FF/16"}, {Row(7), Row(7, 1), Integer(0x12345), "23 45/16"},
    {Row(7), Row(9, 1), Word(1), "00 01/16"},
    {Row(7), Row(9, 1), Integer(1), "Wrong DPT main number (7.x) or aro value type (avtWord)!: false untouched"},
    {Row(8), Row(8, 1), Integer(-2), "FF FE/16"}, {Row(8), Row(8, 1), Word(0x18000), "80 00/16"},
    {Row(8), Row(9, 1), Word(1), "Wrong DPT main number (8.x) or aro value type (avtInteger)!: false untouched"},
    {Row(9), Row(9, 1), Float(670760.96), "7F FE/16"}, {Row(9), Row(9, 1), Float(-671088.64), "F8 00/16"},
    {Row(9), Row(9, 1), Float(670761.0), "The internal value of DPT=9.1, f=670761 is out of the allowed range.: false untouched"},
    {Row(9), Row(9, 1), Float(std::nan("")), "7F FF/16"}, {Row(9), Row(14, 1), Float(21), "0C 1A/16"},
    {Row(9), Row(9, 1), Typed(avtInvalid), "5E 40/16"},  // the number 32767
    {Row(9), Row(7, 1), Integer(1), "Wrong DPT main number (9.x) or aro value type (avtFloat)!: false untouched"},
    {Row(14), Row(14, 56), Float(-1.5), "BF C0 00 00/32"}, {Row(14), Row(14, 56), Typed(avtInvalid), "7F C0 00 00/32"},
    {Row(14), Row(9, 1), Integer(1), "Wrong DPT main number (14.x) or aro value type (avtFloat)!: false untouched"},
    {Row(232), Row(232, 600), DWord(0x01020304), "02 03 04/24"}, {Row(232), Row(1, 1), Byte(7), "00 00 07/24"},
    {Row(12), Row(12, 1), DWord(4294967295), "FF FF FF FF/32"}, {Row(12), Row(1, 1), DWord(1), "00 00 00 01/32"},
    {Row(15), Row(15, 0), DWord(4294967295), "FF FF FF FF/32"}, {Row(27), Row(27, 1), DWord(4294967295), "FF FF FF FF/32"},
    {Row(12), Row(12, 1), Integer(1), "Wrong aro value type (avtDWord)!: false untouched"},
    {Row(13), Row(13, 1), Integer(-2147483647 - 1), "80 00 00 00/32"}, {Row(13), Row(13, 1), Integer(2147483647), "7F FF FF FF/32"},
    {Row(13), Row(12, 1), DWord(1), "Wrong DPT main number (13.x) or aro value type (avtInteger)!: false untouched"},
    {Row(16), Row(16, 0), Text("Gr\u00FC\u00DFe \u20AC"), "47 72 FC DF 65 20 5F 00 00 00 00 00 00 00/112"},
    {Row(16, 1), Row(16, 1), Text("0123456789abcdef"), "30 31 32 33 34 35 36 37 38 39 61 62 63 64/112"},
    {Row(16), Row(16, 0), Text("A\xC3"), "Got AROVALUE that contains a non-UTF8 string: false untouched"},
    {Row(16), Row(16, 0), Byte(1), "Wrong aro value type (avtString) or DPT main number (16.x)!: false untouched"},
    {Row(16), Row(4, 0), Text("A"), "Wrong aro value type (avtString) or DPT main number (16.x)!: false untouched"},
    {Row(11), Row(11, 1), Moment(11, 1990, 1, 1), "01 01 5A/24"}, {Row(11), Row(11, 1), Moment(105, 2089, 12, 31), "1F 0C 59/24"},
    {Row(11), Row(11, 1), Moment(201, 2024, 2, 29, 25), "1D 02 18/24"},
    {Row(11), Row(11, 1), Moment(13, 1989, 12, 31), "Not a valid date: 1989 12 31 : false untouched"},
    {Row(11), Row(11, 1), Moment(102, 2090, 1, 1), "Not a valid date: 2090 1 1 : false untouched"},
    {Row(11), Row(11, 1), Moment(11, 2023, 2, 29), "Not a valid date: 2023 2 29 : false untouched"},
    {Row(11), Row(11, 1), Moment(12, 2023, 1, 1), "Wrong aro value type (avtDate) or DPT main number (11.x)!: false untouched"},
    {Row(11), Row(10, 1), Moment(11, 2023, 1, 1), "Wrong aro value type (avtDate) or DPT main number (11.x)!: false untouched"},
    {Row(10), Row(10, 1), Moment(12, 0, 0, 0, 23, 59, 58, 0x40), "F7 3B 3A/24"},
    {Row(10), Row(10, 1), Moment(104, 0, 0, 0, 1, 2, 3, 0x03), "01 02 03/24"}, {Row(10), Row(10, 1), Moment(201, 0, 0, 0), "00 00 00/24"},
    {Row(10), Row(10, 1), Moment(12, 1, 2, 3, 24, 5, 6, 7), "Could not convert AROTIME 1 2 3 24 5 6 0 7 0 0 0 to TimeOfDay: false untouched"},
    {Row(10), Row(10, 1), Moment(15, 0, 0, 0), "Wrong aro value type (avtTime) or DPT main number (10.x)!: false untouched"},
    {Row(10), Row(11, 1), Moment(12, 0, 0, 0), "Wrong aro value type (avtTime) or DPT main number (10.x)!: false untouched"},
    {Row(19), Row(19, 1), Moment(13, 2023, 1, 1, 12, 30, 15), "7B 01 01 EC 1E 0F 20 00/64"},
    {Row(19), Row(19, 1), Moment(102, 1400, 1, 1), "0C 01 01 60 00 00 20 00/64"},
    {Row(19), Row(19, 1), Moment(201, 2023, 0, 1), "Not a valid date: 2023 0 1 : false untouched"},
    {Row(19), Row(19, 1), Moment(13, 2023, 1, 1, 24), "Not a valid date: 2023 1 1 : false untouched"},
    {Row(19), Row(19, 1), Moment(11, 2023, 1, 1), "Wrong aro value type (avtDateTime) or DPT main number (19.x)!: false untouched"},
    {Row(19), Row(11, 1), Moment(13, 2023, 1, 1), "Wrong aro value type (avtDateTime) or DPT main number (19.x)!: false untouched"},
    {Row(17), Row(17, 1), Integer(63), "3F/8"}, {Row(17), Row(17, 2), Byte(0), "00/8"}, {Row(17), Row(9, 1), Float(0), "00/8"},
    {Row(17), Row(17, 1), Integer(64), "Scene number is out of range (>63) for SceneNumber: 64: false untouched"},
    {Row(17), Row(17, 1), Integer(-1), "Scene number is out of range (>63) for SceneNumber: -1: false untouched"},
    {Row(17), Row(9, 2), Integer(1), "Wrong DPT main number (17.001) or aro value type (avtByte)!: false untouched"},
    {Row(18), Row(18, 1), Byte(0x85), "85/8"},
    {Row(18), Row(18, 1), Byte(0xC5), "Scene number is out of range (>63) for SceneControl: 69: false untouched"},
    {Row(18), Row(18, 2), Byte(1), "Wrong DPT for Scene number (18.001) or aro value type (avtByte).: false untouched"},
    {Row(18), Row(18, 1), Integer(1), "Wrong DPT for Scene number (18.001) or aro value type (avtByte).: false untouched"},
    {Row(26), Row(26, 1), Byte(0x7F), "7F/8"},
    {Row(26), Row(26, 1), Byte(0x85), "Reserved bit 8 is set for SceneInfo; skipped.: false untouched"},
    {Row(26), Row(26, 0), Byte(1), "Wrong DPT for Scene number (26.001) or aro value type (avtByte).: false untouched"},
};
// clang-format on

TEST(KnxConverters, EncodeOrRefuseWithOneRecordAndLeaveTheGroupValue) {
  for (const EncodeCase& c : kEncodeCases) {
    SCOPED_TRACE(testing::Message() << "codec of " << c.row.main << '.' << c.row.sub);
    EXPECT_EQ(Encoded(c.row, c.dpt, c.value), c.result);
  }
}

struct DecodeCase {
  KNXDPT row;
  KNXDPT dpt;
  KnxStack::BinaryData octets;
  const char* result;  // type 14 shows the payload in hex: the codec leaves the caller's type
};

// clang-format off
const DecodeCase kDecodeCases[] = {
    {Row(1), Row(1, 1), {0x01}, "14:0000000000000001"}, {Row(1), Row(2, 1), {0x01}, "false 14:0000000000000000"},
    {Row(2), Row(2, 1), {0xFF}, "6:3"}, {Row(2), Row(1, 1), {0x01}, "Wrong DPT main number (2.x)!: false 14:0000000000000000"},
    {Row(3), Row(3, 7), {0xFB}, "14:000000000000000B"},
    {Row(3), Row(4, 7), {0x0B}, "Wrong DPT main number (3.x)!: false 14:0000000000000000"},
    {Row(4), Row(4, 1), {0x41}, "10:A"}, {Row(4), Row(4, 2), {0xE9}, "10:\u00E9"},
    {Row(4), Row(4, 1), {0x80}, "Value out of raw range [0..127] for DPT 4.001: 128: false 14:0000000000000000"},
    {Row(4), Row(5, 1), {0x41}, "Wrong DPT main number (4.x)!: false 14:0000000000000000"},
    {Row(5), Row(5, 1), {0xFF}, "6:255"}, {Row(5, 6), Row(5, 6), {0xFE}, "6:254"}, {Row(20, 102), Row(20, 102), {4}, "6:4"},
    {Row(5, 6), Row(5, 6), {0xFF},
     "Value out of raw range IntegerRange(0, 254, 0, 254) for DPT 5.6; value was 255: false 14:0000000000000000"},
    {Row(20, 102), Row(20, 102), {5},
     "Value out of raw range IntegerRange(0, 4, 0, 4) for DPT 20.102; value was 5: false 14:0000000000000000"},
    {Row(6), Row(1, 1), {0xFF}, "4:-1"}, {Row(6, 20), Row(6, 20), {0x0C}, "6:12"}, {Row(6, 20), Row(9, 20), {0xFA}, "6:250"},
    {Row(6, 20), Row(6, 20), {0x13}, "The internal value of DPT=6.20, f=3 is out of the allowed range.: false 14:0000000000000000"},
    {Row(6, 20), Row(9, 1), {0x01}, "Wrong DPT main number (6.020)!: false 14:0000000000000000"},
    {Row(7), Row(7, 1), {0xFF, 0xFE}, "7:65534"}, {Row(7), Row(8, 1), {0, 1}, "Wrong DPT main number (7.x)!: false 14:0000000000000000"},
    {Row(8), Row(8, 1), {0xFF, 0xFE}, "4:-2"}, {Row(8), Row(7, 1), {0, 1}, "Wrong DPT main number (8.x)!: false 14:0000000000000000"},
    {Row(9), Row(1, 1), {0x7F, 0xFF}, "0:"}, {Row(9), Row(1, 1), {0x00, 0x64}, "14:3FF0000000000000"},
    {Row(9, 1), Row(9, 1), {0xA1, 0x56}, "14:C0710F5C28F5C28F"},  // -272.96
    {Row(9, 1), Row(9, 1), {0xA1, 0x55}, "The internal value of DPT=9.1, f=-273.12 is out of the allowed range.: false 14:C07111EB851EB852"},
    {Row(14), Row(14, 56), {0xBF, 0xC0, 0, 0}, "3:-1.5"}, {Row(14), Row(14, 56), {0x7F, 0xC0, 0, 0}, "nan"},
    {Row(14), Row(9, 1), {0, 0, 0, 0}, "Wrong DPT main number (14.x)!: false 14:0000000000000000"},
    {Row(232), Row(1, 1), {2, 3, 4}, "14:0000000000020304"},
    {Row(12), Row(1, 1), {0xFF, 0xFF, 0xFF, 0xFF}, "8:4294967295"},
    {Row(13), Row(13, 1), {0x80, 0, 0, 0}, "4:-2147483648"},
    {Row(13), Row(12, 1), {0, 0, 0, 0}, "Wrong DPT main number (13.x)!: false 14:0000000000000000"},
    {Row(16), Row(16, 0), {'G', 0xFC, 0, 'x', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "10:G\u00FC"},
    {Row(16), Row(4, 0), {'G'}, "Wrong DPT main number (16.x)!: false 14:0000000000000000"},
    {Row(11), Row(10, 1), {1, 1, 90}, "Wrong DPT main number (11.x)!: false 14:0000000000000000"},
    {Row(10), Row(11, 1), {1, 1, 1}, "Wrong DPT main number (10.x)!: false 14:0000000000000000"},
    {Row(19), Row(11, 1), {1, 1, 1}, "Wrong DPT main number (19.x)!: false 14:0000000000000000"},
    {Row(17), Row(17, 2), {63}, "6:63"},
    {Row(17), Row(17, 1), {64}, "Scene number is out of range (>63) for SceneNumber: 64: false 14:0000000000000040"},
    {Row(17), Row(9, 2), {1}, "Wrong DPT main number (17.001)!: false 14:0000000000000000"},
    {Row(18), Row(18, 1), {0x85}, "14:0000000000000085"},
    {Row(18), Row(18, 1), {0x45}, "Reserved bit is used for scene number in DPT scene control!: false 14:0000000000000000"},
    {Row(18), Row(18, 0), {1}, "Wrong DPT for Scene number, only 18.001 is valid.: false 14:0000000000000000"},
    {Row(26), Row(26, 1), {0x7F}, "14:000000000000007F"},
    {Row(26), Row(26, 1), {0x85}, "Reserved bit is used for scene number in DPT scene control!: false 14:0000000000000000"},
    {Row(26), Row(26, 2), {1}, "Wrong DPT for Scene number, only 26.001 is valid.: false 14:0000000000000000"},
};
// clang-format on

TEST(KnxConverters, DecodeOrRefuseWithOneRecord) {
  for (const DecodeCase& c : kDecodeCases) {
    SCOPED_TRACE(testing::Message() << "codec of " << c.row.main << '.' << c.row.sub << ' ' << c.octets.ToString());
    EXPECT_EQ(Decoded(c.row, c.dpt, GroupValue(c.octets, 8)), c.result);
  }
}

TEST(KnxConverters, DatesAndTimesAreReadIntoAClearedTimeOrAsNoValue) {
  const auto read = [](const KNXDPT& row, const KnxStack::BinaryData& octets) {
    AROVALUE value = Timed(Type(15), Time(1, 2, 3, 4, 5, 6, 7));
    value.time.firstFlag = true;
    EXPECT_TRUE(CodecOf(row).FromKnxValue(row, GroupValue(octets, 24), value));
    return value;
  };
  EXPECT_EQ(read(Row(11), {1, 1, 90}), Moment(15, 1990, 1, 1));
  EXPECT_EQ(read(Row(11), {31, 12, 89}), Moment(15, 2089, 12, 31));
  AROVALUE expected = Moment(15, 2000, 1, 1, 23, 59, 58, 0x40);
  expected.time.extraWord = 1;
  EXPECT_EQ(read(Row(10), {0xF7, 59, 58, 0xFF}), expected);
  EXPECT_EQ(read(Row(19), {123, 0xF1, 0xE1, 0xEC, 0xDE, 0xCF, 0xFF, 0xFF}), Moment(15, 2023, 1, 1, 12, 30, 15));
  const std::pair<KNXDPT, KnxStack::BinaryData> nothing[] = {{Row(11), {1, 1}},
                                                             {Row(11), {1, 1, 90, 0}},
                                                             {Row(11), {1, 1, 100}},
                                                             {Row(11), {31, 4, 23}},
                                                             {Row(11), {0, 1, 23}},
                                                             {Row(11), {1, 13, 23}},
                                                             {Row(10), {24, 0, 0}},
                                                             {Row(10), {0, 60, 0}},
                                                             {Row(10), {0, 0, 60}},
                                                             {Row(10), {0, 0}},
                                                             {Row(19), {123, 1, 1, 0, 0}},
                                                             {Row(19), {123, 2, 29, 0, 0, 0}},
                                                             {Row(19), {123, 0, 1, 0, 0, 0}},
                                                             {Row(19), {123, 1, 1, 24, 0, 0}}};
  for (const auto& [row, octets] : nothing) {
    AROVALUE before = Timed(avtInvalid, Time(1, 2, 3, 4, 5, 6, 7));
    before.time.firstFlag = true;
    EXPECT_EQ(read(row, octets), before) << row.main << ' ' << octets.ToString();
  }
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

/// The last number accepted and the first refused at both ends of the rows of 9.
const struct {
  std::uint16_t sub;
  double min, below, max, above;
} kFloatBounds[] = {
    {0, -671088.64, -671088.65, 670760.96, 670760.97},
    {1, -273, -273.01, 670760, 670760.01},
    {2, -670760, -670760.01, 670760, 670760.01},
    {3, -670760, -670760.01, 670760, 670760.01},
    {4, 0, -0.01, 670760, 670760.01},
    {5, 0, -0.01, 670760, 670760.01},
    {6, 0, -0.01, 670760, 670760.01},
    {7, 0, -0.01, 670760, 670760.01},
    {8, 0, -0.01, 670760, 670760.01},
    {10, -670760, -670760.01, 670760, 670760.01},
    {11, -670760, -670760.01, 670760, 670760.01},
    {20, -670760, -670760.01, 670760, 670760.01},
    {21, -670760, -670760.01, 670760, 670760.01},
    {22, -670760, -670760.01, 670760, 670760.01},
    {23, -670760, -670760.01, 670760, 670760.01},
    {24, -670760, -670760.01, 670760, 670760.01},
    {25, -670760, -670760.01, 670760, 670760.01},
    {26, -671088.64, -671088.65, 670760.96, 670760.97},
    {27, -459.6, -459.61, 670760.96, 670760.97},
    {28, 0, -0.01, 670760.96, 670760.97},
};

TEST(KnxConverters, TwoOctetFloatsEndAtTheBoundsOfTheirRow) {
  for (const auto& c : kFloatBounds) {
    const auto accepts = [&](double number) {
      return Encoded(Row(9, c.sub), Row(9, c.sub), Float(number)).find("out of the allowed range") == std::string::npos;
    };
    EXPECT_TRUE(accepts(c.min) && accepts(c.max)) << c.sub;
    EXPECT_FALSE(accepts(c.below) || accepts(c.above)) << c.sub;
  }
}

TEST(KnxConverters, EveryRowOfTheTableHasAWireCase) {
  std::set<const Tal::DptValueEntry*> tried;
  for (const EncodeCase& c : kEncodeCases) {
    if (std::string(c.result).find("false") == std::string::npos) tried.insert(&Standard().GetEntry(c.row));
  }
  for (const auto& c : kFloatBounds) tried.insert(&Standard().GetEntry(Row(9, c.sub)));
  for (const DecodeCase& c : kDecodeCases) {
    if (std::string(c.result).find("false") == std::string::npos) tried.insert(&Standard().GetEntry(c.row));
  }
  for (const Tal::DptDescription& row : Tal::DescribeDptTable()) {
    EXPECT_EQ(tried.count(&Standard().GetEntry(row.dpt)), 1u) << row.dpt.main << '.' << row.dpt.sub;
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
  const KNXDPT raw = Row(22);  // no row: the raw codec
  const auto encode = [&](const KNXDPT& dpt, const AROVALUE& value) {
    ScopedLogCapture log(Tal::LogLevel::Info);
    GroupValue groupValue;
    const bool done = Standard().GetEntry(raw).GetConverter()->ToKnxValue(dpt, value, groupValue);
    std::string text = Wire(groupValue);
    for (const std::string& line : log.Take()) {
      if (line.find("No Entry") == line.npos) text += " " + line;
    }
    return done ? text : "false " + text;
  };
  EXPECT_EQ(encode({16, 22, 1}, Word(0x1234)), "12 34/16");
  EXPECT_EQ(encode({0, 22, 1}, Float(1.0)), "3F F0 00 00 00 00 00 00/64");
  EXPECT_EQ(encode({8, 22, 1}, Byte(7)), "07/8");
  EXPECT_EQ(encode({184, 22, 1}, Text("0123456789abcdef0123456")),
            "30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 30 31 32 33 34 35 36/184");
  EXPECT_EQ(encode({185, 22, 1}, Text("x")), "78/8");
  EXPECT_EQ(encode({0, 22, 1}, Text("")), "00/8");
  EXPECT_EQ(encode({8, 22, 1}, Word(1)), "false /0 ERROR AroValueToByteArray failed. DPT=22.1 data size =1");
  EXPECT_EQ(encode({0, 22, 1}, Typed(avtDate)), "false /0 ERROR AroValueToByteArray failed. DPT=22.1 data size =24");
  EXPECT_EQ(encode({16, 22, 1}, Typed(Type(1005))), "00/8");
  EXPECT_EQ(encode({1, 1, 1}, Bool(true)), "01/1");
  EXPECT_EQ(encode({2, 2, 1}, Bool(true)), "01/2");
  EXPECT_EQ(encode({8, 5, 1}, Bool(true)), "/0");  // deliberate: true, and nothing written
  const auto decode = [&](const GroupValue& groupValue) {
    const std::string text = Decoded(raw, {0, 22, 1}, groupValue);
    return text.substr(text.find(": ") + 2);  // behind the look-up's record
  };
  EXPECT_EQ(decode(GroupValue({0x81}, 1)), "2:1");
  EXPECT_EQ(decode(GroupValue({0x81}, 8)), "6:129");
  EXPECT_EQ(decode(GroupValue({0x12, 0x34}, 16)), "7:4660");
  EXPECT_EQ(decode(GroupValue({0x12, 0x34, 0x56}, 24)), "ByteArrayToAroValue failed. DPT=22.1 data size =3: false 1:");
}

}  // namespace
}  // namespace TalTest
