#include "Support/Cases.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <fstream>

namespace TalTest {
namespace {

std::string Unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char mark = text[at] == '\\' ? text.at(++at) : '\0';
    switch (mark) {
      case '\0': plain += text[at]; break;
      case 'n': plain += '\n'; break;
      case 'r': plain += '\r'; break;
      case 't': plain += '\t'; break;
      case 'x': plain += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16)), at += 2; break;
      case '*': {
        const std::size_t open = text.find('{', at);
        const std::size_t end = text.find('}', at);
        for (int times = std::stoi(text.substr(at + 1)); times > 0; --times)
          plain.append(text, open + 1, end - open - 1);
        at = end;
        break;
      }
      default: plain += mark;
    }
  }
  return plain;
}

}  // namespace

std::vector<Case> ReadCases(const std::string& file, const std::string& section) {
  std::vector<Case> cases;
  std::ifstream in(std::string(TAL_TEST_CASES) + '/' + file);
  bool isInside = false;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.empty() || line[0] == '#') continue;
    const bool isHeader = line.front() == '[' && line.back() == ']';
    if (isHeader) isInside = line == '[' + section + ']';
    if (isHeader || !isInside) continue;
    Case row{file + ':' + std::to_string(number) + ": " + line, {}};
    line += ' ';
    for (std::size_t begin = 0, end = 0; end != line.npos; begin = end + 2) {
      end = line.find(" | ", begin);
      row.columns.push_back(Unescaped(boost::trim_copy(line.substr(begin, end - begin))));
    }
    cases.push_back(std::move(row));
  }
  EXPECT_FALSE(cases.empty()) << file << " has no section " << section;
  return cases;
}

std::string ReadText(const std::string& file, const std::string& section) {
  std::string text;
  for (const Case& row : ReadCases(file, section)) text += row[0] + '\n';
  return text;
}

testing::Matcher<std::string> Is(const std::string& told) {
  if (boost::ends_with(told, "...")) return testing::StartsWith(told.substr(0, told.size() - 3));
  return testing::Eq(told);
}

}  // namespace TalTest
