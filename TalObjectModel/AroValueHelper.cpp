#include <KnxHelper/Utf8String.h>
#include <Tal/AroValueHelper.h>
#include <Tal/TimeOfDay.h>
#include <TalLog/Assertion.h>
#include <utf8.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <ctime>
#include <tuple>

#include "AroTimeFields.h"

namespace Tal {
namespace {

// Where the reports of failed assertions point to.
constexpr char kFunction[] = "ToAroValue";
constexpr char kSource[] = "Include/Tal/AroValueHelper";
constexpr char kTypeLine[] = "32";
constexpr char kUtf8Line[] = "38";
constexpr char kDayTimeLine[] = "62";

void Store(AROVALUE& result, bool value) {
  result.avt = avtBool;
  result.SetBool(value);
}
void Store(AROVALUE& result, double value) {
  result.avt = avtFloat;
  result.SetFloat(value);
}
void Store(AROVALUE& result, float value) { Store(result, double{value}); }
void Store(AROVALUE& result, int value) {
  result.avt = avtInteger;
  result.SetInteger(value);
}
void Store(AROVALUE& result, short value) { Store(result, int{value}); }
void Store(AROVALUE& result, unsigned char value) {
  result.avt = avtByte;
  result.SetByte(value);
}
void Store(AROVALUE& result, unsigned short value) {
  result.avt = avtWord;
  result.SetWord(value);
}
void Store(AROVALUE& result, unsigned int value) {
  result.avt = avtDWord;
  result.SetDWord(value);
}
void Store(AROVALUE& result, const std::string& value) {
  result.avt = avtString;
  result.text = AROVALUE::EnsureUTF8(value);
}

/// Not in the template, whose statics would be visible outside the library.
void RequireType(const AROVALUE& result, AroValueType expectedType) {
  TAL_ASSERT2_AT(result.avt == expectedType, kFunction, kSource, kTypeLine);
}

/// Sets the fields of @p time to what the machine's clock shows at the local time @p moment.
void SetLocalFields(AROTIME& time, const KnxWire::DateTime& moment) {
  std::tm fields = {};
  fields.tm_year = moment.year - 1900;
  fields.tm_mon = moment.month - 1;
  fields.tm_mday = moment.day;
  fields.tm_hour = moment.hour;
  fields.tm_min = moment.minute;
  fields.tm_sec = moment.second;
  fields.tm_isdst = -1;
  fields.tm_wday = -1;  // stays so when mktime() fails; its result -1 is also a moment of 1969
  const std::time_t seconds = std::mktime(&fields);
  if (fields.tm_wday >= 0) {
    time = std::int64_t{seconds};
  } else {  // beyond this machine's time_t
    using namespace boost::posix_time;
    SetCalendarFields(time, ptime(boost::gregorian::date(moment.year, moment.month, moment.day),
                                  time_duration(moment.hour, moment.minute, moment.second)));
  }
}

/// Later than 2038-01-19 03:14:07.
bool IsTooLate(const KnxWire::DateTime& moment) noexcept {
  constexpr auto kFields = [](const KnxWire::DateTime& m) {
    return std::make_tuple(m.year, m.month, m.day, m.hour, m.minute, m.second);
  };
  return moment.year >= 2038 && kFields(moment) > kFields({2038, 1, 19, 3, 14, 7});
}

}  // namespace

template <class T, class>
AROVALUE ToAroValue(const T& value, AroValueType expectedType) {
  AROVALUE result;
  Store(result, value);
  RequireType(result, expectedType);
  return result;
}

template AROVALUE ToAroValue<int>(const int&, AroValueType);
template AROVALUE ToAroValue<unsigned int>(const unsigned int&, AroValueType);
template AROVALUE ToAroValue<double>(const double&, AroValueType);
template AROVALUE ToAroValue<short>(const short&, AroValueType);
template AROVALUE ToAroValue<unsigned short>(const unsigned short&, AroValueType);
template AROVALUE ToAroValue<unsigned char>(const unsigned char&, AroValueType);
template AROVALUE ToAroValue<bool>(const bool&, AroValueType);
template AROVALUE ToAroValue<float>(const float&, AroValueType);
template AROVALUE ToAroValue<std::string>(const std::string&, AroValueType);

AROVALUE ToAroValue(const std::string& value, AroValueType expectedType) {
  if (!IsAscii(value)) {
    TAL_ASSERT2_AT(utf8::is_valid(value.begin(), value.end()), kFunction, kSource, kUtf8Line);
  }
  return ToAroValue<std::string>(value, expectedType);
}

AROVALUE ToAroValue(const TalApp::TimeOfDay& value, AroValueType expectedType) {
  TAL_ASSERT2_AT(expectedType == avtDayTime, kFunction, kSource, kDayTimeLine);
  AROVALUE result;
  result.avt = avtDayTime;
  SetTimeOfDay(result.time, value);
  return result;
}

AROVALUE LocalValue(const KnxWire::DateTime& moment, AroValueType expectedType) {
  AROVALUE result;
  if (IsTooLate(moment)) return result;
  result.avt = expectedType;
  SetLocalFields(result.time, moment);
  return result;
}

AROVALUE ToAroValue(const boost::posix_time::ptime& value, AroValueType expectedType) {
  if (value.is_special()) return AROVALUE();
  // Fractions of a second count towards "later", and are dropped then.
  static const boost::posix_time::ptime kLast(boost::gregorian::date(2038, 1, 19),
                                              boost::posix_time::time_duration(3, 14, 7));
  return value > kLast ? AROVALUE() : LocalValue(KnxWire::FieldsOf(value), expectedType);
}

}  // namespace Tal
