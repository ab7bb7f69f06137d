#include <Tal/MeasureDuration.h>
#include <gmock/gmock.h>

#include "Support/LogCapture.h"

namespace TalTest {
namespace {

using boost::chrono::hours;
using boost::chrono::milliseconds;
using Tal::LogLevel;

// The numbers are Boost.Timer's, written with the process's decimal point.
constexpr char kLine[] =
    "It took [0-9][.,][0-9]{6}s wall, [0-9][.,][0-9]{6}s user \\+ [0-9][.,][0-9]{6}s system = [0-9][.,][0-9]{6}s CPU "
    "\\((n/a|[0-9]+[.,][0-9])%\\)";

TEST(MeasureDuration, WritesOneDebugRecordWithoutAThreshold) {
  ScopedLogCapture log;
  { const Tal::MeasureDuration duration("It took "); }
  const auto records = log.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Debug);
  EXPECT_THAT(records[0].message, testing::MatchesRegex(kLine));
  EXPECT_EQ(records[0].file, "Include/Tal/MeasureDuration");
  EXPECT_THAT(records[0].text, testing::StartsWith("~MeasureDuration("));
}

TEST(MeasureDuration, WithAThresholdReportsOnlyWhatTookAsLongAtInfo) {
  ScopedLogCapture log;
  { const Tal::MeasureDuration fast("It took ", hours(1)); }
  EXPECT_TRUE(log.Records().empty());
  { const Tal::MeasureDuration slow("It took ", milliseconds(0)); }
  EXPECT_THAT(log.Take(), testing::ElementsAre(testing::MatchesRegex(std::string("INFO ") + kLine)));
}

}  // namespace
}  // namespace TalTest
