// What the library's tables hold, for tools and documentation.
#pragma once

#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValueType.h>
#include <Tal/Export.h>

#include <cstdint>
#include <vector>

namespace Tal {

/// A main type that the library knows.
struct MainTypeDescription {
  std::uint16_t main;
  AroValueType valueType;  ///< what its values carry
  AroDP::AroValueSubType subType;
  bool isEncoded;  ///< AroValueToGroupValue() encodes it
};

/// All known main types in ascending order.
TALOBJECTMODEL_EXPORT std::vector<MainTypeDescription> DescribeMainTypes();

}  // namespace Tal
