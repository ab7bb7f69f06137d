#include <Tal/GroupValueAroValue.h>

#include "Operation.h"
#include "Samples.h"

namespace Bench {
namespace {

void Encode(const Sample& sample) { Keep(Tal::AroValueToGroupValue(sample.direct, sample.Number())); }
void Decode(const Sample& sample) { Keep(Tal::GroupValueToAroValue(sample.groupValue, sample.Number())); }
void Check(const Sample& sample) { Keep(Tal::CheckGroupValue(sample.groupValue, sample.Number())); }

template <class Convert>
void Add(Operations& operations, const std::string& name, const std::string& baseline, Convert convert) {
  for (const Sample& sample : Samples()) {
    operations.push_back(
        {name + '/' + sample.name, baseline + '/' + sample.name, [&sample, convert](std::size_t times) {
           for (; times > 0; --times) convert(sample);
         }});
  }
  operations.push_back({name + "/mixed", baseline + "/mixed",
                        [convert](std::size_t times) {
                          const std::vector<Sample>& samples = Samples();
                          for (; times > 0; --times) {
                            const std::uint8_t* const order = MixedOrder();
                            for (std::size_t i = 0; i < kMixed; ++i) convert(samples[order[i]]);
                          }
                        },
                        1, kMixed});
}

}  // namespace

void AddDirectConversion(Operations& operations) {
  Add(operations, "direct_encode", "bare_encode", Encode);
  const std::size_t first = operations.size();
  Add(operations, "direct_decode", "bare_decode", Decode);
  for (std::size_t i = first; i < operations.size(); ++i) {  // the timed scope is most of it
    const std::string dpt = operations[i].name.substr(operations[i].name.find('/') + 1);
    operations[i].baseline = dpt == "11.001" || dpt == "19.001" ? "cpu_timer_and_calendar" : "cpu_timer";
  }
  Add(operations, "check", "map_decode", Check);
}

}  // namespace Bench
