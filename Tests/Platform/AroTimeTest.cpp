#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>
#include <limits>

#include "Support/Values.h"

namespace TalTest {
namespace {

TEST(AroTime, KnowsTheGregorianCalendarFrom1400To9999) {
  const auto isValid = [](unsigned date) { return AROTIME::IsValidDate(date / 10000, date / 100 % 100, date % 100); };
  for (const unsigned date : {20240229u, 20000229u, 20230430u, 20231231u, 14000101u, 99991231u})
    EXPECT_TRUE(isValid(date));
  for (const unsigned date : {20230229u, 19000229u, 20230431u, 20231301u, 20230001u, 20230100u, 20230132u, 13991231u,
                              100000101u, 675590101u /* 2023 modulo 65536 */}) {
    EXPECT_FALSE(isValid(date)) << date;
  }
  EXPECT_TRUE(AROTIME::IsValidTime(23, 59, 59));
  EXPECT_FALSE(AROTIME::IsValidTime(24, 0, 0) || AROTIME::IsValidTime(0, 60, 0) || AROTIME::IsValidTime(0, 0, 60));
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
  const std::tm fields = Time(2023, 0, 31, 25, 61, 62);
  EXPECT_THAT(std::vector<int>({fields.tm_year, fields.tm_mon, fields.tm_mday, fields.tm_hour, fields.tm_min,
                                fields.tm_sec, fields.tm_isdst}),
              testing::ElementsAre(123, -1, 31, 25, 61, 62, -1));
}

TEST(AroTime, TakesLocalTimeAndWeekdayOfATimePoint) {
  // Every weekday, against the C library; the carried fields stay.
  for (std::int64_t moment = 1672574400; moment < 1672574400 + 7 * 86400; moment += 86400) {
    const auto seconds = static_cast<std::time_t>(moment);
    const std::tm expected = *std::localtime(&seconds);
    AROTIME time;
    time.extraWord = 5;
    time = moment;
    constexpr int kBits[] = {0x40, 0x01, 0x02, 0x04, 0x08, 0x10, 0x20};  // from Sunday
    char text[64];
    std::snprintf(text, sizeof text, "%d %d %d %d %d %d 0 ", expected.tm_year + 1900, expected.tm_mon + 1,
                  expected.tm_mday, expected.tm_hour, expected.tm_min, expected.tm_sec);
    EXPECT_EQ(time.ToString(), text + std::to_string(kBits[expected.tm_wday]) + " 5 0 0");
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
