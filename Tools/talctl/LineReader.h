// Lines of a stream, of bounded length.
#pragma once

#include <functional>
#include <istream>
#include <string_view>
#include <vector>

namespace Talctl {

/// Reads line after line in constant memory. A byte-order mark at the start and the CR of a CR LF are dropped.
class LineReader {
 public:
  static constexpr std::size_t kMaxLength = 65536;

  /// @param beforeWaiting  called before reading on may have to wait: the time to flush answers. False: stop here.
  LineReader(std::istream& in, std::function<bool()> beforeWaiting)
      : m_in(in), m_beforeWaiting(std::move(beforeWaiting)), m_buffer(kMaxLength + 1) {}

  /// The next line; false at the end, or when the stream cannot be read (Failed()).
  bool Next();

  std::string_view Text() const { return m_text; }
  /// From 1.
  unsigned long Number() const { return m_number; }
  /// The line was longer than kMaxLength bytes; Text() is its beginning, the rest is skipped.
  bool TooLong() const { return m_tooLong; }
  bool Failed() const { return m_in.bad(); }

 private:
  bool Fill();

  std::istream& m_in;
  std::function<bool()> m_beforeWaiting;
  std::vector<char> m_buffer;
  std::size_t m_begin = 0;  ///< what was read and not yet given out
  std::size_t m_end = 0;
  std::string_view m_text;
  unsigned long m_number = 0;
  bool m_tooLong = false;
  bool m_isStopped = false;
};

}  // namespace Talctl
