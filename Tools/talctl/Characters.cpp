#include "Characters.h"

#include <algorithm>
#include <iterator>

namespace Talctl {
namespace {

struct WidthRow {
  char32_t first;
  char32_t last;
  unsigned width;
};
constexpr WidthRow kWidths[] = {
    {0x0300, 0x036F, 0}, {0x200B, 0x200F, 0},   {0x20D0, 0x20FF, 0},   {0xFE00, 0xFE0F, 0},   {0x1100, 0x115F, 2},
    {0x2E80, 0xA4CF, 2}, {0xAC00, 0xD7A3, 2},   {0xF900, 0xFAFF, 2},   {0xFE30, 0xFE6F, 2},   {0xFF00, 0xFF60, 2},
    {0xFFE0, 0xFFE6, 2}, {0x1F300, 0x1F64F, 2}, {0x1F900, 0x1F9FF, 2}, {0x20000, 0x3FFFD, 2},
};

/// Octets that follow the first one of a character, which says how many; 0 also for what begins none.
std::size_t FollowersOf(unsigned char lead) {
  return lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
}

}  // namespace

std::u32string CharactersOf(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t followers = FollowersOf(lead);
    const std::string_view rest = text.substr(1, followers);
    const bool isGood =
        rest.size() == followers && std::all_of(rest.begin(), rest.end(), [](char c) { return (c & 0xC0) == 0x80; });
    char32_t character = followers == 0 || !isGood ? lead : lead & (0x3Fu >> followers);
    if (isGood) {
      for (const char c : rest) character = character << 6 | (static_cast<unsigned char>(c) & 0x3Fu);
    }
    characters += character;
    text.remove_prefix(isGood ? followers + 1 : 1);
  }
  return characters;
}

unsigned WidthOf(char32_t character) {
  const auto* const row = std::find_if(std::begin(kWidths), std::end(kWidths),
                                       [&](const WidthRow& r) { return character >= r.first && character <= r.last; });
  return row == std::end(kWidths) ? 1 : row->width;
}

std::size_t WidthOf(std::string_view text) {
  std::size_t width = 0;
  for (const char32_t character : CharactersOf(text)) width += WidthOf(character);
  return width;
}

}  // namespace Talctl
