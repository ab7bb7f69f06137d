// The two converters, for tests that compare what they do.
#pragma once

#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxValueConverter.h>

#include <stdexcept>

#include "Support/Values.h"

namespace TalTest {

enum class Converter { Direct, Table };

/// The table converter with the standard table.
inline Tal::KnxValueConverter& Map() {
  static Tal::KnxValueConverter& converter = *[] {
    auto* const made = new Tal::KnxValueConverter;  // lives as long as the process
    made->Init();
    return made;
  }();
  return converter;
}

/// What a converter reads; nothing when it refuses, or the calendar does.
inline boost::optional<AROVALUE> Decode(Converter converter, KNXDPT dpt, const KnxStack::GroupValue& groupValue) try {
  if (converter == Converter::Direct) return Tal::GroupValueToAroValue(groupValue, Dpt(dpt.main, dpt.sub));
  AROVALUE value;
  return Map().FromKnxValue(dpt, groupValue, value) ? boost::make_optional(value) : boost::none;
} catch (const std::out_of_range&) {
  return boost::none;
}

/// What a converter writes, as Wire(): "none" when it refuses, "range" when the calendar does.
inline std::string Encode(Converter converter, KNXDPT dpt, const AROVALUE& value) try {
  if (converter == Converter::Direct) {
    const auto direct = Tal::AroValueToGroupValue(value, Dpt(dpt.main, dpt.sub));
    return direct ? Wire(*direct) : "none";
  }
  KnxStack::GroupValue groupValue;
  return Map().ToKnxValue(dpt, value, groupValue) ? Wire(groupValue) : "none";
} catch (const std::out_of_range&) {
  return "range";
}

}  // namespace TalTest
