#include <BasePlatform/AroValue.h>
#include <KnxHelper/Latin1.h>
#include <KnxHelper/TimeOfDay.h>
#include <KnxHelper/Utf8String.h>
#include <Tal/Text.h>
#include <gtest/gtest.h>

namespace Tal {
namespace {

using namespace std::string_literals;

TEST(Utf8, IsAcceptedOrRefused) {
  for (const std::string& text : {""s, "a\0b"s, "Gr\u00FC\u00DFe \u20AC \U0001F3E0"s, "\uFFFD\uFFFF"s}) {
    ASSERT_TRUE(UTF8String::Create(text)) << text;
    EXPECT_EQ(UTF8String::Create(text)->GetBytes(), text);
  }
  for (const char* text : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "a\xFF"}) {
    EXPECT_FALSE(UTF8String::Create(text)) << text;
  }
}

TEST(Utf8, IsRepairedWithOneQuestionMarkForEachBrokenSequence) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"valid \u20AC\0"s, "valid \u20AC\0"s},  // keeps its own zero byte
      {"\x41\xC3", "A?"},                      // cut off at the end
      {"\xF0\x9F\x8F", "?"},                   // cut off later
      {"\x80", "?"},                           // cannot start a sequence
      {"\xBF\xBF", "??"},                      // nor can the second
      {"\xE2\x82\x78", "?x"},                  // incomplete: its continuation byte goes with it
      {"\xC0\x80z", "?z"},                     // overlong
      {"\xED\xA0\x80\xC3\xA9", "?\u00E9"},     // a surrogate
      {"\xF4\x90\x80\x80", "?"},               // beyond U+10FFFF
      {"a\xFF\xFE\0"s, "a??\0"s},              // only the added zero byte is taken away
  };
  for (const auto& [broken, repaired] : cases) {
    EXPECT_EQ(RepairUTF8(broken).GetBytes(), repaired);
    EXPECT_EQ(AROVALUE::EnsureUTF8(broken), repaired);
  }
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
  EXPECT_EQ(Utf8ToIso88591("c\u00E9"), "c\xE9");
  EXPECT_EQ(Utf8ToIso88591("\u0100x"), "\0x"s);   // folded
  EXPECT_EQ(Utf8ToIso88591("\u20AC"), "\u20AC");  // three bytes are copied
  EXPECT_EQ(Utf8ToIso88591("\x80z"), "\x80z");    // as are stray continuation bytes
  EXPECT_EQ(Utf8ToIso88591("ab\0cd"s), "ab");
  EXPECT_EQ(Utf8ToIso88591({"abcd", 2}), "abcd");  // the view's length does not end it
  EXPECT_EQ(Utf8ToIso88591({}), "");
  const std::string cutOff = "x\xC3";  // its zero byte is the last that may be read
  EXPECT_EQ(Utf8ToIso88591(cutOff), "x\xC0");
  EXPECT_EQ(Iso88591ToUtf8("\xE9\xFF"), "\u00E9\u00FF");
  EXPECT_EQ(Iso88591ToUtf8("a\0b"s), "a");
  EXPECT_EQ(Iso88591ToUtf8({}), "");
}

TEST(TimeOfDay, ExistsOnlyForAValidTime) {
  using namespace TalApp;
  const auto last = TimeOfDay::Create(23, 59, 58, DayOfWeek::Sunday);
  ASSERT_TRUE(last);
  EXPECT_EQ(last->GetHour(), 23);
  EXPECT_EQ(last->GetMinute(), 59);
  EXPECT_EQ(last->GetSecond(), 58);
  EXPECT_EQ(last->GetWeekday(), DayOfWeek::Sunday);
  EXPECT_FALSE(TimeOfDay::Create(24, 0, 0, DayOfWeek::NoDay));
  EXPECT_FALSE(TimeOfDay::Create(0, 60, 0, DayOfWeek::NoDay));
  EXPECT_FALSE(TimeOfDay::Create(0, 0, 60, DayOfWeek::NoDay));
  EXPECT_FALSE(TimeOfDay::Create(256, 0, 0, DayOfWeek::NoDay));
  EXPECT_FALSE(TimeOfDay::Create(0, 0, 0, static_cast<DayOfWeek>(8)));
}

}  // namespace
}  // namespace Tal
