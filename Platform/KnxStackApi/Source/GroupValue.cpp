#include <KnxStackApi/Float16.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/GroupValueException.h>

#include <algorithm>
#include <boost/date_time/gregorian/greg_calendar.hpp>

namespace KnxStack {
namespace {

constexpr std::size_t kTextOctets = 14;
constexpr unsigned kFirstYear = 1990;  // of the two-digit years: 90..99 are 19xx, 0..89 are 20xx
constexpr unsigned kLastYear = 2089;

bool IsDate(unsigned day, unsigned month, unsigned year) {
  return year >= kFirstYear && year <= kLastYear && month >= 1 && month <= 12 && day >= 1 &&
         day <= boost::gregorian::gregorian_calendar::end_of_month_day(static_cast<unsigned short>(year),
                                                                       static_cast<unsigned short>(month));
}

}  // namespace

void GroupValue::SetAsFloat16(double value) {
  std::uint16_t word;
  if (!EncodeFloat16(value, word)) throw GroupValueException("Number is outside the range of a two-octet float");
  SetAsUnsigned16(word);
}

void GroupValue::SetAsDate(unsigned day, unsigned month, unsigned year) {
  if (!IsDate(day, month, year)) {
    throw GroupValueException("Date is outside 1990-01-01 to 2089-12-31: " + std::to_string(year) + "-" +
                              std::to_string(month) + "-" + std::to_string(day));
  }
  Set(24, Octet(day), Octet(month), Octet(year % 100));
}

void GroupValue::SetAsTimeOfDay(unsigned hour, unsigned minute, unsigned second, unsigned weekday) {
  if (hour >= 24 || minute >= 60 || second >= 60 || weekday > 7) {
    throw GroupValueException("Time of day is out of range: " + std::to_string(hour) + ":" + std::to_string(minute) +
                              ":" + std::to_string(second) + " weekday " + std::to_string(weekday));
  }
  Set(24, Octet(weekday << 5 | hour), Octet(minute), Octet(second));
}

void GroupValue::SetAsString14(std::string_view latin1) {
  std::uint8_t octets[kTextOctets] = {};  // the text may be this object's own octets
  const std::size_t length = std::min(latin1.size(), kTextOctets);
  if (length > 0) std::memcpy(octets, latin1.data(), length);
  std::memcpy(m_octets.Renew<kTextOctets>(), octets, kTextOctets);
  m_definedSize = 8 * kTextOctets;
}

double GroupValue::GetAsFloat16() const { return DecodeFloat16(GetAsUnsigned16()); }

Date GroupValue::GetAsDate() const {
  const std::uint8_t day = m_octets.GetUInt8Value(0);
  const std::uint8_t month = m_octets.GetUInt8Value(1);
  const unsigned year = m_octets.GetUInt8Value(2) & 0x7Fu;
  const bool previousCentury = year >= kFirstYear % 100 && year <= 99;
  return {Octet(day & 0x1Fu), Octet(month & 0x0Fu), static_cast<std::uint16_t>(year + (previousCentury ? 1900 : 2000))};
}

DayTime GroupValue::GetAsTimeOfDay() const {
  const std::uint8_t dayHour = m_octets.GetUInt8Value(0);
  const std::uint8_t minute = m_octets.GetUInt8Value(1);
  const std::uint8_t second = m_octets.GetUInt8Value(2);
  return {Octet(dayHour & 0x1Fu), Octet(minute & 0x3Fu), Octet(second & 0x3Fu), Octet(dayHour >> 5u)};
}

std::string GroupValue::GetAsString14() const {
  const std::size_t room = std::min(m_octets.size(), kTextOctets);
  return std::string(reinterpret_cast<const char*>(m_octets.data()),
                     ::strnlen(reinterpret_cast<const char*>(m_octets.data()), room));
}

}  // namespace KnxStack
