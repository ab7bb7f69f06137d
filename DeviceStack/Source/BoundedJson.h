// JSON from outside.
#pragma once

#include <Format/ValueText.h>

#include <string>
#include <string_view>

namespace DeviceStack {

/// Parses @p text, which may be at most @p maxSize octets long and nested @p maxDepth levels deep, and in which no
/// object may have a key twice, or more than 64 of them. @throws std::runtime_error with one line that says what is
/// wrong, and where.
Format::Json ParseBoundedJson(std::string_view text, std::size_t maxSize, int maxDepth);

}  // namespace DeviceStack
