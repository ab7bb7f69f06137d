#include <Tal/KnxValueConverter.h>
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;
using Tal::KnxValueConverter;
using testing::ElementsAre;
using testing::IsEmpty;

AroValueType Type(int number) { return static_cast<AroValueType>(number); }

class Converter : public testing::Test {
 protected:
  Converter() { m_converter.Init(); }

  /// "main.sub" of the row that serves a datapoint type; "fallback" without one.
  std::string Served(std::uint16_t main, std::uint16_t sub, std::uint8_t size = 0) {
    const Tal::DptValueEntry& entry = m_converter.GetEntry({size, main, sub});
    if (entry.GetValueType() == avtEmpty) return "fallback";
    return std::to_string(entry.GetDpt().main) + '.' + std::to_string(entry.GetDpt().sub);
  }
  /// The result, the wire and the completed datapoint type.
  std::string Encoded(KNXDPT dpt, const AROVALUE& value) {
    GroupValue groupValue;
    const bool done = m_converter.ToKnxValue(dpt, value, groupValue);
    return (done ? "true " : "false ") + Wire(groupValue) + Completed(dpt);
  }
  std::string Decoded(KNXDPT dpt, const GroupValue& groupValue) {
    AROVALUE value = Text("before");
    const bool done = m_converter.FromKnxValue(dpt, groupValue, value);
    std::string text;
    value.Serialize(text, false);
    return (done ? "true " : "false ") + text + Completed(dpt);
  }
  static std::string Completed(const KNXDPT& dpt) {
    return " as " + std::to_string(dpt.main) + '.' + std::to_string(dpt.sub) + '/' + std::to_string(dpt.size);
  }

  KnxValueConverter m_converter;
};

TEST_F(Converter, LooksUpExactlyThenTheMainTypeThenFallsBackWithARecord) {
  ScopedLogCapture log;
  EXPECT_EQ(Served(9, 1), "9.1");
  EXPECT_EQ(Served(9, 9), "9.0");
  EXPECT_EQ(Served(9, 0), "9.0");
  EXPECT_EQ(Served(5, 10), "5.0");
  EXPECT_EQ(Served(20, 102), "20.102");
  EXPECT_EQ(Served(20, 105), "20.0");
  EXPECT_EQ(Served(9, 1, 8), "9.1");  // the size plays no part
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_EQ(Served(22, 1), "fallback");
  EXPECT_EQ(Served(0, 0), "fallback");
  EXPECT_THAT(log.Take(), ElementsAre("ERROR No Entry found for DPT = 22.1", "ERROR No Entry found for DPT = 0.0"));
  // A main type without a row for the whole of it.
  const Tal::KnxConverter& codec = *m_converter.GetEntry({0, 5, 0}).GetConverter();
  EXPECT_TRUE(m_converter.AddDptValueMapEntry(300, 7, 8, avtByte, AroDP::astGeneric, codec));
  EXPECT_EQ(Served(300, 7), "300.7");
  EXPECT_EQ(Served(300, 8), "fallback");
  EXPECT_EQ(Served(300, 0), "fallback");
  EXPECT_THAT(log.Take(), ElementsAre("ERROR No Entry found for DPT = 300.x", "ERROR No Entry found for DPT = 300.0"));
}

TEST_F(Converter, HoldsFiftyThreeRowsInTheOrderOfTheTableUnder27MainTypes) {
  const auto rows = Tal::DescribeDptTable();
  EXPECT_EQ(rows.size(), 53u);
  EXPECT_EQ(rows[50].dpt.main, 236);
  EXPECT_EQ(rows[51].dpt.main, 232);
  std::vector<std::uint16_t> mains;
  for (const auto& row : rows) {
    if (row.dpt.sub == 0) mains.push_back(row.dpt.main);
    EXPECT_EQ(Served(row.dpt.main, row.dpt.sub), std::to_string(row.dpt.main) + '.' + std::to_string(row.dpt.sub));
    EXPECT_EQ(Tal::DescribeExpectedBits(row.dpt.main), unsigned{row.dpt.size});
  }
  EXPECT_EQ(mains.size(), 27u);
  EXPECT_EQ(Tal::DescribeExpectedBits(24), boost::none);
  EXPECT_EQ(Tal::DescribeExpectedBits(199), 0u);
}

TEST_F(Converter, KeepsTheFirstOfTwoRowsAndItsTableToItself) {
  const Tal::KnxConverter& other = *m_converter.GetEntry({0, 20, 102}).GetConverter();
  EXPECT_TRUE(m_converter.AddDptValueMapEntry(9, 1, 8, avtByte, AroDP::astGeneric, other));
  EXPECT_EQ(m_converter.GetEntry({0, 9, 1}).GetValueType(), avtFloat);
  EXPECT_TRUE(m_converter.AddDptValueMapEntry(9, 99, 8, avtByte, AroDP::astScene, other));
  EXPECT_EQ(Served(9, 99), "9.99");
  EXPECT_NE(m_converter.GetEntry({0, 9, 99}).GetConverter(), &other);  // a clone
  KnxValueConverter second;
  second.Init();
  EXPECT_EQ(second.GetEntry({0, 9, 99}).GetDpt().sub, 0);
  m_converter.Init();
  EXPECT_EQ(Served(9, 99), "9.0");
}

TEST_F(Converter, ChoosesADatapointTypeForAValueAndKeepsItOnFailure) {
  ScopedLogCapture log(Tal::LogLevel::Info);
  EXPECT_EQ(Encoded({0, 0, 0}, Float(21)), "true 0C 1A/16 as 9.0/16");
  EXPECT_EQ(Encoded({32, 0, 0}, Float(1)), "true 3F 80 00 00/32 as 14.0/16");
  EXPECT_EQ(Encoded({99, 0, 0}, Bool(true)), "true 01/1 as 1.1/1");
  EXPECT_EQ(Encoded({0, 0, 0}, Byte(7)), "true 07/8 as 5.0/8");
  EXPECT_EQ(Encoded({0, 0, 0}, Integer(-1)), "true FF FF FF FF/32 as 13.0/32");
  EXPECT_EQ(Encoded({8, 0, 0}, Integer(-1)), "true FF/8 as 6.0/8");
  EXPECT_EQ(Encoded({16, 0, 0}, Integer(-1)), "true FF FF/16 as 8.0/16");
  EXPECT_EQ(Encoded({0, 0, 0}, Typed(Type(14))), "true 00 00 00 00/32 as 13.100/32");
  EXPECT_EQ(Encoded({0, 0, 0}, DWord(1)), "true 00 00 00 01/32 as 12.1/32");
  EXPECT_EQ(Encoded({8, 0, 0}, Text("A")), "true 41/8 as 4.1/8");
  EXPECT_EQ(Encoded({112, 0, 0}, Text("")), "true 00 00 00 00 00 00 00 00 00 00 00 00 00 00/112 as 16.0/8");
  EXPECT_EQ(Encoded({0, 0, 0}, Text("")), "true 00 00 00 00 00 00 00 00 00 00 00 00 00 00/112 as 16.1/112");
  EXPECT_EQ(Encoded({0, 0, 0}, Timed(avtDate, Time(1990, 1, 1, 0, 0, 0))), "true 01 01 5A/24 as 11.1/24");
  EXPECT_EQ(Encoded({0, 0, 0}, Timed(avtTime, Time(0, 0, 0, 1, 2, 3))), "true 01 02 03/24 as 10.1/24");
  EXPECT_EQ(Encoded({0, 0, 0}, Timed(avtDateTime, Time(2023, 1, 1, 12, 30, 15))),
            "true 7B 01 01 EC 1E 0F 20 00/64 as 19.1/64");
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_EQ(Encoded({4, 0, 0}, Float(1)), "false /0 as 3.0/4");   // by type and size, then refused by the codec
  EXPECT_EQ(Encoded({16, 0, 0}, Word(1)), "false /0 as 9.0/16");  // by size
  EXPECT_EQ(Encoded({0, 0, 0}, Word(1)), "false /0 as 0.0/0");
  EXPECT_THAT(log.Take(), ElementsAre("ERROR Wrong aro value type (avtByte) or DPT main number (3.x)!",
                                      "ERROR Convert to KNX value failed for DPT = 3.0 val = 1",
                                      "ERROR Invalid value type found for DPT = 9.0 val.avt=7",
                                      "INFO Could not find DPT for bit size 0"));
  EXPECT_EQ(Encoded({5, 0, 0}, Typed(Type(9))), "true /0 as 218.0/40");  // which has no row
}

TEST_F(Converter, ChoosesADatapointTypeForAGroupValueByItsSize) {
  const std::tuple<unsigned, KNXDPT, const char*> cases[] = {
      {1, {}, "1.1/0"},    {2, {}, "2.1/0"},   {4, {}, "3.7/0"},    {8, {}, "5.0/0"},
      {16, {}, "9.0/0"},   {24, {}, "10.1/0"}, {32, {}, "14.0/0"},  {40, {}, "218.0/0"},
      {48, {}, "219.1/0"}, {64, {}, "19.1/0"}, {112, {}, "16.1/0"}, {16, {8, 0, 0}, "5.0/8"}};
  const KnxStack::BinaryData octets{0x0C, 0x1A, 0, 0, 0, 0, 0, 0};
  for (const auto& [size, dpt, completed] : cases) {
    EXPECT_THAT(Decoded(dpt, GroupValue(octets, size)), testing::EndsWith(std::string(" as ") + completed));
  }
  ScopedLogCapture log;
  EXPECT_EQ(Decoded({}, GroupValue({1}, 7)), "false 10:before as 0.0/0");
  EXPECT_THAT(log.Take(), ElementsAre("INFO Could not find DPT for bit size 7",
                                      "ERROR Convert from KNX value failed. Missing DPT. GroupValue = 01"));
}

TEST_F(Converter, ComparesSizesAndTreatsShortOnesAlike) {
  ScopedLogCapture log(Tal::LogLevel::Info);
  for (const unsigned size : {0u, 1u, 6u}) EXPECT_EQ(Decoded({0, 1, 1}, GroupValue({1}, size)), "true 2:1 as 1.1/0");
  EXPECT_EQ(Decoded({0, 9, 1}, GroupValue({0x0C, 0x1A}, 16)), "true 3:21 as 9.1/0");
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_EQ(Decoded({0, 1, 1}, GroupValue({1}, 7)), "false 2:0 as 1.1/0");
  EXPECT_EQ(Decoded({0, 9, 1}, GroupValue({0x0C, 0x1A}, 6)), "false 3:0 as 9.1/0");
  EXPECT_EQ(Decoded({0, 16, 0}, GroupValue({'A'}, 6)), "false 10:before as 16.0/0");
  const std::string failed = "ERROR Failed to convert a GroupValue for DPT ";
  EXPECT_THAT(log.Take(), ElementsAre(failed + "1.1 because of unexpected bit size: 7, expected: 1",
                                      failed + "9.1 because of unexpected bit size: 6, expected: 16",
                                      failed + "16.0 because of unexpected bit size: 6, expected: 112"));
}

TEST_F(Converter, GivesVariableSizesToTheirCodecButNoOctetsOfAShortForm) {
  const Tal::KnxConverter& codec = *m_converter.GetEntry({0, 5, 0}).GetConverter();
  m_converter.AddDptValueMapEntry(24, 1, 0, avtByte, AroDP::astGeneric, codec);
  EXPECT_EQ(Decoded({0, 24, 1}, GroupValue({7, 8, 9}, 123)), "true 6:7 as 24.1/0");
  ScopedLogCapture log(Tal::LogLevel::Info);
  EXPECT_EQ(Decoded({0, 24, 1}, GroupValue({7}, 6)), "false 6:0 as 24.1/0");
  EXPECT_THAT(log.Take(), ElementsAre("ERROR Exception caught during conversion of GroupValue: "
                                      "Octet 0 is missing: there are 0 octets"));
}

TEST_F(Converter, TakesUnknownDatapointTypesForValidAndWritesNothing) {
  ScopedLogCapture log;
  EXPECT_EQ(Encoded({0, 22, 1}, Word(1)), "true /0 as 22.1/0");
  EXPECT_EQ(Decoded({0, 22, 1}, GroupValue({1}, 77)), "true 1: as 22.1/0");
  const std::string noEntry = "ERROR No Entry found for DPT = 22.1";
  const std::string valid = "ERROR Assume validity and accept value!";
  EXPECT_THAT(log.Take(), ElementsAre(noEntry, noEntry, valid, noEntry, noEntry, valid));
  KnxValueConverter empty;  // before Init() every type is unknown
  GroupValue groupValue;
  KNXDPT dpt{0, 9, 1};
  EXPECT_TRUE(empty.ToKnxValue(dpt, Float(1), groupValue));
  EXPECT_EQ(Wire(groupValue), "/0");
}

TEST_F(Converter, ComparesValueTypes) {
  const std::vector<std::vector<int>> families = {
      {3, 1005, 1036, 1037, 1039}, {4, 14}, {6, 1021}, {7, 8, 20}, {11, 105}, {12, 104}};
  const std::vector<int> all = {0,  1,  2,  3,   4,   5,   6,   7,    8,    9,    10,   11,  12,
                                13, 14, 20, 102, 104, 105, 201, 1005, 1021, 1036, 1037, 1039};
  for (const int value : all) {
    for (const int entry : all) {
      bool expected = value == entry;
      for (const auto& family : families) {
        const auto has = [&](int type) { return std::count(family.begin(), family.end(), type) == 1; };
        expected = expected || (has(value) && has(entry));
      }
      const bool isMoment = value == 13 || value == 102 || value == 201;
      const bool isCalendar =
          (entry >= 11 && entry <= 13) || entry == 102 || entry == 104 || entry == 105 || entry == 201;
      EXPECT_EQ(m_converter.AreValueTypesCompatible(Type(value), Type(entry)), expected || (isMoment && isCalendar))
          << value << ' ' << entry;
    }
  }
  EXPECT_EQ(Encoded({0, 9, 1}, Typed(avtInvalid)), "true 5E 40/16 as 9.1/0");  // no value suits every row
}

TEST_F(Converter, FindsAddedRowsHoweverManyThereAreAndWhereverTheyStand) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  const Tal::KnxConverter& codec = *m_converter.GetEntry({0, 5, 1}).GetConverter();
  for (const std::uint16_t main : std::initializer_list<std::uint16_t>{99, 255, 256, 60000}) {
    for (std::uint16_t sub = 99; sub < 100; sub = static_cast<std::uint16_t>(sub - 2)) {  // odd ones, the largest first
      m_converter.AddDptValueMapEntry(main, sub, 8, avtByte, AroDP::astGeneric, codec);
    }
    const auto found = [&](std::uint16_t sub) { return m_converter.GetEntry({0, main, sub}).GetDpt(); };
    EXPECT_EQ(found(2).main, 0) << main;  // the fallback
    m_converter.AddDptValueMapEntry(main, 0, 8, avtWord, AroDP::astGeneric, codec);
    for (std::uint16_t sub = 0; sub <= 101; ++sub) {
      EXPECT_EQ(found(sub).main, main);
      EXPECT_EQ(found(sub).sub, sub % 2 != 0 && sub < 100 ? sub : 0) << main;
    }
  }
}

/// Throws what it is told to.
class ThrowingCodec final : public Tal::KnxConverter {
 public:
  explicit ThrowingCodec(bool known) : m_known(known) {}
  bool ToKnxValue(const KNXDPT&, const AROVALUE&, GroupValue&) override { Throw(); }
  bool FromKnxValue(const KNXDPT&, const GroupValue&, AROVALUE&) override { Throw(); }
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<ThrowingCodec>(*this); }

 private:
  [[noreturn]] void Throw() {
    if (m_known) throw std::runtime_error("codec");
    throw 1;
  }
  bool m_known;
};

TEST_F(Converter, StopsEveryException) {
  m_converter.AddDptValueMapEntry(31, 1, 3, avtByte, AroDP::astGeneric, ThrowingCodec(true));
  m_converter.AddDptValueMapEntry(31, 2, 3, avtByte, AroDP::astGeneric, ThrowingCodec(false));
  ScopedLogCapture log;
  EXPECT_EQ(Encoded({0, 31, 1}, Byte(1)), "false /0 as 31.1/0");
  EXPECT_EQ(Decoded({0, 31, 2}, GroupValue({1}, 6)), "false 6:0 as 31.2/0");
  EXPECT_EQ(Encoded({0, 9, 1}, Float(670760.0)), "true 7F FE/16 as 9.1/0");
  EXPECT_EQ(Decoded({0, 7, 1}, GroupValue({1}, 16)), "false 7:0 as 7.1/0");
  std::vector<std::string> errors;
  for (const std::string& line : log.Take()) {
    if (line[0] == 'E') errors.push_back(line);
  }
  EXPECT_THAT(errors, ElementsAre("ERROR Exception caught during conversion of AROVALUE to GroupValue: codec",
                                  "ERROR Exception caught during conversion of GroupValue: unknown exception",
                                  "ERROR Exception caught during conversion of GroupValue: "
                                  "Octet 1 is missing: there are 1 octets"));
}

TEST_F(Converter, ServesSeveralThreads) {
  std::vector<std::thread> threads;
  std::atomic<unsigned> good{0};
  for (unsigned thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&, thread] {
      for (unsigned i = 0; i < 2000; ++i) {
        KNXDPT dpt{0, 12, 1};
        GroupValue groupValue;
        AROVALUE value;
        const AROVALUE sent = DWord(thread << 16 | i);
        const bool done =
            m_converter.ToKnxValue(dpt, sent, groupValue) && m_converter.FromKnxValue(dpt, groupValue, value);
        if (done && value == sent) ++good;
        KnxValueConverter own;
        own.Init();
        if (own.FromKnxValue(dpt, groupValue, value) && value == sent) ++good;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 16000u);
}

TEST(TalKnxValueConverter, ConvertsSerialisedTextBothWays) {
  Tal::TalKnxValueConverter converter;
  converter.Init();
  GroupValue groupValue;
  EXPECT_TRUE(converter.ToKnxValue("2:1", 1, groupValue));
  EXPECT_EQ(Wire(groupValue), "01/1");
  EXPECT_TRUE(converter.ToKnxValue("3.7:21", 0x110, groupValue));  // the low 8 bits are a size, not a datapoint type
  EXPECT_EQ(Wire(groupValue), "0C 1A/16");
  KNXDPT dpt{0, 12, 1};
  EXPECT_TRUE(converter.ToKnxValue(dpt, std::string("8:7"), groupValue));
  EXPECT_EQ(Wire(groupValue), "00 00 00 07/32");
  EXPECT_FALSE(converter.ToKnxValue(dpt, std::string("hello"), groupValue));  // counts as a value of type avtEmpty
  EXPECT_TRUE(converter.ToKnxValue(dpt, DWord(9), groupValue));
  AROVALUE value;
  EXPECT_TRUE(converter.FromKnxValue(dpt, groupValue, value));
  EXPECT_EQ(value, DWord(9));
  std::string text = "before";
  EXPECT_FALSE(converter.FromKnxValue(GroupValue({1}, 7), text, false));
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(converter.FromKnxValue(GroupValue({0x0C, 0x1A}, 16), text, false));
  EXPECT_EQ(text, "3:21");
  EXPECT_TRUE(converter.FromKnxValue(GroupValue({0x0C, 0x1A}, 16), text, true));
  EXPECT_EQ(text, "3.7:21");
}

TEST(DptValueMap, SharesRowsWithoutDependingOnWhereTheyCameFrom) {
  const Tal::DptValueEntry row({8, 300, 7}, avtByte, AroDP::astGeneric, nullptr);
  const Tal::DptValueEntry other({8, 300, 8}, avtWord, AroDP::astGeneric, nullptr);
  Tal::DptValueMap map;
  {
    Tal::DptValueMap source;
    source.Insert(row);
    source.ShareRowsOf(source);
    map.ShareRowsOf(source);
    source.Insert(other);
    EXPECT_EQ(source.Rows().at(300).size(), 2u);
    source.Clear();
  }
  EXPECT_EQ(map.Rows().at(300).size(), 1u);
  EXPECT_EQ(map.GetEntry({8, 300, 7}).GetValueType(), avtByte);
}

}  // namespace
}  // namespace TalTest
