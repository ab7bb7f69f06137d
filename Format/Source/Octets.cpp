#include <Format/Cursor.h>
#include <Format/Octets.h>

#include <algorithm>

namespace Format {
namespace {

int HexDigit(char c) {
  const char lower = ToLower(c);
  return IsDigit(c) ? c - '0' : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

bool ParseOctets(std::string_view text, std::vector<std::uint8_t>& octets, std::size_t* fault) {
  Cursor cursor(text);
  cursor.Word("0x");
  for (std::string_view rest = cursor.Rest(); !rest.empty();) {
    if (!octets.empty() && (rest.front() == ' ' || rest.front() == '\t')) {
      rest.remove_prefix(1);
      continue;
    }
    const int high = HexDigit(rest[0]);
    const int low = rest.size() > 1 ? HexDigit(rest[1]) : -1;
    if (high < 0 || low < 0) {
      if (fault != nullptr) *fault = text.size() - rest.size() + (high < 0 ? 0 : 1);
      return false;
    }
    octets.push_back(static_cast<std::uint8_t>(high << 4 | low));
    rest.remove_prefix(2);
  }
  if (octets.empty() && fault != nullptr) *fault = text.size();
  return !octets.empty();
}

std::string Hex(const KnxStack::BinaryData& octets) {
  std::string text = octets.ToString();
  text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
  return text;
}

}  // namespace Format
