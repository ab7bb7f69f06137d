// Time points and times of day as the fields of an AROTIME, without any time zone.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxHelper/TimeOfDay.h>
#include <Tal/TimeOfDay.h>

#include <boost/date_time/posix_time/ptime.hpp>

#include "KnxWire.h"

namespace Tal {

/// Sets date, time of day (fractions dropped) and the weekday's bit of @p time to those of @p moment, which must be a
/// proper time point.
inline void SetCalendarFields(AROTIME& time, const boost::posix_time::ptime& moment) {
  const boost::gregorian::date date = moment.date();
  const boost::posix_time::time_duration clock = moment.time_of_day();
  const auto narrow = [](auto field) { return static_cast<std::uint8_t>(field); };
  time.SetDateTime(date.year(), narrow(date.month().as_number()), narrow(date.day().as_number()), narrow(clock.hours()),
                   narrow(clock.minutes()), narrow(clock.seconds()));
  const unsigned daysAfterMonday = (date.day_of_week().as_number() + 6u) % 7u;
  time.weekDays = static_cast<std::uint16_t>(AroWeekDays::Monday << daysAfterMonday);
}

/// The value that ToAroValue() makes of a time point with these fields, which must be a day of the calendar and a time
/// of day.
AROVALUE LocalValue(const KnxWire::DateTime& moment, AroValueType expectedType);

/// Makes @p time the time of day @p timeOfDay: on 2000-01-01, with the weekday's bit and extraWord 1.
inline void SetTimeOfDay(AROTIME& time, const TalApp::TimeOfDay& timeOfDay) {
  time.Clear(true);
  time.SetDateTime(2000, 1, 1, timeOfDay.GetHour(), timeOfDay.GetMinute(), timeOfDay.GetSecond());
  time.weekDays = TalApp::ToAroWeekday(timeOfDay.GetWeekday());
  time.extraWord = 1;
}

}  // namespace Tal
