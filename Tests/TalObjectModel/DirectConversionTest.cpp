#include <Tal/GroupValueAroValue.h>
#include <gmock/gmock.h>

#include <boost/algorithm/string/join.hpp>
#include <stdexcept>

#include "Support/Cases.h"
#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;
using Tal::AroValueToGroupValue;
using Tal::GroupValueToAroValue;

unsigned long Number(const std::string& dpt) {
  const KNXDPT parts = ReadDpt(dpt);
  return Dpt(parts.main, parts.sub);
}

/// What a conversion comes to: what it gives ("with records" when it leaves any at @p level or above), else its last
/// record or, with @p all, its records ("nothing" without), or what it throws.
template <class Convert>
std::string Outcome(Tal::LogLevel level, bool all, Convert convert) {
  ScopedLogCapture log(level);
  try {
    const std::string given = convert();
    if (!given.empty()) return log.Take().empty() ? given : given + " with records";
  } catch (const std::out_of_range& error) {
    return std::string("throws ") + error.what();
  }
  const auto records = log.Take();
  return records.empty() ? "nothing" : all ? boost::algorithm::join(records, " / ") : records.back();
}
std::string Written(const std::string& dpt, const AROVALUE& value) {
  return Outcome(Tal::LogLevel::Debug, true, [&] {
    const auto groupValue = AroValueToGroupValue(value, Number(dpt));
    return groupValue ? Wire(*groupValue) : std::string();
  });
}
std::string Read(const std::string& dpt, const GroupValue& groupValue) {
  return Outcome(Tal::LogLevel::Warn, false, [&] {
    std::string text;
    if (const auto value = GroupValueToAroValue(groupValue, Number(dpt))) value->Serialize(text, false);
    return text;
  });
}

TEST(DirectConversion, WritesTheOctetsOfEveryMainTypeAndReadsThemBackWithoutARecord) {
  const auto write = [](const Case& c) {
    for (const char* sub : {".1", ".65535"}) EXPECT_EQ(Written(c[0] + sub, Value(c[1])), c[2]);  // no part of it
  };
  ForEachCase("Direct.txt", "out only", write);
  ForEachCase("Direct.txt", "there and back", [&](const Case& c) {
    write(c);
    std::string text;
    Value(c[1]).Serialize(text, false);
    EXPECT_EQ(Read(c[0] + ".1", Octets(c[2])), text + (c[3].empty() ? "" : " " + c[3]));
  });
}

TEST(AroValueToGroupValue, RefusesWithOneRecordOrInSilenceAndLetsTheCalendarsErrorsOut) {
  ForEachCase("Direct.txt", "refused values", [](const Case& c) { EXPECT_EQ(Written(c[0], Value(c[1])), c[2]); });
}

TEST(AroValueToGroupValue, TakesOneTypeForEachMainTypeThatItEncodes) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  std::vector<unsigned> encoded;
  for (unsigned main = 0; main <= 300; ++main) {
    for (int type = avtEmpty; type <= 20; ++type) {
      const AROVALUE value = Timed(static_cast<AroValueType>(type), Time(2023, 1, 1, 0, 0, 0));
      if (Tal::AroValueToGroupValue(value, Dpt(main))) encoded.push_back(main);
    }
  }
  EXPECT_THAT(encoded, testing::ElementsAre(1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                            23, 26, 27, 217, 232, 234, 237, 238));
}

TEST(AroValueToGroupValue, NamesItselfInItsRecords) {
  ScopedLogCapture log;
  AroValueToGroupValue(Value("7=8:65536"), Dpt(7));
  const auto records = log.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_THAT(records[0].text, testing::MatchesRegex("AroValueToGroupValue\\(TalObjectModel/GroupValueAroValue:[0-9]+"
                                                     "\\) - Value out of range: 65536 \\(DPT 7\\)"));
  EXPECT_EQ(records[0].file, "TalObjectModel/GroupValueAroValue");
#if defined(__GNUC__) && !defined(__clang__) && !defined(__arm__)  // each compiler writes signatures its own way
  EXPECT_EQ(records[0].function,
            "boost::optional<KnxStack::GroupValue> Tal::AroValueToGroupValue(const AROVALUE&, long unsigned int)");
#endif
}

TEST(GroupValueToAroValue, ReadsOrRefusesAndSaysWhyInItsLastRecord) {
  for (const char* section : {"read", "refused octets"}) {
    ForEachCase("Direct.txt", section, [](const Case& c) { EXPECT_EQ(Read(c[0], Octets(c[1])), c[2]); });
  }
  // America/Lima skipped the first hour of 1990: the value is what mktime() makes of it there.
  EXPECT_THAT(Read("11.1", Octets("01 01 5A")),
              testing::AnyOf("11:1990 1 1 0 0 0 0 1 0 0 0", "11:1990 1 1 1 0 0 0 1 0 0 0"));
}

TEST(CheckGroupValue, SaysWhetherTheMapDecodesAndWhat) {
  EXPECT_TRUE(Tal::CheckGroupValue(Octets("0C 1A"), Dpt(9)));
  EXPECT_TRUE(Tal::CheckGroupValue(Octets("01/5"), Dpt(1)));
  EXPECT_TRUE(Tal::CheckGroupValue(Octets("01 02 03"), Dpt(22)));  // not in the table: taken for valid
  EXPECT_TRUE(Tal::CheckGroupValue(Octets("1F 04 17"), Dpt(11)));
  EXPECT_FALSE(Tal::CheckGroupValue(Octets("0C"), Dpt(9)));
  const bool isWide = sizeof(unsigned long) > 4;  // else there is no such number
  EXPECT_FALSE(isWide && Tal::CheckGroupValue(Octets("07"), static_cast<unsigned long>(0x100000000ull) | Dpt(5)));
  ScopedLogCapture log;
  Tal::CheckGroupValue(Octets("00/260"), Dpt(16, 1));
  EXPECT_THAT(log.Records().at(0).text, testing::StartsWith("CheckGroupValue(TalObjectModel/GroupValueAroValue:"));
  EXPECT_THAT(log.Take(), testing::ElementsAre(
                              "DEBUG DPT is 16.1 with bit size 4",  // a datapoint type's size has 8 bits
                              "ERROR Failed to convert a GroupValue for DPT 16.1 because of unexpected bit size: 260, "
                              "expected: 112"));
}

}  // namespace
}  // namespace TalTest
