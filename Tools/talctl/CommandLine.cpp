#include "CommandLine.h"

#include <Format/Quoted.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>

#include "Characters.h"

namespace Talctl {
namespace {

constexpr std::size_t kColumns = 76;  // shown at most
constexpr std::size_t kBefore = 50;   // of these at most before the caret, when the line is cut

bool NeedsQuotes(const std::string& argument) {
  const auto isPlain = [](char c) {
    const bool isAlnum = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return isAlnum || (c & 0x80) != 0 || std::string_view("_-+.,:/=@%").find(c) != std::string_view::npos;
  };
  return argument.empty() || !std::all_of(argument.begin(), argument.end(), isPlain);
}

std::string Shown(std::string_view part, bool isQuoted) {
  std::string shown = Format::OneLine(part);
  if (isQuoted) boost::algorithm::replace_all(shown, "'", "'\\''");
  return shown;
}

/// As much of a line from the column @p from on as fits.
std::string Cut(const std::string& line, std::size_t from) {
  std::string cut;
  std::size_t column = 0;
  std::size_t start = 0;
  const std::u32string characters = CharactersOf(line);
  for (const char32_t character :
       characters) {  // a line that is valid: its characters' octets follow from their values
    const std::size_t octets = character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    const unsigned width = WidthOf(character);
    if (column >= from && column + width <= from + kColumns) cut += line.substr(start, octets);
    column += width;
    start += octets;
  }
  return cut;
}

}  // namespace

void CommandLine::AddOption(const std::string& name, std::size_t argument, std::size_t offset) {
  m_options[name] = {argument, offset};
}

std::string CommandLine::OptionIn(const std::string& message) const {
  for (const auto& [name, start] : m_options) {
    const bool isName = message.rfind(name, 0) == 0;
    if (isName && message.find_first_of(": ", name.size()) == name.size()) return name;
  }
  return "";
}

std::string CommandLine::PointAt(const Place& place, const Paint& paint) const {
  std::size_t argument = place.number;
  std::size_t offset = place.offset;
  if (place.of == Place::Of::Operand) {
    std::size_t operand = place.number;
    while (operand + 1 < m_operands.size() && offset > m_arguments[m_operands[operand]].size()) {
      offset -= m_arguments[m_operands[operand++]].size() + 1;
    }
    if (operand >= m_operands.size()) return "";
    argument = m_operands[operand];
  } else if (place.of == Place::Of::Option) {
    const auto found = m_options.find(place.option);
    if (found == m_options.end()) return "";
    argument = found->second.argument;
    offset += found->second.offset;
  }
  if (argument >= m_arguments.size()) return "";

  std::string line;
  std::size_t caret = 0;
  for (std::size_t i = 0; i < m_arguments.size(); ++i) {
    const std::string& text = m_arguments[i];
    const bool isQuoted = NeedsQuotes(text);
    const std::size_t split = i == argument ? std::min(offset, text.size()) : 0;
    line.append(i == 0 ? "" : " ")
        .append(isQuoted ? "'" : "")
        .append(Shown(std::string_view(text).substr(0, split), isQuoted));
    if (i == argument) caret = WidthOf(line);
    line.append(Shown(std::string_view(text).substr(split), isQuoted)).append(isQuoted ? "'" : "");
  }
  std::string left = "  ";
  if (WidthOf(line) > kColumns) {
    const std::size_t from = caret > kBefore ? caret - kBefore : 0;
    const bool isCutBehind = WidthOf(line) > from + kColumns;
    line = Cut(line, from) + (isCutBehind ? "..." : "");
    caret -= from;
    if (from > 0) left += "...";
  }
  return left + line + '\n' + std::string(left.size() + caret, ' ') + paint(Colour::Caret, "^") + '\n';
}

}  // namespace Talctl
