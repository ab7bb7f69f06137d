#include <TalLog/LogEntryFormatter.h>
#include <TalLog/LogRecord.h>
#include <log4cplus/spi/loggingevent.h>

#include <locale>

namespace Tal {

LogRecord::LogRecord(LogLevel level, const CallSite& site) : m_level(level), m_site(site) {
  m_stream.imbue(std::locale::classic());
  try {
    m_stream << LogEntryFormatter(site);
  } catch (...) {
    m_stream.setstate(std::ios::badbit);  // without its prefix it is no record: nothing is inserted, nothing written
  }
}

LogRecord::~LogRecord() {
  if (!m_stream) return;  // also when an insertion found no memory, which streams keep to themselves
  try {
    const log4cplus::Logger& logger = GetGlobalDefaultLogger();
    log4cplus::spi::InternalLoggingEvent event(logger.getName(), static_cast<int>(m_level), m_stream.str(),
                                               std::string(WithoutExtension(m_site.file)).c_str(), m_site.line,
                                               m_site.signature);
    logger.callAppenders(event);
  } catch (...) {  // a record that cannot be written is dropped; its caller goes on
  }
}

}  // namespace Tal
