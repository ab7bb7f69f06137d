#include <BasePlatform/AroDP.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxZelMapping.h>
#include <Tal/TableDescription.h>
#include <gmock/gmock.h>

#include <limits>

#include "Support/Values.h"

namespace Tal {
namespace {

using namespace KnxZelMapping;
using TalTest::Dpt;

const LogicalDeviceId kFirst = LogicalDeviceId::Of<1>();
const LogicalDeviceId kSecond = LogicalDeviceId::Of<2>();
constexpr ParameterType kUnknownType = static_cast<ParameterType>(3);

TEST(LogicalDeviceId, IsOneOrTwo) {
  EXPECT_FALSE(LogicalDeviceId::Create(0));
  EXPECT_TRUE(LogicalDeviceId::Create(1) == kFirst);
  EXPECT_EQ(LogicalDeviceId::Create(2)->Get(), 2);
  EXPECT_FALSE(LogicalDeviceId::Create(3));
}

TEST(ObjectIds, OfDevicesAndAppControl) {
  EXPECT_EQ(GetDeviceObjModelId(), 1000u);
  EXPECT_EQ(GetKnxDeviceObjModelId(), 1000u);
  EXPECT_EQ(GetLogicalKnxDeviceObjModelId(kSecond), 200000u);
  EXPECT_EQ(GetLastObjModelId(kFirst), 199999u);
  EXPECT_EQ(GetAppHostAppControlChannelObjModelId(kFirst), 100020u);
  EXPECT_EQ(GetAppHostAppControlStateObjModelId(kFirst), 100021u);
  EXPECT_EQ(GetAppHostAppControlEventObjModelId(kSecond), 200022u);
  EXPECT_EQ(GetAppHostAppControlAliveObjModelId(kFirst), 100023u);
  EXPECT_EQ(GetAppHostAppControlAppDebugObjModelId(kSecond), 200024u);
  for (ObjectId id = 200018; id < 200028; ++id) {
    EXPECT_EQ(IsAppHostAppControlState(id, kSecond), id == 200021);
    EXPECT_EQ(IsAppHostAppControlEvent(id, kSecond), id == 200022);
    EXPECT_EQ(IsAppHostAppControlAliveHeartbeat(id, kSecond), id == 200023);
    EXPECT_EQ(IsAppHostAppControlAppDebug(id, kSecond), id == 200024);
    EXPECT_FALSE(IsAppHostAppControlState(id, kFirst));
  }
  EXPECT_FALSE(IsAnyLogicalKnxDeviceId(99999));
  EXPECT_TRUE(IsAnyLogicalKnxDeviceId(100000));
  EXPECT_FALSE(GetLogicalDeviceIdFromObject(99999));
  EXPECT_TRUE(GetLogicalDeviceIdFromObject(100000) == kFirst);
  EXPECT_TRUE(GetLogicalDeviceIdFromObject(299999) == kSecond);
  EXPECT_FALSE(GetLogicalDeviceIdFromObject(300000));
  EXPECT_FALSE(GetLogicalDeviceIdFromObject(4294967295));
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
  EXPECT_FALSE(GetCoChannelObjModelId(4096, kFirst));
  EXPECT_FALSE(GetCoValueObjModelId(4096, kFirst));
  EXPECT_EQ(GetCoChannelObjModelId(0, kFirst), 100098u);  // an identifier, but no channel
  EXPECT_FALSE(GetCoValueObjModelId(0, kFirst));
  EXPECT_FALSE(GetCoValueObjModelId(100098u));
  EXPECT_TRUE(IsCoChannel(108288));
  EXPECT_FALSE(IsCoChannel(108290));
  EXPECT_FALSE(IsCoChannel(100));
  EXPECT_FALSE(IsCoValue(0));
  EXPECT_EQ(*GetCoNumberFromObjModelId(100101, kFirst), 1);
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

TEST(ObjectIds, TheParameterTestIsWiderThanItsName) {
  struct Case {
    ObjectId id;
    bool isParameter;
  };
  for (const Case& c : {Case{159999, false},
                        {160000, false},
                        {160001, false},
                        {160002, true},
                        {160003, true} /* odd */,
                        {160201, true},
                        {160202, false},
                        {170000, false},
                        {170002, true},
                        {170401, true},
                        {170402, false},
                        {179999, false},
                        {180000, true} /* text parameter 0 */,
                        {181001, true},
                        {181002, false},
                        {190001, false},
                        {190002, false},
                        {200100, true} /* a communication object at a like offset */,
                        {200202, false},
                        {210002, true},
                        {99999, false}}) {
    EXPECT_EQ(IsParameterChannel(c.id), c.isParameter) << c.id;
  }
  EXPECT_FALSE(GetParameterTypeFromObjModelId(200100, kFirst));  // 40100 beyond the first device's parameters
  EXPECT_FALSE(GetParameterTypeFromObjModelId(160202, kFirst));
  EXPECT_FALSE(GetParameterNumberFromObjModelId(160202, kFirst));
}

TEST(MainTypes, DemandTheirValueTypes) {
  struct Case {
    unsigned main;
    AroValueType type;
  };
  for (const Case& c : {Case{1, avtBool},
                        {6, avtByte},
                        {9, avtFloat},
                        {10, avtDayTime},
                        {11, avtDate},
                        {19, avtDateTime},
                        {4, avtEmpty},
                        {31, avtByte},
                        {202, avtWord},
                        {232, avtDWord},
                        {0, avtEmpty},
                        {100, avtEmpty},
                        {203, avtEmpty},
                        {239, avtEmpty},
                        {65535, avtEmpty}}) {
    EXPECT_EQ(GetAvtFromDpt(c.main << 16 | 0xFFFF), c.type) << c.main;
    EXPECT_EQ(GetAvtFromMainType(c.main), AROVALUE::GetNameFromValueType(c.type)) << c.main;
  }
  EXPECT_EQ(GetAstFromMainType(1), "Switch");
  EXPECT_EQ(GetAstFromMainType(9), "Generic");
  EXPECT_EQ(GetAstFromMainType(100), "Generic");
  EXPECT_EQ(GetAvtFromMainType(std::numeric_limits<unsigned long>::max()), "Empty");
}

TEST(MainTypes, HaveDefaultsThatNoTimeZoneChanges) {
  const std::pair<unsigned, const char*> cases[] = {{1, "2:0"},
                                                    {4, "1:"},
                                                    {6, "6:0"},
                                                    {8, "4:0"},
                                                    {9, "3:0"},
                                                    {10, "15:2000 1 1 0 0 0 0 0 1 0 0"},
                                                    {11, "11:1990 1 1 0 0 0 0 1 0 0 0"},
                                                    {12, "8:0"},
                                                    {16, "10:"},
                                                    {19, "13:1900 1 1 0 0 0 0 1 0 0 0"},
                                                    {234, "7:23130"},
                                                    {100, ""}};
  for (const auto& [main, text] : cases) EXPECT_EQ(GetDefaultValueFromDpt(Dpt(main), false), text) << main;
  EXPECT_EQ(GetDefaultValueFromDpt(Dpt(9), true), "3.7:0");
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
