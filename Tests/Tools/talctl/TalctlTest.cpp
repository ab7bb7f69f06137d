#include "Tools/talctl/RunTalctl.h"

#include <gmock/gmock.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <chrono>
#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "Suggestion.h"
#include "Support/TempFile.h"

namespace Talctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// Arguments and what answers them: on standard output with status 0, or "error: ..." on standard error with status 1.
/// There the command line and a caret may follow, which count only in rows that have them.
struct Case {
  const char* arguments;
  std::string answer;
};

void Expect(const std::string& command, const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const Outcome outcome = RunWith(command + c.arguments);
    const bool isRefused = c.answer.rfind("error: ", 0) == 0;
    EXPECT_EQ(outcome.out, isRefused ? "" : c.answer + "\n") << command << c.arguments;
    const bool pointsAt = c.answer.find('\n') != c.answer.npos;
    EXPECT_EQ(outcome.err.substr(0, pointsAt ? outcome.err.npos : outcome.err.find('\n') + 1),
              isRefused ? c.answer + "\n" : "")
        << command << c.arguments;
    EXPECT_EQ(outcome.status, isRefused ? 1 : 0) << command << c.arguments;
  }
}

const std::string kFloat16 = "expected a number from -671088.64 to 670760.96 with a decimal point, or nan";
const std::string kDptForm =
    "is not a datapoint type: expected main.sub up to 65535 each, such as 9.001, 9, DPST-9-1 or DPT-9";
const std::string kHex = ": expected two hex digits an octet, such as 0C1A, 0C 1A or 0x0C1A";
const std::string kWrongSize =
    "Failed to convert a GroupValue for DPT 9.1 because of unexpected bit size: 8, expected: 16: "
    "9.001 has 16 bits in 2 octets";

TEST(TalctlEncode, PrintsTheOctetsOfOneValue) {
  // clang-format off
  Expect("encode|", {
      {"9.001|21", "0C1A"}, {"9.1|-30", "8A24"}, {"9|-.5", "87CE"}, {"9.x|+21", "0C1A"}, {"dpst-9-1|NaN", "7FFF"},
      {"DPT-14|-inf", "FF800000"}, {"9.001|0x15", "0C1A"}, {"9.001|2.1e1", "0C1A"}, {"14.001|-0x80000000", "CF000000"},
      {"14.001|-1e-400", "80000000"}, {"14.001|0.00001e-99999999999999999999", "00000000"}, {"1.001|On", "01"},
      {"5.001|0xfF", "FF"}, {"6.001|-128", "80"}, {"6.001|255", "FF"}, {"8.001|-0x10", "FFF0"},
      {"13.001|-2147483648", "80000000"}, {"12.001|4294967295", "FFFFFFFF"}, {"10.001|Sun 23:59:59", "F73B3B"},
      {"10.001|mon|7:05:00", "270500"}, {"11.001|1990-01-01", "01015A"}, {"232.600|#123456", "123456"},
      {"232.600|1193046", "123456"}, {"19.001|2023-01-01T12:30:15", "7B0101EC1E0F2000"},
      {"19.001|2023-01-01 12:30:15", "7B0101EC1E0F2000"}, {"16.000|Gr\u00FC\u00DFe \u20AC", "4772FCDF65205F00000000000000"},
      {"16.001|-text", "2D74657874000000000000000000"}, {"16.001|[a,b]", "5B612C625D000000000000000000"},
      {"16.001|id", "6964000000000000000000000000"}, {"16.001|a|b", "6120620000000000000000000000"},
      {"16.001|--|--json", "2D2D6A736F6E0000000000000000"}, {"16.001|\\x20\\\\n\\q\\n\\x0g", "205C6E5C710A5C78306700000000"}, {"16.001|", "0000000000000000000000000000"}});
  Expect("encode|--converter|table|", {{"4.001|A", "41"}, {"6.001|-1", "FF"}, {"17.001|63", "3F"}, {"10.001|Sun 23:59:59", "F73B3B"}});
  // clang-format on
}

TEST(TalctlEncode, RefusesWithTheReasonAndWhatToDo) {
  const std::string float32 = "expected a number with a decimal point, or nan, inf, -inf";
  const std::string byte = "expected a whole number from 0 to 255";
  const std::string dayTime = "expected a time of day such as 12:30:15 or Mon 12:30:15";
  const std::string dateTime =
      "expected a date with time such as 2023-01-01T12:30:15; the years 1900 to 2155 keep their century";
  const std::string x80 = "x1234567890123456789012345678901234567890123456789012345678901234567890123456789";
  // clang-format off
  Expect("encode|", {
      {"7.001|65536", "error: Value out of range: 65536 (DPT 7): expected a whole number from 0 to 65535"},
      {"8.001|-32769", "error: Value out of range: -32769 (DPT 8): expected a whole number from -32768 to 32767"},
      {"17.001|64", "error: '64' cannot be sent as 17.001: expected a scene number from 0 to 63"},
      {"9.001|inf", "error: 'inf' cannot be sent as 9.001: " + kFloat16}, {"9.001|21,5", "error: '21,5' is no value of 9.001: " + kFloat16},
      {"14.056|infinity", "error: 'infinity' is no value of 14.056: " + float32}, {"14.056|1e999", "error: '1e999' is no value of 14.056: " + float32},
      {"14.056|0x1p3", "error: '0x1p3' is no value of 14.056: " + float32}, {"14.056|+-1", "error: '+-1' is no value of 14.056: " + float32},
      {"14.056|1e-400x", "error: '1e-400x' is no value of 14.056: " + float32}, {"5.001|256", "error: '256' is no value of 5.001: " + byte},
      {"5.001|1x", "error: '1x' is no value of 5.001: " + byte}, {"5.001|0x", "error: '0x' is no value of 5.001: " + byte},
      {"5.001|1\n\x1B[2J", "error: '1\\n\\x1B[2J' is no value of 5.001: " + byte}, {"5.001|", "error: the value is missing: " + byte},
      {("5.001|x1234567890123456789012345678901234567890123456789012345678901234567890123456789\u00E9y"),
       "error: '" + x80 + "...' is no value of 5.001: " + byte},
      {"6.001|-129", "error: '-129' is no value of 6.001: expected a whole number from -128 to 255"},
      {"12.001|4294967296", "error: '4294967296' is no value of 12.001: expected a whole number from 0 to 4294967295"},
      {"1.001|2", "error: '2' is no value of 1.001: expected true, false, on, off, 1 or 0"},
      {"10.001|Mo 12:00:00", "error: 'Mo 12:00:00' is no value of 10.001: " + dayTime},
      {"10.001|24:00:00", "error: Could not convert AROTIME 0 0 0 24 0 0 0 0 0 0 0 to TimeOfDay: " + dayTime},
      {"11.001|2023-02-29", "error: Not a valid date: 2023 2 29: expected a date from 1990-01-01 to 2089-12-31, such as 2023-01-01"},
      {"19.001|2023-00-01T00:00:00", "error: Month number is out of range 1..12: " + dateTime},
      {"16.000|A\xC3", "error: Got AROVALUE that contains a non-UTF8 string: expected text in UTF-8"},
      {"4.001|A", "error: Value type 4 not supported (dwDPT=262145 with value='avt: 1, ToString(): '): 4.001 is not encoded on this "
                  "converter; take `--converter table`"},
      {"25.001|1", "error: Value type 25 not supported (dwDPT=1638401 with value='avt: 6, ToString(): 1'): 25.x is not encoded; "
                   "`talctl dpts` lists what is"},
      {"24.001|\xD8\x1B", "error: Value type 24 not supported (dwDPT=1572865 with value='avt: 10, ToString(): ?\\x1B'): 24.x is not "
                           "encoded; `talctl dpts` lists what is"},
      {"300.001|1", "error: Value type 300 not supported (dwDPT=19660801 with value='avt: 1, ToString(): '): 300.x is not known; "
                    "`talctl dpts` lists what is"},
      {"9.01y|1", "error: '9.01y' " + kDptForm + "; did you mean '9.001'?"}, {"65536.1|1", "error: '65536.1' " + kDptForm}});
  Expect("encode|--converter|table|", {
      {"3.007|11", "error: Wrong aro value type (avtByte) or DPT main number (3.x)!: 3.007 is not encoded on this converter; take `--converter direct`"},
      {"22.001|1", "error: 22.001 is taken for valid, but no octets are written: 22.001 is not encoded on this converter; take `--converter direct`"},
      {"9.001|-300", "error: The internal value of DPT=9.1, f=-300 is out of the allowed range: expected a number from -273 to 670760, or nan"},
      {"17.001|64", "error: Scene number is out of range (>63) for SceneNumber: 64: expected a whole number from 0 to 63"}});
  // clang-format on
}

TEST(TalctlDecode, PrintsTheValueInTheFormThatEncodeTakesOrWhyThereIsNone) {
  // clang-format off
  Expect("decode|", {
      {"9.001|0C1A", "21"}, {"9.001|0c 1a", "21"}, {"9.001|0x0C1A", "21"}, {"9.001|0C|1A", "21"}, {"9.001|7FFF", "nan"},
      {"11.001|01015A|--converter=table", "1990-01-01"}, {"11.001|02015A", "1990-01-02"}, {"6.001|FF", "255"}, {"6.001|FF|--converter|table", "-1"},
      {"1.001|01", "true"}, {"1.001|01|--bits|6", "true"}, {"1.001|01|--bits|1", "true"}, {"3.007|0B|--converter|table", "11"},
      {"10.001|F73B3B", "Sun 23:59:59"}, {"10.001|010203|--converter|table", "01:02:03"}, {"19.001|7B0101EC1E0F2000", "2023-01-01T12:30:15"},
      {"232.600|123456", "1193046"}, {"4.002|E9|--converter|table", "\u00E9"}, {"31.001|05", "5"}, {"14.001|FF800000", "-inf"},
      {"16.001|41|0A|9B|00|00|00|00|00|00|00|00|00|00|00", "A\\n\\xC2\\x9B"},
      {"16.001|20|5C|6E|00|00|00|00|00|00|00|00|00|00|00", "\\x20\\\\n"}, {"4.001|00|--converter|table", "\\x00"},
      {"0|0B|--bits|4|--converter|table", "11"}, {"0|0C1A|--converter|table", "21"},
      {"18.002|05", "error: Wrong DPT for Scene number, only 18.001 is valid: they can be read as 18.001"},
      {"9.001|0C", "error: " + kWrongSize}, {"9.001|0C1A|--bits|8", "error: " + kWrongSize},
      {"1.001|01|--bits|8", "error: Failed to convert a GroupValue for DPT 1.1 because of unexpected bit size: 8, expected: 1: 1.001 has "
                            "1 bit in 1 octet"},
      {"9.001|7FFF|--converter|table", "error: the octets stand for no valid value: take `--converter direct`, which reads them"},
      {"11.001|010159", "error: the time is later than 2038-01-19 03:14:07: take `--converter table`, which reads them"},
      {"11.001|1F0417", "error: Day of month is not valid for year: check that the sender uses 11.001"},
      {"25.001|01", "error: 25.x is accepted, but not decoded: neither converter decodes it"},
      {"22.001|0801|--converter|table", "error: 22.x is accepted, but not decoded: take `--converter direct`"},
      {"4.001|41", "error: Unsupported DPT: 4.1: take `--converter table`, which reads them"},
      {"300.001|01", "error: Unsupported DPT: 300.1: 300.x is not known; `talctl dpts` lists what is"},
      {"20.102|05", "error: Value out of raw range IntegerRange(0, 4, 0, 4) for DPT 20.102; value was 5: check that the sender uses 20.102"},
      {"9.001|0C1", "error: '0C1' is no octets" + kHex}, {"9.001|zz", "error: 'zz' is no octets" + kHex},
      {"9.001|0x", "error: '0x' is no octets" + kHex}, {"9.001|", "error: the octets are missing" + kHex},
      {"9.001|0 C1A", "error: '0 C1A' is no octets" + kHex}});
  Expect("check|", {{"9.001|0C1A", "valid"}, {"9.001|0C", "error: " + kWrongSize}, {"22.001|0801", "valid (not in the table, so not checked)"}});
  // clang-format on
}

TEST(TalctlLines, AreAnsweredInOrder) {
  const Outcome outcome = RunWith("encode",
                                  "\xEF\xBB\xBF# a comment\r\n9.001 21\r\n\n \t\n  1.001\ton  \n16.001  a b \n16.001\n"
                                  "9.001\nzz 1\n17.001 64\n1.001 off");
  EXPECT_EQ(
      outcome.out,
      "0C1A\n01\n6120622000000000000000000000\n0000000000000000000000000000\nerror: line 8, column 6: the value is "
      "missing: " +
          kFloat16 + "\nerror: line 9, column 1: 'zz' " + kDptForm +
          "\nerror: line 10, column 8: '64' cannot be sent as 17.001: expected a scene number from 0 to 63\n00\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(RunWith("encode", "").status, 0);
  EXPECT_EQ(RunWith("check", "9.1 0C1A\n9.1\n").out,
            "valid\nerror: line 2, column 4: the octets are missing" + kHex + "\n");
}

TEST(TalctlLines, AreBoundedInLength) {
  const std::string longest = "16.001 " + std::string(65536 - 7, 'x');
  const std::string tooLong = "the line is longer than 65536 bytes\n";
  const std::string comment = "#" + std::string(70000, 'x') + "\n";
  const std::string blank = std::string(70000, ' ') + "9.001 21\n";
  const Outcome outcome = RunWith("encode", longest + "\n" + longest + "x\n" + comment + blank + "1.001 on\n");
  EXPECT_EQ(outcome.out,
            "7878787878787878787878787878\nerror: line 2: " + tooLong + "error: line 4: " + tooLong + "01\n");
}

/// Gives out its text in pieces, and notes what had been answered when each piece was asked for.
class Conversation final : public std::streambuf {
 public:
  explicit Conversation(std::vector<std::string> pieces) : m_pieces(std::move(pieces)) {}
  std::ostringstream m_out;
  std::vector<std::string> m_answers;

 protected:
  int_type underflow() override {
    m_answers.push_back(m_out.str());
    m_out.str("");
    if (m_next == m_pieces.size()) return traits_type::eof();
    std::string& piece = m_pieces[m_next++];
    setg(piece.data(), piece.data(), piece.data() + piece.size());
    return traits_type::to_int_type(piece[0]);
  }

 private:
  std::vector<std::string> m_pieces;
  std::size_t m_next = 0;
};

TEST(TalctlLines, AreAnsweredBeforeWaitingForMore) {
  Conversation conversation({"1.001 on\n\n", "# x\n1.001 off\n1.001 ", "on\n"});
  std::istream in(&conversation);
  std::ostringstream err;
  EXPECT_EQ(Talctl::Run({"encode"}, {in, conversation.m_out, err}), 0);
  EXPECT_THAT(conversation.m_answers, ElementsAre("", "01\n", "00\n", "01\n"));
}

TEST(TalctlLines, GiveOneJsonObjectEachOfTheValuesKind) {
  // clang-format off
  const std::pair<const char*, std::vector<Case>> commands[] = {
      {"encode|--json", {
          {"9.1 21.5", R"("dpt":"9.001","value":21.5,"type":"Float","octets":"0C33","bits":16})"},
          {"1.1 on", R"("dpt":"1.001","value":true,"type":"Bool","octets":"01","bits":1})"},
          {"9.1 -inf", R"("dpt":"9.001","value":"-inf","error":")"},
          {"14.1 -inf", R"("dpt":"14.001","value":"-inf","type":"Float","octets":"FF800000","bits":32})"},
          {"5.1 7", R"("dpt":"5.001","value":7,"type":"Byte","octets":"07","bits":8})"},
          {"16.1 \"", R"("dpt":"16.001","value":"\"","type":"String","octets":"2200000000000000000000000000","bits":112})"},
          {"16.1 \xFF", "\"dpt\":\"16.001\",\"value\":\"\uFFFD\",\"error\":\""},
          {"10.1 Mon 1:2:3", R"("dpt":"10.001","value":"Mon 01:02:03","type":"DayTime","octets":"210203","bits":24})"},
          {"9.1 x", R"("dpt":"9.001","value":"x","error":")"}, {"4.1 A", R"("dpt":"4.001","value":"A","error":")"},
          {"x", R"("error":")"}}},
      {"decode|--json", {
          {"9.001 0C1A", R"("dpt":"9.001","octets":"0C1A","bits":16,"value":21.0,"type":"Float"})"},
          {"9.001 zz", R"("dpt":"9.001","octets":"zz","error":"'zz' is no octets: expected two hex digits)"},
          {"5.010 FF", R"("dpt":"5.010","octets":"FF","bits":8,"value":255,"type":"Byte"})"}}},
      {"check|--json", {{"9.1 0C1A", R"("dpt":"9.001","octets":"0C1A","bits":16,"valid":true,"checked":true})"}}}};
  // clang-format on
  for (const auto& [command, cases] : commands) {
    std::string input = "# first\n";
    for (const Case& c : cases) input += std::string(c.arguments) + '\n';
    std::istringstream out(RunWith(command, input).out);
    for (std::size_t i = 0; i < cases.size(); ++i) {
      std::string line;
      ASSERT_TRUE(std::getline(out, line));
      EXPECT_TRUE(nlohmann::json::accept(line)) << line;
      EXPECT_THAT(line, StartsWith("{\"line\":" + std::to_string(i + 2) + ',' + cases[i].answer));
    }
  }
}

TEST(Talctl, ShowsLogRecordsOnlyWhenAskedTo) {
  EXPECT_THAT(RunWith("encode|7.1|65536|--log-level|Error").err,
              StartsWith("ERROR AroValueToGroupValue(TalObjectModel/GroupValueAroValue:"));
  EXPECT_THAT(RunWith("encode|7.1|65536|--log-level=fatal").err,
              StartsWith("error: Value out of range: 65536 (DPT 7)"));
}

TEST(Talctl, TellsWrongUseFromRefusal) {
  const std::string commands = "expected encode, decode, check, dpts, id, demo";
  // clang-format off
  const Case cases[] = {
      {"", "a command is missing: " + commands}, {"encoed|9.1|1", "there is no command 'encoed': " + commands},
      {"encode|9.1", "VALUE is missing"}, {"decode|9.1", "OCTETS is missing"}, {"encode|-x|9.1|1", "-x"},
      {"encode|9.1|1|--jsn", "there is no option '--jsn'; a value that looks like an option goes behind --"},
      {"--jsn", "there is no option '--jsn' before the command"}, {"encode|--\x1B[31m", "'--\\x1B[31m'"},
      {"encode|9.1|1|--log-level|loud", "--log-level"}, {"decode|9.1|0C1A|--converter|x", "--converter: 'x' is none of direct, table"},
      {"id", "expected NUMBER..."}, {"id|--co|1", "--device is missing"}, {"id|--device|3|--co|1", "--device"},
      {"id|--device|1", "exactly one of"}, {"id|--device|1|--co|1|--app-control|state", "exactly one of"},
      {"id|--device|1|--co|1|1000", "not both"}, {"id|--device|1|--parameter|foo:1", "ip:N, number:N or text:N"},
      {"demo|x", "no operands"}};
  // clang-format on
  for (const Case& c : cases) {
    const Outcome outcome = RunWith(c.arguments);
    EXPECT_EQ(outcome.status, 2) << c.arguments;
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr(c.answer));
    EXPECT_THAT(outcome.err, testing::EndsWith("Try `talctl --help`, or `talctl COMMAND --help`.\n"));
  }
}

TEST(Talctl, PointsAtWhatIsWrongAndSuggestsWhatIsNear) {
  const std::string pad(50, 'a');
  // clang-format off
  const std::pair<std::string, std::string> cases[] = {
      {"encode|9.01x|1", "; did you mean '9.001'?\n  encode 9.01x 1\n             ^\n"},
      {"dpts|\u706F\t\u00E9|9x", "\n  dpts '\u706F\\t\u00E9' 9x\n                ^\n"},
      {"decode|9.001|0C|1G", "\n  decode 9.001 0C 1G\n                   ^\n"},
      {"decode|9.001|0C1", "\n  decode 9.001 0C1\n                  ^\n"},
      {"decode|18.002|05", "\n  decode 18.002 05\n         ^\n"},
      {"encode|--converter=table|9.001|-300", "\n  encode --converter=table 9.001 -300\n                                 ^\n"},
      {"encode|10.001|Mo 1:2:3", "\n  encode 10.001 'Mo 1:2:3'\n                   ^\n"},
      {"encode|232.600|#12345G", "\n  encode 232.600 '#12345G'\n                        ^\n"},
      {"encode|14.056|1.5e3,0", "\n  encode 14.056 1.5e3,0\n                     ^\n"},
      {"encode|14.056|1e999", "\n  encode 14.056 1e999\n                ^\n"},
      {"encode|5.001|" + pad + pad, "\n  encode 5.001 " + pad + std::string(13, 'a') + "...\n               ^\n"},
      {"register|" + pad + "|" + pad + "|-x|--jsn", "'--json'?\n  ..." + std::string(46, 'a') + " -x --jsn\n" + std::string(55, ' ') + "^\n"},
      {"decode|1.001|01|--bits=3x", "\n  decode 1.001 01 --bits=3x\n                          ^\n"},
      {"id|--device|1|--parameter|ip:1x", "\n  id --device 1 --parameter ip:1x\n                                ^\n"},
      {"get|x|--timeout|5m", "\n  get x --timeout 5m\n                   ^\n"},
      {"encode|9.1|1|--converter|tible", "'tible' is none of direct, table; did you mean 'table'?\n  encode 9.1 1 --converter tible\n                           ^\n"},
      {"Decod", "; did you mean 'decode'?\n  Decod\n  ^\n"}, {"zzz", "config\n  zzz\n  ^\n"},
      {"get|KITCHEN.lihgt", "; did you mean 'kitchen.light'?\n  get KITCHEN.lihgt\n      ^\n"},
      {"encode|9,O01|1", "; did you mean '9.001'?\n  encode 9,O01 1\n          ^\n"},
      {"dpts|233.600", "; did you mean '232.600'?\n  dpts 233.600\n       ^\n"}};
  // clang-format on
  for (const auto& [arguments, end] : cases) EXPECT_THAT(RunWith(arguments).err, HasSubstr(end)) << arguments;
}

TEST(Talctl, CountsEdits) {
  const auto far = [](const char* a, const char* b, std::size_t bound) { return EditDistance(a, b, bound); };
  EXPECT_EQ(far("kitten", "sitting", 5), 3u);
  EXPECT_EQ(far("ab", "BA", 5), 1u);
  EXPECT_EQ(far("k\u00FCche", "K\u00DC\u20AChe", 5), 1u);
  EXPECT_EQ(far("", "abc", 5), 3u);
  EXPECT_EQ(far("kitten", "sitting", 2), 3u);
  EXPECT_EQ(far("abcdefgh", "ijklmnop", 2), 3u);
}

TEST(Talctl, HelpsEverywhere) {
  const std::string manual = RunWith("man").out;
  for (const std::string command : {"encode", "decode", "check", "dpts", "id", "demo"}) {
    const Outcome outcome = RunWith(command + "|--help");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("Usage: talctl " + command + " [OPTIONS]"));
    EXPECT_THAT(outcome.out, HasSubstr("\nExamples:\n  talctl " + command));
    EXPECT_THAT(manual, HasSubstr("\n.SS " + command + "\n"));
    EXPECT_THAT(RunWith(command + "|--version").out, testing::MatchesRegex("talctl [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  }
}

TEST(Talctl, FailsWhenItCannotReadOrWrite) {
  std::istringstream in("1.1 on\n");
  std::ostringstream out;
  std::ostringstream err;
  std::ostream broken(nullptr);
  EXPECT_EQ(Talctl::Run({"encode"}, {in, broken, err}), 1);
  EXPECT_EQ(err.str(), "talctl: standard output cannot be written\n");
  struct Unreadable : std::streambuf {
    int_type underflow() override { throw 1; }
  } unreadable;
  std::istream badIn(&unreadable);
  err.str("");
  EXPECT_EQ(Talctl::Run({"encode"}, {badIn, out, err}), 1);
  EXPECT_EQ(err.str(), "talctl: standard input cannot be read\n");
}

TEST(Talctl, GoesOnAfterSignalsThatInterruptItsReadsAndPauses) {
  struct sigaction action = {};
  struct sigaction previous;
  action.sa_handler = [](int) {};  // and no SA_RESTART
  ASSERT_EQ(sigaction(SIGUSR1, &action, &previous), 0);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  std::ifstream in("/dev/fd/" + std::to_string(ends[0]));
  std::ostringstream encoded;
  std::ostringstream err;
  const TalTest::TempFile log(
      "pauses.log", "2026-01-11T06:00:00Z 1.1.10 2/1/1 read 0 -\n2026-01-11T06:00:00.200Z 1.1.10 2/1/1 read 0 -\n");
  Outcome played;
  std::atomic<bool> isDone{false};
  std::thread encode([&] { Talctl::Run({"encode"}, {in, encoded, err}); });
  std::thread monitor([&] {
    played = RunWith("monitor|--speed|real|--log|" + log.path);
    isDone = true;
  });
  while (!isDone) {
    ::pthread_kill(encode.native_handle(), SIGUSR1);
    ::pthread_kill(monitor.native_handle(), SIGUSR1);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  monitor.join();
  EXPECT_EQ(::write(ends[1], "1.1 on\n", 7), 7);
  ::close(ends[1]);
  encode.join();
  ::close(ends[0]);
  sigaction(SIGUSR1, &previous, nullptr);
  EXPECT_EQ(encoded.str(), "01\n");
  EXPECT_THAT(played.out, HasSubstr("\n2 telegrams received: "));
}

TEST(TalctlDpts, DescribesBothConverters) {
  // clang-format off
  EXPECT_EQ(RunWith("dpts|9.001|4|31").out,
      "DPT   TYPE   SUB TYPE  BITS  DEFAULT  MEANING               VALUES\n"
      "9.x   Float  Generic   16    0        two-octet float       a number from -671088.64 to 670760.96 with a decimal point, or nan\n"
      "4.x   Empty  Generic   -     -        character             neither encoded nor decoded\n"
      "31.x  Byte   Generic   -     0        choice of three bits  received only\n");
  EXPECT_EQ(RunWith("dpts|--converter|table|9.001|26|1.002").out,
      "DPT    TYPE   SUB TYPE  BITS  CODEC                        MEANING                               RANGE\n"
      "9.001  Float  Measured  16    KnxConverterFloat16BitFloat  temperature (°C)                      -273 .. 670760\n"
      "26.x   Byte   Generic   8     KnxConverterSceneInfo        scene information                     -64 .. 64 as 0 .. 255\n"
      "1.x    Bool   Generic   1     KnxConverter1Bit             truth value: switch, enable, up/down  -\n");
  EXPECT_THAT(RunWith("dpts|19|--json").out, HasSubstr(
      R"({"main":19,"type":"DateTime","subType":"Generic","encoded":true,"decoded":true,"bits":64,"default":")"));
  EXPECT_THAT(RunWith("dpts|--converter=table|9.1|--json").out, HasSubstr(
      R"("bits":16,"codec":"KnxConverterFloat16BitFloat","meaning":"temperature","unit":"°C","range":[-273.0,670760.0]})"));
  const std::string unknown = "300.000 is not known on this converter; `talctl dpts --converter direct` lists what is";
  Expect("dpts|", {{"300", "error: " + unknown}});
  // clang-format on
  EXPECT_EQ(RunWith("dpts|--json|300").out, "{\"error\":\"" + unknown + "\"}\n");
  EXPECT_EQ(RunWith("dpts|--json|300").status, 1);
}

TEST(TalctlId, ExplainsAndComputesIdentifiers) {
  // clang-format off
  Expect("id|", {
      {"1000", "1000        the device, and the KNX device"}, {"100000", "100000      logical KNX device 1"},
      {"200020", "200020      app host control: channel of logical device 2"},
      {"100023", "100023      app host control: alive heartbeat of logical device 1"},
      {"100098", "100098      not an identifier of the KNX side"},
      {"100100", "100100      channel of communication object 1 of logical device 1"},  // though it passes as a parameter too
      {"100101", "100101      value of communication object 1 of logical device 1"},
      {"108288", "108288      channel of communication object 4095 of logical device 1"},
      {"160000", "160000      channel of IP parameter 0 of logical device 1"},
      {"160003", "160003      value of IP parameter 1 of logical device 1"},
      {"270400", "270400      channel of number parameter 200 of logical device 2"},
      {"281000", "281000      channel of text parameter 500 of logical device 2"},  // not 244, its low eight bits
      {"281002", "281002      not an identifier of the KNX side"}, {"299999", "299999      the last identifier of logical device 2"},
      {"99999", "99999       not an identifier of the KNX side"}, {"300000", "300000      not an identifier of the KNX side"},
      {"4295067397", "4295067397  not an identifier of the KNX side"},  // 2^32 + 100101
      {"18446744073709551616", "18446744073709551616  not an identifier of the KNX side"},
      {"x", "error: 'x' is not an identifier: expected a whole number"}, {"-5", "error: '-5' is not an identifier: expected a whole number"},
      {"--device|1|--co|010", "100118      channel of communication object 10 of logical device 1\n"
                              "100119      value of communication object 10 of logical device 1"},
      {"--device|2|--parameter=text:500", "281000      channel of text parameter 500 of logical device 2\n"
                                          "281001      value of text parameter 500 of logical device 2"},
      {"--device|2|--app-control|app-debug", "200024      app host control: app debug of logical device 2"},
      {"--device|1|--co|0", "error: there is no communication object '0': expected a number from 1 to 4095"},
      {"--device|1|--co|", "error: there is no communication object '': expected a number from 1 to 4095"},
      {"--device|1|--co|4096", "error: there is no communication object '4096': expected a number from 1 to 4095"},
      {"--device|1|--parameter|ip:101", "error: there is no parameter 'ip:101': expected a number from 0 to 100"},
      {"--device|1|--parameter|text:5x", "error: there is no parameter 'text:5x': expected a number from 0 to 500"}});
  EXPECT_EQ(RunWith("id|--json|281001|7").out,
            R"({"id":281001,"kind":"parameter-value","device":2,"number":500,"text":"value of text parameter 500 of logical device 2"})" "\n"
            R"({"id":7,"kind":"none","text":"not an identifier of the KNX side"})" "\n");
  // clang-format on
}

TEST(TalctlDemo, ComesOutAsExpectedAndCoversEveryEncodedMainType) {
  const Outcome demo = RunWith("demo");
  EXPECT_EQ(demo.status, 0) << demo.out;
  EXPECT_THAT(demo.out, HasSubstr("\n0 other than expected: all is well\n"));
  const std::string lines = RunWith("demo|--lines").out;
  EXPECT_GE(std::count(lines.begin(), lines.end(), '\n'), 60);
  std::istringstream dpts(RunWith("dpts|--json").out);
  unsigned count = 0;
  for (std::string line; std::getline(dpts, line); ++count) {
    const auto row = nlohmann::json::parse(line);
    if (!row["encoded"]) continue;
    EXPECT_THAT("\n" + lines, HasSubstr("\n" + std::to_string(row["main"].get<int>()) + "."));
  }
  EXPECT_EQ(count, 43u);
  EXPECT_EQ(RunWith("encode", lines).status, 1);
}

}  // namespace
}  // namespace Talctl
