#include "Suggestion.h"

#include <Format/Cursor.h>
#include <Format/Quoted.h>

#include <algorithm>
#include <cstdlib>

#include "Characters.h"

namespace Talctl {
namespace {

using Format::Converter;
using Format::Dpt;

/// The characters of @p text, capitals of ASCII and Latin-1 as small letters.
std::u32string Folded(std::string_view text) {
  std::u32string folded = CharactersOf(text);
  for (char32_t& c : folded) {
    const bool isCapital = (c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7);
    if (isCapital) c += 0x20;
  }
  return folded;
}

/// How far a typed text may be from what was meant. All of it must not differ.
std::size_t BoundFor(std::size_t characters) {
  return characters == 0 ? 0 : std::min(std::max<std::size_t>(characters / 3, 1), characters - 1);
}

bool IsKnown(const Dpt& dpt, Converter converter) {
  if (converter == Converter::Table) return FindDptRow(dpt) != nullptr;
  const auto* const row = FindMainType(dpt);
  return row != nullptr && (row->isEncoded || row->isDecoded);
}

std::string MainText(unsigned main) { return std::to_string(main); }

std::string Suggested(const std::string& text) { return "; did you mean " + Format::Quoted(text) + "?"; }

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t bound) {
  const std::u32string x = Folded(a);
  const std::u32string y = Folded(b);
  if (std::max(x.size(), y.size()) - std::min(x.size(), y.size()) > bound) return bound + 1;
  std::vector<std::size_t> beforeLast(y.size() + 1);
  std::vector<std::size_t> last(y.size() + 1);
  std::vector<std::size_t> row(y.size() + 1);
  for (std::size_t j = 0; j <= y.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= x.size(); ++i) {
    std::swap(beforeLast, last);
    std::swap(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= y.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (x[i - 1] == y[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      const bool isSwapped = i > 1 && j > 1 && x[i - 1] == y[j - 2] && x[i - 2] == y[j - 1];
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    if (*std::min_element(row.begin(), row.end()) > bound) return bound + 1;
  }
  return std::min(row.back(), bound + 1);
}

std::string Nearest(std::string_view typed, const std::vector<std::string>& candidates) {
  constexpr std::size_t kLongest = 200;  // nobody mistypes such a name
  if (typed.size() > kLongest) return "";
  std::size_t bound = BoundFor(CharactersOf(typed).size());
  std::string nearest;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = EditDistance(typed, candidate, bound);
    if (distance > bound || candidate == typed) continue;
    nearest = candidate;
    if (distance == 0) break;
    bound = distance - 1;
  }
  return nearest;
}

std::string DidYouMean(std::string_view typed, const std::vector<std::string>& candidates) {
  const std::string nearest = Nearest(typed, candidates);
  return nearest.empty() ? "" : Suggested(nearest);
}

std::string DidYouMeanDpt(std::string_view typed) {
  constexpr struct {
    const char* typed;
    char meant;
  } kSlips[] = {{",:;-_/", '.'}, {"oO", '0'}, {"lI|", '1'}};
  Format::Cursor cursor(typed.substr(0, 20));
  if (!cursor.Word("DPST")) cursor.Word("DPT");
  std::string meant;
  unsigned dropped = 0;
  for (const char c : cursor.Rest()) {
    const auto* const slip = std::find_if(std::begin(kSlips), std::end(kSlips), [&](const auto& row) {
      return std::string_view(row.typed).find(c) != std::string_view::npos;
    });
    const char mended = slip == std::end(kSlips) ? c : slip->meant;
    const bool isWanted = Format::IsDigit(mended) || (mended == '.' && !meant.empty() && meant.find('.') == meant.npos);
    if (isWanted) meant += mended;
    if (!isWanted && mended != '.') ++dropped;
  }
  Dpt dpt;
  std::string error;
  if (dropped > 1 || !ParseDpt(meant, dpt, error) ||
      !(IsKnown(dpt, Converter::Direct) || IsKnown(dpt, Converter::Table)))
    return "";
  return Suggested(dpt.sub == 0 ? MainText(dpt.main) : FormatDpt(dpt));
}

std::string DidYouMeanDpt(const Dpt& dpt, Converter converter) {
  constexpr unsigned kManyMains = 100;  // below, most numbers are one digit from many others
  const auto apart = [](unsigned a, unsigned b) { return a > b ? a - b : b - a; };
  const Dpt* nearest = nullptr;
  std::vector<Dpt> known;
  if (converter == Converter::Table) {
    for (const auto& row : Format::DptTable()) known.push_back({row.dpt.main, row.dpt.sub});
  } else {
    for (const auto& row : Format::MainTypes()) {
      if (row.isEncoded || row.isDecoded) known.push_back({static_cast<std::uint16_t>(row.main), dpt.sub});
    }
  }
  for (const Dpt& candidate : known) {
    const std::size_t bound = dpt.main < kManyMains ? 0 : 1;
    if (EditDistance(MainText(dpt.main), MainText(candidate.main), bound) > bound) continue;
    const auto rank = [&](const Dpt& d) { return apart(d.main, dpt.main) * 0x10000ul + apart(d.sub, dpt.sub); };
    if (nearest == nullptr || rank(candidate) < rank(*nearest)) nearest = &candidate;
  }
  if (nearest == nullptr || nearest->Number() == dpt.Number()) return "";
  return Suggested(nearest->sub == 0 ? MainText(nearest->main) : FormatDpt(*nearest));
}

std::vector<std::string> KnownDpts(Converter converter) {
  std::vector<std::string> known;
  for (const auto& row : Format::MainTypes()) {
    if (converter == Converter::Direct && (row.isEncoded || row.isDecoded)) known.push_back(MainText(row.main) + ".x");
  }
  for (const auto& row : Format::DptTable()) {
    const Dpt dpt{row.dpt.main, row.dpt.sub};
    if (converter == Converter::Direct && (dpt.sub == 0 || !IsKnown(dpt, converter))) continue;
    known.push_back(dpt.sub == 0 ? MainText(dpt.main) + ".x" : FormatDpt(dpt));
  }
  return known;
}

}  // namespace Talctl
