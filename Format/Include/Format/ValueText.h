// Values as people write them, by datapoint type.
#pragma once

#include <BasePlatform/AroValue.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include <Format/Converter.h>
#include <Format/DptText.h>

namespace Format {

using Json = nlohmann::ordered_json;  ///< members stay in order

/// Reads a value of type @p type, which a converter demands for @p dpt. Only what the type itself cannot hold is
/// refused; what a datapoint type takes of it is the library's to judge.
/// @return  false: the text is no such value, and @p value is as it was.
bool ParseValue(std::string_view text, const Dpt& dpt, AroValueType type, AROVALUE& value);

/// The first octet of a text that ParseValue() refuses which cannot belong to a value of the type; 0 when all could,
/// and only the whole is too large or too long.
std::size_t FaultIn(std::string_view text, const Dpt& dpt, AroValueType type);

/// What values of @p dpt look like on a converter: "a whole number from 0 to 65535".
std::string Expectation(const Dpt& dpt, Converter converter);

/// The text that ParseValue() takes back for the value's type.
std::string FormatValue(const AROVALUE& value);

/// The shortest text of a number.
std::string FormatNumber(double number);

/// The same on one line: in a text, control characters and a blank at the front are escapes (`\n` `\t` `\r` `\xHH`),
/// and a backslash is two.
std::string FormatOneLine(const AROVALUE& value);

/// The text of which FormatOneLine() makes @p text. A backslash with anything else behind it stands for itself.
std::string Unescaped(std::string_view text);

/// Numbers, booleans and text as their JSON kinds; "nan", "inf" and "-inf", times and dates as text; null for no value.
Json ToJson(const AROVALUE& value);

/// One line of @p json. Text that is not UTF-8 shows U+FFFD.
std::string Line(const Json& json);

}  // namespace Format
