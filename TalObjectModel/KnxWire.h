// Octet layouts of the composite datapoint types: no value types, no checks, no log. The layouts that a group value
// has setters for (numbers, date, time of day, text) live with those.
#pragma once

#include <KnxStackApi/GroupValue.h>

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

/// A group value of these octets, 8 bits each.
template <std::size_t Count>
KnxStack::GroupValue MakeGroupValue(const std::array<std::uint8_t, Count>& octets) {
  return {KnxStack::BinaryData(octets.data(), Count), static_cast<unsigned>(8 * Count)};
}

constexpr std::size_t kDateOctets = 3;
constexpr std::size_t kTimeOfDayOctets = 3;
constexpr std::size_t kDateTimeOctetsRead = 6;      // flags and clock quality are not looked at
constexpr std::uint8_t kLastTwoDigitYear = 99;      // of a date
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

/// The fields of a date with time as they stand on the wire, masked to their bits, not judged.
struct DateTime {
  std::uint16_t year;
  std::uint8_t month, day, hour, minute, second;
};

/// @throws KnxStack::GroupValueException for fewer than six octets.
inline DateTime UnpackDateTime(const KnxStack::BinaryData& octets) {
  const auto field = [&](std::size_t index, unsigned mask) {
    return static_cast<std::uint8_t>(octets.GetUInt8Value(index) & mask);
  };
  return {static_cast<std::uint16_t>(1900 + octets.GetUInt8Value(0)),
          field(1, 0x0F),
          field(2, 0x1F),
          field(3, 0x1F),
          field(4, 0x3F),
          field(5, 0x3F)};
}

}  // namespace KnxWire
}  // namespace Tal
