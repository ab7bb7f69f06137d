// Lines of a stream, of bounded length.
#pragma once

#include <istream>
#include <string_view>
#include <vector>

namespace Talctl {

/// Reads line after line in constant memory. A byte-order mark at the start and the CR of a CR LF are dropped.
class LineReader {
 public:
  static constexpr std::size_t kMaxLength = 65536;

  explicit LineReader(std::istream& in) : m_in(in), m_buffer(kMaxLength + 1) {}

  /// The next line; false at the end, or when the stream cannot be read (Failed()).
  bool Next();

  std::string_view Text() const { return m_text; }
  /// From 1.
  unsigned long Number() const { return m_number; }
  /// The line was longer than kMaxLength bytes; Text() is its beginning, the rest is skipped.
  bool TooLong() const { return m_tooLong; }
  bool Failed() const { return m_in.bad(); }
  /// True when reading on may have to wait: the time to flush answers.
  bool Pauses() const { return m_in.rdbuf()->in_avail() <= 0; }

 private:
  std::istream& m_in;
  std::vector<char> m_buffer;
  std::string_view m_text;
  unsigned long m_number = 0;
  bool m_tooLong = false;
};

}  // namespace Talctl
