#include <Tal/TableDescription.h>

#include "DirectRoad.h"
#include "MainTypes.h"

namespace Tal {

std::vector<MainTypeDescription> DescribeMainTypes() {
  std::vector<MainTypeDescription> descriptions;
  for (const MainType& row : kMainTypes) {
    descriptions.push_back({row.main, row.valueType, row.subType, HasDirectEncoder(row.main)});
  }
  return descriptions;
}

}  // namespace Tal
