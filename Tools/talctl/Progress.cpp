#include "Progress.h"

namespace Talctl {

Progress::Progress(std::ostream& err, bool isWanted) : m_err(err), m_inner(err.rdbuf()), m_isWanted(isWanted) {
  if (m_isWanted) m_err.rdbuf(this);
}

Progress::~Progress() {
  if (!m_isWanted) return;
  Erase();
  m_err.rdbuf(m_inner);
}

void Progress::Tell(unsigned long lines, unsigned long refused) {
  if (!m_isWanted) return;
  const Clock::time_point now = Clock::now();
  if (now < m_next) return;
  m_next = now + std::chrono::milliseconds(200);
  const double seconds = std::chrono::duration<double>(now - m_start).count();
  const auto rate = static_cast<unsigned long>(static_cast<double>(lines) / seconds);
  const std::string line =
      std::to_string(lines) + " lines, " + std::to_string(refused) + " refused, " + std::to_string(rate) + " lines/s";
  Erase();
  m_inner->sputn(line.data(), static_cast<std::streamsize>(line.size()));
  m_inner->pubsync();
  m_width = line.size();
}

void Progress::Erase() {
  if (m_width == 0) return;
  // Two more columns, as a terminal shows ^C there.
  const std::string blank = '\r' + std::string(m_width + 2, ' ') + '\r';
  m_inner->sputn(blank.data(), static_cast<std::streamsize>(blank.size()));
  m_inner->pubsync();
  m_width = 0;
}

Progress::int_type Progress::overflow(int_type character) {
  Erase();
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  return m_inner->sputc(traits_type::to_char_type(character));
}

std::streamsize Progress::xsputn(const char* text, std::streamsize size) {
  Erase();
  return m_inner->sputn(text, size);
}

}  // namespace Talctl
