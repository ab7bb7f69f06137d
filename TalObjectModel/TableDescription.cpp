#include <Tal/TableDescription.h>

#include <boost/core/demangle.hpp>
#include <typeinfo>

#include "DirectConversion.h"
#include "DptTables.h"
#include "MainTypes.h"

namespace Tal {
namespace {

/// The meaning of a main type: the table's row for the whole of it, or else one of the others.
constexpr const Meaning* MeaningOf(std::uint16_t main) {
  for (const DptRow& row : kDptRows) {
    if (row.main == main && row.sub == 0) return &row.meaning;
  }
  for (const OtherMeaning& row : kOtherMeanings) {
    if (row.main == main) return &row.meaning;
  }
  return nullptr;
}

constexpr bool EachMainTypeHasOneMeaning() {
  for (const MainType& row : kMainTypes) {  // NOLINT(readability-use-anyofallof): constexpr from C++20 on only
    if (MeaningOf(row.main) == nullptr) return false;
  }
  for (const OtherMeaning& row : kOtherMeanings) {
    if (MeaningOf(row.main) != &row.meaning) return false;
  }
  return true;
}
static_assert(EachMainTypeHasOneMeaning());

const char* LayoutOf(std::uint16_t main, std::uint16_t sub) {
  const char* ofAll = "";
  for (const Layout& row : kLayouts) {
    if (row.main == main && row.sub == sub) return row.fields;
    if (row.main == main && row.sub == 0) ofAll = row.fields;
  }
  return ofAll;
}

DptMeaning Describe(const Meaning& meaning, std::uint16_t main, std::uint16_t sub) {
  return {meaning.name, meaning.unit, LayoutOf(main, sub), meaning.example};
}

}  // namespace

std::vector<MainTypeDescription> DescribeMainTypes() {
  std::vector<MainTypeDescription> descriptions;
  for (const MainType& row : kMainTypes) {
    descriptions.push_back({row.main, row.valueType, row.subType, HasDirectEncoder(row.main),
                            HasDirectDecoder(row.main), Describe(*MeaningOf(row.main), row.main, 0)});
  }
  return descriptions;
}

std::vector<DptDescription> DescribeDptTable() {
  std::vector<DptDescription> descriptions;
  for (const DptRow& row : kDptRows) {
    const auto codec = row.makeCodec(row.bounds);
    const KnxConverter& object = *codec;
    const std::string name = boost::core::demangle(typeid(object).name());
    DptDescription description{
        {row.bits, row.main, row.sub},    row.valueType, row.subType,
        name.substr(name.rfind(':') + 1), boost::none,   Describe(row.meaning, row.main, row.sub)};
    const Bounds& bounds = row.bounds;
    if (bounds.internalMin != bounds.internalMax) {
      description.range =
          DptDescription::Range{bounds.internalMin, bounds.internalMax, bounds.externalMin, bounds.externalMax};
    }
    descriptions.push_back(std::move(description));
  }
  return descriptions;
}

boost::optional<unsigned> DescribeExpectedBits(std::uint16_t main) {
  const std::int32_t bits = ExpectedBitsOf(main);
  if (bits == kAnySize) return boost::none;
  return static_cast<unsigned>(bits);
}

}  // namespace Tal
