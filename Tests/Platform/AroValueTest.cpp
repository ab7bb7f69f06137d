#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValueBytes.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

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

// Value, default form, internal form. Both must be written and read back to an equal value.
const struct {
  AROVALUE value;
  const char* text;
  const char* internal;
} kSerialised[] = {
    {Typed(avtInvalid), "0:", "0.7:"},
    {Typed(avtEmpty), "1:", "1.7:"},
    {Bool(true), "2:1", "2.7:1"},
    {Float(0.35), "3:0.35", "3.7:0.35"},
    {Float(-0.0), "3:-0", "3.7:-0"},
    {Float(1e22), "3:1e+22", "3.7:1e+22"},
    {Float(Limits::denorm_min()), "3:5e-324", "3.7:5e-324"},
    {Float(Limits::max()), "3:1.7976931348623157e+308", "3.7:1.7976931348623157e+308"},
    {Float(-Limits::infinity()), "3:-inf", "3.7:-inf"},
    {Float(Limits::quiet_NaN()), "nan", "3.7:nan"},
    {Integer(-2147483647 - 1), "4:-2147483648", "4.7:-2147483648"},
    {Byte(255), "6:255", "6.7:255"},
    {Word(65535), "7:65535", "7.7:65535"},
    {DWord(4294967295), "8:4294967295", "8.7:4294967295"},
    {Text("a:b\n\xFF"), "10:a:b\n\xFF", "10.7:a:b\n\xFF"},
    {Text(""), "10:", "10.7:"},
    {Timed(avtDate, Time(2023, 1, 2, 3, 4, 5, 6)), "11:2023 1 2 3 4 5 0 6 0 0 0", "11.7:2023 1 2 3 4 5 0 6 0 0 0"},
    {Timed(Number(201), Time(65535, 255, 255, 255, 255, 255)), "201:65535 255 255 255 255 255 0 0 0 0 0",
     "201.7:65535 255 255 255 255 255 0 0 0 0 0"},
    {Raw(14, 0x0123456789ABCDEF), "14:0123456789ABCDEF", "14.7:0123456789ABCDEF"},
    {Raw(-1, 0), "-1:0000000000000000", "-1.7:0000000000000000"},
};

TEST(AroValue, SerialisesAndReadsBackEveryTypeInBothForms) {
  for (const auto& c : kSerialised) {
    SCOPED_TRACE(c.text);
    for (const bool internal : {false, true}) {
      std::string text = "before";
      c.value.Serialize(text, internal);
      EXPECT_EQ(text, internal ? c.internal : c.text);
      AROVALUE read = Text("before");
      ASSERT_TRUE(read.Deserialize(text));
      EXPECT_EQ(read, c.value);
    }
  }
}

TEST(AroValue, RefusesWhatIsNoSerialisedValueAndStaysAsItWas) {
  // clang-format off
  for (const char* text :
       {"", "hello", ":", "3", "3.7", ":1", "x:1", "3.8:1", "3.7.7:1", " 3:1", "3 :1", "+3:1", "2147483648:", "0:1",
        "1: ", "2:2", "2:true", "2:", "3:", "3:1,5", "3: 1", "3:1 ", "3:0x10", "3:1e999", "3:infinity", "3:NaN",
        "3:nan(1)", "3:+1", "NAN", "nan ", "4:2147483648", "4:1.0", "4:", "6:256", "6:-1", "7:65536", "8:4294967296",
        "8:-1", "11:2023 1 2 3 4 5 0 6 0 0", "11:2023 1 2 3 4 5 0 6 0 0 0 0", "11:2023 1 2 3 4 5 0 6 0 0 2",
        "11:2023  1 2 3 4 5 0 6 0 0 0", "11:2023 256 2 3 4 5 0 6 0 0 0", "11:2023 1 2 3 4 5 0 6 0 0 0 ", "14:0",
        "14:0123456789ABCDEG", "14:0123456789ABCDEF0", "14:-123456789ABCDEF"}) {
    // clang-format on
    AROVALUE value = Float(4.5);
    EXPECT_FALSE(value.Deserialize(text)) << text;
    EXPECT_EQ(value, Float(4.5)) << text;
  }
  AROVALUE value;
  EXPECT_FALSE(value.Deserialize({"3:1\0", 4}));
  EXPECT_TRUE(value.Deserialize({"10:\0", 4}));
  EXPECT_EQ(value.text, std::string(1, '\0'));
}

TEST(AroValue, ShowsEveryValueOnOneLine) {
  EXPECT_EQ(Text("a\nb\tc\rd\x1B\x7F\\e").ToString(), "a\\nb\\tc\\rd\\x1B\\x7F\\e");
  EXPECT_EQ(Text("\xC2\x9Bx \xC3\x9B").ToString(), "\\xC2\\x9Bx \xC3\x9B");
  EXPECT_EQ(Float(Limits::quiet_NaN()).ToString(), "nan");
  EXPECT_EQ(Float(1234.5).ToString(), "1234.5");
  EXPECT_EQ(Word(65535).ToString(), "65535");
  EXPECT_EQ(Typed(avtEmpty).ToString(), "");
  EXPECT_EQ(Timed(avtDayTime, Time(2000, 1, 1, 2, 3, 4, 1)).ToString(), "2000 1 1 2 3 4 0 1 0 0 0");
}

TEST(AroValue, PacksPayloadsMostSignificantOctetFirst) {
  struct Case {
    AROVALUE value;
    std::vector<std::uint8_t> octets;
  };
  // clang-format off
  for (const Case& c : {Case{Byte(0x12), {0x12}}, {Raw(1005, 0x1234), {0x34}}, {Raw(1037, 0xFF), {0xFF}},
                        {Word(0x1234), {0x12, 0x34}}, {Integer(-2), {0xFF, 0xFF, 0xFF, 0xFE}},
                        {DWord(0x12345678), {0x12, 0x34, 0x56, 0x78}}, {Float(1.0), {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}},
                        {Text("ab"), {'a', 'b'}}, {Text(""), {}}}) {
    // clang-format on
    std::uint8_t room[8] = {};
    std::size_t size = c.octets.size();
    ASSERT_TRUE(AroValueToByteArray(c.value, room, size));
    EXPECT_EQ(std::vector<std::uint8_t>(room, room + size), c.octets);
    if (c.octets.empty()) continue;
    std::size_t tooSmall = c.octets.size() - 1;
    EXPECT_FALSE(AroValueToByteArray(c.value, room, tooSmall));
    EXPECT_EQ(tooSmall, c.octets.size() - 1);
  }
  std::uint8_t room[24];
  std::size_t size = sizeof room;
  for (const AroValueType type : {avtInvalid, avtEmpty, avtBool, avtDate, Number(14)}) {
    EXPECT_FALSE(AroValueToByteArray(Typed(type), room, size)) << type;
  }
}

TEST(AroValue, UnpacksOneTwoAndFourOctets) {
  constexpr std::uint8_t kOctets[] = {0x81, 0x02, 0x03, 0x04};
  const std::pair<std::size_t, AROVALUE> cases[] = {{1, Byte(0x81)}, {2, Word(0x8102)}, {4, DWord(0x81020304)}};
  for (const auto& [size, expected] : cases) {
    AROVALUE value = DWord(0xFFFFFFFF);
    EXPECT_TRUE(ByteArrayToAroValue(kOctets, size, value, false));
    EXPECT_EQ(value, expected);
  }
  AROVALUE value = DWord(0xFFFFFFFF);
  EXPECT_TRUE(ByteArrayToAroValue(kOctets, 1, value, true));
  EXPECT_EQ(value, Bool(true));
  EXPECT_FALSE(ByteArrayToAroValue(nullptr, 0, value, true));
  EXPECT_FALSE(ByteArrayToAroValue(kOctets, 3, value, false));
  EXPECT_EQ(value, Bool(true));
}

}  // namespace
}  // namespace TalTest
