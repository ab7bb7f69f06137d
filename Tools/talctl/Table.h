// Aligned columns.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace Talctl {

/// The width of a cell, counted in code points of UTF-8.
std::size_t WidthOf(const std::string& cell);

/// Rows of cells; the first row is the heading.
class Table {
 public:
  explicit Table(std::vector<std::string> heading) { Add(std::move(heading)); }
  void Add(std::vector<std::string> row) { m_rows.push_back(std::move(row)); }

  /// Every column but the last is padded to its widest cell.
  void Print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> m_rows;
};

}  // namespace Talctl
