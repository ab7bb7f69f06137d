// Octet layouts of the composite datapoint types: no value types, no checks, no log. The layouts that a group value
// has setters for (numbers, date, time of day, text) live with those.
#pragma once

#include <array>
#include <boost/date_time/posix_time/ptime.hpp>
#include <cstdint>

namespace Tal {
namespace KnxWire {

/// Three octets, most significant first; the upper eight bits are dropped.
constexpr std::array<std::uint8_t, 3> PackUnsigned24(std::uint32_t number) noexcept {
  return {static_cast<std::uint8_t>(number >> 16), static_cast<std::uint8_t>(number >> 8),
          static_cast<std::uint8_t>(number)};
}

constexpr std::uint8_t kWorkingDayNotValid = 0x20;  // octet 6 of a date with time
constexpr std::uint8_t kNoDayOfWeek = 0x04;

/// Date with time (19.001): year - 1900, month, day, weekday and hour, minute, second, flags, clock quality.
/// not-a-date-time gives 1970-01-01 00:00:00 without a weekday.
inline std::array<std::uint8_t, 8> PackDateTime(const boost::posix_time::ptime& moment) {
  if (moment.is_special()) return {70, 1, 1, 0, 0, 0, kWorkingDayNotValid | kNoDayOfWeek, 0};
  const boost::gregorian::date date = moment.date();
  const boost::posix_time::time_duration clock = moment.time_of_day();
  const auto octet = [](auto field) { return static_cast<std::uint8_t>(field); };
  const unsigned calendarDay = date.day_of_week().as_number();  // Sunday is 0
  const unsigned weekday = calendarDay == 0 ? 7 : calendarDay;
  return {octet(date.year() - 1900),     octet(date.month().as_number()),
          octet(date.day().as_number()), octet(weekday << 5 | static_cast<unsigned>(clock.hours())),
          octet(clock.minutes()),        octet(clock.seconds()),
          kWorkingDayNotValid,           0};
}

}  // namespace KnxWire
}  // namespace Tal
