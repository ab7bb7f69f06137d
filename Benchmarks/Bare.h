// The least that a conversion can be: a switch over main types with checks of type, length and range, no log, no
// reason, no table. Only a baseline.
#pragma once

#include <BasePlatform/AroTime.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Bench {

/// A value as flat as it can be.
struct BareValue {
  int type = 0;  ///< as AroValueType
  std::uint32_t number = 0;
  double real = 0;
  AROTIME time;
  std::string_view text;
};

struct BareGroupValue {
  std::uint8_t octets[14];
  std::uint8_t count;
  std::uint8_t bits;
};

bool BareEncode(unsigned main, const BareValue& value, BareGroupValue& out) noexcept;
bool BareDecode(unsigned main, const BareGroupValue& in, BareValue& out) noexcept;

}  // namespace Bench
