#include "Support/LogCapture.h"

#include <TalLog/LogEntryFormatter.h>
#include <log4cplus/spi/loggingevent.h>

#include <mutex>

namespace TalTest {
namespace {

class Collector final : public log4cplus::Appender {
 public:
  ~Collector() override { destructorImpl(); }
  void close() override { closed = true; }

  std::mutex m_mutex;
  std::vector<Record> m_records;

 protected:
  void append(const log4cplus::spi::InternalLoggingEvent& event) override {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records.push_back({static_cast<Tal::LogLevel>(event.getLogLevel()), event.getMessage(),
                         Tal::MessageOfLogEntry(event.getMessage()), event.getFunction(), event.getFile(),
                         event.getLine()});
  }
};

Collector& In(const log4cplus::SharedAppenderPtr& appender) { return static_cast<Collector&>(*appender); }

}  // namespace

ScopedLogCapture::ScopedLogCapture(Tal::LogLevel level)
    : m_appender(new Collector), m_previousLevel(Tal::GetGlobalDefaultLogger().getLogLevel()) {
  Tal::GetGlobalDefaultLogger().addAppender(m_appender);
  Tal::GetGlobalDefaultLogger().setLogLevel(static_cast<int>(level));
}

ScopedLogCapture::~ScopedLogCapture() {
  Tal::GetGlobalDefaultLogger().removeAppender(m_appender);
  Tal::GetGlobalDefaultLogger().setLogLevel(m_previousLevel);
}

std::vector<Record> ScopedLogCapture::Records() const {
  const std::lock_guard<std::mutex> lock(In(m_appender).m_mutex);
  return In(m_appender).m_records;
}

std::vector<std::string> ScopedLogCapture::Take() {
  std::vector<std::string> lines;
  for (const Record& record : Records()) {
    lines.push_back(log4cplus::getLogLevelManager().toString(static_cast<int>(record.level)) + " " + record.message);
  }
  const std::lock_guard<std::mutex> lock(In(m_appender).m_mutex);
  In(m_appender).m_records.clear();
  return lines;
}

}  // namespace TalTest
