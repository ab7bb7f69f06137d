// The two roads between values and group values.
#pragma once

#include <BasePlatform/AroValueType.h>
#include <Tal/KnxValueConverter.h>
#include <Tal/TableDescription.h>

#include <vector>

#include <Notation/DptText.h>

namespace Notation {

/// One of the two.
enum class Road {
  Direct,  ///< the one-step functions, by main type
  Map,     ///< the map-driven converter, by the table of datapoint types
};

/// "direct" or "map".
const char* NameOf(Road road);
/// The other one.
inline Road Other(Road road) { return road == Road::Direct ? Road::Map : Road::Direct; }

/// The library's table of main types, read once.
const std::vector<Tal::MainTypeDescription>& MainTypes();
/// The library's table of datapoint types, read once.
const std::vector<Tal::DptDescription>& DptTable();

/// The row of the datapoint type's main type; null when there is none.
const Tal::MainTypeDescription* FindMainType(const Dpt& dpt);
/// The row of exactly main.sub, or else of main.x; null when there is none.
const Tal::DptDescription* FindDptRow(const Dpt& dpt);

/// The type that values of @p dpt must have on a road; avtEmpty when the road does not know it.
AroValueType ValueTypeOf(const Dpt& dpt, Road road);

/// A converter with the standard table.
Tal::KnxValueConverter& MapConverter();

}  // namespace Notation
