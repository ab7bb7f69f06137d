// The two roads between values and group values.
#pragma once

#include <BasePlatform/AroValueType.h>
#include <Tal/KnxValueConverter.h>
#include <Tal/TableDescription.h>

#include <vector>

#include <Notation/DptText.h>

namespace Notation {

enum class Road {
  Direct,  ///< the one-step functions, by main type
  Map,     ///< the map-driven converter, by the table of datapoint types
};

/// "direct" or "map".
const char* NameOf(Road road);
inline Road Other(Road road) { return road == Road::Direct ? Road::Map : Road::Direct; }

/// The library's tables, read once.
const std::vector<Tal::MainTypeDescription>& MainTypes();
const std::vector<Tal::DptDescription>& DptTable();

/// The rows that serve a datapoint type: its main type, and exactly main.sub or else main.x of the table; null when
/// there is none.
const Tal::MainTypeDescription* FindMainType(const Dpt& dpt);
const Tal::DptDescription* FindDptRow(const Dpt& dpt);

/// The type that values of @p dpt must have on a road; avtEmpty when the road does not know it.
AroValueType ValueTypeOf(const Dpt& dpt, Road road);

/// A converter with the standard table.
Tal::KnxValueConverter& MapConverter();

}  // namespace Notation
