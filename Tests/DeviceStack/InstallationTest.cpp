#include <DeviceStack/Installation.h>
#include <gmock/gmock.h>

#include "Support/TempFile.h"

namespace DeviceStack {
namespace {

std::string Object(const std::string& changes = "") {
  Notation::Json json = {{"device", 1},
                         {"number", 1},
                         {"name", "lamp"},
                         {"dpt", "1.001"},
                         {"groupAddress", "1/2/3"},
                         {"flags", {"read", "write"}}};
  if (!changes.empty()) json.merge_patch(Notation::Json::parse(changes));
  return json.dump();
}
std::string House(const std::string& objects) {
  return R"({"name": "house", "address": "1.1.250", "objects": [)" + objects + "]}";
}

TEST(Installation, TravelsThroughItsText) {
  const std::string text = House(
      Object(R"({"initial": true})") + ',' +
      Object(
          R"({"device": 2, "number": 4095, "name": "K\u00FCche \u263A", "dpt": "DPST-16-1", "groupAddress": "31/7/255",
                       "flags": ["update", "transmit"], "initial": "a\\n"})") +
      ',' +
      Object(R"({"number": 2, "name": "0x1", "dpt": "9", "groupAddress": "0/0/1", "flags": [], "initial": -30})") +
      ',' + Object(R"({"number": 3, "name": "c", "dpt": "232.600", "initial": "#123456"})"));
  const Installation house = ParseInstallation(text, "test");
  ASSERT_EQ(house.objects.size(), 4u);
  EXPECT_EQ(house.objects[0].ValueId(), 100101u);
  EXPECT_EQ(house.objects[1].ChannelId(), 208288u);
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

struct Case {
  std::string text;
  std::string error;
};

TEST(Installation, SaysWhereAndWhyItCannotBeUsed) {
  const std::string expectedKeys = ": expected device, number, name, dpt, groupAddress, flags, initial";
  const std::string at = ": objects[0].";
  const Case cases[] = {
      {"",
       ": is not JSON: parse error at line 1, column 1: syntax error while parsing value - unexpected end of input; "
       "expected '[', '{', or a literal"},
      {"[]", ": expected an object"},
      {"{\"name\": \"\xFF\"}", ": is not JSON: "},
      {std::string(17, '[') + std::string(17, ']'), ": is nested deeper than 16 levels"},
      {std::string(100000, '['), ": is nested deeper than 16 levels"},
      {std::string("{}\0{", 4), ": is not JSON: there is a NUL in it"},
      {"{\"" + std::string(100000, 'y') + "\\q", ": is not JSON: parse error at line 1, column 100004: "},
      {ManyKeys(), ": has an object with more than 64 keys"},
      {R"({"name": "a", "name": "b"})", ": has the key 'name' twice in an object"},
      {R"({"name": "a", "address": "1.1.1"})", ": the key 'objects' is missing"},
      {R"({"name": "a\n", "address": "1.1.1", "objects": []})", ": name: 'a\\n' has control characters"},
      {R"({"name": "a", "address": "16.1.1", "objects": []})",
       ": address: '16.1.1' is not a device address: expected area.line.device from 0.0.0 to 15.15.255"},
      {R"({"name": "a", "address": "1.1.1", "objects": {}})", ": objects: expected a list of objects"},
      {House("7"), ": objects[0]: expected an object"},
      {House(Object(R"({"flag": []})")), ": objects[0]: there is no key 'flag'" + expectedKeys},
      {House(Object(R"({"dpt": null})")), ": objects[0]: the key 'dpt' is missing"},
      {House(Object(R"({"device": 3})")), at + "device: expected a whole number from 1 to 2"},
      {House(Object(R"({"number": 0})")), at + "number: expected a whole number from 1 to 4095"},
      {House(Object(R"({"number": 4096})")), at + "number: expected a whole number from 1 to 4095"},
      {House(Object(R"({"number": 1.5})")), at + "number: expected a whole number from 1 to 4095"},
      {House(Object(R"({"name": ""})")), at + "name: the text is empty"},
      {House(Object(R"({"name": "42"})")),
       at + "name: '42' would be taken for an identifier: expected a name with other than digits"},
      {House(Object(R"({"dpt": "1."})")),
       at + "dpt: '1.' is not a datapoint type: expected main.sub up to 65535 each, such as "
            "9.001, 9, DPST-9-1 or DPT-9"},
      {House(Object(R"({"dpt": "100.1"})")), at + "dpt: 100.001 has no values here"},
      {House(Object(R"({"dpt": "28.001"})")), at + "dpt: 28.001 has no values here"},
      {House(Object(R"({"groupAddress": "0/0/0"})")),
       at + "groupAddress: '0/0/0' is not a group address: expected main/middle/sub from 0/0/1 to 31/7/255"},
      {House(Object(R"({"groupAddress": "1/8/1"})")),
       at + "groupAddress: '1/8/1' is not a group address: expected main/middle/sub from 0/0/1 to 31/7/255"},
      {House(Object(R"({"flags": "read"})")), at + "flags: expected a list of read, write, transmit, update"},
      {House(Object(R"({"flags": ["Read"]})")),
       at + "flags[0]: 'Read' is no flag: expected read, write, transmit or update"},
      {House(Object(R"({"flags": ["read", "read"]})")), at + "flags[1]: 'read' is there twice"},
      {House(Object(R"({"initial": "maybe"})")),
       at + "initial: 'maybe' is no value of 1.001: expected true, false, on, off, 1 or 0"},
      {House(Object(R"({"dpt": "17.001", "initial": 64})")),
       at + "initial: '64' is no value of 17.001: expected a scene number from 0 to 63"},
      {House(Object(R"({"dpt": "19.001", "initial": "2023-13-01T00:00:00"})")),
       at + "initial: '2023-13-01T00:00:00' is no value of 19.001: "},
      {House(Object(R"({"initial": []})")), at + "initial: expected a text, a number or a boolean"},
      {House(Object() + ',' + Object(R"({"number": 2})")),
       ": objects[1].name: 'lamp' is the name of another object already"},
      {House(Object() + ',' + Object(R"({"name": "b"})")), ": objects[1].number: device 1 has an object 1 already"},
  };
  for (const Case& c : cases) {
    try {
      ParseInstallation(c.text, "x.json");
      ADD_FAILURE() << c.text;
    } catch (const InstallationError& error) {
      EXPECT_THAT(error.what(), testing::StartsWith("x.json" + c.error)) << c.text.substr(0, 200);
    }
  }
}

TEST(Installation, IsReadFromFilesThatCanBeRead) {
  const TalTest::TempFile file("house.json", House(Object()));
  EXPECT_EQ(LoadInstallation(file.path).objects.size(), 1u);
  for (const std::string& bad : {file.path + "x", testing::TempDir()}) {
    EXPECT_THROW(LoadInstallation(bad), InstallationError) << bad;
  }
  try {
    LoadInstallation("/dev/zero");
    ADD_FAILURE();
  } catch (const InstallationError& error) {
    EXPECT_STREQ(error.what(), "/dev/zero: is longer than 16777216 octets");
  }
}

}  // namespace
}  // namespace DeviceStack
