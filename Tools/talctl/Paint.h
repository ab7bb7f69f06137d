// Colours of a terminal.
#pragma once

#include <string>
#include <string_view>

namespace Talctl {

enum class Colour { Error, Caret, Heading, Good, Bad };

/// Paints text where colours are wanted, and leaves it as it is elsewhere.
class Paint {
 public:
  explicit Paint(bool isWanted = false) : m_isWanted(isWanted) {}

  std::string operator()(Colour colour, std::string_view text) const {
    constexpr const char* kCodes[] = {"1;31", "1;32", "1", "32", "31"};  // by Colour
    if (!m_isWanted || text.empty()) return std::string(text);
    return std::string("\x1B[").append(kCodes[static_cast<int>(colour)]).append("m").append(text).append("\x1B[0m");
  }

 private:
  bool m_isWanted;
};

}  // namespace Talctl
