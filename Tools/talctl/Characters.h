// Characters of UTF-8, for what counts, compares or places them.
#pragma once

#include <string>
#include <string_view>

namespace Talctl {

/// The characters of @p text. An octet that is not UTF-8 counts as one.
std::u32string CharactersOf(std::string_view text);

/// The columns that a character takes on a terminal: 0 for marks that combine, 2 for wide ones such as CJK and emoji.
unsigned WidthOf(char32_t character);
std::size_t WidthOf(std::string_view text);

}  // namespace Talctl
