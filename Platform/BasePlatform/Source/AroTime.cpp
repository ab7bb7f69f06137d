#include <BasePlatform/AroTime.h>

#include <boost/date_time/gregorian/greg_calendar.hpp>
#include <limits>

bool AROTIME::IsValidDate(unsigned year, unsigned month, unsigned day) noexcept {
  return year >= 1400 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
         day <= boost::gregorian::gregorian_calendar::end_of_month_day(static_cast<unsigned short>(year),
                                                                       static_cast<unsigned short>(month));
}

void AROTIME::SetDate(std::uint16_t newYear, std::uint8_t newMonth, std::uint8_t newDay) noexcept {
  year = newYear;
  month = newMonth;
  day = newDay;
}

void AROTIME::SetDateTime(std::uint16_t newYear, std::uint8_t newMonth, std::uint8_t newDay, std::uint8_t newHour,
                          std::uint8_t newMinute, std::uint8_t newSecond) noexcept {
  SetDate(newYear, newMonth, newDay);
  hour = newHour;
  minute = newMinute;
  second = newSecond;
}

AROTIME::operator std::tm() const noexcept {
  std::tm fields = {};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = -1;
  return fields;
}

AROTIME& AROTIME::operator=(std::int64_t secondsSinceEpoch) noexcept {
  using Limits = std::numeric_limits<std::time_t>;
  const bool fits = secondsSinceEpoch >= Limits::min() && secondsSinceEpoch <= Limits::max();
  const std::time_t moment = fits ? static_cast<std::time_t>(secondsSinceEpoch) : 0;
  std::tm fields = {};
  if (!fits || ::localtime_r(&moment, &fields) == nullptr || fields.tm_year < -1900 || fields.tm_year > 65535 - 1900) {
    Clear();
    return *this;
  }
  const auto narrow = [](int field) { return static_cast<std::uint8_t>(field); };
  SetDateTime(static_cast<std::uint16_t>(fields.tm_year + 1900), narrow(fields.tm_mon + 1), narrow(fields.tm_mday),
              narrow(fields.tm_hour), narrow(fields.tm_min), narrow(fields.tm_sec));
  weekDays = static_cast<std::uint16_t>(AroWeekDays::Monday << ((fields.tm_wday + 6) % 7));
  return *this;
}

std::string AROTIME::ToString() const {
  std::string text;
  for (const unsigned field :
       {unsigned{year}, unsigned{month}, unsigned{day}, unsigned{hour}, unsigned{minute}, unsigned{second},
        unsigned{extraByte}, unsigned{weekDays}, unsigned{extraWord}, unsigned{firstFlag}, unsigned{secondFlag}}) {
    if (!text.empty()) text += ' ';
    text += std::to_string(field);
  }
  return text;
}
