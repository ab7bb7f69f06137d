#include <Tal/KnxZelMapping.h>

#include "Operation.h"

namespace Bench {

void AddIdentifiers(Operations& operations) {
  using namespace Tal::KnxZelMapping;
  operations.push_back({"identifiers/value_of_channel", "", [](std::size_t times) {
                          ObjectId id = 100100;
                          for (; times > 0; --times) {
                            Keep(GetCoValueObjModelId(id));
                            id = id == 100100 ? 100200 : 100100;
                          }
                        }});
  operations.push_back({"identifiers/number_of_value", "", [](std::size_t times) {
                          for (; times > 0; --times) {
                            Keep(GetCoNumberFromObjModelId(100100 + 2 * (times & 0xFF), Tal::LogicalDeviceId::Of<1>()));
                          }
                        }});
  operations.push_back({"identifiers/type_of_dpt", "", [](std::size_t times) {
                          for (; times > 0; --times) Keep(GetAvtFromDpt(9 << 16 | 1));
                        }});
}

}  // namespace Bench
