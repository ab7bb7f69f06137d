#include "Table.h"

#include <algorithm>

#include "Characters.h"

namespace Talctl {

std::string Table::Painted(const std::string& cell, bool isHeading, const Paint& paint) const {
  if (isHeading) return paint(Colour::Heading, cell);
  const auto colour = m_colours.find(cell);
  return colour == m_colours.end() ? cell : paint(colour->second, cell);
}

void Table::Print(std::ostream& out, const Paint& paint) const {
  std::vector<std::size_t> widths;
  for (const auto& row : m_rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
  }
  for (const auto& row : m_rows) {
    std::size_t cells = row.size();
    while (cells > 0 && row[cells - 1].empty()) --cells;
    for (std::size_t i = 0; i < cells; ++i) {
      out << Painted(row[i], &row == &m_rows.front(), paint);
      if (i + 1 < cells) out << std::string(widths[i] - WidthOf(row[i]) + 2, ' ');
    }
    out << '\n';
  }
}

}  // namespace Talctl
