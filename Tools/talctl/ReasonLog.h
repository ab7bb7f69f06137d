// The library's log records while a command runs.
#pragma once

#include <TalLog/Logger.h>
#include <log4cplus/appender.h>

#include <boost/optional.hpp>
#include <iosfwd>
#include <string>

namespace Talctl {

/// Listens to the default logger while it lives: keeps the reason of the last refusal, and shows records when asked to.
class ReasonLog {
 public:
  /// @param shown  records from this level go to @p err; nothing: none does.
  ReasonLog(boost::optional<Tal::LogLevel> shown, std::ostream& err);
  ~ReasonLog();
  ReasonLog(const ReasonLog&) = delete;
  ReasonLog& operator=(const ReasonLog&) = delete;

  /// While it lives, nothing is heard: for conversions that are only tried.
  class Pause {
   public:
    Pause();
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    int m_previousLevel;
  };

  /// Forgets what was heard; call it before each conversion.
  void Clear();

  /// The message of the first ERROR or WARN record since, passing over those that only tell of a failed look-up; empty
  /// when there was none.
  std::string FirstReason() const;

 private:
  log4cplus::SharedAppenderPtr m_appender;
  int m_previousLevel;
};

}  // namespace Talctl
