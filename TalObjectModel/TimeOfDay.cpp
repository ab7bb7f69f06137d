#include <Tal/TimeOfDay.h>

#include <array>

#include "UnreachableReport.h"

namespace TalApp {
namespace {

constexpr char kSource[] = "TalObjectModel/TimeOfDay";
constexpr int kNoSuchDayLine = 68;  // where the report of an impossible weekday points to

constexpr unsigned kDays = 7;

constexpr AroWeekDays::WEEK_DAY_TYPES BitOf(unsigned day) {
  return static_cast<AroWeekDays::WEEK_DAY_TYPES>(AroWeekDays::Monday << (day - 1));
}

/// Weekdays by set; no day for the empty set and for sets of two and more.
constexpr std::array<DayOfWeek, 1u << kDays> MakeDaysOfSets() {
  std::array<DayOfWeek, 1u << kDays> days = {};
  for (unsigned day = 1; day <= kDays; ++day) days[BitOf(day)] = static_cast<DayOfWeek>(day);
  return days;
}
constexpr std::array<DayOfWeek, 1u << kDays> kDaysOfSets = MakeDaysOfSets();

}  // namespace

boost::optional<TimeOfDay> FromAroTime(const AROTIME& time) {
  const DayOfWeek weekday = time.weekDays < kDaysOfSets.size() ? kDaysOfSets[time.weekDays] : DayOfWeek::NoDay;
  return TimeOfDay::Create(time.hour, time.minute, time.second, weekday);
}

AroWeekDays::WEEK_DAY_TYPES ToAroWeekday(DayOfWeek day) {
  const auto number = static_cast<unsigned>(day);
  if (number > kDays) Tal::ReportUnreachable({__func__, __PRETTY_FUNCTION__, kSource, kNoSuchDayLine});
  return number == 0 ? AroWeekDays::NoDay : BitOf(number);
}

}  // namespace TalApp
