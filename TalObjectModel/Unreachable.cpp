#include <Tal/Unreachable.h>
#include <TalLog/LogRecord.h>

#include <exception>

#include "UnreachableReport.h"

namespace Tal {
namespace {

// Where the report of an empty optional points to, whichever function it happened in.
constexpr char kSource[] = "Include/Tal/Unreachable";
constexpr int kEmptyOptionalLine = 45;

}  // namespace

void ReportUnreachable(const CallSite& site) noexcept {
  TAL_LOG_AT(Fatal, site) << "This statement should not be executed. There is a bug somewhere around "
                          << WithoutExtension(site.file) << ':' << site.line;
  std::terminate();
}

template <class T>
T UndefinedBehaviourIfNone(boost::optional<T> value) {
  if (!value) ReportUnreachable({__func__, __PRETTY_FUNCTION__, kSource, kEmptyOptionalLine});
  return *std::move(value);
}

template UTF8String UndefinedBehaviourIfNone<UTF8String>(boost::optional<UTF8String>);

}  // namespace Tal
