// Showing what a user typed.
#pragma once

#include <BasePlatform/AroValue.h>

#include <string>
#include <string_view>

namespace Format {

/// @p text as valid UTF-8 on one line, control characters as escapes.
inline std::string OneLine(std::string_view text) {
  AROVALUE shown;
  shown.avt = avtString;
  shown.text = AROVALUE::EnsureUTF8(std::string(text));
  return shown.ToString();
}

/// The same in single quotes; a long text is cut.
inline std::string Quoted(std::string_view text) {
  std::size_t shown = 80;
  if (text.size() <= shown) return "'" + OneLine(text) + "'";
  while (shown > 0 && (text[shown] & 0xC0) == 0x80) --shown;  // between characters
  return "'" + OneLine(text.substr(0, shown)) + "...'";
}

}  // namespace Format
