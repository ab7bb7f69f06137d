// Ending the process on a state that must not occur.
#pragma once

#include <TalLog/CallSite.h>

namespace Tal {

/// Logs at FATAL that the place @p site was reached, which must not happen, and calls std::terminate().
[[noreturn]] void ReportUnreachable(const CallSite& site) noexcept;

}  // namespace Tal
