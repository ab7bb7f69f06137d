// All raw values of three octets, both ways. TAL_TEST_STRIDE takes every n-th only.
#include <gtest/gtest.h>

#include <cstdlib>

#include "Support/Converters.h"
#include "Support/LogCapture.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;

/// Calls @p check with the octets of every raw value (or every n-th).
template <class Check>
void ForEachRawValue(Check check) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  const char* const stride = std::getenv("TAL_TEST_STRIDE");
  const unsigned step = stride != nullptr ? static_cast<unsigned>(std::atoi(stride)) : 1;
  for (unsigned raw = 0; raw < 1u << 24 && !testing::Test::HasFailure(); raw += step) {
    SCOPED_TRACE(raw);
    check(static_cast<std::uint8_t>(raw >> 16), static_cast<std::uint8_t>(raw >> 8), static_cast<std::uint8_t>(raw));
  }
}

/// The value of both converters; the table's first.
std::pair<AROVALUE, boost::optional<AROVALUE>> ReadBoth(std::uint16_t main, const GroupValue& groupValue) {
  return {Decode(Converter::Table, {24, main, 1}, groupValue).value(),
          Decode(Converter::Direct, {24, main, 1}, groupValue)};
}

std::string Sent(std::uint16_t main, const AROVALUE& value) { return Encode(Converter::Direct, {24, main, 1}, value); }

TEST(SlowConversions, TimesOfDayAreReadWhereTheyAreValidAndWrittenBack) {
  ForEachRawValue([](std::uint8_t a, std::uint8_t b, std::uint8_t c) {
    const GroupValue groupValue({a, b, c}, 24);
    const bool isValid = a % 32 < 24 && b % 64 < 60 && c % 64 < 60;
    const auto [map, direct] = ReadBoth(10, groupValue);
    EXPECT_EQ(map.avt, isValid ? avtTime : avtInvalid);
    ASSERT_EQ(direct.has_value(), isValid);
    if (!isValid) return;
    EXPECT_EQ(map.time, direct->time);
    const GroupValue expected({a, static_cast<std::uint8_t>(b & 0x3Fu), static_cast<std::uint8_t>(c & 0x3Fu)}, 24);
    EXPECT_EQ(Sent(10, *direct), Wire(expected));
  });
}

TEST(SlowConversions, DatesAreReadWhereTheyExistAndWrittenBack) {
  ForEachRawValue([](std::uint8_t a, std::uint8_t b, std::uint8_t c) {
    constexpr int kDays[] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 0, 0, 0};
    const int year = c >= 90 ? 1900 + c : 2000 + c;
    const int month = b % 16;
    const int days = kDays[month] + (month == 2 && year % 4 == 0 ? 1 : 0);
    const bool exists = c <= 99 && a % 32 >= 1 && a % 32 <= days;
    const auto [map, direct] = ReadBoth(11, GroupValue({a, b, c}, 24));
    EXPECT_EQ(map.avt, exists ? avtDate : avtInvalid);
    ASSERT_EQ(direct.has_value(), exists);
    if (!exists) return;
    EXPECT_EQ(map.time, Time(static_cast<std::uint16_t>(year), static_cast<std::uint8_t>(month), a % 32, 0, 0, 0));
    const bool isLate = year > 2038 || (year == 2038 && (month > 1 || a % 32 > 19));
    EXPECT_EQ(direct->avt, isLate ? avtEmpty : avtDate);
    if (isLate) return;
    const GroupValue expected({static_cast<std::uint8_t>(a % 32), static_cast<std::uint8_t>(month), c}, 24);
    EXPECT_EQ(Sent(11, *direct), Wire(expected));
  });
}

TEST(SlowConversions, ColoursAreReadAndWrittenBack) {
  ForEachRawValue([](std::uint8_t a, std::uint8_t b, std::uint8_t c) {
    const GroupValue groupValue({a, b, c}, 24);
    const auto [map, direct] = ReadBoth(232, groupValue);
    EXPECT_EQ(map, DWord(65536u * a + 256u * b + c));
    ASSERT_TRUE(direct);
    EXPECT_EQ(*direct, map);
    EXPECT_EQ(Sent(232, *direct), Wire(groupValue));
  });
}

}  // namespace
}  // namespace TalTest
