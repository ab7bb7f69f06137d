#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <sstream>

#include "Pages.h"
#include "Reference.h"

namespace Talctl {
namespace {

constexpr unsigned kOctet = 8;

std::string Escaped(std::string text) {
  boost::algorithm::replace_all(text, "&", "&amp;");
  boost::algorithm::replace_all(text, "<", "&lt;");
  boost::algorithm::replace_all(text, ">", "&gt;");
  boost::algorithm::replace_all(text, "\"", "&quot;");
  return text;
}

std::string BitsOf(const KnxStack::BinaryData& octets, unsigned first, unsigned count) {
  std::string bits;
  for (unsigned bit = first; bit < first + count && bit / kOctet < octets.size(); ++bit) {
    bits += (octets.data()[bit / kOctet] >> (kOctet - 1 - bit % kOctet) & 1) != 0 ? '1' : '0';
  }
  return bits;
}

/// The fields octet by octet, each with the bits that the example has there.
void DrawLayout(std::ostream& page, const ReferenceRow& row) {
  std::vector<Field> fields = FieldsOf(row.meaning.layout);
  unsigned bits = 0;
  for (const Field& field : fields) bits += field.bits;
  const unsigned octets = (bits + kOctet - 1) / kOctet;
  if (octets * kOctet > bits) fields.insert(fields.begin(), {"", octets * kOctet - bits});  // in the low bits
  page << "<table class=\"bits\"><tr><th>bit</th>";
  for (unsigned bit = kOctet; bit > 0; --bit) page << "<th>" << bit - 1 << "</th>";
  unsigned position = 0;
  unsigned colour = 0;
  for (const Field& field : fields) {
    const bool isUsed = field.name != "-" && !field.name.empty();
    const std::string style = field.name.empty() ? "absent" : isUsed ? "f" + std::to_string(colour++ % 4) : "unused";
    for (unsigned left = field.bits; left > 0;) {
      if (position % kOctet == 0) page << "</tr>\n<tr><th>octet " << position / kOctet + 1 << "</th>";
      const unsigned width = std::min(left, kOctet - position % kOctet);
      page << "<td class=\"" << style << "\" colspan=\"" << width << "\">";
      if (isUsed) page << Escaped(field.name);
      page << "<b>" << BitsOf(row.Octets(), position, width) << "</b></td>";
      position += width;
      left -= width;
    }
  }
  page << "</tr></table>";
}

void Cell(std::ostream& page, const char* style, const char* label, const std::string& text) {
  page << "<td class=\"" << style << "\" data-label=\"" << label << "\">" << Escaped(text) << "</td>";
}

void DrawRow(std::ostream& page, const ReferenceRow& row) {
  const std::string number = std::to_string(row.dpt.main);
  const std::string ets = row.dpt.sub == 0 ? "DPT-" + number : "DPST-" + number + '-' + std::to_string(row.dpt.sub);
  const auto& [name, unit, layout, example] = row.meaning;
  const bool differ = !row.direct.octets.empty() && !row.map.octets.empty() && row.direct.octets != row.map.octets;
  const std::string octets = row.Octets().ToString() + (differ ? " (map: " + row.map.octets.ToString() + ")" : "");
  const std::string words =
      row.label + ' ' + ets + ' ' + name + ' ' + unit + ' ' + row.direct.values + ' ' + row.map.values;
  page << "<tbody data-find=\"" << Escaped(boost::algorithm::to_lower_copy(words)) << "\">\n<tr>"
       << "<td class=\"dpt\" title=\"" << ets << "\">" << row.label << "</td><td class=\"name\"><b>" << Escaped(name)
       << "</b></td>";
  Cell(page, "unit", "Unit", unit);
  Cell(page, "size", "Bits", row.bits);
  Cell(page, "direct", "Direct converter", row.direct.values);
  Cell(page, "map", "Map converter", row.map.values);
  Cell(page, "example", "Example", example.empty() ? "" : ExampleOf(row));
  Cell(page, "octets", "Octets", octets);
  page << "</tr>\n";
  if (!layout.empty() || !row.differences.empty()) {
    page << "<tr><td class=\"more\" colspan=\"8\"><details><summary>"
         << (layout.empty()            ? "Differences of the converters"
             : row.differences.empty() ? "Layout"
                                       : "Layout and differences of the converters")
         << "</summary>";
    if (!layout.empty()) DrawLayout(page, row);
    if (!row.differences.empty())
      page << "<p class=\"differences\">The converters of " << number << ".x: " << Escaped(row.differences) << ".</p>";
    page << "</details></td></tr>\n";
  }
  page << "</tbody>\n";
}

}  // namespace

std::string DatapointsInHtml() {
  const std::vector<ReferenceRow> rows = Reference();
  std::ostringstream drawn;
  for (const ReferenceRow& row : rows) DrawRow(drawn, row);
  std::string page = kDatapointsPage;
  boost::algorithm::replace_first(page, "@VERSION@", TALCTL_VERSION);
  boost::algorithm::replace_first(page, "@COUNT@", std::to_string(rows.size()));
  boost::algorithm::replace_first(page, "@ROWS@", drawn.str());
  return page;
}

}  // namespace Talctl
