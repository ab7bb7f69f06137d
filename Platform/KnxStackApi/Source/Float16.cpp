#include <KnxStackApi/Float16.h>

#include <cmath>
#include <limits>

namespace KnxStack {
namespace {

constexpr int kMantissaMin = -2048;
constexpr int kMantissaMax = 2047;
constexpr unsigned kExponentMax = 15;

/// The nearest whole number, halves away from zero, of a number that fits.
int Rounded(double number) noexcept {
  const int whole = static_cast<int>(number);
  const double rest = number - whole;  // exact
  return rest >= 0.5 ? whole + 1 : rest <= -0.5 ? whole - 1 : whole;
}

}  // namespace

double DecodeFloat16(std::uint16_t word) noexcept {
  if (word == kFloat16Invalid) return std::numeric_limits<double>::quiet_NaN();
  const int mantissa = (word & 0x07FF) - ((word & 0x8000) != 0 ? 2048 : 0);
  const int scale = 1 << ((word >> 11) & 0x0F);
  return mantissa * scale / 100.0;  // one division, so that 35 cents are the number 0.35
}

bool EncodeFloat16(double number, std::uint16_t& word) noexcept {
  if (std::isnan(number)) {
    word = kFloat16Invalid;
    return true;
  }
  if (!(number >= kFloat16Min && number <= kFloat16Max)) return false;
  double scaled = number * 100.0;  // at most 27 bits before the point: the range is checked above
  unsigned exponent = 0;
  int mantissa = Rounded(scaled);
  while ((mantissa < kMantissaMin || mantissa > kMantissaMax) && exponent < kExponentMax) {
    ++exponent;
    scaled *= 0.5;  // exact
    mantissa = Rounded(scaled);
  }
  const auto bits = static_cast<unsigned>(mantissa);
  const unsigned encoded = (mantissa < 0 ? 0x8000u : 0u) | exponent << 11 | (bits & 0x07FFu);
  word = encoded == kFloat16Invalid ? kFloat16Largest : static_cast<std::uint16_t>(encoded);
  return true;
}

}  // namespace KnxStack
