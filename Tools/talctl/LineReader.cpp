#include "LineReader.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Talctl {

/// Reads what there is, and waits only when there is nothing; false at the end of the stream, or when told to stop.
bool LineReader::Fill() {
  if (m_begin > 0) {
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
  }
  m_isStopped = !m_beforeWaiting();
  if (m_isStopped) return false;
  if (m_in.peek() == std::istream::traits_type::eof()) return false;
  const auto available = static_cast<std::size_t>(std::max<std::streamsize>(m_in.rdbuf()->in_avail(), 1));
  const std::size_t room = std::min(m_buffer.size() - m_end, available);
  m_end += static_cast<std::size_t>(m_in.rdbuf()->sgetn(m_buffer.data() + m_end, static_cast<std::streamsize>(room)));
  return true;
}

bool LineReader::Next() {
  m_tooLong = false;
  std::size_t searched = 0;
  for (;;) {
    const char* const from = m_buffer.data() + m_begin;
    const auto* const stop = static_cast<const char*>(std::memchr(from + searched, '\n', m_end - m_begin - searched));
    if (stop != nullptr) {
      m_text = std::string_view(from, static_cast<std::size_t>(stop - from));
      m_begin += m_text.size() + 1;
      break;
    }
    searched = m_end - m_begin;
    if (searched == m_buffer.size()) {  // what is skipped from here on is overwritten: keep the beginning
      m_tooLong = true;
      m_text = std::string_view(from, kMaxLength);
      m_in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
      m_begin = m_end;
      break;
    }
    if (Fill()) continue;
    if (m_in.bad() || m_isStopped || m_begin == m_end) return false;
    m_text = std::string_view(m_buffer.data() + m_begin, m_end - m_begin);  // without a line end
    m_begin = m_end;
    break;
  }
  if (++m_number == 1 && m_text.substr(0, 3) == "\xEF\xBB\xBF") m_text.remove_prefix(3);
  if (!m_text.empty() && m_text.back() == '\r') m_text.remove_suffix(1);
  return true;
}

}  // namespace Talctl
