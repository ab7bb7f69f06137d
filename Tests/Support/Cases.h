// Tables of cases as text, in Tests/Cases/.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace TalTest {

/// A row of a table: its columns, which stand between " | "; empty ones at the end may be missing.
struct Case {
  std::string place;  ///< "Codecs.txt:12: " and the row
  std::vector<std::string> columns;
  std::string operator[](std::size_t i) const { return i < columns.size() ? columns[i] : ""; }
};

/// The rows below "[section]" of a file. Blanks around columns do not count, nor do lines that begin with "#". \n, \r,
/// \t, \\ and \xHH stand for characters, \*3{ab} for ababab.
std::vector<Case> ReadCases(const std::string& file, const std::string& section);

/// The lines of a section as one text.
std::string ReadText(const std::string& file, const std::string& section);

/// Calls @p check with every row; failures tell which it was.
template <class Check>
void ForEachCase(const std::string& file, const std::string& section, Check check) {
  for (const Case& row : ReadCases(file, section)) {
    SCOPED_TRACE(row.place.substr(0, 300));
    check(row);
  }
}

/// What a row says of a text: the text, or with "..." at the end how it begins.
testing::Matcher<std::string> Is(const std::string& told);

}  // namespace TalTest
