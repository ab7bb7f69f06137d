#include "Table.h"

#include <algorithm>

namespace Talctl {
std::size_t WidthOf(const std::string& cell) {
  return static_cast<std::size_t>(std::count_if(cell.begin(), cell.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void Table::Print(std::ostream& out) const {
  std::vector<std::size_t> widths;
  for (const auto& row : m_rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
  }
  for (const auto& row : m_rows) {
    std::size_t cells = row.size();
    while (cells > 0 && row[cells - 1].empty()) --cells;
    for (std::size_t i = 0; i < cells; ++i) {
      out << row[i];
      if (i + 1 < cells) out << std::string(widths[i] - WidthOf(row[i]) + 2, ' ');
    }
    out << '\n';
  }
}

}  // namespace Talctl
