#include <set>

#include "Operation.h"
#include "Samples.h"

namespace Bench {

void AddTexts(Operations& operations) {
  std::set<std::string> seen;
  for (const Sample& sample : Samples()) {
    const std::string type = AROVALUE::GetNameFromValueType(sample.direct.avt);
    if (!seen.insert(type).second) continue;
    operations.push_back({"serialize/" + type, "", [&sample](std::size_t times) {
                            std::string text;
                            for (; times > 0; --times) {
                              sample.direct.Serialize(text, false);
                              Keep(text);
                            }
                          }});
    std::string text;
    sample.direct.Serialize(text, false);
    operations.push_back({"deserialize/" + type, "", [text](std::size_t times) {
                            AROVALUE value;
                            for (; times > 0; --times) Keep(value.Deserialize(text));
                          }});
  }
}

}  // namespace Bench
