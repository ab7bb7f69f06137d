// Showing what a user typed.
#pragma once

#include <BasePlatform/AroValue.h>

#include <string>
#include <string_view>

namespace Talctl {

/// @p text in single quotes on one line: control characters as escapes, a long text cut.
inline std::string Quoted(std::string_view text) {
  constexpr std::size_t kShown = 80;
  AROVALUE shown;
  shown.avt = avtString;
  shown.text = text.substr(0, kShown);
  return "'" + shown.ToString() + (text.size() > kShown ? "...'" : "'");
}

}  // namespace Talctl
