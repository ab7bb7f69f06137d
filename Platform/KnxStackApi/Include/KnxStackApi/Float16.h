// The two-octet float of KNX datapoint type 9.
#pragma once

#include <KnxStackApi/Export.h>

#include <cstdint>

namespace KnxStack {

/// A two-octet float is a sign bit, a 4-bit exponent E and 11 low mantissa bits; sign and low bits together are the
/// two's-complement mantissa M, -2048 to 2047. Its number is M * 2^E / 100.
constexpr std::uint16_t kFloat16Invalid = 0x7FFF;  ///< stands for "no valid number"
constexpr std::uint16_t kFloat16Largest = 0x7FFE;  ///< 670433.28
constexpr double kFloat16Min = -671088.64;         ///< the smallest number that can be encoded
constexpr double kFloat16Max = 670760.96;          ///< the largest number that is accepted; sent as kFloat16Largest

/// The number of @p word; NaN for kFloat16Invalid.
KNXSTACKAPI_EXPORT double DecodeFloat16(std::uint16_t word) noexcept;

/// The word nearest to @p number, with the smallest exponent that fits; ties are rounded away from zero. NaN gives
/// kFloat16Invalid; a number that would round to that word gives kFloat16Largest.
/// @return  false, with @p word as it was, beyond kFloat16Min and kFloat16Max and for infinities.
[[nodiscard]] KNXSTACKAPI_EXPORT bool EncodeFloat16(double number, std::uint16_t& word) noexcept;

}  // namespace KnxStack
