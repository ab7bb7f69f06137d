#include <Format/Converter.h>

#include <algorithm>

namespace Format {

const char* NameOf(Converter converter) { return converter == Converter::Direct ? "direct" : "table"; }

const std::vector<Tal::MainTypeDescription>& MainTypes() {
  static const auto rows = Tal::DescribeMainTypes();
  return rows;
}

const std::vector<Tal::DptDescription>& DptTable() {
  static const auto rows = Tal::DescribeDptTable();
  return rows;
}

const Tal::MainTypeDescription* FindMainType(const Dpt& dpt) {
  const auto row =
      std::find_if(MainTypes().begin(), MainTypes().end(), [&](const auto& r) { return r.main == dpt.main; });
  return row == MainTypes().end() ? nullptr : &*row;
}

const Tal::DptDescription* FindDptRow(const Dpt& dpt) {
  const Tal::DptDescription* found = nullptr;
  for (const Tal::DptDescription& row : DptTable()) {
    if (row.dpt.main != dpt.main) continue;
    if (row.dpt.sub == dpt.sub) return &row;
    if (row.dpt.sub == 0) found = &row;
  }
  return found;
}

AroValueType ValueTypeOf(const Dpt& dpt, Converter converter) {
  if (converter == Converter::Direct) {
    const auto* const row = FindMainType(dpt);
    return row != nullptr ? row->valueType : avtEmpty;
  }
  const auto* const row = FindDptRow(dpt);
  return row != nullptr ? row->valueType : avtEmpty;
}

Tal::KnxValueConverter& TableConverter() {
  static Tal::KnxValueConverter converter;
  static const bool isFilled = (converter.Init(), true);
  static_cast<void>(isFilled);
  return converter;
}

}  // namespace Format
