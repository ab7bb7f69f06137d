#include "Talctl.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace Talctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

Outcome RunWith(const std::vector<std::string>& arguments, const std::string& input = "") {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  const int status = Run(arguments, {in, out, err});
  return {status, out.str(), err.str()};
}

TEST(TalctlEncode, PrintsTheOctetsOfOneValue) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"9.001", "21"}, "0C1A"},
      {{"9.1", "-30"}, "8A24"},
      {{"9", "-.5"}, "87CE"},
      {{"9.x", "+21"}, "0C1A"},
      {{"dpst-9-1", "NaN"}, "7FFF"},
      {{"DPT-14", "-inf"}, "FF800000"},
      {{"9.001", "0x15"}, "0C1A"},
      {{"9.001", "2.1e1"}, "0C1A"},
      {{"1.001", "On"}, "01"},
      {{"5.001", "0xfF"}, "FF"},
      {{"6.001", "-128"}, "80"},
      {{"6.001", "255"}, "FF"},
      {{"8.001", "-0x10"}, "FFF0"},
      {{"13.001", "-2147483648"}, "80000000"},
      {{"12.001", "4294967295"}, "FFFFFFFF"},
      {{"10.001", "Sun 23:59:59"}, "F73B3B"},
      {{"10.001", "mon", "7:05:00"}, "270500"},
      {{"11.001", "1990-01-01"}, "01015A"},
      {{"19.001", "2023-01-01T12:30:15"}, "7B0101EC1E0F2000"},
      {{"19.001", "2023-01-01 12:30:15"}, "7B0101EC1E0F2000"},
      {{"232.600", "#123456"}, "123456"},
      {{"232.600", "1193046"}, "123456"},
      {{"16.000", "Gr\u00FC\u00DFe \u20AC"}, "4772FCDF65205F00000000000000"},
      {{"16.001", "-text"}, "2D74657874000000000000000000"},
      {{"16.001", "[a,b]"}, "5B612C625D000000000000000000"},
      {{"16.001", "id"}, "6964000000000000000000000000"},
      {{"16.001", "a", "b"}, "6120620000000000000000000000"},
      {{"16.001", "--", "--json"}, "2D2D6A736F6E0000000000000000"},
      {{"16.001", ""}, "0000000000000000000000000000"},
  };
  for (const auto& [operands, octets] : cases) {
    std::vector<std::string> arguments = {"encode"};
    arguments.insert(arguments.end(), operands.begin(), operands.end());
    const Outcome outcome = RunWith(arguments);
    EXPECT_EQ(outcome.out, std::string(octets) + "\n") << testing::PrintToString(operands) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
  }
}

TEST(TalctlEncode, RefusesOnStandardErrorWithTheReasonAndWhatToDo) {
  struct Case {
    const char *dpt, *value, *error;
  };
  for (const Case& c : {
           Case{"7.001", "65536", "Value out of range: 65536 (DPT 7): expected a whole number from 0 to 65535"},
           {"8.001", "-32769", "Value out of range: -32769 (DPT 8): expected a whole number from -32768 to 32767"},
           {"17.001", "64", "'64' cannot be sent as 17.001: expected a scene number from 0 to 63"},
           {"9.001", "inf",
            "'inf' cannot be sent as 9.001: expected a number from -671088.64 to 670760.96 with a decimal point, or "
            "nan"},
           {"9.001", "21,5",
            "'21,5' is no value of 9.001: expected a number from -671088.64 to 670760.96 with a decimal point, or nan"},
           {"14.056", "infinity",
            "'infinity' is no value of 14.056: expected a number with a decimal point, or nan, inf, -inf"},
           {"14.056", "1e999",
            "'1e999' is no value of 14.056: expected a number with a decimal point, or nan, inf, -inf"},
           {"5.001", "256", "'256' is no value of 5.001: expected a whole number from 0 to 255"},
           {"5.001", "1x", "'1x' is no value of 5.001: expected a whole number from 0 to 255"},
           {"5.001", "0x", "'0x' is no value of 5.001: expected a whole number from 0 to 255"},
           {"6.001", "-129", "'-129' is no value of 6.001: expected a whole number from -128 to 255"},
           {"12.001", "4294967296", "'4294967296' is no value of 12.001: expected a whole number from 0 to 4294967295"},
           {"1.001", "2", "'2' is no value of 1.001: expected true, false, on, off, 1 or 0"},
           {"10.001", "Mo 12:00:00",
            "'Mo 12:00:00' is no value of 10.001: expected a time of day such as 12:30:15 or Mon 12:30:15"},
           {"10.001", "24:00:00",
            "Could not convert AROTIME 0 0 0 24 0 0 0 0 0 0 0 to TimeOfDay: expected a time of day such as 12:30:15 or "
            "Mon 12:30:15"},
           {"11.001", "2023-02-29",
            "Not a valid date: 2023 2 29: expected a date from 1990-01-01 to 2089-12-31, such as 2023-01-01"},
           {"19.001", "2023-00-01T00:00:00",
            "Month number is out of range 1..12: expected a date with time in the years 1400 to 9999, such as "
            "2023-01-01T12:30:15"},
           {"232.600", "#12345",
            "'#12345' is no value of 232.600: expected a colour, #RRGGBB or a whole number of which "
            "the low 24 bits are sent"},
           {"16.000", "A\xC3", "Got AROVALUE that contains a non-UTF8 string: expected text in UTF-8"},
           {"4.001", "A",
            "Value type 4 not supported (dwDPT=262145 with value='avt: 1, ToString(): '): 4.x is not encoded; `talctl "
            "dpts` lists what is"},
           {"300.001", "1",
            "Value type 300 not supported (dwDPT=19660801 with value='avt: 1, ToString(): '): 300.x is not known; "
            "`talctl dpts` lists what is"},
           {"9.01y", "1",
            "'9.01y' is not a datapoint type: expected main.sub up to 65535 each, such as 9.001, 9, DPST-9-1 or DPT-9"},
           {"65536.1", "1",
            "'65536.1' is not a datapoint type: expected main.sub up to 65535 each, such as 9.001, 9, DPST-9-1 or "
            "DPT-9"},
       }) {
    const Outcome outcome = RunWith({"encode", c.dpt, c.value});
    EXPECT_EQ(outcome.err, std::string("error: ") + c.error + "\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 1);
  }
}

TEST(TalctlEncode, AnswersEveryLineInOrder) {
  const Outcome outcome = RunWith({"encode"},
                                  "\xEF\xBB\xBF# a comment\r\n9.001 21\r\n\n \t\n  1.001\ton  \n16.001  a b \n16.001\n"
                                  "9.001\nzz 1\n17.001 64\n1.001 off");
  EXPECT_EQ(outcome.out,
            "0C1A\n01\n6120622000000000000000000000\n0000000000000000000000000000\n"
            "error: the value is missing: expected a number from -671088.64 to 670760.96 with a decimal point, or nan\n"
            "error: 'zz' is not a datapoint type: expected main.sub up to 65535 each, such as 9.001, 9, DPST-9-1 or "
            "DPT-9\n"
            "error: '64' cannot be sent as 17.001: expected a scene number from 0 to 63\n00\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(RunWith({"encode"}, "").status, 0);
}

TEST(TalctlEncode, BoundsTheLengthOfALineAndGoesOn) {
  const std::string longest = "16.001 " + std::string(65536 - 7, 'x');
  const Outcome outcome = RunWith({"encode"}, longest + "\n" + longest + "x\n1.001 on\n");
  EXPECT_EQ(outcome.out, "7878787878787878787878787878\nerror: the line is longer than 65536 bytes\n01\n");
}

TEST(TalctlEncode, WritesOneJsonObjectALineOfTheValuesKind) {
  const Outcome outcome =
      RunWith({"encode", "--json"},
              "9.1 21.5\n\n1.1 on\n9.1 -inf\n14.1 -inf\n5.1 7\n16.1 \"\xC3\xA9\n10.1 Mon 1:2:3\n9.1 x\nx\n");
  EXPECT_EQ(outcome.status, 1);
  std::istringstream lines(outcome.out);
  std::vector<std::string> objects;
  for (std::string line; std::getline(lines, line);) {
    const auto json = nlohmann::json::parse(line);
    EXPECT_NE(json.contains("error"), json.contains("octets"));
    objects.push_back(line.substr(0, line.find(",\"error\"")));
  }
  EXPECT_THAT(
      objects,
      ElementsAre(R"({"line":1,"dpt":"9.001","value":21.5,"type":"Float","octets":"0C33","bits":16})",
                  R"({"line":3,"dpt":"1.001","value":true,"type":"Bool","octets":"01","bits":1})",
                  R"({"line":4,"dpt":"9.001","value":"-inf")",
                  R"({"line":5,"dpt":"14.001","value":"-inf","type":"Float","octets":"FF800000","bits":32})",
                  R"({"line":6,"dpt":"5.001","value":7,"type":"Byte","octets":"07","bits":8})",
                  "{\"line\":7,\"dpt\":\"16.001\",\"value\":\"\\\"\u00E9\",\"type\":\"String\",\"octets\":"
                  "\"22E9000000000000000000000000\",\"bits\":112}",
                  R"({"line":8,"dpt":"10.001","value":"Mon 01:02:03","type":"DayTime","octets":"210203","bits":24})",
                  R"({"line":9,"dpt":"9.001","value":"x")", R"({"line":10)"));
  EXPECT_EQ(RunWith({"encode", "--json", "16.1", "\xFF"}).out.substr(0, 43),
            "{\"line\":1,\"dpt\":\"16.001\",\"value\":\"\uFFFD\",\"err");
}

TEST(TalctlEncode, ShowsLogRecordsOnlyWhenAskedTo) {
  EXPECT_THAT(RunWith({"encode", "7.1", "65536", "--log-level", "Error"}).err,
              HasSubstr("ERROR AroValueToGroupValue(TalObjectModel/GroupValueAroValue:"));
  EXPECT_EQ(RunWith({"encode", "7.1", "65536", "--log-level=fatal"}).err,
            "error: Value out of range: 65536 (DPT 7): expected a whole number from 0 to 65535\n");
}

TEST(Talctl, TellsWrongUseFromRefusal) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, "A subcommand is required"},
      {{"encoed", "9.1", "1"}, "there is no command 'encoed': expected one of encode, dpts, id, demo"},
      {{"encode", "9.1"}, "VALUE is missing"},
      {{"encode", "9.1", "1", "--jsn"}, "--jsn"},
      {{"encode", "-x", "9.1", "1"}, "-x"},
      {{"encode", "9.1", "1", "--log-level", "loud"}, "--log-level"},
      {{"id"}, "expected NUMBER..."},
      {{"id", "--co", "1"}, "--device is missing"},
      {{"id", "--device", "3", "--co", "1"}, "--device"},
      {{"id", "--device", "1"}, "exactly one of"},
      {{"id", "--device", "1", "--co", "1", "--app-control", "state"}, "exactly one of"},
      {{"id", "--device", "1", "--co", "1", "1000"}, "not both"},
      {{"id", "--device", "1", "--parameter", "foo:1"}, "ip:N, number:N or text:N"},
      {{"demo", "x"}, "no operands"},
  };
  for (const auto& [arguments, reason] : cases) {
    const Outcome outcome = RunWith(arguments);
    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr(reason));
    EXPECT_THAT(outcome.err, testing::EndsWith("Try `talctl --help`, or `talctl COMMAND --help`.\n"));
  }
}

TEST(Talctl, HelpsEverywhere) {
  for (const char* command : {"encode", "dpts", "id", "demo"}) {
    const Outcome outcome = RunWith({command, "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr(std::string("Usage: talctl ") + command + " [OPTIONS]"));
    EXPECT_THAT(outcome.out, HasSubstr(std::string("\nExamples:\n  talctl ") + command));
    EXPECT_EQ(RunWith({command, "--version"}).out, RunWith({"--version"}).out);
  }
  EXPECT_THAT(RunWith({"--version"}).out, testing::MatchesRegex("talctl [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Talctl, FailsWhenItCannotReadOrWrite) {
  std::istringstream in("1.1 on\n");
  std::ostringstream err;
  std::ostream broken(nullptr);
  EXPECT_EQ(Talctl::Run({"encode"}, {in, broken, err}), 1);
  EXPECT_EQ(err.str(), "talctl: standard output cannot be written\n");
  struct Unreadable : std::streambuf {
    int_type underflow() override { throw 1; }
  } unreadable;
  std::istream badIn(&unreadable);
  std::ostringstream out;
  err.str("");
  EXPECT_EQ(Talctl::Run({"encode"}, {badIn, out, err}), 1);
  EXPECT_EQ(err.str(), "talctl: standard input cannot be read\n");
}

TEST(TalctlDpts, DescribesMainTypes) {
  EXPECT_EQ(RunWith({"dpts", "9.001", "4"}).out,
            "DPT  TYPE   SUB TYPE  BITS  DEFAULT  VALUES\n"
            "9.x  Float  Generic   16    0        a number from -671088.64 to 670760.96 with a decimal point, or nan\n"
            "4.x  Empty  Generic   -     -        not encoded\n");
  EXPECT_EQ(
      RunWith({"dpts", "19", "--json"}).out,
      R"({"main":19,"type":"DateTime","subType":"Generic","encoded":true,"bits":64,"default":"1900-01-01T00:00:00"})"
      "\n");
  const std::string all = RunWith({"dpts", "--json"}).out;
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 43);
  const Outcome unknown = RunWith({"dpts", "300"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.err, "error: 300.000 is of no known main type; `talctl dpts` lists them\n");
}

TEST(TalctlId, ExplainsIdentifiers) {
  const std::pair<const char*, const char*> cases[] = {
      {"1000", "the device, and the KNX device"},
      {"100000", "logical KNX device 1"},
      {"200020", "app host control: channel of logical device 2"},
      {"100023", "app host control: alive heartbeat of logical device 1"},
      {"100098", "not an identifier of the KNX side"},
      {"100100", "channel of communication object 1 of logical device 1"},  // though it passes as a parameter too
      {"100101", "value of communication object 1 of logical device 1"},
      {"108288", "channel of communication object 4095 of logical device 1"},
      {"160003", "value of IP parameter 1 of logical device 1"},
      {"270400", "channel of number parameter 200 of logical device 2"},
      {"281000", "channel of text parameter 500 of logical device 2"},  // not 244, its low eight bits
      {"281002", "not an identifier of the KNX side"},
      {"299999", "the last identifier of logical device 2"},
      {"99999", "not an identifier of the KNX side"},
      {"300000", "not an identifier of the KNX side"},
      {"4295067397", "not an identifier of the KNX side"},  // 2^32 + 100101
      {"18446744073709551616", "not an identifier of the KNX side"},
  };
  for (const auto& [id, text] : cases) {
    const Outcome outcome = RunWith({"id", id});
    EXPECT_THAT(outcome.out, testing::MatchesRegex(std::string(id) + " +" + text + "\n"));
    EXPECT_EQ(outcome.status, 0);
  }
  EXPECT_EQ(
      RunWith({"id", "--json", "281001", "7"}).out,
      R"({"id":281001,"kind":"parameter-value","device":2,"number":500,"text":"value of text parameter 500 of logical device 2"})"
      "\n"
      R"({"id":7,"kind":"none","text":"not an identifier of the KNX side"})"
      "\n");
  const Outcome refused = RunWith({"id", "x", "-5", "1000"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.out, HasSubstr("1000 "));
  EXPECT_EQ(refused.err,
            "error: 'x' is not an identifier: expected a whole number\n"
            "error: '-5' is not an identifier: expected a whole number\n");
}

TEST(TalctlId, ComputesIdentifiers) {
  EXPECT_EQ(RunWith({"id", "--device", "1", "--co", "4095"}).out,
            "108288      channel of communication object 4095 of logical device 1\n"
            "108289      value of communication object 4095 of logical device 1\n");
  EXPECT_EQ(RunWith({"id", "--device=2", "--parameter", "text:500"}).out,
            "281000      channel of text parameter 500 of logical device 2\n"
            "281001      value of text parameter 500 of logical device 2\n");
  EXPECT_EQ(RunWith({"id", "--device", "2", "--app-control", "app-debug"}).out,
            "200024      app host control: app debug of logical device 2\n");
  const std::pair<std::vector<std::string>, const char*> refused[] = {
      {{"--co", "0"}, "error: there is no communication object 0: expected a number from 1 to 4095\n"},
      {{"--co", "4096"}, "error: there is no communication object 4096: expected a number from 1 to 4095\n"},
      {{"--parameter", "ip:101"}, "error: there is no parameter 'ip:101': expected a number from 1 to 100\n"},
      {{"--parameter", "text:5x"}, "error: there is no parameter 'text:5x': expected a number from 1 to 500\n"},
  };
  for (const auto& [options, error] : refused) {
    std::vector<std::string> arguments = {"id", "--device", "1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = RunWith(arguments);
    EXPECT_EQ(outcome.err, error);
    EXPECT_EQ(outcome.status, 1);
  }
}

TEST(TalctlDemo, ComesOutAsExpectedAndCoversEveryEncodedMainType) {
  const Outcome demo = RunWith({"demo"});
  EXPECT_EQ(demo.status, 0) << demo.out;
  EXPECT_THAT(demo.out, testing::ContainsRegex("[0-9]+ values: [0-9]+ encoded, 1[0-9] refused, 0 other than expected"));
  const std::string lines = RunWith({"demo", "--lines"}).out;
  EXPECT_GE(std::count(lines.begin(), lines.end(), '\n'), 60);
  std::istringstream dpts(RunWith({"dpts", "--json"}).out);
  for (std::string line; std::getline(dpts, line);) {
    const auto row = nlohmann::json::parse(line);
    if (!row["encoded"]) continue;
    EXPECT_THAT("\n" + lines, HasSubstr("\n" + std::to_string(row["main"].get<int>()) + "."));
  }
  EXPECT_EQ(RunWith({"encode"}, lines).status, 1);
}

}  // namespace
}  // namespace Talctl
