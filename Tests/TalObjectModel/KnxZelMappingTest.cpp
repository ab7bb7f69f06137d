#include <BasePlatform/AroDP.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxZelMapping.h>
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <boost/algorithm/string/join.hpp>
#include <limits>

#include "Support/Cases.h"
#include "Support/Values.h"

namespace Tal {
namespace {

using namespace KnxZelMapping;
using TalTest::Case;
using TalTest::Dpt;
using TalTest::ForEachCase;

const LogicalDeviceId kFirst = LogicalDeviceId::Of<1>();
const LogicalDeviceId kSecond = LogicalDeviceId::Of<2>();
constexpr ParameterType kUnknownType = static_cast<ParameterType>(3);

TEST(LogicalDeviceId, IsOneOrTwo) {
  EXPECT_FALSE(LogicalDeviceId::Create(0) || LogicalDeviceId::Create(3));
  EXPECT_TRUE(LogicalDeviceId::Create(1) == kFirst && LogicalDeviceId::Create(2) == kSecond);
  EXPECT_EQ(kSecond.Get(), 2);
}

TEST(ObjectIds, OfDevicesAndAppControl) {
  EXPECT_THAT((std::vector<ObjectId>{
                  GetDeviceObjModelId(), GetKnxDeviceObjModelId(), GetLogicalKnxDeviceObjModelId(kSecond),
                  GetLastObjModelId(kFirst), GetAppHostAppControlChannelObjModelId(kFirst),
                  GetAppHostAppControlStateObjModelId(kFirst), GetAppHostAppControlEventObjModelId(kSecond),
                  GetAppHostAppControlAliveObjModelId(kFirst), GetAppHostAppControlAppDebugObjModelId(kSecond)}),
              testing::ElementsAre(1000, 1000, 200000, 199999, 100020, 100021, 200022, 100023, 200024));
  for (ObjectId id = 200018; id < 200028; ++id) {
    EXPECT_EQ(IsAppHostAppControlState(id, kSecond), id == 200021);
    EXPECT_EQ(IsAppHostAppControlEvent(id, kSecond), id == 200022);
    EXPECT_EQ(IsAppHostAppControlAliveHeartbeat(id, kSecond), id == 200023);
    EXPECT_EQ(IsAppHostAppControlAppDebug(id, kSecond), id == 200024);
    EXPECT_FALSE(IsAppHostAppControlState(id, kFirst));
  }
  EXPECT_TRUE(!IsAnyLogicalKnxDeviceId(99999) && IsAnyLogicalKnxDeviceId(100000));
}

TEST(ObjectIds, AreOfAKind) {
  ForEachCase("Identifiers.txt", "kinds", [](const Case& c) {
    const auto id = static_cast<ObjectId>(std::stoul(c[0]));
    const auto device = GetLogicalDeviceIdFromObject(id);
    EXPECT_EQ(device ? std::to_string(device->Get()) : "-", c[1]);
    std::vector<std::string> kinds;
    if (IsCoChannel(id)) kinds.emplace_back("co-channel");
    if (IsCoValue(id)) kinds.emplace_back("co-value");
    if (IsParameterChannel(id)) kinds.emplace_back("parameter-channel");
    EXPECT_EQ(boost::algorithm::join(kinds, " "), c[2]);
  });
  for (const ObjectId id : {200100u /* 40100 beyond the first device's parameters */, 160202u}) {
    EXPECT_FALSE(GetParameterTypeFromObjModelId(id, kFirst) || GetParameterNumberFromObjModelId(id, kFirst)) << id;
  }
}

TEST(ObjectIds, OfCommunicationObjectsGoThereAndBack) {
  for (const LogicalDeviceId dev : {kFirst, kSecond}) {
    const ObjectId base = GetLogicalKnxDeviceObjModelId(dev);
    for (unsigned short co = 1; co <= 4095; ++co) {
      const auto channel = GetCoChannelObjModelId(co, dev);
      const auto value = GetCoValueObjModelId(co, dev);
      ASSERT_EQ(channel, base + 98 + 2 * co);
      ASSERT_EQ(value, *channel + 1);
      ASSERT_EQ(GetCoValueObjModelId(*channel), value);
      ASSERT_TRUE(IsCoChannel(*channel) && IsCoValue(*value) && !IsCoChannel(*value) && !IsCoValue(*channel));
      ASSERT_EQ(GetCoNumberFromObjModelId(*value, dev), co);
      ASSERT_FALSE(GetCoNumberFromObjModelId(*channel, dev));
    }
  }
  EXPECT_EQ(GetCoChannelObjModelId(4095, kFirst), 108288u);
  EXPECT_FALSE(GetCoChannelObjModelId(4096, kFirst) || GetCoValueObjModelId(4096, kFirst));
  EXPECT_EQ(GetCoChannelObjModelId(0, kFirst), 100098u);  // an identifier, but no channel
  EXPECT_FALSE(GetCoValueObjModelId(0, kFirst) || GetCoValueObjModelId(100098u));
}

TEST(ObjectIds, BeyondThirtyTwoBitsAreNone) {
  if (sizeof(unsigned long) == 4) return;  // there they cannot be written
  EXPECT_FALSE(GetCoNumberFromObjModelId(static_cast<unsigned long>(0x100000000ull + 100101), kFirst));
}

TEST(ObjectIds, OfParametersGoThereAndBackInTheirLowEightBits) {
  const struct {
    ParameterType type;
    unsigned short max;
    boost::optional<ObjectId> (*valueOf)(unsigned short, LogicalDeviceId) noexcept;
  } kTypes[] = {{ParameterType::Ip, 100, GetIpParameterValueObjModelId},
                {ParameterType::Number, 200, GetNumberParameterValueObjModelId},
                {ParameterType::Text, 500, GetTextParameterValueObjModelId}};
  for (const auto& [type, max, valueOf] : kTypes) {
    EXPECT_EQ(GetMaxParametersOfType(type), max);
    const ObjectId first = 160000 + 10000 * static_cast<ObjectId>(type);
    for (unsigned short n = 1; n <= max; ++n) {
      const auto channel = GetParameterChannelObjModelId(n, kFirst, type);
      ASSERT_EQ(channel, first + 2 * n);
      ASSERT_TRUE(IsParameterChannel(*channel));
      ASSERT_EQ(GetParameterValueObjModelId(*channel), *channel + 1);
      ASSERT_EQ(GetParameterValueObjModelId(n, kFirst, type), *channel + 1);
      ASSERT_EQ(valueOf(n, kFirst), *channel + 1);
      ASSERT_TRUE(GetParameterTypeFromObjModelId(*channel, kFirst) == type);
      ASSERT_EQ(*GetParameterNumberFromObjModelId(*channel, kFirst), n % 256);
    }
    EXPECT_EQ(GetParameterChannelObjModelId(0, kFirst, type), first);  // the formula holds for 0 as well
    EXPECT_FALSE(GetParameterChannelObjModelId(static_cast<unsigned short>(max + 1), kFirst, type));
    EXPECT_FALSE(valueOf(static_cast<unsigned short>(max + 1), kFirst));
  }
  EXPECT_EQ(GetParameterChannelObjModelId(500, kSecond, ParameterType::Text), 281000u);
  EXPECT_EQ(*GetParameterNumberFromObjModelId(281000, kSecond), 244);
  EXPECT_EQ(GetMaxParametersOfType(kUnknownType), 0u);
  EXPECT_FALSE(GetParameterChannelObjModelId(1, kFirst, kUnknownType));
}

/// Which: Docs/Converters.md tells, and is compared with GetAvtFromDpt().
TEST(MainTypes, DemandTheirValueTypes) {
  for (unsigned main = 0; main <= 300; ++main) {
    const AroValueType type = GetAvtFromDpt(main << 16 | 0xFFFF);
    EXPECT_EQ(type, GetAvtFromDpt(main << 16));
    EXPECT_EQ(GetAvtFromMainType(main), AROVALUE::GetNameFromValueType(type)) << main;
  }
  EXPECT_EQ(GetAvtFromDpt(0xFFFFFFFF), avtEmpty);
  EXPECT_EQ(GetAvtFromMainType(std::numeric_limits<unsigned long>::max()), "Empty");
  const std::pair<unsigned, const char*> subTypes[] = {{1, "Switch"}, {9, "Generic"}, {100, "Generic"}};
  for (const auto& [main, name] : subTypes) EXPECT_EQ(GetAstFromMainType(main), name) << main;
}

TEST(MainTypes, HaveDefaultsThatNoTimeZoneChanges) {
  ForEachCase("Identifiers.txt", "defaults of main types", [](const Case& c) {
    EXPECT_EQ(GetDefaultValueFromDpt(Dpt(std::stoul(c[0])), c[2] == "internal"), c[1]);
  });
}

TEST(MainTypes, EveryDefaultIsOfItsTypeAndEncodesWhereItsMainTypeDoes) {
  const auto descriptions = DescribeMainTypes();
  EXPECT_EQ(descriptions.size(), 43u);
  unsigned previous = 0;
  for (const MainTypeDescription& row : descriptions) {
    SCOPED_TRACE(row.main);
    EXPECT_GT(row.main, previous);
    previous = row.main;
    AROVALUE value;
    ASSERT_TRUE(value.Deserialize(GetDefaultValueFromDpt(Dpt(row.main), true)));
    EXPECT_EQ(value.avt, row.valueType);
    EXPECT_EQ(value.avt, GetAvtFromDpt(static_cast<unsigned>(Dpt(row.main))));
    if (row.isEncoded) {
      EXPECT_TRUE(AroValueToGroupValue(value, Dpt(row.main)));
    }
  }
}

}  // namespace
}  // namespace Tal
