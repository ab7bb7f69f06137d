// KNX addresses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Knx {

/// Where group values go: 16 bits, written main/middle/sub with 5, 3 and 8 bits.
struct GroupAddress {
  std::uint16_t raw = 0;  ///< 0 addresses every device, and no group

  /// The same address.
  friend bool operator==(GroupAddress a, GroupAddress b) { return a.raw == b.raw; }
  /// Another address.
  friend bool operator!=(GroupAddress a, GroupAddress b) { return a.raw != b.raw; }
};

/// A device on the bus: 16 bits, written area.line.device with 4, 4 and 8 bits.
struct IndividualAddress {
  std::uint16_t raw = 0;  ///< as on the bus

  /// The same address.
  friend bool operator==(IndividualAddress a, IndividualAddress b) { return a.raw == b.raw; }
  /// Another address.
  friend bool operator!=(IndividualAddress a, IndividualAddress b) { return a.raw != b.raw; }
};

/// Reads "1/2/3". @return false, with what was expected in @p error; 0/0/0 is no group.
bool ParseAddress(std::string_view text, GroupAddress& address, std::string& error);
/// Reads "1.1.250". @return false, with what was expected in @p error.
bool ParseAddress(std::string_view text, IndividualAddress& address, std::string& error);

/// "1/2/3"
std::string FormatAddress(GroupAddress address);
/// "1.1.250"
std::string FormatAddress(IndividualAddress address);

}  // namespace Knx
