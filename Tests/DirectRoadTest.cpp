#include <Tal/GroupValueAroValue.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::BinaryData;
using KnxStack::GroupValue;
using Tal::AroValueToGroupValue;
using Tal::GroupValueToAroValue;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMin32 = std::numeric_limits<std::int32_t>::min();

AROVALUE Day(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint16_t weekDay = 0) {
  return Timed(avtDate, Time(year, month, day, 0, 0, 0, weekDay));
}
AROVALUE Clock(std::uint8_t hour, std::uint8_t minute, std::uint8_t second, std::uint16_t weekDays) {
  AROVALUE value = Timed(avtDayTime, Time(2000, 1, 1, hour, minute, second, weekDays));
  value.time.extraWord = 1;
  return value;
}
AROVALUE Moment(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute = 0,
                std::uint8_t second = 0, std::uint16_t weekDay = 0) {
  return Timed(avtDateTime, Time(year, month, day, hour, minute, second, weekDay));
}

struct WireCase {
  unsigned main;
  AROVALUE value;
  const char* wire;  // worked out by hand from the datapoint type's definition
};

// clang-format off
/// Go out and come back.
const WireCase kRoundTrips[] = {
    {1, Bool(false), "00/1"}, {1, Bool(true), "01/1"}, {2, Byte(3), "03/2"}, {3, Byte(0x0B), "0B/4"}, {5, Byte(0), "00/8"},
    {5, Byte(255), "FF/8"}, {6, Byte(0x80), "80/8"}, {6, Byte(255), "FF/8"}, {17, Byte(63), "3F/8"}, {18, Byte(0xBF), "BF/8"},
    {20, Byte(255), "FF/8"}, {21, Byte(1), "01/8"}, {26, Byte(0x7F), "7F/8"}, {238, Byte(9), "09/8"}, {7, Word(0), "00 00/16"},
    {7, Word(65535), "FF FF/16"}, {22, Word(0x8001), "80 01/16"}, {217, Word(0x0801), "08 01/16"}, {234, Word(23130), "5A 5A/16"},
    {237, Word(1), "00 01/16"}, {8, Integer(-32768), "80 00/16"}, {8, Integer(32767), "7F FF/16"}, {8, Integer(-1), "FF FF/16"},
    {9, Float(21.0), "0C 1A/16"}, {9, Float(-30.0), "8A 24/16"}, {14, Float(-1.5), "BF C0 00 00/32"}, {14, Float(kInfinity), "7F 80 00 00/32"},
    {10, Clock(23, 59, 59, 0x40), "F7 3B 3B/24"}, {10, Clock(1, 2, 3, 0), "01 02 03/24"}, {11, Day(1990, 1, 2, 0x02), "02 01 5A/24"},
    {11, Day(2000, 2, 29, 0x02), "1D 02 00/24"}, {11, Day(2038, 1, 19, 0x02), "13 01 26/24"}, {12, DWord(4294967295), "FF FF FF FF/32"},
    {15, DWord(0x12345678), "12 34 56 78/32"}, {27, DWord(1), "00 00 00 01/32"}, {13, Integer(kMin32), "80 00 00 00/32"},
    {16, Text("Gr\u00FC\u00DFe"), "47 72 FC DF 65 00 00 00 00 00 00 00 00 00/112"},
    {19, Moment(2023, 1, 1, 12, 30, 15, 0x40), "7B 01 01 EC 1E 0F 20 00/64"}, {19, Moment(2024, 2, 29, 0, 0, 0, 0x08), "7C 02 1D 80 00 00 20 00/64"},
    {19, Moment(2038, 1, 19, 3, 14, 7, 0x02), "8A 01 13 43 0E 07 20 00/64"}, {232, DWord(1193046), "12 34 56/24"},
};

/// Go out only: what comes back is another value, or nothing.
const WireCase kOneWay[] = {
    {2, Byte(0xFE), "02/2"}, {3, Byte(0x1B), "0B/4"}, {23, Byte(2), "02/2"} /* its own check wants 8 bits */,
    {9, Float(670760.96), "7F FE/16"}, {9, Float(std::nan("")), "7F FF/16"}, {14, Float(1e300), "7F 80 00 00/32"},
    {10, Clock(0, 0, 0, 0x03), "00 00 00/24"} /* two days are no day */, {11, Day(2089, 12, 31), "1F 0C 59/24"},
    {16, Text("\u20AC"), "5F 00 00 00 00 00 00 00 00 00 00 00 00 00/112"},
    {16, Text("0123456789abcdef"), "30 31 32 33 34 35 36 37 38 39 61 62 63 64/112"},
    {19, Moment(2023, 1, 1, 25, 0, 0), "7B 01 02 21 00 00 20 00/64"} /* hour 25 is 01:00 of the next day */,
    {19, Moment(1400, 1, 1, 0), "0C 01 01 60 00 00 20 00/64"} /* the year modulo 256 */,
    {19, Moment(9999, 12, 31, 23, 59, 59), "A3 0C 1F B7 3B 3B 20 00/64"}, {232, DWord(0xFF123456), "12 34 56/24"},
};
// clang-format on

TEST(DirectRoad, WritesTheOctetsOfEveryMainTypeAndReadsThemBackWithoutARecord) {
  ScopedLogCapture log(Tal::LogLevel::Info);
  const auto write = [](const WireCase& c) {
    const auto groupValue = AroValueToGroupValue(c.value, Dpt(c.main));
    EXPECT_TRUE(groupValue) << c.main << ' ' << c.wire;
    EXPECT_EQ(groupValue ? Wire(*groupValue) : "", c.wire) << c.main;
    EXPECT_TRUE(AroValueToGroupValue(c.value, Dpt(c.main, 0xFFFF)));  // the sub number has no part
    return groupValue ? *groupValue : GroupValue();
  };
  for (const WireCase& c : kOneWay) write(c);
  for (const WireCase& c : kRoundTrips) {
    const GroupValue groupValue = write(c);
    const bool isChecked = c.main != 22 && c.main < 200;  // the others are not in the map's table, which says so
    if (isChecked) {
      EXPECT_THAT(log.Take(), IsEmpty());
    }
    EXPECT_EQ(GroupValueToAroValue(groupValue, Dpt(c.main)), c.value) << c.main << ' ' << c.wire;
    if (!isChecked) log.Take();
  }
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST(AroValueToGroupValue, RefusesWithOneRecord) {
  const struct {
    unsigned long dpt;
    AROVALUE value;
    const char* record;
  } kCases[] = {
      {Dpt(7), Word(65536), "ERROR Value out of range: 65536 (DPT 7)"},
      {Dpt(237), Word(4294967295), "ERROR Value out of range: 4294967295 (DPT 237)"},
      {Dpt(8), Integer(-32769), "ERROR Value out of range: -32769 (DPT 8)"},
      {Dpt(8), Integer(32768), "ERROR Value out of range: 32768 (DPT 8)"},
      {Dpt(9), Integer(21), "ERROR Value type mismatch: Expected 'Float', got 'Integer'"},
      {Dpt(7), Byte(1), "ERROR Value type mismatch: Expected 'Word', got 'Byte'"},
      {Dpt(4), Text("A"), "ERROR Value type mismatch: Expected 'Empty', got 'String'"},
      {Dpt(1), Typed(static_cast<AroValueType>(1005)), "ERROR Value type mismatch: Expected 'Bool', got 'Unknown'"},
      {Dpt(4), AROVALUE(), "ERROR Value type 4 not supported (dwDPT=262145 with value='avt: 1, ToString(): ')."},
      {Dpt(31), Byte(2), "ERROR Value type 31 not supported (dwDPT=2031617 with value='avt: 6, ToString(): 2')."},
      {Dpt(24, 1), Text("a\nb"),
       "ERROR Value type 24 not supported (dwDPT=1572865 with value='avt: 10, ToString(): a\\nb')."},
      {Dpt(65535, 65535), AROVALUE(),
       "ERROR Value type 65535 not supported (dwDPT=4294967295 with value='avt: 1, ToString(): ')."},
      {Dpt(10), Clock(24, 61, 62, 3), "ERROR Could not convert AROTIME 2000 1 1 24 61 62 0 3 1 0 0 to TimeOfDay"},
      {Dpt(11), Day(2023, 2, 29), "ERROR Not a valid date: 2023 2 29 "},
      {Dpt(11), Day(1399, 1, 1), "ERROR Not a valid date: 1399 1 1 "},
      {Dpt(11), Day(1989, 12, 31),
       "ERROR Exception caught during conversion of AROVALUE to GroupValue: "
       "Date is outside 1990-01-01 to 2089-12-31: 1989-12-31"},
      {Dpt(9), Float(670761.0),
       "ERROR Exception caught during conversion of AROVALUE to GroupValue: "
       "Number is outside the range of a two-octet float"},
      {Dpt(16), Text("A\xC3"), "ERROR Got AROVALUE that contains a non-UTF8 string"},
  };
  ScopedLogCapture log;
  for (const auto& c : kCases) {
    EXPECT_FALSE(AroValueToGroupValue(c.value, c.dpt));
    EXPECT_THAT(log.Take(), ElementsAre(c.record));
  }
}

TEST(AroValueToGroupValue, SupportsExactlyTheseMainTypes) {
  std::vector<unsigned> supported;
  for (unsigned main = 0; main <= 300; ++main) {
    ScopedLogCapture log;
    for (const AroValueType type : {avtEmpty, avtBool, avtFloat, avtInteger, avtByte, avtWord, avtDWord, avtString,
                                    avtDate, avtTime, avtDateTime, avtDayTime}) {
      if (AroValueToGroupValue(Timed(type, Time(2023, 1, 1, 0, 0, 0)), Dpt(main))) supported.push_back(main);
    }
  }
  EXPECT_THAT(supported, ElementsAre(1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 26,
                                     27, 217, 232, 234, 237, 238));
}

TEST(AroValueToGroupValue, RefusesScenesAbove63AndInfinityInSilence) {
  ScopedLogCapture log;
  EXPECT_FALSE(AroValueToGroupValue(Byte(64), Dpt(17)));
  EXPECT_FALSE(AroValueToGroupValue(Float(kInfinity), Dpt(9)));
  EXPECT_FALSE(AroValueToGroupValue(Float(-kInfinity), Dpt(9)));
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST(AroValueToGroupValue, LetsTheCalendarsRangeErrorsOut) {
  const std::pair<AROVALUE, const char*> cases[] = {
      {Moment(1399, 12, 31, 0), "Year is out of valid range: 1400..9999"},
      {Moment(2023, 0, 1, 0), "Month number is out of range 1..12"},
      {Moment(2023, 1, 0, 0), "Day of month value is out of range 1..31"},
  };
  for (const auto& [value, text] : cases) {
    try {
      AroValueToGroupValue(value, Dpt(19));
      ADD_FAILURE() << text;
    } catch (const std::out_of_range& error) {
      EXPECT_STREQ(error.what(), text);
    }
  }
  EXPECT_THROW(AroValueToGroupValue(Moment(2023, 2, 29, 0), Dpt(19)), std::out_of_range);
}

TEST(AroValueToGroupValue, NamesItselfInItsRecords) {
  ScopedLogCapture log;
  AroValueToGroupValue(Word(65536), Dpt(7));
  const auto records = log.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_THAT(records[0].text, testing::MatchesRegex("AroValueToGroupValue\\(TalObjectModel/GroupValueAroValue:[0-9]+"
                                                     "\\) - Value out of range: 65536 \\(DPT 7\\)"));
  EXPECT_EQ(records[0].file, "TalObjectModel/GroupValueAroValue");
#if defined(__GNUC__) && !defined(__clang__) && !defined(__arm__)  // each compiler writes signatures its own way
  EXPECT_EQ(records[0].function,
            "boost::optional<KnxStack::GroupValue> Tal::AroValueToGroupValue(const AROVALUE&, long unsigned int)");
#endif
}

/// A group value of 8 bits an octet.
GroupValue Octets(const BinaryData& octets) { return GroupValue(octets, static_cast<unsigned>(8 * octets.size())); }

TEST(GroupValueToAroValue, MasksShortValuesAndReadsWhatAroValueToGroupValueDoesNotWrite) {
  ScopedLogCapture log(Tal::LogLevel::Warn);
  EXPECT_EQ(GroupValueToAroValue(GroupValue({0xFE}, 6), Dpt(1)), Bool(false));
  EXPECT_EQ(GroupValueToAroValue(GroupValue({0xFF}, 2), Dpt(2)), Byte(3));
  EXPECT_EQ(GroupValueToAroValue(GroupValue({0xFB}, 4), Dpt(3, 7)), Byte(11));
  EXPECT_EQ(GroupValueToAroValue(Octets({0xFE}), Dpt(23)), Byte(2));
  EXPECT_EQ(GroupValueToAroValue(Octets({'G', 0, 'x', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), Dpt(16)), Text("G"));
  EXPECT_EQ(GroupValueToAroValue(Octets({123, 0xF1, 0xE1, 0xEC, 0xDE, 0xCF, 0xFF, 0xFF}), Dpt(19)),
            Moment(2023, 1, 1, 12, 30, 15, 0x40));
  EXPECT_TRUE(std::isnan(GroupValueToAroValue(Octets({0x7F, 0xFF}), Dpt(9))->GetFloat()));
  // Beyond 2038-01-19 03:14:07 there is a value, but no content.
  EXPECT_EQ(GroupValueToAroValue(Octets({1, 1, 89}), Dpt(11)), AROVALUE());
  EXPECT_EQ(GroupValueToAroValue(Octets({138, 1, 19, 3, 14, 8, 0, 0}), Dpt(19)), AROVALUE());
  // America/Lima skipped the first hour of 1990: the value is what mktime() makes of it there.
  const AROTIME first = GroupValueToAroValue(Octets({1, 1, 90}), Dpt(11))->time;
  EXPECT_TRUE(first == Day(1990, 1, 1, 0x01).time || first.hour == 1) << first;
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_EQ(GroupValueToAroValue(GroupValue({0xFD}, 3), Dpt(31)), Byte(5));  // which the map does not know
}

TEST(GroupValueToAroValue, ReadsKnownMainTypesWithoutADecoderAsValuesWithoutContent) {
  ScopedLogCapture log(Tal::LogLevel::Warn);
  for (const unsigned main : {24u, 25u, 28u, 30u, 200u, 201u, 202u}) {
    EXPECT_EQ(GroupValueToAroValue(Octets({1}), Dpt(main)), AROVALUE()) << main;
  }
  for (const unsigned main : {0u, 4u, 29u, 32u, 100u, 203u, 216u, 219u, 222u, 229u, 230u, 236u, 300u, 65535u}) {
    log.Take();
    EXPECT_FALSE(GroupValueToAroValue(Octets({1}), Dpt(main, 7)));
    EXPECT_THAT(log.Take(), ElementsAre("ERROR Unsupported DPT: " + std::to_string(main) + ".7"));
  }
}

TEST(GroupValueToAroValue, RefusesWithItsLastRecord) {
  const std::string date = "WARN Received an invalid DPT 11.001 date from the KNX: ";
  const std::string missing = "ERROR Exception caught during conversion of GroupValue: Octet ";
  const struct {
    unsigned long dpt;
    GroupValue groupValue;
    std::string record;
  } kCases[] = {
      {Dpt(9), Octets({0x0C}), "ERROR Received invalid value 0C for DPT 9.1"},
      {Dpt(9), GroupValue({0x0C}, 16), "ERROR Received invalid value 0C for DPT 9.1"},
      {Dpt(9), Octets({0xA1, 0x53}), "ERROR Received invalid value A1 53 for DPT 9.1"},
      {Dpt(23), GroupValue({2}, 2), "ERROR Received invalid value 02 for DPT 23.1"},
      {Dpt(17), Octets({64}), "ERROR Received invalid value 40 for DPT 17.1"},
      {Dpt(18, 0), Octets({1}), "ERROR Received invalid value 01 for DPT 18.0"},
      {Dpt(20, 102), Octets({5}), "ERROR Received invalid value 05 for DPT 20.102"},
      {Dpt(10), Octets({0xF8, 59, 58}), "WARN Received invalid DPT 10 time of day: 24:59:58 7"},
      {Dpt(10), Octets({0, 60, 0}), "WARN Received invalid DPT 10 time of day: 0:60:0 0"},
      {Dpt(10), GroupValue({1, 2}, 24), missing + "2 is missing: there are 2 octets"},
      {Dpt(11), GroupValue({1, 1}, 24), date + "Length in bytes is 2, expected 3"},
      {Dpt(11), GroupValue({1, 1, 90, 0}, 24), date + "Length in bytes is 4, expected 3"},
      {Dpt(11), Octets({1, 1, 100}), date + "Year 100 is out of range (0-99)"},
      {Dpt(11), Octets({0, 1, 90}), date + "1990-1-0"},
      {Dpt(11), Octets({31, 13, 89}), date + "2089-13-31"},
      {Dpt(19), GroupValue({123, 1, 1, 0, 0}, 64), missing + "5 is missing: there are 5 octets"},
      {Dpt(22), Octets({1}), missing + "1 is missing: there are 1 octets"},  // no row: nobody checks the size
  };
  for (const auto& c : kCases) {
    ScopedLogCapture log(Tal::LogLevel::Warn);
    EXPECT_FALSE(GroupValueToAroValue(c.groupValue, c.dpt));
    EXPECT_EQ(log.Take().back(), c.record);
  }
}

TEST(GroupValueToAroValue, LetsTheCalendarsRangeErrorsOut) {
  const std::tuple<unsigned, BinaryData, const char*> cases[] = {
      {11, {31, 4, 23}, "Day of month is not valid for year"},
      {19, {123, 0, 1, 0, 0, 0, 0, 0}, "Month number is out of range 1..12"},
      {19, {123, 13, 1, 0, 0, 0, 0, 0}, "Month number is out of range 1..12"},
      {19, {123, 1, 0, 0, 0, 0, 0, 0}, "Day of month value is out of range 1..31"}};
  for (const auto& [main, octets, text] : cases) {
    try {
      GroupValueToAroValue(Octets(octets), Dpt(main));
      ADD_FAILURE() << text;
    } catch (const std::out_of_range& error) {
      EXPECT_STREQ(error.what(), text);
    }
  }
}

TEST(CheckGroupValue, SaysWhetherTheMapDecodesAndWhat) {
  EXPECT_TRUE(Tal::CheckGroupValue(Octets({0x0C, 0x1A}), Dpt(9)));
  EXPECT_TRUE(Tal::CheckGroupValue(GroupValue({1}, 5), Dpt(1)));
  EXPECT_TRUE(Tal::CheckGroupValue(Octets({1, 2, 3}), Dpt(22)));  // not in the table: taken for valid
  EXPECT_TRUE(Tal::CheckGroupValue(Octets({31, 4, 23}), Dpt(11)));
  EXPECT_FALSE(Tal::CheckGroupValue(Octets({0x0C}), Dpt(9)));
  const bool isWide = sizeof(unsigned long) > 4;  // else there is no such number
  EXPECT_FALSE(isWide && Tal::CheckGroupValue(Octets({7}), static_cast<unsigned long>(0x100000000ull) | Dpt(5)));
  ScopedLogCapture log;
  Tal::CheckGroupValue(GroupValue({0}, 260), Dpt(16, 1));
  const auto records = log.Records();
  EXPECT_EQ(records.at(0).message, "DPT is 16.1 with bit size 4");  // a datapoint type's size has 8 bits
  EXPECT_EQ(records.at(0).level, Tal::LogLevel::Debug);
  EXPECT_THAT(records.at(0).text, testing::StartsWith("CheckGroupValue(TalObjectModel/GroupValueAroValue:"));
  EXPECT_EQ(records.at(1).message,
            "Failed to convert a GroupValue for DPT 16.1 because of unexpected bit size: 260, expected: 112");
}

}  // namespace
}  // namespace TalTest
