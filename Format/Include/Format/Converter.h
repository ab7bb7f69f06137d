// The two converters between values and group values.
#pragma once

#include <BasePlatform/AroValueType.h>
#include <Tal/KnxValueConverter.h>
#include <Tal/TableDescription.h>

#include <vector>

#include <Format/DptText.h>

namespace Format {

/// One of the two.
enum class Converter {
  Direct,  ///< the one-step functions, by main type
  Table,   ///< the table converter-driven converter, by the table of datapoint types
};

/// "direct" or "map".
const char* NameOf(Converter converter);
/// The other one.
inline Converter Other(Converter converter) {
  return converter == Converter::Direct ? Converter::Table : Converter::Direct;
}

/// The library's table of main types, read once.
const std::vector<Tal::MainTypeDescription>& MainTypes();
/// The library's table of datapoint types, read once.
const std::vector<Tal::DptDescription>& DptTable();

/// The row of the datapoint type's main type; null when there is none.
const Tal::MainTypeDescription* FindMainType(const Dpt& dpt);
/// The row of exactly main.sub, or else of main.x; null when there is none.
const Tal::DptDescription* FindDptRow(const Dpt& dpt);

/// The type that values of @p dpt must have on a converter; avtEmpty when the converter does not know it.
AroValueType ValueTypeOf(const Dpt& dpt, Converter converter);

/// A converter with the standard table.
Tal::KnxValueConverter& TableConverter();

}  // namespace Format
