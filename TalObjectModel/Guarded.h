// Entry points that let no exception out.
#pragma once

#include <TalLog/LogRecord.h>

#include <exception>

namespace Tal {

/// Runs @p body and returns its result. An exception is logged at ERROR for @p site as @p message and its text; then,
/// also when that cannot be logged, the result is false.
/// Inlined always: a conversion is no further call away.
template <class Body>
[[gnu::always_inline]] inline bool Guarded(const CallSite& site, const char* message, Body&& body) noexcept {
  const auto log = [&](const char* what) {
    try {
      TAL_LOG_AT(Error, site) << message << what;
    } catch (...) {
    }
  };
  try {
    return body();
  } catch (const std::exception& exception) {
    log(exception.what());
  } catch (...) {
    log("unknown exception");
  }
  return false;
}

}  // namespace Tal
