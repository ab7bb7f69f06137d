#include <Tal/KnxValueConverter.h>

#include <memory>

#include "Operation.h"
#include "Samples.h"

namespace Bench {
namespace {

Tal::KnxValueConverter& Converter() {
  static Tal::KnxValueConverter converter;
  static const bool isFilled = (converter.Init(), true);
  static_cast<void>(isFilled);
  return converter;
}

void Encode(Tal::KnxValueConverter& converter, const Sample& sample) {
  KNXDPT dpt = sample.dpt;
  KnxStack::GroupValue groupValue;
  Keep(converter.ToKnxValue(dpt, sample.map, groupValue));
  Keep(groupValue);
}

void Decode(Tal::KnxValueConverter& converter, const Sample& sample) {
  KNXDPT dpt = sample.dpt;
  AROVALUE value;
  Keep(converter.FromKnxValue(dpt, sample.groupValue, value));
  Keep(value);
}

template <class Convert>
void Add(Operations& operations, const std::string& name, const std::string& baseline, Convert convert) {
  for (const Sample& sample : Samples()) {
    operations.push_back(
        {name + '/' + sample.name, baseline + '/' + sample.name, [&sample, convert](std::size_t times) {
           Tal::KnxValueConverter& converter = Converter();
           for (; times > 0; --times) convert(converter, sample);
         }});
  }
  operations.push_back({name + "/mixed", baseline + "/mixed",
                        [convert](std::size_t times) {
                          Tal::KnxValueConverter& converter = Converter();
                          const std::vector<Sample>& samples = Samples();
                          for (; times > 0; --times) {
                            const std::uint8_t* const order = MixedOrder();
                            for (std::size_t i = 0; i < kMixed; ++i) convert(converter, samples[order[i]]);
                          }
                        },
                        1, kMixed});
}

void Construct(std::size_t times) {
  for (; times > 0; --times) {
    Tal::KnxValueConverter converter;
    converter.Init();
    Keep(converter);
  }
}

/// A float there and back as serialised text.
void Facade(Tal::TalKnxValueConverter& converter, std::size_t times) {
  const std::string text = "3:21.5";
  std::string back;
  for (; times > 0; --times) {
    KNXDPT dpt{0, 9, 1};
    KnxStack::GroupValue groupValue;
    Keep(converter.ToKnxValue(dpt, text, groupValue));
    Keep(converter.FromKnxValue(groupValue, back, false));
  }
}

/// A converter with @p rows rows beside the standard ones: what look-ups cost in larger tables.
void AddLargeTable(Operations& operations, int rows) {
  const auto converter = std::make_shared<Tal::KnxValueConverter>();
  converter->Init();
  for (int row = 0; row < rows; ++row) {
    converter->AddDptValueMapEntry(static_cast<unsigned short>(1000 + row / 8), static_cast<unsigned short>(row % 8), 8,
                                   avtByte, AroDP::astGeneric, *Converter().GetEntry({0, 5, 1}).GetConverter());
  }
  operations.push_back({"map_decode/mixed+" + std::to_string(rows), "map_decode/mixed",
                        [converter](std::size_t times) {
                          const std::vector<Sample>& samples = Samples();
                          for (; times > 0; --times) {
                            const std::uint8_t* const order = MixedOrder();
                            for (std::size_t i = 0; i < kMixed; ++i) Decode(*converter, samples[order[i]]);
                          }
                        },
                        1, kMixed});
}

}  // namespace

void AddTableConversion(Operations& operations) {
  Add(operations, "map_encode", "bare_encode", Encode);
  Add(operations, "map_decode", "bare_decode", Decode);
  for (const int rows : {100, 1000, 10000}) AddLargeTable(operations, rows);
  operations.push_back({"converter_with_init", "", Construct});
  const auto facade = std::make_shared<Tal::TalKnxValueConverter>();
  facade->Init();
  operations.push_back({"facade_there_and_back/9.001", "", [facade](std::size_t times) { Facade(*facade, times); }});
}

}  // namespace Bench
