// What both converters say of dates and times that they do not take.
#pragma once

#include <BasePlatform/AroTime.h>
#include <TalLog/LogRecord.h>

namespace Tal {

/// Logs at ERROR for @p site; always false.
inline bool RefuseDate(const CallSite& site, const AROTIME& time) {
  TAL_LOG_AT(Error, site) << "Not a valid date: " << time.year << ' ' << unsigned{time.month} << ' '
                          << unsigned{time.day} << ' ';
  return false;
}

/// Logs at ERROR for @p site; always false.
inline bool RefuseTimeOfDay(const CallSite& site, const AROTIME& time) {
  TAL_LOG_AT(Error, site) << "Could not convert AROTIME " << time.ToString() << " to TimeOfDay";
  return false;
}

}  // namespace Tal
