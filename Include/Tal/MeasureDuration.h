// Timing a scope.
#pragma once

#include <Tal/Export.h>

#include <boost/chrono/duration.hpp>
#include <boost/optional.hpp>
#include <boost/timer/timer.hpp>
#include <string>

namespace Tal {

/// Logs how long it lived: the label, then wall, user, system and CPU seconds with six decimals and the CPU's share as
/// Boost.Timer prints them. Belongs to one scope on one thread.
///
///     Tal::MeasureDuration duration("Decoding a KNX value took ", boost::chrono::milliseconds(100));
class MeasureDuration {
 public:
  /// Starts the timer; the destructor writes one DEBUG record.
  /// @param label      opens the message; carries its own trailing blank.
  explicit MeasureDuration(std::string label) : m_label(std::move(label)) {}
  /// Starts the timer; the destructor writes one INFO record when at least @p threshold of wall time has passed, else
  /// nothing.
  MeasureDuration(std::string label, boost::chrono::nanoseconds threshold)
      : m_label(std::move(label)), m_threshold(threshold) {}

  static constexpr int kDestructorLine = __LINE__ + 1;  ///< for its log record
  TALOBJECTMODEL_EXPORT ~MeasureDuration();             ///< writes the record

  MeasureDuration(const MeasureDuration&) = delete;
  MeasureDuration& operator=(const MeasureDuration&) = delete;

 private:
  boost::timer::cpu_timer m_timer;
  std::string m_label;
  boost::optional<boost::chrono::nanoseconds> m_threshold;
};

}  // namespace Tal
