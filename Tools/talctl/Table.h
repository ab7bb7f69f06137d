// Aligned columns.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "Paint.h"

namespace Talctl {

/// How a comparison with what must come is summed up.
inline std::string VerdictOn(unsigned different) {
  return std::to_string(different) + (different == 0 ? " other than expected: all is well" : " other than expected");
}

/// Rows of cells; the first row is the heading.
class Table {
 public:
  explicit Table(std::vector<std::string> heading) { Add(std::move(heading)); }
  void Add(std::vector<std::string> row) { m_rows.push_back(std::move(row)); }

  /// Gives cells with just this text a colour.
  void SetColour(const std::string& cell, Colour colour) { m_colours[cell] = colour; }

  /// Every column but the last is padded to its widest cell.
  void Print(std::ostream& out, const Paint& paint = Paint()) const;

 private:
  std::string Painted(const std::string& cell, bool isHeading, const Paint& paint) const;

  std::map<std::string, Colour> m_colours;
  std::vector<std::vector<std::string>> m_rows;
};

}  // namespace Talctl
