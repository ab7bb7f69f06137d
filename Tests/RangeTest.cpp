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
  EXPECT_EQ(IntegerRange(0, 255, 0, 100).ScaleFactor(), 100.0 / 255.0);
  EXPECT_EQ(IntegerRange(kMin32, kMax32, kMin32, kMax32).ScaleFactor(), 1.0);
  EXPECT_EQ(LongIntegerRange(0, 4294967295, 0, 1).ScaleFactor(), 1 / 4294967295.0);
  EXPECT_EQ(LongIntegerRange(kMin64, kMax64, 0, 1).ScaleFactor(), 1 / 18446744073709551616.0);
  EXPECT_EQ(LongIntegerRange(kMax64 - 10, kMax64, 0, 100).ScaleFactor(), 10.0);
  EXPECT_EQ(LongIntegerRange(kMin64 + 10, kMin64, 0, 100).ScaleFactor(), -10.0);
  EXPECT_EQ(FloatIntegerRange(-100, 100, 0, 15).ScaleFactor(), 15.0 / 200.0);
  EXPECT_EQ(FloatIntegerRange().ScaleFactor(), 4294967295.0 / (670760.96 + 671088.64));
  EXPECT_EQ(FloatRange(10, -10, 5, 0).ScaleFactor(), 0.25);  // either order of bounds
  EXPECT_THAT(log.Take(), ElementsAre());
}

TEST(Range, ADegenerateRangeKeepsOneAndSaysWhy) {
  ScopedLogCapture log;
  const std::string failed = "ERROR Failed to calculate the scale factor because of invalid ";
  const double tiny = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(IntegerRange(5, 5, 7, 7).ScaleFactor(), 1.0);
  EXPECT_EQ(IntegerRange(0, 9, -7, -7).ScaleFactor(), 1.0);
  EXPECT_EQ(LongIntegerRange(0x100000005, 0x100000005, 0, 1).ScaleFactor(), 1.0);
  EXPECT_EQ(LongIntegerRange(0, 1, 0xFFFFFFFF, 0xFFFFFFFF).ScaleFactor(), 1.0);
  EXPECT_EQ(FloatIntegerRange(1.5, 1.5, 0, 1).ScaleFactor(), 1.0);
  EXPECT_EQ(FloatIntegerRange(0, 1, 3, 3).ScaleFactor(), 1.0);
  EXPECT_EQ(FloatIntegerRange(0, std::numeric_limits<double>::infinity(), 0, 1).ScaleFactor(), 1.0);
  EXPECT_EQ(FloatRange(0.25, 0.25, 0, 1).ScaleFactor(), 1.0);
  EXPECT_EQ(FloatRange(0, 1, 2, 2).ScaleFactor(), 1.0);
  EXPECT_EQ(FloatRange(0, 1e10, 0, tiny).ScaleFactor(), 1.0);
  EXPECT_THAT(log.Take(),
              ElementsAre(failed + "internal range [5, 5].", failed + "external range [-7, -7].",
                          failed + "internal range [5, 5].", failed + "external range [-1, -1].",
                          failed + "double range [1.5, 1.5].", failed + "integer range [3, 3].",
                          failed + "double range [0, inf] or because invalid integer range [0, 1].",
                          failed + "double range [0.25, 0.25].", failed + "external range [2, 2].",
                          failed + "double range [0, 1e+10] or because invalid external range [0, 4.94066e-324]."));
}

TEST(Range, ShowsItsNameAndBounds) {
  EXPECT_EQ(Shown(IntegerRange(0, 254, -1, 1)), "IntegerRange(0, 254, -1, 1)");
  EXPECT_EQ(Shown(LongIntegerRange(0, 4294967295, 0, 16777215)), "IntegerRange(0, 4294967295, 0, 16777215)");
  EXPECT_EQ(Shown(FloatIntegerRange(-100.5, 100, 0, 15)), "FloatIntegerRange(-100.5, 100, 0, 15)");
  EXPECT_EQ(Shown(FloatRange(-671088.64, 1, 2, 3)), "FloatRange(-671089, 1, 2, 3)");
}

TEST(Range, ScalesAndRoundsHalfAwayFromZeroWithinThirtyTwoBits) {
  const IntegerRange percent(0, 255, 0, 100);
  EXPECT_EQ(percent.ToExternal(0), 0);
  EXPECT_EQ(percent.ToExternal(255), 100);
  EXPECT_EQ(percent.ToExternal(128), 50);
  const IntegerRange halves(-10, 10, -5, 5);
  EXPECT_EQ(halves.ToExternal(1), 1);
  EXPECT_EQ(halves.ToExternal(-1), -1);
  EXPECT_EQ(halves.ToExternal(0), 0);
  const IntegerRange wide(0, 1, kMin32, kMax32);
  EXPECT_EQ(wide.ToExternal(0), kMin32);
  EXPECT_EQ(wide.ToExternal(1), kMax32);
  EXPECT_EQ(wide.ToExternal(2), kMax32);  // held, not wrapped
  EXPECT_EQ(wide.ToExternal(-1), kMin32);
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
