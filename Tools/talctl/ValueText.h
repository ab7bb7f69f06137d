// Values as people write them, by datapoint type.
#pragma once

#include <BasePlatform/AroValue.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "DptText.h"

namespace Talctl {

using Json = nlohmann::ordered_json;

/// Reads a value of the type that @p dpt demands of AroValueToGroupValue(). Only what the type itself cannot hold is
/// refused here; what a datapoint type takes of it is the library's to judge.
/// @return  false, with what was expected in @p error.
bool ParseValue(std::string_view text, const Dpt& dpt, AROVALUE& value, std::string& error);

/// The text that ParseValue() takes back for a datapoint type of the value's type.
std::string FormatValue(const AROVALUE& value);

/// Numbers, booleans and text as their JSON kinds; "nan", "inf" and "-inf", times and dates as text; null for no value.
Json ToJson(const AROVALUE& value);

/// What values of @p dpt look like: "a whole number from 0 to 65535".
std::string Expectation(const Dpt& dpt);

/// One line of @p json. Text that is not UTF-8 shows U+FFFD.
std::string Line(const Json& json);

}  // namespace Talctl
