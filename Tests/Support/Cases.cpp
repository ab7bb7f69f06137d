#include "Support/Cases.h"

#include <boost/algorithm/string/trim.hpp>
#include <fstream>

namespace TalTest {
namespace {

std::string Unescaped(std::string text) {
  boost::trim(text);
  for (std::size_t at = text.find('\\'); at != text.npos; at = text.find('\\', at + 1)) {
    const char mark = text.at(at + 1);
    const std::size_t size = mark == 'x' ? 4 : 2;
    const char plain = mark == 'n' ? '\n' : mark == 'r' ? '\r' : mark == 't' ? '\t' : mark;
    text.replace(at, size, 1, mark == 'x' ? static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)) : plain);
  }
  return text;
}

}  // namespace

std::vector<Case> ReadCases(const std::string& file, const std::string& section) {
  std::vector<Case> cases;
  std::ifstream in(std::string(TAL_TEST_CASES) + '/' + file);
  bool isInside = false;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (!line.empty() && line[0] == '[') isInside = line == '[' + section + ']';
    if (!isInside || line.empty() || line[0] == '[' || line[0] == '#') continue;
    Case row{file + ':' + std::to_string(number) + ": " + line, {}};
    line += ' ';
    for (std::size_t begin = 0, end = 0; end != line.npos; begin = end + 3) {
      end = line.find(" | ", begin);
      row.columns.push_back(Unescaped(line.substr(begin, end - begin)));
    }
    cases.push_back(std::move(row));
  }
  EXPECT_FALSE(cases.empty()) << file << " has no section " << section;
  return cases;
}

}  // namespace TalTest
