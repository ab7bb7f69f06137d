// What a test sees of the log.
#pragma once

#include <TalLog/Logger.h>
#include <log4cplus/appender.h>

#include <string>
#include <vector>

namespace TalTest {

struct Record {
  Tal::LogLevel level;
  std::string text;     ///< with its prefix
  std::string message;  ///< without it
  std::string function;
  std::string file;
  int line;
};

/// Collects the records of every level while it lives; nothing reaches standard error meanwhile.
class ScopedLogCapture {
 public:
  explicit ScopedLogCapture(Tal::LogLevel level = Tal::LogLevel::Debug);
  ~ScopedLogCapture();

  std::vector<Record> Records() const;
  /// All records as "LEVEL message", in order; what was collected is forgotten.
  std::vector<std::string> Take();

 private:
  log4cplus::SharedAppenderPtr m_appender;
  int m_previousLevel;
};

}  // namespace TalTest
