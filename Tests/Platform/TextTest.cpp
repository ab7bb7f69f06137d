#include <BasePlatform/AroValue.h>
#include <KnxHelper/Latin1.h>
#include <KnxHelper/TimeOfDay.h>
#include <KnxHelper/Utf8String.h>
#include <Tal/Text.h>

#include "Support/Cases.h"

namespace Tal {
namespace {

using TalTest::Case;
using TalTest::ForEachCase;
using namespace std::string_literals;

TEST(Utf8, IsRepairedWithOneQuestionMarkForEachBrokenSequence) {
  const auto check = [](const std::string& text, const std::string& repaired) {
    const auto utf8 = UTF8String::Create(text);
    EXPECT_EQ(utf8.has_value(), text == repaired);
    EXPECT_EQ(utf8 ? utf8->GetBytes() : repaired, repaired);
    EXPECT_EQ(RepairUTF8(text).GetBytes(), repaired);
    EXPECT_EQ(AROVALUE::EnsureUTF8(text), repaired);
  };
  check("", "");
  ForEachCase("Values.txt", "utf-8", [&](const Case& c) { check(c[0], c[1].empty() ? c[0] : c[1]); });
}

TEST(Latin1, IsTotalTowardsUtf8AndLossyFromIt) {
  std::string all;
  for (int octet = 0; octet < 256; ++octet) all += static_cast<char>(octet);
  const UTF8String utf8 = getUTF8FromLatin1(KnxStyleString(all));
  EXPECT_EQ(utf8.GetBytes().size(), 128u + 2 * 128);
  EXPECT_EQ(getLatin1FromUTF8Lossy(utf8).GetBytes(), all);
  const auto lossy = UTF8String::Create("\u00FF\u0100\u20AC\U0001F3E0\u00DF!");
  EXPECT_EQ(getLatin1FromUTF8Lossy(*lossy).GetBytes(), "\xFF___\xDF!");
}

TEST(Latin1, ExportedFunctionsStopAtTheFirstZeroByte) {
  using namespace Vanta;
  ForEachCase("Values.txt", "to ISO 8859-1", [](const Case& c) { EXPECT_EQ(Utf8ToIso88591(c[0]), c[1]); });
  EXPECT_EQ(Utf8ToIso88591({"abcd", 2}), "abcd");  // the view's length does not end it
  EXPECT_EQ(Utf8ToIso88591({}), "");
  EXPECT_EQ(Iso88591ToUtf8("\xE9\xFF"), "\u00E9\u00FF");
  EXPECT_EQ(Iso88591ToUtf8("a\0b"s), "a");
  EXPECT_EQ(Iso88591ToUtf8({}), "");
}

TEST(TimeOfDay, ExistsOnlyForAValidTime) {
  using namespace TalApp;
  const auto last = TimeOfDay::Create(23, 59, 58, DayOfWeek::Sunday);
  ASSERT_TRUE(last);
  EXPECT_TRUE(last->GetHour() == 23 && last->GetMinute() == 59 && last->GetSecond() == 58);
  EXPECT_EQ(last->GetWeekday(), DayOfWeek::Sunday);
  constexpr unsigned kNone[][4] = {{24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 60, 0}, {256, 0, 0, 0}, {0, 0, 0, 8}};
  for (const auto& [hour, minute, second, day] : kNone) {
    EXPECT_FALSE(TimeOfDay::Create(hour, minute, second, static_cast<DayOfWeek>(day))) << hour << ' ' << minute;
  }
}

}  // namespace
}  // namespace Tal
