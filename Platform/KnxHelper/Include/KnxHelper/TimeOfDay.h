// A time of day with weekday, as KNX datapoint type 10.001 carries it.
#pragma once

#include <boost/optional.hpp>
#include <cstdint>

namespace TalApp {

/// Weekday number of datapoint type 10.001. Every 8-bit number is representable; 0 to 7 have a meaning.
enum class DayOfWeek : std::uint8_t {
  NoDay = 0,
  Monday = 1,
  Tuesday = 2,
  Wednesday = 3,
  Thursday = 4,
  Friday = 5,
  Saturday = 6,
  Sunday = 7,
};

/// A time of day that has been checked: 00:00:00 to 23:59:59 on no day or a day of the week.
class TimeOfDay {
 public:
  /// @return nothing unless hour < 24, minute < 60, second < 60 and weekday <= 7.
  static boost::optional<TimeOfDay> Create(unsigned hour, unsigned minute, unsigned second, DayOfWeek weekday) {
    if (hour >= 24 || minute >= 60 || second >= 60 || weekday > DayOfWeek::Sunday) return boost::none;
    return TimeOfDay(static_cast<std::uint8_t>(hour), static_cast<std::uint8_t>(minute),
                     static_cast<std::uint8_t>(second), weekday);
  }

  std::uint8_t GetHour() const noexcept { return m_hour; }      ///< 0 to 23
  std::uint8_t GetMinute() const noexcept { return m_minute; }  ///< 0 to 59
  std::uint8_t GetSecond() const noexcept { return m_second; }  ///< 0 to 59
  DayOfWeek GetWeekday() const noexcept { return m_weekday; }   ///< NoDay to Sunday

 private:
  TimeOfDay(std::uint8_t hour, std::uint8_t minute, std::uint8_t second, DayOfWeek weekday) noexcept
      : m_hour(hour), m_minute(minute), m_second(second), m_weekday(weekday) {}

  std::uint8_t m_hour;
  std::uint8_t m_minute;
  std::uint8_t m_second;
  DayOfWeek m_weekday;
};

}  // namespace TalApp
