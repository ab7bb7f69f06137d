#include <Tal/KnxValueConverter.h>
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <atomic>
#include <boost/algorithm/string/join.hpp>
#include <set>
#include <stdexcept>
#include <thread>

#include "Support/Cases.h"
#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using KnxStack::GroupValue;
using Tal::KnxValueConverter;

AroValueType Type(int number) { return static_cast<AroValueType>(number); }

/// Throws what it is told to.
struct ThrowingCodec final : Tal::KnxConverter {
  explicit ThrowingCodec(bool k) : known(k) {}
  bool ToKnxValue(const KNXDPT&, const AROVALUE&, GroupValue&) override { Throw(); }
  bool FromKnxValue(const KNXDPT&, const GroupValue&, AROVALUE&) override { Throw(); }
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<ThrowingCodec>(*this); }
  [[noreturn]] void Throw() const { known ? throw std::runtime_error("codec") : throw 1; }
  bool known;
};

class Converter : public testing::Test {
 protected:
  Converter() {
    m_converter.Init();
    const Tal::KnxConverter& codec = *m_converter.GetEntry({0, 5, 0}).GetConverter();
    EXPECT_TRUE(m_converter.AddDptValueMapEntry(24, 1, 0, avtByte, AroDP::astGeneric, codec));
    EXPECT_TRUE(m_converter.AddDptValueMapEntry(300, 7, 8, avtByte, AroDP::astGeneric, codec));
    EXPECT_TRUE(m_converter.AddDptValueMapEntry(31, 1, 3, avtByte, AroDP::astGeneric, ThrowingCodec(true)));
    EXPECT_TRUE(m_converter.AddDptValueMapEntry(31, 2, 3, avtByte, AroDP::astGeneric, ThrowingCodec(false)));
  }

  /// "main.sub" of the row that serves a datapoint type; "fallback" without one.
  std::string Served(const KNXDPT& dpt) {
    const Tal::DptValueEntry& entry = m_converter.GetEntry(dpt);
    if (entry.GetValueType() == avtEmpty) return "fallback";
    return std::to_string(entry.GetDpt().main) + '.' + std::to_string(entry.GetDpt().sub);
  }
  static std::string Result(bool done, const std::string& shown, const KNXDPT& completed) {
    return (done ? "true " : "false ") + shown + " as " + std::to_string(completed.main) + '.' +
           std::to_string(completed.sub) + '/' + std::to_string(completed.size);
  }

  KnxValueConverter m_converter;
};

TEST_F(Converter, LooksUpExactlyThenTheMainTypeThenFallsBackWithARecord) {
  ForEachCase("Table.txt", "look-up", [&](const Case& c) {
    ScopedLogCapture log;
    EXPECT_EQ(Served(ReadDpt(c[0])), c[1]);
    EXPECT_EQ(boost::algorithm::join(log.Take(), " / "), c[2]);
  });
}

TEST_F(Converter, EncodesOrRefusesWithItsRecordsAndCompletesTheDatapointType) {
  ForEachCase("Table.txt", "encode", [&](const Case& c) {
    ScopedLogCapture log(Tal::LogLevel::Info);
    KNXDPT dpt = ReadDpt(c[0]);
    GroupValue groupValue;
    const bool done = m_converter.ToKnxValue(dpt, Value(c[1]), groupValue);
    EXPECT_EQ(Result(done, Wire(groupValue), dpt), c[2]);
    EXPECT_EQ(boost::algorithm::join(log.Take(), " / "), c[3]);
  });
}

TEST_F(Converter, DecodesOrRefusesWithItsRecordsAndCompletesTheDatapointType) {
  ForEachCase("Table.txt", "decode", [&](const Case& c) {
    ScopedLogCapture log(Tal::LogLevel::Info);
    KNXDPT dpt = ReadDpt(c[0]);
    AROVALUE value = Text("before");
    const bool done = m_converter.FromKnxValue(dpt, Octets(c[1]), value);
    std::string text;
    value.Serialize(text, false);
    EXPECT_EQ(Result(done, text, dpt), c[2]);
    EXPECT_EQ(boost::algorithm::join(log.Take(), " / "), c[3]);
  });
}

TEST(KnxValueConverter, KnowsNoDatapointTypeBeforeInit) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  KnxValueConverter empty;
  GroupValue groupValue;
  KNXDPT dpt{0, 9, 1};
  EXPECT_TRUE(empty.ToKnxValue(dpt, Float(1), groupValue));
  EXPECT_EQ(Wire(groupValue), "/0");
}

TEST_F(Converter, HoldsAtLeastTheStandardRowsIn236Before232) {
  const auto rows = Tal::DescribeDptTable();
  EXPECT_GE(rows.size(), 53u);
  std::vector<std::uint16_t> mains;
  for (const auto& row : rows) {
    if (row.dpt.sub == 0) mains.push_back(row.dpt.main);
    EXPECT_EQ(Served(row.dpt), std::to_string(row.dpt.main) + '.' + std::to_string(row.dpt.sub));
    EXPECT_EQ(Tal::DescribeExpectedBits(row.dpt.main), unsigned{row.dpt.size});
  }
  EXPECT_GE(mains.size(), 27u);
  EXPECT_THAT(mains, testing::Contains(236));
  EXPECT_EQ(*std::next(std::find(mains.begin(), mains.end(), 236)), 232);
  EXPECT_EQ(Tal::DescribeExpectedBits(24), boost::none);
  EXPECT_EQ(Tal::DescribeExpectedBits(199), 0u);
}

TEST_F(Converter, KeepsTheFirstOfTwoRowsAndItsTableToItself) {
  const Tal::KnxConverter& other = *m_converter.GetEntry({0, 20, 102}).GetConverter();
  EXPECT_TRUE(m_converter.AddDptValueMapEntry(9, 1, 8, avtByte, AroDP::astGeneric, other));
  EXPECT_EQ(m_converter.GetEntry({0, 9, 1}).GetValueType(), avtFloat);
  EXPECT_TRUE(m_converter.AddDptValueMapEntry(9, 99, 8, avtByte, AroDP::astScene, other));
  EXPECT_EQ(Served({0, 9, 99}), "9.99");
  EXPECT_NE(m_converter.GetEntry({0, 9, 99}).GetConverter(), &other);  // a clone
  KnxValueConverter second;
  second.Init();
  EXPECT_EQ(second.GetEntry({0, 9, 99}).GetDpt().sub, 0);
  m_converter.Init();
  EXPECT_EQ(Served({0, 9, 99}), "9.0");
}

TEST_F(Converter, ComparesValueTypes) {
  const std::vector<std::set<int>> families = {
      {3, 1005, 1036, 1037, 1039}, {4, 14}, {6, 1021}, {7, 8, 20}, {11, 105}, {12, 104}};
  const std::set<int> moments = {13, 102, 201};
  const std::set<int> calendar = {11, 12, 13, 102, 104, 105, 201};
  const auto all = {0,  1,  2,  3,   4,   5,   6,   7,    8,    9,    10,   11,  12,
                    13, 14, 20, 102, 104, 105, 201, 1005, 1021, 1036, 1037, 1039};
  for (const int value : all) {
    for (const int entry : all) {
      bool expected = value == entry || (moments.count(value) == 1 && calendar.count(entry) == 1);
      for (const auto& family : families) expected = expected || family.count(value) + family.count(entry) == 2;
      EXPECT_EQ(m_converter.AreValueTypesCompatible(Type(value), Type(entry)), expected) << value << ' ' << entry;
    }
  }
}

TEST_F(Converter, FindsAddedRowsHoweverManyThereAreAndWhereverTheyStand) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  const Tal::KnxConverter& codec = *m_converter.GetEntry({0, 5, 1}).GetConverter();
  for (const std::uint16_t main : {std::uint16_t{99}, std::uint16_t{255}, std::uint16_t{256}, std::uint16_t{60000}}) {
    const auto add = [&](int sub) {
      m_converter.AddDptValueMapEntry(main, static_cast<std::uint16_t>(sub), 8, avtByte, AroDP::astGeneric, codec);
    };
    for (int sub = 99; sub > 0; sub -= 2) add(sub);  // odd ones, the largest first
    EXPECT_EQ(Served({0, main, 2}), "fallback");
    add(0);
    for (std::uint16_t sub = 0; sub <= 101; ++sub) {
      EXPECT_EQ(Served({0, main, sub}),
                std::to_string(main) + '.' + std::to_string(sub % 2 != 0 && sub < 100 ? sub : 0));
    }
  }
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
        KnxValueConverter own;
        own.Init();
        good +=
            m_converter.ToKnxValue(dpt, sent, groupValue) && own.FromKnxValue(dpt, groupValue, value) && value == sent;
        good +=
            own.ToKnxValue(dpt, sent, groupValue) && m_converter.FromKnxValue(dpt, groupValue, value) && value == sent;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 16000u);
}

TEST(TalKnxValueConverter, ConvertsSerialisedTextBothWays) {
  Tal::TalKnxValueConverter converter;
  converter.Init();
  ForEachCase("Table.txt", "facade", [&](const Case& c) {
    GroupValue groupValue;
    const bool done = converter.ToKnxValue(c[1], std::stoul(c[0]), groupValue);
    EXPECT_EQ((done ? "true " : "false ") + Wire(groupValue), c[2]);
  });
  GroupValue groupValue;
  KNXDPT dpt{0, 12, 1};
  EXPECT_FALSE(converter.ToKnxValue(dpt, std::string("hello"), groupValue));
  EXPECT_TRUE(converter.ToKnxValue(dpt, std::string("8:7"), groupValue));
  EXPECT_EQ(Wire(groupValue), "00 00 00 07/32");
  EXPECT_TRUE(converter.ToKnxValue(dpt, DWord(9), groupValue));
  AROVALUE value;
  EXPECT_TRUE(converter.FromKnxValue(dpt, groupValue, value));
  EXPECT_EQ(value, DWord(9));
  std::string text = "before";
  EXPECT_FALSE(converter.FromKnxValue(Octets("01/7"), text, false));
  EXPECT_EQ(text, "before");
  for (const bool isInternal : {false, true}) {
    EXPECT_TRUE(converter.FromKnxValue(Octets("0C 1A/16"), text, isInternal));
    EXPECT_EQ(text, isInternal ? "3.7:21" : "3:21");
  }
}

TEST(DptValueMap, SharesRowsWithoutDependingOnWhereTheyCameFrom) {
  Tal::DptValueMap map;
  {
    Tal::DptValueMap source;
    source.Insert({{8, 300, 7}, avtByte, AroDP::astGeneric, nullptr});
    source.ShareRowsOf(source);
    map.ShareRowsOf(source);
    source.Insert({{8, 300, 8}, avtWord, AroDP::astGeneric, nullptr});
    EXPECT_EQ(source.Rows().at(300).size(), 2u);
    source.Clear();
  }
  EXPECT_EQ(map.Rows().at(300).size(), 1u);
  EXPECT_EQ(map.GetEntry({8, 300, 7}).GetValueType(), avtByte);
}

}  // namespace
}  // namespace TalTest
