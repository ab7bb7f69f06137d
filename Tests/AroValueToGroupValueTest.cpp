#include <Tal/GroupValueAroValue.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using Tal::AroValueToGroupValue;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

AROVALUE Day(std::uint16_t year, std::uint8_t month, std::uint8_t day) {
  return Timed(avtDate, Time(year, month, day, 0, 0, 0));
}
AROVALUE Clock(std::uint8_t hour, std::uint8_t minute, std::uint8_t second, std::uint16_t weekDays) {
  return Timed(avtDayTime, Time(0, 0, 0, hour, minute, second, weekDays));
}
AROVALUE Moment(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute = 0,
                std::uint8_t second = 0) {
  return Timed(avtDateTime, Time(year, month, day, hour, minute, second));
}

struct WireCase {
  unsigned main;
  AROVALUE value;
  const char* wire;  // worked out by hand from the datapoint type's definition
};

// clang-format off
const WireCase kWireCases[] = {
    {1, Bool(false), "00/1"}, {1, Bool(true), "01/1"}, {2, Byte(3), "03/2"}, {2, Byte(0xFE), "02/2"},
    {23, Byte(2), "02/2"}, {3, Byte(0x1B), "0B/4"}, {5, Byte(0), "00/8"}, {5, Byte(255), "FF/8"},
    {6, Byte(0x80), "80/8"}, {17, Byte(63), "3F/8"}, {18, Byte(0xBF), "BF/8"}, {20, Byte(255), "FF/8"},
    {21, Byte(1), "01/8"}, {26, Byte(0x7F), "7F/8"}, {238, Byte(9), "09/8"},
    {7, Word(0), "00 00/16"}, {7, Word(65535), "FF FF/16"}, {22, Word(0x8001), "80 01/16"},
    {217, Word(0x0801), "08 01/16"}, {234, Word(23130), "5A 5A/16"}, {237, Word(1), "00 01/16"},
    {8, Integer(-32768), "80 00/16"}, {8, Integer(32767), "7F FF/16"}, {8, Integer(-1), "FF FF/16"},
    {9, Float(21.0), "0C 1A/16"}, {9, Float(-30.0), "8A 24/16"}, {9, Float(670760.96), "7F FE/16"},
    {9, Float(std::nan("")), "7F FF/16"}, {14, Float(-1.5), "BF C0 00 00/32"}, {14, Float(1e300), "7F 80 00 00/32"},
    {10, Clock(23, 59, 59, 0x40), "F7 3B 3B/24"}, {10, Clock(0, 0, 0, 0x03), "00 00 00/24"},  // two days are no day
    {11, Day(1990, 1, 1), "01 01 5A/24"}, {11, Day(2000, 2, 29), "1D 02 00/24"}, {11, Day(2089, 12, 31), "1F 0C 59/24"},
    {12, DWord(4294967295), "FF FF FF FF/32"}, {15, DWord(0x12345678), "12 34 56 78/32"}, {27, DWord(1), "00 00 00 01/32"},
    {13, Integer(-2147483647 - 1), "80 00 00 00/32"},
    {16, Text("Gr\u00FC\u00DFe \u20AC"), "47 72 FC DF 65 20 5F 00 00 00 00 00 00 00/112"},
    {16, Text("0123456789abcdef"), "30 31 32 33 34 35 36 37 38 39 61 62 63 64/112"},
    {19, Moment(2023, 1, 1, 12, 30, 15), "7B 01 01 EC 1E 0F 20 00/64"},  // a Sunday
    {19, Moment(2024, 2, 29, 0), "7C 02 1D 80 00 00 20 00/64"},          // a Thursday
    {19, Moment(2023, 1, 1, 25, 0, 0), "7B 01 02 21 00 00 20 00/64"},    // hour 25 is 01:00 of the next day
    {19, Moment(1400, 1, 1, 0), "0C 01 01 60 00 00 20 00/64"},           // the year modulo 256
    {19, Moment(9999, 12, 31, 23, 59, 59), "A3 0C 1F B7 3B 3B 20 00/64"},
    {232, DWord(1193046), "12 34 56/24"}, {232, DWord(0xFF123456), "12 34 56/24"},
};
// clang-format on

TEST(AroValueToGroupValue, WritesTheOctetsOfEveryMainTypeWithoutARecord) {
  ScopedLogCapture log;
  for (const WireCase& c : kWireCases) {
    const auto groupValue = AroValueToGroupValue(c.value, Dpt(c.main));
    ASSERT_TRUE(groupValue) << c.main << ' ' << c.wire;
    EXPECT_EQ(Wire(*groupValue), c.wire) << c.main;
    EXPECT_EQ(Wire(*AroValueToGroupValue(c.value, Dpt(c.main, 0xFFFF))), c.wire);  // the sub number has no part
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
      {Dpt(10), Clock(24, 61, 62, 3), "ERROR Could not convert AROTIME 0 0 0 24 61 62 0 3 0 0 0 to TimeOfDay"},
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

}  // namespace
}  // namespace TalTest
