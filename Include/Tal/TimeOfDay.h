// Times of day and weekdays between AROTIME and the KNX time of day.
#pragma once

#include <BasePlatform/AroTime.h>
#include <KnxHelper/TimeOfDay.h>
#include <Tal/Export.h>

#include <boost/optional.hpp>

namespace TalApp {

/// The time of day of @p time. Exactly one weekday in the set gives that day; none, or several, give no day.
/// @return  nothing when hour, minute and second are no time of day. The date plays no part.
TALOBJECTMODEL_EXPORT boost::optional<TimeOfDay> FromAroTime(const AROTIME& time);

/// The bit of @p day in a set of weekdays; 0 for no day. A number above 7 is a bug in the caller: one FATAL record,
/// then std::terminate().
TALOBJECTMODEL_EXPORT AroWeekDays::WEEK_DAY_TYPES ToAroWeekday(DayOfWeek day);

}  // namespace TalApp
