// Datapoint types as people write them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Format {

/// A datapoint type.
struct Dpt {
  std::uint16_t main = 0;  ///< 9 of 9.001
  std::uint16_t sub = 0;   ///< 1 of 9.001; 0: the whole main type

  /// main << 16 | sub
  unsigned long Number() const { return static_cast<unsigned long>(main) << 16 | sub; }
};

/// Reads "9.001", "9.1", "DPST-9-1", or for a whole main type (sub number 0) "9", "9.x", "DPT-9".
/// @param text   with nothing before and behind the datapoint type.
/// @param dpt    stays as it was when the text is refused.
/// @param error  stays as it was when the text is read.
/// @param fault  where given, takes the first octet that cannot belong to a datapoint type.
/// @return       false, with what was expected in @p error.
bool ParseDpt(std::string_view text, Dpt& dpt, std::string& error, std::size_t* fault = nullptr);

/// "9.001": a sub number of at least three digits.
std::string FormatDpt(const Dpt& dpt);

}  // namespace Format
