#include <DeviceStack/Installation.h>
#include <gmock/gmock.h>

#include "Support/Cases.h"
#include "Support/TempFile.h"

namespace DeviceStack {
namespace {

using TalTest::Case;
using TalTest::ForEachCase;
using TalTest::Is;
using testing::ThrowsMessage;

std::string Object(const std::string& changes = "") {
  auto json = Format::Json::parse(R"({"device": 1, "number": 1, "name": "lamp", "dpt": "1.001",
                                        "groupAddress": "1/2/3", "flags": ["read", "write"]})");
  if (!changes.empty()) json.merge_patch(Format::Json::parse(changes));
  return json.dump();
}
std::string House(const std::string& objects) {
  return R"({"name": "house", "address": "1.1.250", "objects": [)" + objects + "]}";
}

TEST(Installation, TravelsThroughItsText) {
  const Installation house = ParseInstallation(TalTest::ReadText("DeviceStack.txt", "travelling"), "test");
  ASSERT_EQ(house.objects.size(), 4u);
  EXPECT_EQ(house.objects[0].ValueId(), 100101u);
  EXPECT_EQ(house.objects[1].ChannelId(), 208288u);
  EXPECT_EQ(house.objects[1].name, "K\u00FCche \u263A");
  EXPECT_EQ(house.objects[1].initial->text, "a\\n");
  EXPECT_EQ(house.objects[2].initial->GetFloat(), -30.0);
  EXPECT_EQ(house.objects[3].initial->GetDWord(), 0x123456u);
  EXPECT_TRUE(house.objects[1].flags.transmit && !house.objects[1].flags.read);
  const std::string formatted = FormatInstallation(house);
  EXPECT_EQ(FormatInstallation(ParseInstallation(formatted, "again")), formatted);
}

std::string ManyKeys() {
  std::string text = "{\"k\": 0";
  for (int i = 0; i < 200000; ++i) text += ",\"" + std::to_string(i) + "\": 0";
  return text + '}';
}

/// @p told is what is said of a text that cannot be used, behind its name.
void ExpectError(const std::string& text, const std::string& told) {
  EXPECT_THAT([&] { ParseInstallation(text, "x.json"); }, ThrowsMessage<InstallationError>(Is("x.json" + told)));
}

TEST(Installation, SaysWhereAndWhyItCannotBeUsed) {
  const std::string file = "DeviceStack.txt";
  ForEachCase(file, "installations", [](const Case& c) { ExpectError(c[0], c[1]); });
  ForEachCase(file, "objects", [](const Case& c) { ExpectError(House(Object(c[0])), ": objects[0]" + c[1]); });
  ForEachCase(file, "second objects",
              [](const Case& c) { ExpectError(House(Object() + ',' + Object(c[0])), ": objects[1]" + c[1]); });
  ExpectError(House("7"), ": objects[0]: expected an object");
  ExpectError(ManyKeys(), ": has an object with more than 64 keys");
}

TEST(Installation, IsReadFromFilesThatCanBeRead) {
  const TalTest::TempFile file("house.json", House(Object()));
  EXPECT_EQ(LoadInstallation(file.path).objects.size(), 1u);
  for (const std::string& bad : {file.path + "x", testing::TempDir()}) {
    EXPECT_THROW(LoadInstallation(bad), InstallationError) << bad;
  }
  EXPECT_THAT([] { LoadInstallation("/dev/zero"); },
              ThrowsMessage<InstallationError>(Is("/dev/zero: is longer than 16777216 octets")));
}

}  // namespace
}  // namespace DeviceStack
