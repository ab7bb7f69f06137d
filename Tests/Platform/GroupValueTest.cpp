#include <KnxStackApi/Float16.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/GroupValueException.h>
#include <KnxStackApi/KnxDpt.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "Support/Cases.h"
#include "Support/Values.h"

namespace KnxStack {
namespace {

using TalTest::Wire;

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
  TalTest::ForEachCase("Values.txt", "two-octet floats", [](const TalTest::Case& c) {
    std::uint16_t word = 0xAAAA;
    EXPECT_TRUE(EncodeFloat16(TalTest::Value("3:" + c[0]).GetFloat(), word));
    EXPECT_EQ(word, std::stoul(c[1], nullptr, 16));
  });
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

TEST(BinaryData, ReadsNumbersAndShorterOnesAtTheEnd) {
  const BinaryData data{0x12, 0x34, 0x56};
  EXPECT_EQ(data.GetUInt8Value(2), 0x56);
  EXPECT_EQ(data.GetUInt24Value(0), 0x123456u);
  EXPECT_EQ(data.GetUInt32Value(0), 0x123456u);
  EXPECT_EQ(data.GetUInt24Value(1), 0x3456u);
  EXPECT_EQ(data.GetUInt32Value(2), 0x56u);
  EXPECT_EQ(data.ToString(), "12 34 56");
  EXPECT_EQ(BinaryData().ToString(), "");
  EXPECT_EQ(BinaryData({0xFF, 0xFE, 0xFD, 0xFC, 0xFB}).GetUInt32Value(0), 0xFFFEFDFCu);
}

TEST(BinaryData, ThrowsOneOctetBeyondTheEnd) {
  BinaryData data{0x12};
  EXPECT_THROW(data.GetUInt8Value(1), GroupValueException);
  EXPECT_THROW(data.SetUInt8Value(1, 0), GroupValueException);
  EXPECT_THROW(data.GetUInt24Value(1), GroupValueException);
  EXPECT_THROW(data.GetUInt32Value(1), GroupValueException);
  EXPECT_THROW(BinaryData().GetUInt8Value(0), std::exception);
  EXPECT_EQ(data, BinaryData{0x12});
}

TEST(BinaryData, CopiesAreIndependentWhateverTheirSize) {
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, BinaryData::kInlineOctets, BinaryData::kInlineOctets + 1, std::size_t{254}}) {
    const std::string octets(size, 'x');
    const BinaryData original(reinterpret_cast<const std::uint8_t*>(octets.data()), size);
    BinaryData copy(original);
    if (size > 0) copy.SetUInt8Value(size - 1, 'y');
    EXPECT_EQ(copy == original, size == 0) << size;
    BinaryData assigned{1, 2, 3};
    assigned = copy;
    EXPECT_EQ(assigned, copy);
    const BinaryData moved(std::move(copy));
    EXPECT_EQ(moved, assigned);
    EXPECT_TRUE(copy.empty());  // NOLINT: a moved-from value must be usable
    assigned = BinaryData{7};
    EXPECT_EQ(assigned, BinaryData{7});
  }
}

TEST(GroupValue, SettersWriteTheirLayoutAndSize) {
  using Setter = void (*)(GroupValue&);
  // clang-format off
  const std::pair<Setter, const char*> cases[] = {
      {[](auto& v) { v.SetAsBoolean(true); }, "01/1"}, {[](auto& v) { v.SetAsUnsigned2(0xFF); }, "03/2"},
      {[](auto& v) { v.SetAsUnsigned3(0xFD); }, "05/3"}, {[](auto& v) { v.SetAsUnsigned4(0x1A); }, "0A/4"},
      {[](auto& v) { v.SetAsChar('\xE9'); }, "E9/8"}, {[](auto& v) { v.SetAsUnsigned8(255); }, "FF/8"},
      {[](auto& v) { v.SetAsSigned8(-2); }, "FE/8"}, {[](auto& v) { v.SetAsUnsigned16(0x1234); }, "12 34/16"},
      {[](auto& v) { v.SetAsSigned16(-2); }, "FF FE/16"}, {[](auto& v) { v.SetAsFloat16(21.0); }, "0C 1A/16"},
      {[](auto& v) { v.SetAsFloat16(std::nan("")); }, "7F FF/16"}, {[](auto& v) { v.SetAsSigned32(-2); }, "FF FF FF FE/32"},
      {[](auto& v) { v.SetAsUnsigned32(0x12345678); }, "12 34 56 78/32"},
      {[](auto& v) { v.SetAsFloat32(-1.5F); }, "BF C0 00 00/32"}, {[](auto& v) { v.SetAsFloat32(INFINITY); }, "7F 80 00 00/32"},
      {[](auto& v) { v.SetAsDate(29, 2, 2024); }, "1D 02 18/24"}, {[](auto& v) { v.SetAsDate(1, 1, 1990); }, "01 01 5A/24"},
      {[](auto& v) { v.SetAsDate(31, 12, 2089); }, "1F 0C 59/24"},
      {[](auto& v) { v.SetAsTimeOfDay(23, 59, 58, 7); }, "F7 3B 3A/24"},
      {[](auto& v) { v.SetAsString14("a\xE9"); }, "61 E9 00 00 00 00 00 00 00 00 00 00 00 00/112"},
      {[](auto& v) { v.SetAsString14("0123456789abcdef"); }, "30 31 32 33 34 35 36 37 38 39 61 62 63 64/112"},
      {[](auto& v) { v.SetRawData({'a', 'b'}); v.SetAsString14({reinterpret_cast<const char*>(v.GetRawData().data()), 2}); },
       "61 62 00 00 00 00 00 00 00 00 00 00 00 00/112"},  // from its own octets
      {[](auto& v) { v.SetRawData({1, 2, 3}); }, "01 02 03/24"}, {[](auto& v) { v.SetRawData({}); }, "/0"}};
  // clang-format on
  for (const auto& [set, expected] : cases) {
    GroupValue value({9, 9, 9, 9, 9}, 77);
    EXPECT_EQ(Wire(value), "09 09 09 09 09/77");
    set(value);
    EXPECT_EQ(Wire(value), expected);
  }
  EXPECT_EQ(Wire(GroupValue()), "/0");
}

TEST(GroupValue, SettersRefuseWhatTheyCannotRepresentAndLeaveTheValue) {
  GroupValue value({7}, 8);
  constexpr unsigned kDates[][3] = {{1, 1, 1989}, {1, 1, 2090}, {29, 2, 2023}, {31, 4, 2023},
                                    {0, 1, 2023}, {1, 0, 2023}, {1, 13, 2023}, {1, 1, 65536 + 2000}};
  for (const auto& [day, month, year] : kDates) EXPECT_THROW(value.SetAsDate(day, month, year), GroupValueException);
  constexpr unsigned kTimes[][4] = {{24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 60, 0}, {0, 0, 0, 8}};
  for (const auto& [h, m, s, day] : kTimes) EXPECT_THROW(value.SetAsTimeOfDay(h, m, s, day), GroupValueException);
  for (const double number : {670761.0, double{INFINITY}})
    EXPECT_THROW(value.SetAsFloat16(number), GroupValueException);
  EXPECT_EQ(Wire(value), "07/8");
}

TEST(GroupValue, GettersMaskShortValuesAndIgnoreSizeAndFurtherOctets) {
  using Getter = std::int64_t (*)(const GroupValue&);
  // clang-format off
  const std::pair<Getter, std::int64_t> cases[] = {
      {[](auto& v) { return std::int64_t{v.GetAsBoolean()}; }, 1}, {[](auto& v) { return std::int64_t{v.GetAsUnsigned2()}; }, 3},
      {[](auto& v) { return std::int64_t{v.GetAsUnsigned3()}; }, 7}, {[](auto& v) { return std::int64_t{v.GetAsUnsigned4()}; }, 15},
      {[](auto& v) { return std::int64_t{v.GetAsUnsigned8()}; }, 255}, {[](auto& v) { return std::int64_t{v.GetAsSigned8()}; }, -1},
      {[](auto& v) { return std::int64_t{v.GetAsUnsigned16()}; }, 0xFFFE}, {[](auto& v) { return std::int64_t{v.GetAsSigned16()}; }, -2},
      {[](auto& v) { return std::int64_t{v.GetAsUnsigned32()}; }, 0xFFFEFDFC}, {[](auto& v) { return std::int64_t{v.GetAsSigned32()}; }, -66052}};
  // clang-format on
  for (const auto& [get, expected] : cases) EXPECT_EQ(get(GroupValue({0xFF, 0xFE, 0xFD, 0xFC, 0x00}, 1)), expected);
  EXPECT_FALSE(GroupValue({0xFE}, 8).GetAsBoolean());
  EXPECT_EQ(GroupValue({0x3F, 0x80, 0, 0}, 32).GetAsFloat32(), 1.0F);
  EXPECT_EQ(GroupValue({0x0C, 0x1A}, 16).GetAsFloat16(), 21.0);
  EXPECT_TRUE(std::isnan(GroupValue({0x7F, 0xFF}, 16).GetAsFloat16()));
  EXPECT_EQ(GroupValue({'a', 0xE9, 0, 'b'}, 32).GetAsString14(), "a\xE9");
  EXPECT_EQ(GroupValue().GetAsString14(), "");
  EXPECT_EQ(TalTest::Octets("30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66").GetAsString14(), "0123456789abcd");
}

TEST(GroupValue, GettersOfDatesAndTimesMaskButDoNotJudge) {
  constexpr unsigned kYears[][2] = {{90, 1990}, {99, 1999}, {0, 2000}, {89, 2089}, {100, 2100}, {0x80 | 23, 2023}};
  for (const auto& [octet, year] : kYears) {
    const Date date = GroupValue({0xFF, 0xFF, static_cast<std::uint8_t>(octet)}, 24).GetAsDate();
    EXPECT_EQ(std::tuple(date.year, date.month, date.day), std::tuple(year, 15, 31));
  }
  const DayTime time = GroupValue({0xFF, 0xFF, 0xFF}, 24).GetAsTimeOfDay();
  EXPECT_EQ(std::tuple(time.hour, time.minute, time.second, time.weekday), std::tuple(31, 63, 63, 7));
}

TEST(GroupValue, GettersThrowWhenOctetsAreMissing) {
  const GroupValue values[] = {GroupValue(), GroupValue({1}, 16), GroupValue({1, 2}, 24), GroupValue({1, 2, 3}, 32)};
  using Getter = void (*)(const GroupValue&);
  const std::pair<std::size_t, Getter> cases[] = {
      // so many octets do not suffice
      {0, [](auto& v) { v.GetAsBoolean(); }},    {0, [](auto& v) { v.GetAsSigned8(); }},
      {1, [](auto& v) { v.GetAsUnsigned16(); }}, {1, [](auto& v) { v.GetAsFloat16(); }},
      {3, [](auto& v) { v.GetAsUnsigned32(); }}, {3, [](auto& v) { v.GetAsFloat32(); }},
      {2, [](auto& v) { v.GetAsDate(); }},       {2, [](auto& v) { v.GetAsTimeOfDay(); }}};
  for (const auto& [octets, get] : cases) EXPECT_THROW(get(values[octets]), GroupValueException);
}

TEST(KnxDpt, PrintsPlainDecimals) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << KNXDPT{8, 5, 1};
  EXPECT_EQ(text.str(), "5.1");
}

}  // namespace
}  // namespace KnxStack
