// The commands of talctl that talk to a house, and `config`.
#include <gmock/gmock.h>

#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <csignal>

#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "Support/TempFile.h"
#include "Tools/talctl/RunTalctl.h"

namespace Talctl {
namespace {

using nlohmann::json;
using TalTest::TempFile;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

void ExpectOneLine(const std::string& arguments, int status, const std::string& out, const std::string& err) {
  const Outcome outcome = RunWith(arguments);
  EXPECT_EQ(outcome.out, out) << arguments;
  EXPECT_THAT(outcome.err, StartsWith(err)) << arguments;
  EXPECT_EQ(outcome.status, status) << arguments;
  const bool pointsAt = outcome.err.find("^\n") != outcome.err.npos;
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), pointsAt ? 3 : status) << arguments;
}

TEST(TalctlHouse, GetsAndSetsValues) {
  ExpectOneLine("get|kitchen.light", 0, "false\n", "");
  ExpectOneLine("get|living.setpoint|--format|internal|--timeout|inf|--retries=0", 0, "21\n", "");
  ExpectOneLine("get|100101", 0, "false\n", "");
  ExpectOneLine("get|house.date", 0, "2026-01-11\n", "");
  ExpectOneLine("get|kitchen.light|--json", 0,
                R"({"id":100101,"object":"kitchen.light","dpt":"1.001","type":"Bool","value":false})"
                "\n",
                "");
  EXPECT_THAT(RunWith("set|kitchen.light|on").out,
              MatchesRegex("....-..-..T..:..:..\\....Z 1.1.250 1/0/1 write 1 01\ntrue\n"));
  EXPECT_THAT(RunWith("set|door.display|Guten Tag|\\x21|--format|internal").out,
              EndsWith(" 477574656E205461672021000000\nGuten Tag !\n"));
  ExpectOneLine("set|kitchen.light.status|on", 0, "no telegram: the object does not transmit\ntrue\n", "");
  ExpectOneLine("set|270401|-4.5", 0, "no telegram: the object does not transmit\n-4.5\n", "");
  const json set = json::parse(RunWith("set|living.setpoint|21.5|--json").out);
  EXPECT_EQ(set["value"], 21.5);
  EXPECT_EQ(set["telegram"]["octets"], "0C33");
  ExpectOneLine("register|app|1.0|", 0, "app is registered\n", "");
  EXPECT_EQ(json::parse(RunWith("request|{\"request\":\"list\"}").out)["objects"].size(), 17u);
}

TEST(TalctlHouse, RefusesInOneLine) {
  const std::string bool_ = "expected true, false, on, off, 1 or 0";
  ExpectOneLine("set|kitchen.light|maybe", 1, "", "error: 'maybe' is no value of 1.001: " + bool_ + "\n");
  ExpectOneLine("set|living.setpoint|700000", 1, "", "error: '7e+05' cannot be sent as 9.001: ");
  ExpectOneLine("set|270401|x", 1, "", "error: 'x' is no value of Float\n");
  ExpectOneLine("get|42", 1, "", "error: there is no object 42 in this installation\n");
  ExpectOneLine("get|4294967296", 1, "", "error: there is no object '4294967296'\n");
  ExpectOneLine("get|kitchen", 1, "", "error: there is no object 'kitchen' in this installation\n");
  ExpectOneLine("get|\xFF", 1, "", "error: there is no object '");
  ExpectOneLine("get|", 1, "", "error: there is no object '' in this installation\n");
  ExpectOneLine("get|100100", 1, "",
                "error: 100100 is the channel of communication object 1 of logical device 1: its value is 100101\n");
  ExpectOneLine("get|living.temperature", 1, "", "error: 'living.temperature' (100119, 9.001) has no value yet");
  ExpectOneLine("get|kitchen.light|--timeout|0.000001|--retries|1", 1, "",
                "error: no answer within 1e-06 s, asked 2 times: take a longer --timeout, or more --retries\n");
  ExpectOneLine("register||b|c", 1, "", "error: an application needs a name: the first text is empty\n");
  ExpectOneLine("request|list", 1, "", "error: the request is not JSON: ");
  ExpectOneLine("get|x|--installation|/no/such/file", 1, "", "error: /no/such/file: cannot be read\n");
  const TempFile broken("broken.json", R"({"name": "x", "address": "1.1.1", "objects": [{"device": 1}]})");
  ExpectOneLine("get|x|--installation|" + broken.path, 1, "",
                "error: " + broken.path + ": objects[0]: the key 'number' is missing\n");
  EXPECT_EQ(RunWith("get|42|--json").out, "{\"error\":\"there is no object 42 in this installation\"}\n");
  for (const char* wrong : {"get", "get|a|b", "set|a", "register|a", "request", "monitor|x", "config|a|b", "journey|x",
                            "get|x|--timeout|-1", "get|x|--timeout|nan", "get|x|--timeout|x", "get|x|--retries|-1",
                            "get|x|--format|other", "monitor|--speed|fast"}) {
    EXPECT_EQ(RunWith(wrong).status, 2) << wrong;
  }
}

TEST(TalctlMonitor, PlaysTheLogOfTheSampleHouse) {
  const Outcome text = RunWith("monitor");
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(
      text.out,
      HasSubstr(
          "2026-01-11T06:00:10.000Z  1.1.10   2/1/1    write     living.temperature    9.001    0BE8        20\n"));
  EXPECT_THAT(text.out,
              EndsWith("\n22 telegrams received: 16 values decoded, 2 refused, 2 telegrams for no object; 2 sent\n"));
  std::istringstream lines(RunWith("monitor|--json").out);
  std::vector<json> events;
  for (std::string line; std::getline(lines, line);) events.push_back(json::parse(line));
  ASSERT_EQ(events.size(), 25u);
  EXPECT_EQ(events[0]["groupAddress"], "7/0/1");
  EXPECT_EQ(events[0]["value"], "Sun 06:00:00");
  EXPECT_EQ(events.back()["valuesRefused"], 2);
}

TEST(TalctlMonitor, PlaysRecordsAndRefusesFiles) {
  const TempFile house("house.json",
                       R"({"name": "x", "address": "1.1.9", "objects": [{"device": 1, "number": 1, "name": "a",
      "dpt": "5.001", "groupAddress": "1/1/1", "flags": ["read", "write"]}]})");
  const TempFile log("bus.log",
                     "2026-01-11T06:00:00Z 1.1.1 1/1/1 write 8 2A\n2026-01-11T06:00:00.001Z 1.1.1 1/1/1 read 0 -\n");
  const TempFile record("record.log", "# before\n");
  const std::string command = "monitor|--installation|" + house.path + "|--log|" + log.path;
  EXPECT_EQ(RunWith(command + "|--speed|real|--record|" + record.path).status, 0);
  std::ifstream in(record.path);
  std::stringstream recorded;
  recorded << in.rdbuf();
  EXPECT_THAT(recorded.str(), MatchesRegex("# before\n[^ ]* 1.1.9 1/1/1 response 8 2A\n"));
  const TempFile bad("bad.log", "2026-01-11T06:00:00Z 1.1.1 1/1/1 write 8\n");
  ExpectOneLine("monitor|--log|" + bad.path, 1, "",
                "error: " + bad.path + ":1: no octets: expected TIME SOURCE DESTINATION SERVICE BITS OCTETS\n");
  const Outcome full = RunWith(command + "|--record|/dev/full");
  EXPECT_EQ(full.err, "error: /dev/full: 1 telegrams could not be written\n");
  EXPECT_EQ(full.status, 1);
  ExpectOneLine("monitor|--log|/no/such", 1, "", "error: /no/such: cannot be read\n");
  ExpectOneLine("monitor|--log|/tmp", 1, "", "error: /tmp: cannot be read\n");
  ExpectOneLine("monitor|--record|/no/such/file", 1, "", "error: /no/such/file: cannot be written\n");
}

TEST(TalctlMonitor, EndsWithASummaryWhenInterrupted) {
  for (const int signal : {SIGINT, SIGTERM}) {
    std::atomic<bool> isDone{false};
    std::thread sender([&] {  // once, as the second one would end the process
      struct sigaction action = {};
      while (!isDone && (sigaction(signal, nullptr, &action), action.sa_handler == SIG_DFL)) std::this_thread::yield();
      if (!isDone) ::kill(::getpid(), signal);
    });
    const Outcome outcome = RunWith("monitor|--wait");
    isDone = true;
    sender.join();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr(" telegrams received: "));
  }
}

TEST(TalctlJourney, ComesOutAsExpected) {
  const Outcome outcome = RunWith("journey");
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  EXPECT_THAT(outcome.out,
              EndsWith("Requests: 21 made, 20 answered, 3 retried, 1 given up\n0 other than expected: all is well\n"));
}

TEST(TalctlConfig, PrintsEverySettingWithItsOrigin) {
  const TempFile good(
      "config.xml",
      "<TalAppHostConfig WithoutKNX='0'><Debugging Active='1'><AppHost DisableStartup='1' RootPath='true'/>"
      "</Debugging></TalAppHostConfig>");
  const Outcome text = RunWith("config|" + good.path);
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_THAT(text.out, HasSubstr("WithoutKNX                                 false  file\n"));
  EXPECT_THAT(text.out, HasSubstr("Debugging/AppConnectorHost/DisableStartup  true   file\n"));
  EXPECT_THAT(text.out, HasSubstr("ZelConfig/ResponseDps/Dp/ObjId             -      default\n"));
  EXPECT_THAT(RunWith("config|--json|" + good.path).out,
              HasSubstr("{\"setting\":\"Debugging/AppHost/RootPath\",\"value\":\"true\",\"origin\":\"file\"}\n"));
  const TempFile broken("broken.xml", "<TalAppHostConfig WithoutKNX='1'>");
  const Outcome refused = RunWith("config|" + broken.path);
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err, "error: " + broken.path + ": Failed to read configuration file: unexpected end of data\n");
  ExpectOneLine("config|/no/such", 1, "", "error: /no/such: cannot be read\n");
}

}  // namespace
}  // namespace Talctl
