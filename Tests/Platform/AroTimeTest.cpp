#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>

#include "Support/Values.h"

namespace TalTest {
namespace {

TEST(AroTime, KnowsTheGregorianCalendarFrom1400To9999) {
  struct Case {
    unsigned year, month, day;
    bool valid;
  };
  for (const Case& c : {Case{2024, 2, 29, true},
                        {2023, 2, 29, false},
                        {2000, 2, 29, true},
                        {1900, 2, 29, false},
                        {2023, 4, 30, true},
                        {2023, 4, 31, false},
                        {2023, 12, 31, true},
                        {2023, 13, 1, false},
                        {2023, 0, 1, false},
                        {2023, 1, 0, false},
                        {2023, 1, 32, false},
                        {1400, 1, 1, true},
                        {1399, 12, 31, false},
                        {9999, 12, 31, true},
                        {10000, 1, 1, false},
                        {65536 + 2023, 1, 1, false}}) {
    EXPECT_EQ(AROTIME::IsValidDate(c.year, c.month, c.day), c.valid) << c.year << '-' << c.month << '-' << c.day;
  }
  EXPECT_TRUE(AROTIME::IsValidTime(23, 59, 59));
  EXPECT_FALSE(AROTIME::IsValidTime(24, 0, 0));
  EXPECT_FALSE(AROTIME::IsValidTime(0, 60, 0));
  EXPECT_FALSE(AROTIME::IsValidTime(0, 0, 60));
}

TEST(AroTime, SettersTouchExactlyTheirFields) {
  AROTIME time = Time(1, 2, 3, 4, 5, 6, 7);
  time.extraByte = 8;
  time.extraWord = 9;
  time.firstFlag = true;
  time.SetDate(2023, 10, 11);
  EXPECT_EQ(time.ToString(), "2023 10 11 4 5 6 8 7 9 1 0");
  time.SetDateTime(2024, 255, 254, 253, 252, 251);
  EXPECT_EQ(time.ToString(), "2024 255 254 253 252 251 8 7 9 1 0");
  time.Clear(false);
  EXPECT_EQ(time, AROTIME());
}

TEST(AroTime, BecomesBrokenDownTimeWithoutNormalising) {
  const auto fields = static_cast<std::tm>(Time(2023, 0, 31, 25, 61, 62));
  EXPECT_EQ(fields.tm_year, 123);
  EXPECT_EQ(fields.tm_mon, -1);
  EXPECT_EQ(fields.tm_mday, 31);
  EXPECT_EQ(fields.tm_hour, 25);
  EXPECT_EQ(fields.tm_min, 61);
  EXPECT_EQ(fields.tm_sec, 62);
  EXPECT_EQ(fields.tm_isdst, -1);
}

TEST(AroTime, TakesLocalTimeAndWeekdayOfATimePoint) {
  // Every weekday, against the C library; the carried fields stay.
  for (std::int64_t moment = 1672574400; moment < 1672574400 + 7 * 86400; moment += 86400) {
    const auto seconds = static_cast<std::time_t>(moment);
    const std::tm expected = *std::localtime(&seconds);
    AROTIME time;
    time.extraWord = 5;
    time = moment;
    EXPECT_EQ(time.extraWord, 5);
    EXPECT_EQ(time.year, expected.tm_year + 1900);
    EXPECT_EQ(time.month, expected.tm_mon + 1);
    EXPECT_EQ(time.day, expected.tm_mday);
    EXPECT_EQ(time.hour, expected.tm_hour);
    EXPECT_EQ(time.minute, expected.tm_min);
    EXPECT_EQ(time.second, expected.tm_sec);
    constexpr int kBits[] = {0x40, 0x01, 0x02, 0x04, 0x08, 0x10, 0x20};  // from Sunday
    EXPECT_EQ(time.weekDays, kBits[expected.tm_wday]);
  }
}

TEST(AroTime, ATimePointBeyondTheCalendarClearsEverything) {
  for (const std::int64_t moment : {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(),
                                    std::int64_t{4000000000000}}) {
    AROTIME time = Time(2023, 1, 1, 1, 1, 1, 1);
    time = moment;
    EXPECT_EQ(time, AROTIME()) << moment;
  }
}

}  // namespace
}  // namespace TalTest
