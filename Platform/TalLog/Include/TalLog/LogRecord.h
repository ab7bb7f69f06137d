// Writing log records: TAL_LOG(Error) << "Value out of range: " << value;
#pragma once

#include <TalLog/CallSite.h>
#include <TalLog/Export.h>
#include <TalLog/Logger.h>

#include <ostream>
#include <sstream>

namespace Tal {

/// One log record under construction: streams the prefix first, then what is inserted; the destructor hands it to the
/// default logger. Numbers are written without regard to any locale. Neither constructor nor destructor throws: a
/// record that cannot be written (memory, appender) is dropped.
class TALLOG_EXPORT LogRecord {
 public:
  /// Opens a record, whether the level is on or not.
  LogRecord(LogLevel level, const CallSite& site);
  /// Hands it to the default logger.
  ~LogRecord();
  LogRecord(const LogRecord&) = delete;
  LogRecord& operator=(const LogRecord&) = delete;
  /// Where the message goes.
  std::ostream& Stream() { return m_stream; }

 private:
  LogLevel m_level;
  CallSite m_site;
  std::ostringstream m_stream;
};

/// Swallows the stream of a TAL_LOG expression, so that both branches of its condition are void.
struct LogVoidify {
  /// Binds weaker than <<: the whole message comes first.
  void operator&&(const std::ostream&) const {}
};

}  // namespace Tal

/// Opens a record of @p level (Debug, Info, Warn, Error, Fatal) for the place @p site. Nothing behind it is evaluated
/// while the level is off, so operands must have no side effects.
#define TAL_LOG_AT(level, site)                \
  !::Tal::IsLogEnabled(::Tal::LogLevel::level) \
      ? void()                                 \
      : ::Tal::LogVoidify() && ::Tal::LogRecord(::Tal::LogLevel::level, (site)).Stream()
/// The same for the place where it stands.
#define TAL_LOG(level) TAL_LOG_AT(level, TAL_HERE)
