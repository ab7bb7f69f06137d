// The process's default logger and how it is configured.
#pragma once

#include <TalLog/Export.h>
#include <log4cplus/logger.h>

#include <string>

namespace Tal {

/// Levels of log records with their log4cplus numbers.
enum class LogLevel : int { Debug = 10000, Info = 20000, Warn = 30000, Error = 40000, Fatal = 50000 };

/// Name of the default logger, as configuration files name it: `log4cplus.logger.tal=DEBUG, ...`.
constexpr char kDefaultLoggerName[] = "tal";

/// The logger that every record of these libraries goes to. Usable from any thread, also before `main` and
/// while the process ends, and without any configuration: then its level is WARN and its records go to standard error.
/// As soon as the logger or the root logger has an appender of the application's own, standard error is left alone.
///
/// An application that configures log4cplus by itself, before the first record, decides the level of the logger "tal"
/// or lets it inherit the root's. Later the level stays WARN until "tal" is given another one, or NOT_SET_LOG_LEVEL to
/// inherit; ConfigureLogging() sees to that.
TALLOG_EXPORT log4cplus::Logger& GetGlobalDefaultLogger();

/// True when a record of @p level would be written. Ask before building a costly text.
TALLOG_EXPORT bool IsLogEnabled(LogLevel level) noexcept;

/// Reads a log4cplus properties file. The default logger then takes its level from the file (its own or the root's).
///
/// @param propertiesFile  its path.
/// @param reason  what is wrong, in one line, when the result is false: the file cannot be read, gives the root logger
///                no valid level, or names no appender that the records of "tal" would reach. log4cplus reports other
///                faults on standard error only, a log file that cannot be opened among them.
/// @return        false: the default logger keeps its level; a file that names no appender at all changes nothing else.
///
/// Call it from one thread, while no other thread logs.
TALLOG_EXPORT bool ConfigureLogging(const std::string& propertiesFile, std::string& reason);

/// The calling thread's logging context as it opens every record: empty, or "[name] ".
TALLOG_EXPORT const std::string& GetLoggingContext();

/// Names what the calling thread is working on, for all its records while this object lives; contexts nest, the
/// innermost is shown. An empty name shows none; " - " in a name is shown as "-".
class TALLOG_EXPORT ScopedLoggingContext {
 public:
  /// From now on @p name is shown.
  explicit ScopedLoggingContext(const std::string& name);
  ~ScopedLoggingContext();
  ScopedLoggingContext(const ScopedLoggingContext&) = delete;
  ScopedLoggingContext& operator=(const ScopedLoggingContext&) = delete;

 private:
  const std::string m_text;
  const std::string* const m_previous;
};

/// Indents the calling thread's records by two blanks while this object lives; scopes nest.
class TALLOG_EXPORT LoggingRecursionScope {
 public:
  LoggingRecursionScope();
  ~LoggingRecursionScope();
  LoggingRecursionScope(const LoggingRecursionScope&) = delete;
  LoggingRecursionScope& operator=(const LoggingRecursionScope&) = delete;
};

}  // namespace Tal
