// Reading a text from front to back.
#pragma once

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

namespace Format {

/// 0 to 9, whatever the locale.
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
/// Of ASCII letters; others stay.
inline char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Compares without regard to the case of ASCII letters.
inline bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return ToLower(x) == ToLower(y); });
}

/// What is left of a text. Every operation takes what it is named after off the front and returns true, or returns
/// false and takes nothing.
class Cursor {
 public:
  /// All of @p text is left; it must outlive the cursor.
  explicit Cursor(std::string_view text) : m_rest(text) {}

  /// Nothing is left.
  bool AtEnd() const { return m_rest.empty(); }
  /// What is left.
  std::string_view Rest() const { return m_rest; }

  /// The text @p word, in any case.
  bool Word(std::string_view word) {
    if (!SameText(m_rest.substr(0, word.size()), word)) return false;
    m_rest.remove_prefix(word.size());
    return true;
  }

  /// A decimal number without sign that fits @p Unsigned.
  template <class Unsigned>
  bool Number(Unsigned& number) {
    static_assert(std::numeric_limits<Unsigned>::is_integer && !std::numeric_limits<Unsigned>::is_signed);
    if (m_rest.empty() || !IsDigit(m_rest.front())) return false;
    const auto [stop, error] = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), number);
    if (error != std::errc()) return false;
    m_rest.remove_prefix(static_cast<std::size_t>(stop - m_rest.data()));
    return true;
  }

 private:
  std::string_view m_rest;
};

}  // namespace Format
