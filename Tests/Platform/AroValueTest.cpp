#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValueBytes.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "Support/Cases.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using Limits = std::numeric_limits<double>;

AroValueType Number(std::int32_t number) { return static_cast<AroValueType>(number); }

AROVALUE Raw(std::int32_t type, std::uint64_t payload) {
  AROVALUE value = Typed(Number(type));
  value.SetPayload(payload);
  return value;
}

TEST(AroValue, StartsEmptyAndItsContentKindFollowsTheType) {
  AROVALUE value;
  EXPECT_EQ(value.avt, avtEmpty);
  EXPECT_EQ(value.GetPayload(), 0u);
  EXPECT_EQ(value.avt.ContentKind(), 0u);
  value.avt = avtInvalid;
  EXPECT_EQ(value.avt.ContentKind(), 1u);
  value.avt = Number(-5);
  EXPECT_EQ(value.avt.ContentKind(), 2u);
}

TEST(AroValue, ScalarsOverlayOneAnotherFromTheLowEnd) {
  AROVALUE value;
  value.SetDWord(0x11223344);
  EXPECT_EQ(value.GetWord(), 0x3344);
  EXPECT_EQ(value.GetByte(), 0x44);
  EXPECT_TRUE(value.GetBool());
  value.SetByte(0xFF);
  EXPECT_EQ(value.GetDWord(), 0x112233FFu);
  value.SetWord(0);
  EXPECT_EQ(value.GetDWord(), 0x11220000u);
  EXPECT_FALSE(value.GetBool());
  value.SetFloat(1.0);
  EXPECT_EQ(value.GetPayload(), 0x3FF0000000000000u);
  value.SetInteger(-1);
  EXPECT_EQ(value.GetPayload(), 0x3FF00000FFFFFFFFu);
}

TEST(AroValue, NamesAreTotal) {
  EXPECT_STREQ(AROVALUE::GetNameFromValueType(avtEmpty), "Empty");
  EXPECT_STREQ(AROVALUE::GetNameFromValueType(avtDayTime), "DayTime");
  for (const int number : {5, 9, 14, 1005, -1}) {
    EXPECT_STREQ(AROVALUE::GetNameFromValueType(Number(number)), "Unknown");
  }
  EXPECT_STREQ(AroDP::GetNameFromValueSubType(AroDP::astGeneric), "Generic");
  EXPECT_STREQ(AroDP::GetNameFromValueSubType(static_cast<AroDP::AroValueSubType>(7)), "Unknown");
}

// Value and default form. The internal form has .7 behind the type.
const std::pair<AROVALUE, const char*> kSerialised[] = {
    // clang-format off
    {Typed(avtInvalid), "0:"}, {Typed(avtEmpty), "1:"}, {Bool(true), "2:1"}, {Float(0.35), "3:0.35"}, {Float(-0.0), "3:-0"},
    {Float(1e22), "3:1e+22"}, {Float(Limits::denorm_min()), "3:5e-324"}, {Float(Limits::max()), "3:1.7976931348623157e+308"},
    {Float(-Limits::infinity()), "3:-inf"}, {Float(Limits::quiet_NaN()), "nan"}, {Integer(-2147483647 - 1), "4:-2147483648"},
    {Byte(255), "6:255"}, {Word(65535), "7:65535"}, {DWord(4294967295), "8:4294967295"}, {Text("a:b\n\xFF"), "10:a:b\n\xFF"}, {Text(""), "10:"},
    {Timed(avtDate, Time(2023, 1, 2, 3, 4, 5, 6)), "11:2023 1 2 3 4 5 0 6 0 0 0"},
    {Timed(Number(201), Time(65535, 255, 255, 255, 255, 255)), "201:65535 255 255 255 255 255 0 0 0 0 0"},
    {Raw(14, 0x0123456789ABCDEF), "14:0123456789ABCDEF"}, {Raw(-1, 0), "-1:0000000000000000"},
    // clang-format on
};

TEST(AroValue, SerialisesAndReadsBackEveryTypeInBothForms) {
  for (const auto& [value, form] : kSerialised) {
    const std::string text = form;
    const std::size_t colon = text.find(':');
    const std::string internal = text == "nan" ? "3.7:nan" : text.substr(0, colon) + ".7" + text.substr(colon);
    for (const auto& expected : {text, internal}) {
      std::string written = "before";
      value.Serialize(written, expected == internal);
      EXPECT_EQ(written, expected);
      AROVALUE read = Text("before");
      EXPECT_TRUE(read.Deserialize(written)) << written;
      EXPECT_EQ(read, value);
    }
  }
}

TEST(AroValue, RefusesWhatIsNoSerialisedValueAndStaysAsItWas) {
  const auto refuses = [](const std::string& text) {
    AROVALUE value = Float(4.5);
    EXPECT_FALSE(value.Deserialize(text));
    EXPECT_EQ(value, Float(4.5));
  };
  refuses("");
  ForEachCase("Values.txt", "refused", [&](const Case& c) { refuses(c[0]); });
  EXPECT_EQ(Value(std::string("10:\0", 4)).text, std::string(1, '\0'));
}

TEST(AroValue, ShowsEveryValueOnOneLine) {
  ForEachCase("Values.txt", "shown", [](const Case& c) { EXPECT_EQ(Value(c[0]).ToString(), c[1]); });
}

TEST(AroValue, PacksPayloadsMostSignificantOctetFirst) {
  const std::pair<AROVALUE, std::vector<std::uint8_t>> cases[] = {{Byte(0x12), {0x12}},
                                                                  {Raw(1005, 0x1234), {0x34}},
                                                                  {Raw(1037, 0xFF), {0xFF}},
                                                                  {Word(0x1234), {0x12, 0x34}},
                                                                  {Integer(-2), {0xFF, 0xFF, 0xFF, 0xFE}},
                                                                  {DWord(0x12345678), {0x12, 0x34, 0x56, 0x78}},
                                                                  {Float(1.0), {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}},
                                                                  {Text("ab"), {'a', 'b'}},
                                                                  {Text(""), {}}};
  std::uint8_t room[24] = {};
  for (const auto& [value, octets] : cases) {
    std::size_t size = octets.size();
    ASSERT_TRUE(AroValueToByteArray(value, room, size));
    EXPECT_EQ(std::vector<std::uint8_t>(room, room + size), octets);
    std::size_t tooSmall = octets.size() - 1;
    EXPECT_FALSE(!octets.empty() && AroValueToByteArray(value, room, tooSmall));
    EXPECT_EQ(tooSmall, octets.size() - 1);
  }
  std::size_t size = sizeof room;
  for (const AroValueType type : {avtInvalid, avtEmpty, avtBool, avtDate, Number(14)}) {
    EXPECT_FALSE(AroValueToByteArray(Typed(type), room, size)) << type;
  }
}

TEST(AroValue, UnpacksOneTwoAndFourOctets) {
  constexpr std::uint8_t kOctets[] = {0x81, 0x02, 0x03, 0x04};
  const std::tuple<std::size_t, bool, AROVALUE> cases[] = {
      {1, false, Byte(0x81)}, {2, false, Word(0x8102)}, {4, false, DWord(0x81020304)}, {1, true, Bool(true)}};
  AROVALUE value;
  for (const auto& [size, isBool, expected] : cases) {
    value = DWord(0xFFFFFFFF);
    EXPECT_TRUE(ByteArrayToAroValue(kOctets, size, value, isBool));
    EXPECT_EQ(value, expected);
  }
  EXPECT_FALSE(ByteArrayToAroValue(nullptr, 0, value, true) || ByteArrayToAroValue(kOctets, 3, value, false));
  EXPECT_EQ(value, Bool(true));
}

}  // namespace
}  // namespace TalTest
