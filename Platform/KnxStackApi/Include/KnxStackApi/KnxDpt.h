// Identification of a KNX datapoint type.
#pragma once

#include <cstdint>
#include <ostream>

/// A KNX datapoint type with the size of its values. Main 0: no type is given; sub 0: the whole main type.
struct KNXDPT {
  std::uint8_t size = 0;   ///< bits; 0: not known
  std::uint16_t main = 0;  ///< main number: 9 of 9.001
  std::uint16_t sub = 0;   ///< sub number: 1 of 9.001
};

/// Prints main "." sub as plain decimals: "9.1".
inline std::ostream& operator<<(std::ostream& os, const KNXDPT& dpt) { return os << dpt.main << '.' << dpt.sub; }
