// How deep the elements of a document are nested.
#pragma once

#include <cstddef>

namespace Tal {

/// The deepest nesting of elements in the zero-terminated @p text, without recursion and memory: what a recursive
/// parser would have to go through. Comments, CDATA sections, processing instructions and declarations count nothing.
/// Of malformed text the result is at least the depth that a parser would reach.
std::size_t DepthOfXml(const char* text) noexcept;

}  // namespace Tal
