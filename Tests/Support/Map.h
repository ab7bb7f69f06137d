// The map road with the standard table.
#pragma once

#include <Tal/KnxValueConverter.h>

namespace TalTest {

inline Tal::KnxValueConverter& Map() {
  static Tal::KnxValueConverter& converter = *[] {
    auto* const made = new Tal::KnxValueConverter;  // lives as long as the process
    made->Init();
    return made;
  }();
  return converter;
}

}  // namespace TalTest
