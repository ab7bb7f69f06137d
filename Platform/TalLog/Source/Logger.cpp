#include <TalLog/Logger.h>
#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/layout.h>
#include <log4cplus/spi/loggingevent.h>

#include <fstream>

#include "ContextText.h"

namespace Tal {
namespace {

constexpr char kFallbackName[] = "TalFallback";

/// Standard error for processes that configure no logging: silent as soon as anybody else listens.
class FallbackAppender final : public log4cplus::ConsoleAppender {
 public:
  FallbackAppender() : ConsoleAppender(true, true) {
    setName(kFallbackName);
    setLayout(std::make_unique<log4cplus::PatternLayout>("%D{%H:%M:%S,%q} %-5p %m%n"));
  }
  ~FallbackAppender() override { destructorImpl(); }

 protected:
  void append(const log4cplus::spi::InternalLoggingEvent& event) override {
    if (log4cplus::Logger::getRoot().getAllAppenders().empty() &&
        GetGlobalDefaultLogger().getAllAppenders().size() == 1) {
      ConsoleAppender::append(event);
    }
  }
};

void AddFallback(log4cplus::Logger logger) {
  if (!logger.getAppender(kFallbackName)) logger.addAppender(log4cplus::SharedAppenderPtr(new FallbackAppender));
}

log4cplus::Logger* MakeDefaultLogger() {
  auto* logger = new log4cplus::Logger(log4cplus::Logger::getInstance(kDefaultLoggerName));
  logger->setLogLevel(log4cplus::WARN_LOG_LEVEL);
  AddFallback(*logger);
  return logger;
}

bool HasConfiguredAppender(log4cplus::Logger logger) {
  for (const auto& appender : logger.getAllAppenders()) {
    if (appender->getName() != kFallbackName) return true;
  }
  return false;
}

std::string& Context() {
  thread_local std::string context;
  return context;
}

thread_local unsigned t_recursionDepth = 0;

}  // namespace

log4cplus::Logger& GetGlobalDefaultLogger() {
  static log4cplus::Logger* const logger = MakeDefaultLogger();  // lives as long as the process: statics may log
  return *logger;
}

bool IsLogEnabled(LogLevel level) { return GetGlobalDefaultLogger().isEnabledFor(static_cast<int>(level)); }

bool ConfigureLogging(const std::string& propertiesFile, std::string& reason) {
  std::ifstream file(propertiesFile);
  if (!file || file.peek() == std::ifstream::traits_type::eof()) {
    reason = "log configuration '" + propertiesFile + "' is empty or cannot be read";
    return false;
  }
  log4cplus::Logger& logger = GetGlobalDefaultLogger();
  logger.setLogLevel(log4cplus::NOT_SET_LOG_LEVEL);
  log4cplus::PropertyConfigurator(file).configure();
  const bool configured = HasConfiguredAppender(logger) || HasConfiguredAppender(log4cplus::Logger::getRoot());
  if (!configured) {
    logger.setLogLevel(log4cplus::WARN_LOG_LEVEL);
    AddFallback(logger);
    reason = "log configuration '" + propertiesFile +
             "' names no usable appender for log4cplus.rootLogger or "
             "log4cplus.logger." +
             kDefaultLoggerName;
  }
  return configured;
}

const std::string& GetLoggingContext() { return Context(); }

ScopedLoggingContext::ScopedLoggingContext(const std::string& name) : m_previous(Context()) {
  Context() = name.empty() ? std::string() : "[" + WithoutPrefixEnd(name) + "] ";
}
ScopedLoggingContext::~ScopedLoggingContext() { Context().swap(m_previous); }

LoggingRecursionScope::LoggingRecursionScope() { ++t_recursionDepth; }
LoggingRecursionScope::~LoggingRecursionScope() { --t_recursionDepth; }

unsigned RecursionDepth() { return t_recursionDepth; }

}  // namespace Tal
