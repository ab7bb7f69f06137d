#include <KnxStackApi/GroupValue.h>
#include <Tal/KnxConverter.h>
#include <Tal/Range.h>
#include <TalObjectModel/KnxWire.h>
#include <gmock/gmock.h>

#include <limits>
#include <sstream>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace Tal {
namespace {

using TalTest::ScopedLogCapture;
using testing::ElementsAre;

constexpr std::int32_t kMin32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();

template <class Range>
std::string Shown(const Range& range) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << range;
  return text.str();
}

TEST(Range, ScaleFactorIsExternalByInternalSpan) {
  ScopedLogCapture log;
  const std::pair<double, double> cases[] = {
      {IntegerRange(0, 255, 0, 100).ScaleFactor(), 100.0 / 255.0},
      {IntegerRange(kMin32, kMax32, kMin32, kMax32).ScaleFactor(), 1.0},
      {LongIntegerRange(0, 4294967295, 0, 1).ScaleFactor(), 1 / 4294967295.0},
      {LongIntegerRange(kMin64, kMax64, 0, 1).ScaleFactor(), 1 / 18446744073709551616.0},
      {LongIntegerRange(kMax64 - 10, kMax64, 0, 100).ScaleFactor(), 10.0},
      {LongIntegerRange(kMin64 + 10, kMin64, 0, 100).ScaleFactor(), -10.0},
      {FloatIntegerRange(-100, 100, 0, 15).ScaleFactor(), 15.0 / 200.0},
      {FloatIntegerRange().ScaleFactor(), 4294967295.0 / (670760.96 + 671088.64)},
      {FloatRange(10, -10, 5, 0).ScaleFactor(), 0.25},  // either order of bounds
  };
  for (const auto& [factor, expected] : cases) EXPECT_EQ(factor, expected);
  EXPECT_THAT(log.Take(), ElementsAre());
}

template <class Range>
void ExpectDegenerate(const Range& range, ScopedLogCapture& log, const std::string& reason) {
  EXPECT_EQ(range.ScaleFactor(), 1.0) << reason;
  EXPECT_THAT(log.Take(), ElementsAre("ERROR Failed to calculate the scale factor because of invalid " + reason));
}

TEST(Range, ADegenerateRangeKeepsOneAndSaysWhy) {
  ScopedLogCapture log;
  constexpr double kTiny = std::numeric_limits<double>::denorm_min();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  // clang-format off
  ExpectDegenerate(IntegerRange(5, 5, 7, 7), log, "internal range [5, 5].");
  ExpectDegenerate(IntegerRange(0, 9, -7, -7), log, "external range [-7, -7].");
  ExpectDegenerate(LongIntegerRange(0x100000005, 0x100000005, 0, 1), log, "internal range [5, 5].");
  ExpectDegenerate(LongIntegerRange(0, 1, 0xFFFFFFFF, 0xFFFFFFFF), log, "external range [-1, -1].");
  ExpectDegenerate(FloatIntegerRange(1.5, 1.5, 0, 1), log, "double range [1.5, 1.5].");
  ExpectDegenerate(FloatIntegerRange(0, 1, 3, 3), log, "integer range [3, 3].");
  ExpectDegenerate(FloatIntegerRange(0, kInfinity, 0, 1), log, "double range [0, inf] or because invalid integer range [0, 1].");
  ExpectDegenerate(FloatRange(0.25, 0.25, 0, 1), log, "double range [0.25, 0.25].");
  ExpectDegenerate(FloatRange(0, 1, 2, 2), log, "external range [2, 2].");
  ExpectDegenerate(FloatRange(0, 1e10, 0, kTiny), log, "double range [0, 1e+10] or because invalid external range [0, 4.94066e-324].");
  // clang-format on
}

TEST(Range, ShowsItsNameAndBounds) {
  EXPECT_EQ(Shown(IntegerRange(0, 254, -1, 1)), "IntegerRange(0, 254, -1, 1)");
  EXPECT_EQ(Shown(LongIntegerRange(0, 4294967295, 0, 16777215)), "IntegerRange(0, 4294967295, 0, 16777215)");
  EXPECT_EQ(Shown(FloatIntegerRange(-100.5, 100, 0, 15)), "FloatIntegerRange(-100.5, 100, 0, 15)");
  EXPECT_EQ(Shown(FloatRange(-671088.64, 1, 2, 3)), "FloatRange(-671089, 1, 2, 3)");
}

TEST(Range, ScalesAndRoundsHalfAwayFromZeroWithinThirtyTwoBits) {
  const IntegerRange percent(0, 255, 0, 100);
  const IntegerRange halves(-10, 10, -5, 5);
  const IntegerRange wide(0, 1, kMin32, kMax32);  // held, not wrapped
  const std::tuple<const IntegerRange&, int, std::int32_t> cases[] = {
      {percent, 0, 0}, {percent, 255, 100}, {percent, 128, 50}, {halves, 1, 1},    {halves, -1, -1},
      {halves, 0, 0},  {wide, 0, kMin32},   {wide, 1, kMax32},  {wide, 2, kMax32}, {wide, -1, kMin32}};
  for (const auto& [range, value, expected] : cases) EXPECT_EQ(range.ToExternal(value), expected) << range << value;
}

TEST(Range, IsCarriedByCopiesOfACodec) {
  const KnxConverterInteger32BitSigned percent(IntegerRange(0, 255, 0, 100));
  const auto clone = percent.Clone();
  KnxStack::GroupValue groupValue;
  EXPECT_TRUE(clone->ToKnxValue({32, 13, 1}, TalTest::Integer(128), groupValue));
  EXPECT_EQ(TalTest::Wire(groupValue), "00 00 00 32/32");
  AROVALUE value;  // read back unscaled: 50 is within 0 to 255
  EXPECT_TRUE(clone->FromKnxValue({32, 13, 1}, groupValue, value));
  EXPECT_EQ(value, TalTest::Integer(50));
}

TEST(KnxWire, WritesNotADateTimeAsTheFirstOf1970WithoutAWeekday) {
  KnxStack::GroupValue groupValue;
  KnxWire::WriteDateTime(groupValue, boost::posix_time::ptime());
  EXPECT_EQ(TalTest::Wire(groupValue), "46 01 01 00 00 00 24 00/64");
}

}  // namespace
}  // namespace Tal
