#include "ReasonLog.h"

#include <TalLog/LogEntryFormatter.h>
#include <log4cplus/loglevel.h>
#include <log4cplus/spi/loggingevent.h>

#include <algorithm>
#include <ostream>

#include <Format/Quoted.h>

namespace Talctl {
namespace {

using Format::OneLine;

bool IsReason(const log4cplus::spi::InternalLoggingEvent& event, const std::string& message) {
  const bool level =
      event.getLogLevel() == log4cplus::ERROR_LOG_LEVEL || event.getLogLevel() == log4cplus::WARN_LOG_LEVEL;
  return level && message.rfind("No Entry found", 0) != 0 && message.rfind("Assume validity", 0) != 0;
}

class Listener final : public log4cplus::Appender {
 public:
  Listener(boost::optional<Tal::LogLevel> shown, std::ostream& err) : m_shown(shown), m_err(err) {}
  ~Listener() override { destructorImpl(); }
  void close() override { closed = true; }

  std::string m_reason;

 protected:
  void append(const log4cplus::spi::InternalLoggingEvent& event) override {
    if (m_shown && event.getLogLevel() >= static_cast<int>(*m_shown)) {
      m_err << log4cplus::getLogLevelManager().toString(event.getLogLevel()) << ' ' << OneLine(event.getMessage())
            << '\n';
    }
    if (!m_reason.empty()) return;
    const std::string message = Tal::MessageOfLogEntry(event.getMessage());
    if (IsReason(event, message)) m_reason = message;
  }

 private:
  boost::optional<Tal::LogLevel> m_shown;
  std::ostream& m_err;
};

std::string& ReasonIn(const log4cplus::SharedAppenderPtr& appender) {
  return static_cast<Listener&>(*appender).m_reason;
}

}  // namespace

ReasonLog::ReasonLog(boost::optional<Tal::LogLevel> shown, std::ostream& err)
    : m_appender(new Listener(shown, err)), m_previousLevel(Tal::GetGlobalDefaultLogger().getLogLevel()) {
  Tal::GetGlobalDefaultLogger().addAppender(m_appender);
  const int wanted = static_cast<int>(shown.value_or(Tal::LogLevel::Warn));
  Tal::GetGlobalDefaultLogger().setLogLevel(std::min(wanted, log4cplus::WARN_LOG_LEVEL + 0));
}

ReasonLog::~ReasonLog() {
  Tal::GetGlobalDefaultLogger().removeAppender(m_appender);
  Tal::GetGlobalDefaultLogger().setLogLevel(m_previousLevel);
}

ReasonLog::Pause::Pause() : m_previousLevel(Tal::GetGlobalDefaultLogger().getLogLevel()) {
  Tal::GetGlobalDefaultLogger().setLogLevel(log4cplus::OFF_LOG_LEVEL);
}
ReasonLog::Pause::~Pause() { Tal::GetGlobalDefaultLogger().setLogLevel(m_previousLevel); }

void ReasonLog::Clear() { ReasonIn(m_appender).clear(); }

std::string ReasonLog::FirstReason() const { return OneLine(ReasonIn(m_appender)); }

}  // namespace Talctl
