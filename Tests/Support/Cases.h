// Tables of cases as text, in Tests/Cases/.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TalTest {

/// A row of a table: its columns, which stand between " | "; empty ones at the end may be missing.
struct Case {
  std::string place;  ///< "Codecs.txt:12: " and the row
  std::vector<std::string> columns;
  std::string operator[](std::size_t i) const { return i < columns.size() ? columns[i] : ""; }
};

/// The rows below "[section]" of a file. Blanks around columns do not count, nor do lines that begin with "#"; \n, \r,
/// \t, \\ and \xHH stand for characters.
std::vector<Case> ReadCases(const std::string& file, const std::string& section);

/// Calls @p check with every row; failures tell which it was.
template <class Check>
void ForEachCase(const std::string& file, const std::string& section, Check check) {
  for (const Case& row : ReadCases(file, section)) {
    SCOPED_TRACE(row.place);
    check(row);
  }
}

}  // namespace TalTest
