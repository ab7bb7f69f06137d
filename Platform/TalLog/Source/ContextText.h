// What the parts of this library share about a record's prefix.
#pragma once

#include <string>

namespace Tal {

/// What ends the prefix of a record.
constexpr char kPrefixEnd[] = " - ";

/// @p text with every " - " shown as "-" and control characters as blanks.
std::string WithoutPrefixEnd(std::string text);

/// How many LoggingRecursionScope objects are open on this thread.
unsigned RecursionDepth();

}  // namespace Tal
