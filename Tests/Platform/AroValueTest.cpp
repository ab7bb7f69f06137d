#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValueBytes.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>
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

TEST(AroTime, KnowsTheGregorianCalendarFrom1400To9999) {
  const auto isValid = [](unsigned date) { return AROTIME::IsValidDate(date / 10000, date / 100 % 100, date % 100); };
  for (const unsigned date : {20240229u, 20000229u, 20230430u, 20231231u, 14000101u, 99991231u})
    EXPECT_TRUE(isValid(date));
  for (const unsigned date : {20230229u, 19000229u, 20230431u, 20231301u, 20230001u, 20230100u, 20230132u, 13991231u,
                              100000101u, 675590101u /* 2023 modulo 65536 */}) {
    EXPECT_FALSE(isValid(date)) << date;
  }
  EXPECT_TRUE(AROTIME::IsValidTime(23, 59, 59));
  EXPECT_FALSE(AROTIME::IsValidTime(24, 0, 0) || AROTIME::IsValidTime(0, 60, 0) || AROTIME::IsValidTime(0, 0, 60));
}

TEST(AroTime, SettersTouchExactlyTheirFields) {
  AROTIME time = Time(1, 2, 3, 4, 5, 6, 7);
  time.extraByte = 8;
  time.extraWord = 9;
  time.firstFlag = true;
  time.SetDate(2023, 10, 11);
  EXPECT_EQ(time.ToString(), "2023 10 11 4 5 6 8 7 9 1 0");
  time.SetDateTime(2024, 255, 254, 253, 252, 251);
  EXPECT_EQ(time.ToString(), "2024 255 254 253 252 251 8 7 9 1 0");
  time.Clear(false);
  EXPECT_EQ(time, AROTIME());
}

TEST(AroTime, BecomesBrokenDownTimeWithoutNormalising) {
  const std::tm fields = Time(2023, 0, 31, 25, 61, 62);
  EXPECT_THAT(std::vector<int>({fields.tm_year, fields.tm_mon, fields.tm_mday, fields.tm_hour, fields.tm_min,
                                fields.tm_sec, fields.tm_isdst}),
              testing::ElementsAre(123, -1, 31, 25, 61, 62, -1));
}

TEST(AroTime, TakesLocalTimeAndWeekdayOfATimePoint) {
  // Every weekday, against the C library; the carried fields stay.
  for (std::int64_t moment = 1672574400; moment < 1672574400 + 7 * 86400; moment += 86400) {
    const auto seconds = static_cast<std::time_t>(moment);
    const std::tm expected = *std::localtime(&seconds);
    AROTIME time;
    time.extraWord = 5;
    time = moment;
    constexpr int kBits[] = {0x40, 0x01, 0x02, 0x04, 0x08, 0x10, 0x20};  // from Sunday
    char text[64];
    std::snprintf(text, sizeof text, "%d %d %d %d %d %d 0 ", expected.tm_year + 1900, expected.tm_mon + 1,
                  expected.tm_mday, expected.tm_hour, expected.tm_min, expected.tm_sec);
    EXPECT_EQ(time.ToString(), text + std::to_string(kBits[expected.tm_wday]) + " 5 0 0");
  }
}

TEST(AroTime, ATimePointBeyondTheCalendarClearsEverything) {
  for (const std::int64_t moment : {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(),
                                    std::int64_t{4000000000000}}) {
    AROTIME time = Time(2023, 1, 1, 1, 1, 1, 1);
    time = moment;
    EXPECT_EQ(time, AROTIME()) << moment;
  }
}

}  // namespace
}  // namespace TalTest
