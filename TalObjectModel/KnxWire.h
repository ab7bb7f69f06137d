// Octet layouts of the composite datapoint types: no value types, no checks, no log. The layouts that a group value
// has setters for (numbers, date, time of day, text) live with those.
#pragma once

#include <BasePlatform/AroTime.h>
#include <KnxHelper/Latin1.h>
#include <KnxStackApi/GroupValue.h>

#include <boost/date_time/gregorian/greg_calendar.hpp>
#include <boost/date_time/posix_time/conversion.hpp>
#include <cstdint>
#include <string>

namespace Tal::KnxWire {

/// Three octets, most significant first; the upper eight bits are dropped.
inline void WriteUnsigned24(KnxStack::GroupValue& out, std::uint32_t number) noexcept {
  out.SetOctets(number >> 16, number >> 8, number);
}

constexpr std::size_t kDateOctets = 3;
constexpr std::size_t kTimeOfDayOctets = 3;
constexpr std::size_t kDateTimeOctetsRead = 6;      // flags and clock quality are not looked at
constexpr std::uint8_t kLastTwoDigitYear = 99;      // of a date
constexpr std::uint8_t kWorkingDayNotValid = 0x20;  // octet 6 of a date with time
constexpr std::uint8_t kNoDayOfWeek = 0x04;

/// Text of 14 characters (16.001) from UTF-8: characters beyond ISO 8859-1 as "_", longer text cut.
/// @return  false, with nothing written: the text is not UTF-8.
inline bool WriteText(KnxStack::GroupValue& out, const std::string& utf8) {
  if (IsAscii(utf8)) {  // most texts: the same in both
    out.SetAsString14(utf8);
    return true;
  }
  const boost::optional<UTF8String> text = UTF8String::Create(utf8);
  if (text) out.SetAsString14(getLatin1FromUTF8Lossy(*text).GetBytes());
  return text.has_value();
}

/// Such a text in UTF-8.
inline std::string ReadText(const KnxStack::GroupValue& groupValue) {
  std::string latin1 = groupValue.GetAsString14();
  if (IsAscii(latin1)) return latin1;
  return getUTF8FromLatin1(KnxStyleString(std::move(latin1))).GetBytes();
}

/// The fields of a date with time.
struct DateTime {
  std::uint16_t year;
  std::uint8_t month, day, hour, minute, second;
};

/// True for a day of the calendar and a time of day.
inline bool IsProper(const DateTime& moment) noexcept {
  return AROTIME::IsValidDate(moment.year, moment.month, moment.day) &&
         AROTIME::IsValidTime(moment.hour, moment.minute, moment.second);
}

/// Date with time (19.001): year - 1900, month, day, the calendar's weekday and hour, minute, second, flags, clock
/// quality. @param moment  a day of the calendar and a time of day.
inline void WriteDateTime(KnxStack::GroupValue& out, const DateTime& moment) noexcept {
  using boost::gregorian::gregorian_calendar;
  const unsigned calendarDay = gregorian_calendar::day_of_week({moment.year, moment.month, moment.day});  // Sunday is 0
  const unsigned weekday = calendarDay == 0 ? 7 : calendarDay;
  out.SetOctets(moment.year - 1900, moment.month, moment.day, weekday << 5 | moment.hour, moment.minute, moment.second,
                kWorkingDayNotValid, 0);
}

/// The fields of a proper time point; fractions of a second are dropped.
inline DateTime FieldsOf(const boost::posix_time::ptime& moment) {
  const auto date = moment.date().year_month_day();
  const boost::posix_time::time_duration clock = moment.time_of_day();
  const auto octet = [](auto field) { return static_cast<std::uint8_t>(field); };
  return {date.year,
          octet(date.month.as_number()),
          octet(date.day.as_number()),
          octet(clock.hours()),
          octet(clock.minutes()),
          octet(clock.seconds())};
}

/// The same. not-a-date-time gives 1970-01-01 00:00:00 without a weekday.
inline void WriteDateTime(KnxStack::GroupValue& out, const boost::posix_time::ptime& moment) {
  if (moment.is_special()) return out.SetOctets(70, 1, 1, 0, 0, 0, kWorkingDayNotValid | kNoDayOfWeek, 0);
  WriteDateTime(out, FieldsOf(moment));
}

/// The same. A time of day past 24 hours rolls over.
/// @throws std::out_of_range  for a date outside the calendar, also when it gets there by rolling over.
inline void WriteDateTime(KnxStack::GroupValue& out, const AROTIME& time) {
  const DateTime moment{time.year, time.month, time.day, time.hour, time.minute, time.second};
  if (IsProper(moment)) return WriteDateTime(out, moment);
  WriteDateTime(out, boost::posix_time::ptime_from_tm(time));
}

/// The fields as they stand on the wire, masked to their bits, not judged.
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

}  // namespace Tal::KnxWire
