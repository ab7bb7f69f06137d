#include <TalLog/LogEntryFormatter.h>
#include <TalLog/Logger.h>

#include "ContextText.h"

namespace Tal {

std::string WithoutPrefixEnd(std::string text) {
  for (char& character : text) {
    if (static_cast<unsigned char>(character) < ' ') character = ' ';  // a record is one line
  }
  // From the start each time: what is put together may be one again ("  -  ").
  for (std::size_t at = text.find(kPrefixEnd); at != std::string::npos; at = text.find(kPrefixEnd)) {
    text.replace(at, sizeof kPrefixEnd - 1, "-");
  }
  return text;
}

std::ostream& operator<<(std::ostream& os, const PrettyFunctionNamePrinter& name) {
  return os << name.shortName << '(' << WithoutPrefixEnd(std::string(WithoutExtension(name.file))) << ':'
            << std::to_string(name.line) << ')';
}

std::ostream& operator<<(std::ostream& os, LoggingRecursionPadding) {
  for (unsigned i = RecursionDepth(); i > 0; --i) os << "  ";
  return os;
}

std::ostream& operator<<(std::ostream& os, const LogEntryFormatter& entry) {
  return os << GetLoggingContext() << PrettyFunctionNamePrinter{entry.site.function, entry.site.file, entry.site.line}
            << kPrefixEnd << LoggingRecursionPadding();
}

std::string MessageOfLogEntry(const std::string& text) {
  const std::size_t end = text.find(kPrefixEnd);
  if (end == std::string::npos) return text;
  const std::size_t begin = text.find_first_not_of(' ', end + sizeof kPrefixEnd - 1);
  return begin == std::string::npos ? std::string() : text.substr(begin);
}

}  // namespace Tal
