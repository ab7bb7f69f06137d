#include <Tal/MeasureDuration.h>
#include <TalLog/LogRecord.h>

#include "TimedScope.h"

namespace Tal {
namespace {

/// Boost.Timer's own text without the blank before it and the line feed behind it.
std::string ElapsedText(const boost::timer::cpu_times& elapsed) {
  const std::string text = boost::timer::format(elapsed, 6);
  const std::size_t begin = text.front() == ' ' ? 1 : 0;
  return text.substr(begin, text.size() - begin - (text.back() == '\n' ? 1 : 0));
}

/// Where all records of this file come from.
constexpr CallSite kSite{"~MeasureDuration", "Tal::MeasureDuration::~MeasureDuration()", "Include/Tal/MeasureDuration",
                         MeasureDuration::kDestructorLine};

template <class Label>
void ReportIfSlow(const Label& label, const boost::timer::cpu_times& elapsed, boost::chrono::nanoseconds threshold) {
  if (elapsed.wall < threshold.count()) return;
  TAL_LOG_AT(Info, kSite) << label << ElapsedText(elapsed);
}

}  // namespace

// In both, want of memory means that there is no text, and no record.

MeasureDuration::~MeasureDuration() {
  try {
    if (m_threshold) {
      ReportIfSlow(m_label, m_timer.elapsed(), *m_threshold);
    } else {
      TAL_LOG_AT(Debug, kSite) << m_label << ElapsedText(m_timer.elapsed());
    }
  } catch (...) {
  }
}

TimedScope::~TimedScope() {
  try {
    ReportIfSlow(m_label, m_timer.elapsed(), m_threshold);
  } catch (...) {
  }
}

}  // namespace Tal
