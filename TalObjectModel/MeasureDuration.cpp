#include <Tal/MeasureDuration.h>
#include <TalLog/LogRecord.h>

namespace Tal {
namespace {

/// Boost.Timer's own text without the blank before it and the line feed behind it.
std::string ElapsedText(const boost::timer::cpu_times& elapsed) {
  const std::string text = boost::timer::format(elapsed, 6);
  const std::size_t begin = text.front() == ' ' ? 1 : 0;
  return text.substr(begin, text.size() - begin - (text.back() == '\n' ? 1 : 0));
}

}  // namespace

MeasureDuration::~MeasureDuration() {
  const CallSite site{__func__, __PRETTY_FUNCTION__, "Include/Tal/MeasureDuration", kDestructorLine};
  try {
    if (!m_threshold) {
      TAL_LOG_AT(Debug, site) << m_label << ElapsedText(m_timer.elapsed());
      return;
    }
    const boost::timer::cpu_times elapsed = m_timer.elapsed();
    if (elapsed.wall < m_threshold->count()) return;
    TAL_LOG_AT(Info, site) << (m_literal != nullptr ? m_literal : m_label.c_str()) << ElapsedText(elapsed);
  } catch (...) {  // without memory there is no text, and no record
  }
}

}  // namespace Tal
