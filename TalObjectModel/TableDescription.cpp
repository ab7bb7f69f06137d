#include <Tal/TableDescription.h>

#include <boost/core/demangle.hpp>
#include <typeinfo>

#include "DirectRoad.h"
#include "DptTables.h"
#include "MainTypes.h"

namespace Tal {

std::vector<MainTypeDescription> DescribeMainTypes() {
  std::vector<MainTypeDescription> descriptions;
  for (const MainType& row : kMainTypes) {
    descriptions.push_back(
        {row.main, row.valueType, row.subType, HasDirectEncoder(row.main), HasDirectDecoder(row.main)});
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
        {row.bits, row.main, row.sub}, row.valueType, row.subType, name.substr(name.rfind(':') + 1), boost::none};
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
