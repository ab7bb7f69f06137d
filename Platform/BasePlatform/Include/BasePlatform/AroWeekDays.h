// Sets of weekdays.
#pragma once

#include <cstdint>

namespace AroWeekDays {

/// A set of weekdays as bits; combinations are legal values.
enum WEEK_DAY_TYPES : std::uint16_t {
  NoDay = 0,
  Monday = 0x01,
  Tuesday = 0x02,
  Wednesday = 0x04,
  Thursday = 0x08,
  Friday = 0x10,
  Saturday = 0x20,
  Sunday = 0x40,
};

}  // namespace AroWeekDays
