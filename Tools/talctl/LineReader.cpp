#include "LineReader.h"

#include <limits>

namespace Talctl {

bool LineReader::Next() {
  m_in.getline(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
  auto length = static_cast<std::size_t>(m_in.gcount());
  if (m_in.bad() || (length == 0 && m_in.eof())) return false;
  m_tooLong = false;
  if (m_in.fail()) {  // no line end within the buffer
    m_tooLong = true;
    m_in.clear();
    m_in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  } else if (!m_in.eof()) {
    --length;  // the line end is counted
  }
  m_text = std::string_view(m_buffer.data(), length);
  if (++m_number == 1 && m_text.substr(0, 3) == "\xEF\xBB\xBF") m_text.remove_prefix(3);
  if (!m_text.empty() && m_text.back() == '\r') m_text.remove_suffix(1);
  return true;
}

}  // namespace Talctl
