#include <Tal/AroValueHelper.h>
#include <Tal/TimeOfDay.h>
#include <Tal/Unreachable.h>
#include <gmock/gmock.h>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <limits>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using boost::posix_time::ptime;
using boost::posix_time::time_from_string;
using Tal::ToAroValue;
using TalApp::DayOfWeek;

TEST(ToAroValue, TagsEveryPlainTypeAndKeepsItsContent) {
  EXPECT_EQ(ToAroValue(true, avtBool), Bool(true));
  EXPECT_EQ(ToAroValue(-1.5, avtFloat), Float(-1.5));
  EXPECT_EQ(ToAroValue(0.25F, avtFloat), Float(0.25));
  EXPECT_EQ(ToAroValue(static_cast<short>(-2), avtInteger), Integer(-2));
  EXPECT_EQ(ToAroValue(std::numeric_limits<int>::min(), avtInteger), Integer(-2147483647 - 1));
  EXPECT_EQ(ToAroValue(static_cast<unsigned char>(200), avtByte), Byte(200));
  EXPECT_EQ(ToAroValue(static_cast<unsigned short>(65535), avtWord), Word(65535));
  EXPECT_EQ(ToAroValue(4000000000u, avtDWord), DWord(4000000000u));
}

TEST(ToAroValue, TakesTextInEveryFormThroughTheCheckedOverload) {
  const std::string text = "Gr\u00FC\u00DFe";
  EXPECT_EQ(ToAroValue(text, avtString), Text(text));
  EXPECT_EQ(ToAroValue(std::string(text), avtString), Text(text));
  EXPECT_EQ(ToAroValue(text.c_str(), avtString), Text(text));
  EXPECT_EQ(ToAroValue(std::string_view(text), avtString), Text(text));
  EXPECT_EQ(ToAroValue("literal", avtString), Text("literal"));
  EXPECT_EQ(ToAroValue<std::string>("A\xC3", avtString), Text("A?"));  // the template repairs instead
}

TEST(ToAroValueDeathTest, EndsTheProcessOnATypeThatTheTableDoesNotDemand) {
  const std::string place = "ToAroValue Include/Tal/AroValueHelper:";
  EXPECT_DEATH(ToAroValue<unsigned char>(1, avtInteger),
               "^" + place + "32 TAL_ASSERT2.result.avt == expectedType. failed\n");
  EXPECT_DEATH(ToAroValue("text", avtEmpty), "^" + place + "32 TAL_ASSERT2.result.avt == expectedType. failed\n");
  EXPECT_DEATH(ToAroValue("A\xC3", avtString),
               "^" + place + "38 TAL_ASSERT2.utf8::is_valid.value.begin.., value.end.... failed\n");
  EXPECT_DEATH(ToAroValue(*TalApp::TimeOfDay::Create(0, 0, 0, DayOfWeek::NoDay), avtTime),
               "^" + place + "62 TAL_ASSERT2.expectedType == avtDayTime. failed\n");
}

TEST(ToAroValue, PutsATimeOfDayOnTheFirstOf2000) {
  AROVALUE expected = Timed(avtDayTime, Time(2000, 1, 1, 23, 59, 58, 0x40));
  expected.time.extraWord = 1;
  EXPECT_EQ(ToAroValue(*TalApp::TimeOfDay::Create(23, 59, 58, DayOfWeek::Sunday), avtDayTime), expected);
}

TEST(ToAroValue, TakesATimePointAsLocalTimeUntilTheClockReads2038_01_19_03_14_07) {
  const std::tuple<const char*, AroValueType, AROTIME> cases[] = {
      {"2023-01-01 12:30:15.999", avtDateTime, Time(2023, 1, 1, 12, 30, 15, 0x40)},
      {"1969-12-31 23:59:59", avtDate, Time(1969, 12, 31, 23, 59, 59, 0x04)},
      {"1850-07-01 00:00:00", avtDate, Time(1850, 7, 1, 0, 0, 0, 0x01)},
      {"2038-01-19 03:14:07", avtDayTime, Time(2038, 1, 19, 3, 14, 7, 0x02)}};
  for (const auto& [text, type, time] : cases) EXPECT_EQ(ToAroValue(time_from_string(text), type), Timed(type, time));
  using namespace boost::date_time;
  for (const ptime& late : {time_from_string("2038-01-19 03:14:08"), time_from_string("9999-12-31 00:00:00"),
                            ptime(not_a_date_time), ptime(pos_infin), ptime(neg_infin)}) {
    EXPECT_EQ(ToAroValue(late, avtDayTime), AROVALUE()) << late;
  }
}

TEST(TimeOfDay, KnowsExactlyOneDayOfASet) {
  for (unsigned set = 0; set <= 0xFFFF; ++set) {
    const auto timeOfDay = TalApp::FromAroTime(Time(0, 0, 0, 1, 2, 3, static_cast<std::uint16_t>(set)));
    unsigned expected = 0;
    for (unsigned day = 1; day <= 7; ++day) expected = set == 1u << (day - 1) ? day : expected;
    ASSERT_EQ(static_cast<unsigned>(timeOfDay->GetWeekday()), expected) << set;
  }
  EXPECT_FALSE(TalApp::FromAroTime(Time(2023, 1, 1, 24, 0, 0)));
}

TEST(TimeOfDay, GivesTheBitOfADay) {
  EXPECT_EQ(TalApp::ToAroWeekday(DayOfWeek::NoDay), 0);
  for (unsigned day = 1; day <= 7; ++day) EXPECT_EQ(TalApp::ToAroWeekday(static_cast<DayOfWeek>(day)), 1 << (day - 1));
}

TEST(UnreachableDeathTest, ReportsItsFixedPlacesAndTerminates) {
  const std::string sentence = "This statement should not be executed. There is a bug somewhere around ";
  EXPECT_DEATH(TalApp::ToAroWeekday(static_cast<DayOfWeek>(8)),
               "FATAL ToAroWeekday.TalObjectModel/TimeOfDay:68. - " + sentence + "TalObjectModel/TimeOfDay:68\n");
  EXPECT_DEATH(
      Tal::UndefinedBehaviourIfNone<Tal::UTF8String>(boost::none),
      "FATAL UndefinedBehaviourIfNone.Include/Tal/Unreachable:45. - " + sentence + "Include/Tal/Unreachable:45\n");
  EXPECT_EQ(Tal::UndefinedBehaviourIfNone<Tal::UTF8String>(Tal::UTF8String::Create("x")).GetBytes(), "x");
}

}  // namespace
}  // namespace TalTest
