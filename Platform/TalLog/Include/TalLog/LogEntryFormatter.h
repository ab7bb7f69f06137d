// The text of a log record.
#pragma once

#include <TalLog/CallSite.h>
#include <TalLog/Export.h>

#include <ostream>
#include <string>

namespace Tal {

/// Prints a function for a log record: "ToKnxValue(TalObjectModel/KnxConverter:123)".
/// " - " in a path is shown as "-", so that the first " - " of a record always ends its prefix.
struct PrettyFunctionNamePrinter {
  const char* shortName;  ///< "ToKnxValue"
  const char* file;       ///< source path; its extension is dropped
  int line;               ///< from 1
};
/// Prints it.
TALLOG_EXPORT std::ostream& operator<<(std::ostream& os, const PrettyFunctionNamePrinter& name);

/// Prints two blanks for each LoggingRecursionScope that is open on this thread.
struct LoggingRecursionPadding {};
/// Prints it.
TALLOG_EXPORT std::ostream& operator<<(std::ostream& os, LoggingRecursionPadding);

/// Writes what stands before the message of every record: context, function name, " - ", recursion padding.
struct LogEntryFormatter {
  /// For a record of this place.
  explicit LogEntryFormatter(const CallSite& callSite) : site(callSite) {}
  CallSite site;  ///< where the record comes from
};
/// Prints it.
TALLOG_EXPORT std::ostream& operator<<(std::ostream& os, const LogEntryFormatter& entry);

/// The message of a record's text: what follows the prefix, recursion padding dropped. For tools and tests.
TALLOG_EXPORT std::string MessageOfLogEntry(const std::string& text);

}  // namespace Tal
