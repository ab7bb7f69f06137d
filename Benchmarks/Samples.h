// The datapoint types that conversions are measured with.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/KnxDpt.h>

#include <string>
#include <vector>

namespace Bench {

struct Sample {
  std::string name;  ///< "9.001"
  KNXDPT dpt;
  AROVALUE direct;  ///< what the direct converter encodes
  AROVALUE map;     ///< what the table converter encodes
  KnxStack::GroupValue groupValue;

  unsigned long Number() const { return static_cast<unsigned long>(dpt.main) << 16 | dpt.sub; }
};

const std::vector<Sample>& Samples();

/// 1024 positions in Samples() in random order; another order each time, so that no predictor learns it.
constexpr std::size_t kMixed = 1024;
const std::uint8_t* MixedOrder();

}  // namespace Bench
