#include "Operation.h"
#include "Samples.h"

namespace Bench {

void AddTexts(Operations& operations) {
  for (const Sample& sample : Samples()) {
    if (sample.name != "1.001" && sample.name != "12.001" && sample.name != "13.001" && sample.name != "9.001" &&
        sample.name != "16.001" && sample.name != "19.001") {
      continue;  // the types again
    }
    const std::string type = AROVALUE::GetNameFromValueType(sample.direct.avt);
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
