// Dates and times of object-model values.
#pragma once

#include <BasePlatform/AroWeekDays.h>
#include <BasePlatform/Export.h>

#include <cstdint>
#include <ctime>
#include <string>

/// A date, a time of day, or both, field by field; no time zone, no check unless asked for.
struct AROTIME {
  std::uint16_t year = 0;       ///< full: 2026
  std::uint8_t month = 0;       ///< 1..12
  std::uint8_t day = 0;         ///< 1..31
  std::uint8_t hour = 0;        ///< 0..23
  std::uint8_t minute = 0;      ///< 0..59
  std::uint8_t second = 0;      ///< 0..59
  std::uint8_t extraByte = 0;   ///< carried, never interpreted
  std::uint16_t weekDays = 0;   ///< a set of AroWeekDays::WEEK_DAY_TYPES
  std::uint16_t extraWord = 0;  ///< carried, never interpreted; 1 in a time of day
  bool firstFlag = false;       ///< carried, never interpreted
  bool secondFlag = false;      ///< carried, never interpreted

  /// Sets every field to zero, whatever the argument.
  void Clear(bool = true) noexcept { *this = AROTIME(); }

  /// True for a day of the Gregorian calendar in the years 1400 to 9999.
  BASEPLATFORM_EXPORT static bool IsValidDate(unsigned year, unsigned month, unsigned day) noexcept;

  /// True for 00:00:00 to 23:59:59.
  static constexpr bool IsValidTime(unsigned hour, unsigned minute, unsigned second) noexcept {
    return hour < 24 && minute < 60 && second < 60;
  }

  /// Sets year, month and day; nothing is checked, no other field changes.
  BASEPLATFORM_EXPORT void SetDate(std::uint16_t newYear, std::uint8_t newMonth, std::uint8_t newDay) noexcept;

  /// Sets year to second; nothing is checked, no other field changes.
  BASEPLATFORM_EXPORT void SetDateTime(std::uint16_t newYear, std::uint8_t newMonth, std::uint8_t newDay,
                                       std::uint8_t newHour, std::uint8_t newMinute, std::uint8_t newSecond) noexcept;

  /// The fields as they stand (year − 1900, month − 1, daylight saving unknown); nothing is normalised, so month 0
  /// gives -1.
  BASEPLATFORM_EXPORT operator std::tm() const noexcept;

  /// Takes date, time and weekday of a time point, in seconds since 1970-01-01 00:00 UTC, in local time; the carried
  /// fields stay. A time point that the machine's calendar or the year field cannot hold clears every field.
  BASEPLATFORM_EXPORT AROTIME& operator=(std::int64_t secondsSinceEpoch) noexcept;

  /// All fields in the order of declaration as decimals (flags 0 or 1) separated by single blanks.
  BASEPLATFORM_EXPORT std::string ToString() const;

  /// All fields are the same.
  friend bool operator==(const AROTIME& a, const AROTIME& b) noexcept {
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second && a.extraByte == b.extraByte && a.weekDays == b.weekDays &&
           a.extraWord == b.extraWord && a.firstFlag == b.firstFlag && a.secondFlag == b.secondFlag;
  }
  /// A field differs.
  friend bool operator!=(const AROTIME& a, const AROTIME& b) noexcept { return !(a == b); }
};
