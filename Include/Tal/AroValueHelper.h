// Building an AROVALUE from a plain value.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxHelper/TimeOfDay.h>
#include <Tal/Export.h>

#include <boost/date_time/posix_time/ptime.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

namespace Tal {

/// The types that ToAroValue<T>() takes.
template <class T>
constexpr bool kIsAroPayload =
    std::is_same_v<T, int> || std::is_same_v<T, unsigned int> || std::is_same_v<T, double> ||
    std::is_same_v<T, short> || std::is_same_v<T, unsigned short> || std::is_same_v<T, unsigned char> ||
    std::is_same_v<T, bool> || std::is_same_v<T, float> || std::is_same_v<T, std::string>;

/// A value that carries @p value under the type of T: bool avtBool; double, float avtFloat; short, int avtInteger;
/// unsigned char avtByte; unsigned short avtWord; unsigned int avtDWord; std::string avtString (made valid UTF-8).
///
/// @param value         the payload.
/// @param expectedType  the type that the datapoint type in hand demands. A type that differs from T's means that the
///                      table of types names the wrong one: the assertion "result.avt == expectedType" ends the
///                      process.
///
///     AROVALUE temperature = Tal::ToAroValue(21.5, avtFloat);
template <class T, class = std::enable_if_t<kIsAroPayload<T>>>
TALOBJECTMODEL_EXPORT AROVALUE ToAroValue(const T& value, AroValueType expectedType);

/// @cond  the same, for the linker
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<int>(const int&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<unsigned int>(const unsigned int&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<double>(const double&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<short>(const short&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<unsigned short>(const unsigned short&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<unsigned char>(const unsigned char&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<bool>(const bool&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<float>(const float&, AroValueType);
extern template TALOBJECTMODEL_EXPORT AROVALUE ToAroValue<std::string>(const std::string&, AroValueType);
/// @endcond

/// Text that is known to be UTF-8, as avtString. Chosen for text unless the template is named explicitly
/// (ToAroValue<std::string>), which repairs broken text instead. Assertions: the text is valid UTF-8, then as above.
TALOBJECTMODEL_EXPORT AROVALUE ToAroValue(const std::string& value, AroValueType expectedType);
/// The same for the text that a view shows.
inline AROVALUE ToAroValue(std::string_view value, AroValueType expectedType) {
  return ToAroValue(std::string(value), expectedType);
}
/// The same for zero-terminated text, which must not be null.
inline AROVALUE ToAroValue(const char* value, AroValueType expectedType) {
  return ToAroValue(std::string(value), expectedType);
}
AROVALUE ToAroValue(std::nullptr_t value, AroValueType expectedType) = delete;

/// A time of day as avtDayTime: its fields on 2000-01-01 with the weekday's bit, extraWord 1.
/// Assertion: "expectedType == avtDayTime".
TALOBJECTMODEL_EXPORT AROVALUE ToAroValue(const TalApp::TimeOfDay& value, AroValueType expectedType);

/// A time point, taken as local time, under the type @p expectedType; fractions of a second are dropped. A local time
/// that a change of clocks skips becomes the one that mktime() makes of it.
/// @return  a value of type avtEmpty for a time later than 2038-01-19 03:14:07 and for not-a-date-time and infinities.
TALOBJECTMODEL_EXPORT AROVALUE ToAroValue(const boost::posix_time::ptime& value, AroValueType expectedType);

}  // namespace Tal
