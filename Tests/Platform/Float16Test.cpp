#include <KnxStackApi/Float16.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace KnxStack {
namespace {

/// The definition, written plainly: sign, exponent and mantissa bits of the word.
double Defined(unsigned word) {
  const int low = static_cast<int>(word & 0x7FF);
  const int mantissa = word >= 0x8000 ? low - 2048 : low;
  return mantissa * std::pow(2.0, (word / 2048) % 16) / 100;
}

TEST(Float16, DecodesAndNormalisesAll65536Words) {
  unsigned normalised = 0;
  for (unsigned word = 0; word <= 0xFFFF; ++word) {
    const double number = DecodeFloat16(static_cast<std::uint16_t>(word));
    std::uint16_t again = 0;
    ASSERT_TRUE(EncodeFloat16(number, again)) << word;
    if (word == 0x7FFF) {
      EXPECT_TRUE(std::isnan(number));
      EXPECT_EQ(again, 0x7FFF);
      continue;
    }
    ASSERT_EQ(number, Defined(word)) << word;
    ASSERT_EQ(DecodeFloat16(again), number) << word;
    // No smaller exponent would have done: half the mantissa range is used, or the exponent is 0.
    const unsigned exponent = (again >> 11) & 0xF;
    const int mantissa = static_cast<int>(again & 0x7FF) - (again >= 0x8000 ? 2048 : 0);
    ASSERT_TRUE(exponent == 0 || mantissa > 1023 || mantissa < -1024) << word;
    normalised += again != word ? 1 : 0;
  }
  EXPECT_EQ(normalised, 30720u);
}

TEST(Float16, EncodesToTheNearestWord) {
  const std::pair<double, unsigned> cases[] = {
      {21.0, 0x0C1A},      {-30.0, 0x8A24},      {0.0, 0x0000},       {-0.0, 0x0000},      {-0.001, 0x0000},
      {0.005, 0x0001},     {-0.005, 0x87FF},     {0.35, 0x0023},      {20.474, 0x07FF},    {20.475, 0x0C00},
      {-20.48, 0x8000},    {-20.485, 0x8C00},    {40.95, 0x1400},     {670433.28, 0x7FFE}, {670597.12, 0x7FFE},
      {670760.96, 0x7FFE}, {-671088.64, 0xF800}, {-670760.96, 0xF801}};
  for (const auto& [number, expected] : cases) {
    std::uint16_t word = 0xAAAA;
    EXPECT_TRUE(EncodeFloat16(number, word)) << number;
    EXPECT_EQ(word, expected) << number;
  }
}

TEST(Float16, IsNeverFartherFromANumberThanHalfAStep) {
  for (double number = -671000; number < 670400; number += 17.03) {
    std::uint16_t word = 0;
    ASSERT_TRUE(EncodeFloat16(number, word));
    const double step = std::pow(2.0, (word >> 11) & 0xF) / 100;
    ASSERT_LE(std::abs(DecodeFloat16(word) - number), step / 2 + 1e-9) << number;
  }
}

TEST(Float16, RefusesNumbersBeyondItsRangeAndLeavesTheWord) {
  for (const double number : {670760.97, -671088.65, 1e300, std::nextafter(kFloat16Max, 1e9),
                              std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
    std::uint16_t word = 0xAAAA;
    EXPECT_FALSE(EncodeFloat16(number, word)) << number;
    EXPECT_EQ(word, 0xAAAA);
  }
}

}  // namespace
}  // namespace KnxStack
