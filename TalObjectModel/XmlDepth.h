// How deep the elements of a document are nested.
#pragma once

#include <cstddef>

namespace Tal {

/// The deepest nesting of elements that rapidxml would go through in the zero-terminated @p text, without recursion and
/// without memory. Of text that it refuses, what it would go through before, or more.
std::size_t DepthOfXml(const char* text) noexcept;

}  // namespace Tal
