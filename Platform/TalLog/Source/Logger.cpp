#include <TalLog/Logger.h>
#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/layout.h>
#include <log4cplus/spi/loggingevent.h>

#include <fstream>
#include <memory>

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
    log4cplus::Logger& logger = GetGlobalDefaultLogger();
    const bool rootListens = logger.getAdditivity() && !log4cplus::Logger::getRoot().getAllAppenders().empty();
    if (!rootListens && logger.getAllAppenders().size() == 1) ConsoleAppender::append(event);
  }
};

void AddFallback(log4cplus::Logger logger) {
  if (!logger.getAppender(kFallbackName)) logger.addAppender(log4cplus::SharedAppenderPtr(new FallbackAppender));
}

log4cplus::Logger* MakeDefaultLogger() {
  auto logger = std::make_unique<log4cplus::Logger>(log4cplus::Logger::getInstance(kDefaultLoggerName));
  const bool isConfigured =
      logger->getLogLevel() != log4cplus::NOT_SET_LOG_LEVEL || !log4cplus::Logger::getRoot().getAllAppenders().empty();
  if (!isConfigured) logger->setLogLevel(log4cplus::WARN_LOG_LEVEL);
  AddFallback(*logger);
  return logger.release();
}

bool HasConfiguredAppender(log4cplus::Logger logger) {
  for (const auto& appender : logger.getAllAppenders()) {
    if (appender->getName() != kFallbackName) return true;
  }
  return false;
}

/// The text of the innermost context. A pointer, because a thread's objects with destructors are gone when static
/// objects of the process log their last.
thread_local const std::string* t_context = nullptr;
thread_local unsigned t_recursionDepth = 0;

}  // namespace

log4cplus::Logger& GetGlobalDefaultLogger() {
  static log4cplus::Logger* const logger = MakeDefaultLogger();  // lives as long as the process: statics may log
  return *logger;
}

bool IsLogEnabled(LogLevel level) noexcept {
  try {
    return GetGlobalDefaultLogger().isEnabledFor(static_cast<int>(level));
  } catch (...) {  // log4cplus throws when neither the logger nor the root has a level
    return level >= LogLevel::Warn;
  }
}

bool ConfigureLogging(const std::string& propertiesFile, std::string& reason) {
  const std::string subject = "log configuration '" + propertiesFile + "' ";
  std::ifstream file(propertiesFile);
  if (!file || file.peek() == std::ifstream::traits_type::eof()) {
    reason = subject + "is empty or cannot be read";
    return false;
  }
  const log4cplus::helpers::Properties properties(file);
  const auto namesAppender = [&](const std::string& key) {
    return properties.getProperty("log4cplus." + key).find(',') != std::string::npos;
  };
  log4cplus::Logger& logger = GetGlobalDefaultLogger();
  log4cplus::Logger root = log4cplus::Logger::getRoot();
  const bool namesForRoot = namesAppender("rootLogger");
  const bool namesForDefault = namesAppender(std::string("logger.") + kDefaultLoggerName);
  reason = subject + "names no usable appender for log4cplus.rootLogger or log4cplus.logger." + kDefaultLoggerName;
  if (!namesForRoot && !namesForDefault) return false;

  const int previousLevel = logger.getLogLevel();
  const int previousRootLevel = root.getLogLevel();
  logger.setLogLevel(log4cplus::NOT_SET_LOG_LEVEL);
  log4cplus::PropertyConfigurator(properties).configure();
  const bool rootListens = namesForRoot && logger.getAdditivity() && HasConfiguredAppender(root);
  if (root.getLogLevel() == log4cplus::NOT_SET_LOG_LEVEL) {
    reason =
        subject + "gives log4cplus.rootLogger no valid level: expected TRACE, DEBUG, INFO, WARN, ERROR, FATAL or OFF";
    root.setLogLevel(previousRootLevel);
  } else if (rootListens || (namesForDefault && HasConfiguredAppender(logger))) {
    reason.clear();
    return true;
  }
  logger.setLogLevel(previousLevel);
  AddFallback(logger);
  return false;
}

const std::string& GetLoggingContext() {
  static const std::string* const none = new std::string;
  return t_context != nullptr ? *t_context : *none;
}

ScopedLoggingContext::ScopedLoggingContext(const std::string& name)
    : m_text(name.empty() ? std::string() : "[" + WithoutPrefixEnd(name) + "] "), m_previous(t_context) {
  t_context = &m_text;
}
ScopedLoggingContext::~ScopedLoggingContext() { t_context = m_previous; }

LoggingRecursionScope::LoggingRecursionScope() { ++t_recursionDepth; }
LoggingRecursionScope::~LoggingRecursionScope() { --t_recursionDepth; }

unsigned RecursionDepth() { return t_recursionDepth; }

}  // namespace Tal
