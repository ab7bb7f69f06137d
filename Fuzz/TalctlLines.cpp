// Any lines on the standard input of talctl's encode, decode and check: one answer a line, the same in text and in
// JSON, which is what a JSON document would write.
#include <memory>
#include <sstream>
#include <vector>

#include "Commands.h"
#include "Input.h"

namespace {

using namespace Talctl;

/// A command as the command line makes it.
struct Tool {
  Tool(std::unique_ptr<LineCommand> made, const std::string& options) : command(std::move(made)) {
    command->AddTo(app);
    app.parse(options);
  }
  std::string Answer(const std::string& lines, bool json) const {
    std::istringstream in(lines);
    std::ostringstream out;
    std::ostringstream err;
    CommonOptions options;
    options.json = json;
    command->Run({options, {}, {in, out, err}});
    FUZZ_CHECK(err.str().empty(), err.str());
    return out.str();
  }
  CLI::App app;
  std::unique_ptr<LineCommand> command;
};

const std::vector<std::unique_ptr<Tool>>& Tools() {
  static const auto tools = [] {
    std::vector<std::unique_ptr<Tool>> all;
    all.push_back(std::make_unique<Tool>(std::make_unique<EncodeCommand>(), "encode"));
    all.push_back(std::make_unique<Tool>(std::make_unique<EncodeCommand>(), "encode --converter table"));
    all.push_back(std::make_unique<Tool>(std::make_unique<DecodeCommand>(), "decode"));
    all.push_back(std::make_unique<Tool>(std::make_unique<DecodeCommand>(), "decode --converter table"));
    all.push_back(std::make_unique<Tool>(std::make_unique<CheckCommand>(), "check"));
    return all;
  }();
  return tools;
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// Lines that are answered.
std::size_t CountLines(std::string text) {
  if (text.rfind("\xEF\xBB\xBF", 0) == 0) text.erase(0, 3);
  std::size_t count = 0;
  for (std::string& line : LinesOf(text)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::size_t start = line.find_first_not_of(" \t");
    if (start != line.npos && line[start] != '#') ++count;
  }
  return count;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  if (size > 60000) return 0;  // longer lines are refused, and then not counted here
  Fuzz::Input input(data, size);
  const std::uint8_t choice = input.Octet();
  const std::string lines(input.Rest());
  const std::size_t which = (choice & 0x7F) % Tools().size();
  const bool isEncode = which < 2;
  const Tool& tool = *Tools()[which];
  const auto text = LinesOf(tool.Answer(lines, false));
  FUZZ_CHECK(text.size() == CountLines(lines), lines);
  for (const std::string& line : text) FUZZ_CHECK(Fuzz::IsOneLine(line) && AROVALUE::EnsureUTF8(line) == line, line);
  if ((choice & 0x80) == 0) return 0;
  const auto answers = LinesOf(tool.Answer(lines, true));
  FUZZ_CHECK(answers.size() == text.size(), lines);
  for (std::size_t i = 0; i < answers.size(); ++i) {
    const auto json = Json::parse(answers[i]);                              // throws when it is none
    const bool isText = json.contains("type") && json["type"] == "String";  // which may say "error: " itself
    const bool isRefused = json.contains("error");
    FUZZ_CHECK(isText || isRefused == (text[i].rfind("error: ", 0) == 0), answers[i]);
    const std::string column = json.contains("column") ? ", column " + json["column"].dump() : "";
    const std::string place = "error: line " + json["line"].dump() + column + ": ";
    FUZZ_CHECK(!isRefused || text[i] == place + json["error"].get<std::string>(), answers[i]);
    if (isEncode && !isRefused) FUZZ_CHECK(json.at("octets") == text[i], answers[i]);
    FUZZ_CHECK(json.dump() == answers[i], answers[i]);
  }
  return 0;
}
