// Timing a scope whose label is a literal.
#pragma once

#include <boost/chrono/duration.hpp>
#include <boost/timer/timer.hpp>

namespace Tal {

/// MeasureDuration with a threshold, but for a label that is not copied and takes no memory; the same records.
class TimedScope {
 public:
  /// @param label  must outlive the scope.
  TimedScope(const char* label, boost::chrono::nanoseconds threshold) : m_label(label), m_threshold(threshold) {}
  ~TimedScope();
  TimedScope(const TimedScope&) = delete;
  TimedScope& operator=(const TimedScope&) = delete;

 private:
  boost::timer::cpu_timer m_timer;
  const char* const m_label;
  const boost::chrono::nanoseconds m_threshold;
};

}  // namespace Tal
