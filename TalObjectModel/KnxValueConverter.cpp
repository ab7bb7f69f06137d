#include <Tal/KnxValueConverter.h>
#include <TalLog/LogRecord.h>

#include <algorithm>
#include <array>
#include <new>
#include <utility>
#include <vector>

#include "DptTables.h"
#include "Guarded.h"

namespace Tal {

using KnxStack::GroupValue;

DptValueEntry::DptValueEntry(const KNXDPT& dpt, AroValueType valueType, AroDP::AroValueSubType valueSubType,
                             const KnxConverter* converter)
    : m_dpt(dpt),
      m_valueType(valueType),
      m_valueSubType(valueSubType),
      m_converter(converter != nullptr ? converter->Clone() : nullptr) {}
DptValueEntry::DptValueEntry(const DptValueEntry& other)
    : DptValueEntry(other.m_dpt, other.m_valueType, other.m_valueSubType, other.m_converter.get()) {}
DptValueEntry::~DptValueEntry() = default;

namespace {

const DptValueEntry& FallbackEntry() {
  static const KnxConverterDefault raw;
  static const DptValueEntry entry({}, avtEmpty, AroDP::astGeneric, &raw);
  return entry;
}

/// Tells of a main type that has no rows at all otherwise than of one whose rows do not fit.
void LogNoEntry(const CallSite& site, const KNXDPT& dpt, const DptValueMap::MainMap& rows) {
  constexpr char kNoEntry[] = "No Entry found for DPT = ";
  if (dpt.sub == 0 || rows.count(dpt.main) == 0) {
    TAL_LOG_AT(Error, site) << kNoEntry << dpt;
  } else {
    TAL_LOG_AT(Error, site) << kNoEntry << dpt.main << ".x";
  }
}

/// The rows of one main type, as they are looked up.
class MainIndex {
 public:
  void Add(const DptValueEntry& entry) {
    const std::uint16_t sub = entry.GetDpt().sub;
    if (sub == 0) {
      m_whole = &entry;
    } else {
      m_subs.insert(Place(sub), {sub, &entry});
    }
  }

  /// The row of exactly @p sub, else that of the whole main type, if there is one.
  const DptValueEntry* Find(std::uint16_t sub) const noexcept {
    constexpr std::size_t kFew = 32;  // so many are faster looked through than searched by halves
    if (m_subs.size() <= kFew) {
      for (const auto& [number, entry] : m_subs) {
        if (number == sub) return entry;
      }
      return m_whole;
    }
    const auto place = Place(sub);
    return place != m_subs.end() && place->first == sub ? place->second : m_whole;
  }

 private:
  using Sub = std::pair<std::uint16_t, const DptValueEntry*>;

  std::vector<Sub>::const_iterator Place(std::uint16_t sub) const noexcept {
    return std::lower_bound(m_subs.begin(), m_subs.end(), sub,
                            [](const Sub& row, std::uint16_t number) { return row.first < number; });
  }

  const DptValueEntry* m_whole = nullptr;  ///< sub number 0
  std::vector<Sub> m_subs;                 ///< the others, ascending
};

}  // namespace

struct DptValueMap::Table {
  static constexpr std::size_t kIndexed = 256;  ///< main types from here on are looked up in the rows

  Table() = default;
  Table& operator=(const Table&) = delete;
  Table(const Table& other) : rows(other.rows) {
    for (auto& main : rows) {
      for (auto& sub : main.second) AddToIndex(sub.second);
    }
  }

  void AddToIndex(const DptValueEntry& entry) {
    if (entry.GetDpt().main < kIndexed) index[entry.GetDpt().main].Add(entry);
  }

  const DptValueEntry* Find(const KNXDPT& dpt) const noexcept {
    if (dpt.main < kIndexed) return index[dpt.main].Find(dpt.sub);
    const auto main = rows.find(dpt.main);
    if (main == rows.end()) return nullptr;
    auto row = main->second.find(dpt.sub);
    if (row == main->second.end()) row = main->second.find(0);
    return row == main->second.end() ? nullptr : &row->second;
  }

  MainMap rows;
  std::array<MainIndex, kIndexed> index;
};

DptValueMap::DptValueMap() = default;
DptValueMap::~DptValueMap() = default;

DptValueMap::Table& DptValueMap::OwnTable() {
  if (!m_table) {
    m_table = std::make_shared<Table>();
  } else if (m_table.use_count() > 1) {
    m_table = std::make_shared<Table>(*m_table);
  }
  return *m_table;
}

bool DptValueMap::Insert(const DptValueEntry& entry) {
  Table& table = OwnTable();
  const KNXDPT& dpt = entry.GetDpt();
  const auto main = table.rows.try_emplace(dpt.main).first;
  SubMap& subs = main->second;
  try {
    // Deliberate: a row that is there already counts as success and stays.
    const auto [row, isNew] = subs.try_emplace(dpt.sub, entry);
    if (isNew) table.AddToIndex(row->second);
  } catch (...) {
    subs.erase(dpt.sub);
    if (subs.empty()) table.rows.erase(main);  // a main type without rows would be taken for known
    throw;
  }
  return true;
}

void DptValueMap::Clear() { m_table.reset(); }

void DptValueMap::ShareRowsOf(const DptValueMap& standard) { m_table = standard.m_table; }

const DptValueMap::MainMap& DptValueMap::Rows() const noexcept {
  static const MainMap none;
  return m_table ? m_table->rows : none;
}

const DptValueEntry& DptValueMap::GetEntry(const KNXDPT& dpt) const {
  const DptValueEntry* const entry = m_table ? m_table->Find(dpt) : nullptr;
  if (entry != nullptr) return *entry;
  static const CallSite site = TAL_HERE;
  LogNoEntry(site, dpt, Rows());
  return FallbackEntry();
}

namespace {

/// The table that every converter starts with; built once, never changed, and never destroyed: converters may outlive
/// static objects.
const DptValueMap& StandardMap(const CallSite& site) {
  static const DptValueMap* const standard = [&] {
    auto map = std::make_unique<DptValueMap>();
    for (const DptRow& row : kDptRows) {
      const auto codec = row.makeCodec(row.bounds);
      if (!map->Insert({{row.bits, row.main, row.sub}, row.valueType, row.subType, codec.get()})) {
        TAL_LOG_AT(Error, site) << "Add DPT value map entry failed. DPT=" << DptLabel(row);
      }
    }
    return map.release();
  }();
  return *standard;
}

/// The datapoint type that a group value of @p bits is taken for; null when there is none.
const DefaultForSize* FindDefaultForSize(unsigned bits) {
  for (const DefaultForSize& row : kDefaultsForSize) {
    if (row.bits == bits) return &row;
  }
  return nullptr;
}

}  // namespace

KnxValueConverter::KnxValueConverter() = default;
KnxValueConverter::~KnxValueConverter() = default;

void KnxValueConverter::Init() { FillDptValueMap(); }

bool KnxValueConverter::FillDptValueMap() {
  m_map.ShareRowsOf(StandardMap(TAL_HERE));
  return true;
}

bool KnxValueConverter::AddDptValueMapEntry(unsigned short main, unsigned short sub, unsigned char size,
                                            AroValueType avt, AroDP::AroValueSubType ast,
                                            const KnxConverter& converter) {
  return m_map.Insert(DptValueEntry({size, main, sub}, avt, ast, &converter));
}

const DptValueEntry& KnxValueConverter::GetEntry(const KNXDPT& dpt) const { return m_map.GetEntry(dpt); }

bool KnxValueConverter::GetDefaultMappingDptForSize(KNXDPT& dpt) {
  const DefaultForSize* const row = FindDefaultForSize(dpt.size);
  if (row == nullptr) return false;
  dpt.main = row->main;
  dpt.sub = row->sub;
  return true;
}

bool KnxValueConverter::GetDefaultMappingDptForValueType(KNXDPT& dpt, const AROVALUE& value) {
  for (const DefaultForValueType& row : kDefaultsForValueType) {
    if (row.valueType != value.avt || (row.bits != kAnySize && row.bits != dpt.size)) continue;
    dpt = row.dpt;
    return true;
  }
  return false;
}

bool KnxValueConverter::AreValueTypesCompatible(AroValueType valueType, AroValueType entryType) {
  if (valueType == entryType) return true;
  for (const CompatibleTypes& row : kCompatibleTypes) {
    if (row.valueTypes.Has(valueType)) return row.entryTypes.Has(entryType);
  }
  return false;
}

namespace {

const GroupValue& NoOctets() {
  static const GroupValue nothing;
  return nothing;
}

// Records stand in functions of their own: a conversion that succeeds does not pass by.

/// What both directions say of a datapoint type without a row.
void LogAssumedValid(const CallSite& site, const KNXDPT& dpt) {
  TAL_LOG_AT(Error, site) << "No Entry found for DPT = " << dpt;
  TAL_LOG_AT(Error, site) << "Assume validity and accept value!";
}

bool RefuseWithoutCodec(const CallSite& site, const KNXDPT& dpt) {
  TAL_LOG_AT(Error, site) << "NULL pointer as KnxConverter for DPT = " << dpt;
  return false;
}

bool RefuseSizeWithoutDpt(const CallSite& site, unsigned bits) {
  TAL_LOG_AT(Info, site) << "Could not find DPT for bit size " << bits;
  return false;
}

bool RefuseWithoutDpt(const CallSite& site, unsigned bits, const GroupValue& groupValue) {
  RefuseSizeWithoutDpt(site, bits);
  TAL_LOG_AT(Error, site) << "Convert from KNX value failed. Missing DPT. GroupValue = " << groupValue.ToString();
  return false;
}

bool RefuseType(const CallSite& site, const KNXDPT& dpt, AroValueType type) {
  TAL_LOG_AT(Error, site) << "Invalid value type found for DPT = " << dpt << " val.avt=" << type;
  return false;
}

bool RefuseSize(const CallSite& site, const KNXDPT& dpt, unsigned received, std::int32_t expected) {
  TAL_LOG_AT(Error, site) << "Failed to convert a GroupValue for DPT " << dpt
                          << " because of unexpected bit size: " << received << ", expected: " << expected;
  return false;
}

bool FailEncoding(const CallSite& site, const KNXDPT& dpt, const AROVALUE& value) {
  TAL_LOG_AT(Error, site) << "Convert to KNX value failed for DPT = " << dpt << " val = " << value.ToString();
  return false;
}

bool FailDecoding(const CallSite& site, const KNXDPT& dpt, const GroupValue& groupValue) {
  TAL_LOG_AT(Error, site) << "Convert from KNX value failed for DPT = " << dpt
                          << " GroupValue = " << groupValue.ToString();
  return false;
}

/// The size check of a received group value: all sizes up to the bus's short form count as one.
enum class SizeCheck { Passed, PassedWithoutOctets, Failed };
SizeCheck CheckSize(std::int32_t expected, unsigned received) {
  constexpr unsigned kShortForm = 6;
  if (expected <= static_cast<std::int32_t>(kShortForm)) {
    return received <= kShortForm ? SizeCheck::Passed : SizeCheck::Failed;
  }
  if (received == kShortForm) return expected == kAnySize ? SizeCheck::PassedWithoutOctets : SizeCheck::Failed;
  return expected == kAnySize || static_cast<unsigned>(expected) == received ? SizeCheck::Passed : SizeCheck::Failed;
}

}  // namespace

bool KnxValueConverter::ToKnxValue(KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  static const CallSite site = TAL_HERE;
  return Guarded(site, "Exception caught during conversion of AROVALUE to GroupValue: ", [&] {
    if (dpt.main == 0 && !GetDefaultMappingDptForValueType(dpt, value) && !GetDefaultMappingDptForSize(dpt)) {
      return RefuseSizeWithoutDpt(site, dpt.size);
    }
    const DptValueEntry& entry = GetEntry(dpt);
    if (entry.GetValueType() == avtEmpty) {
      LogAssumedValid(site, dpt);  // Deliberate: true, and nothing is written
      return true;
    }
    if (value.avt != avtInvalid && !AreValueTypesCompatible(value.avt, entry.GetValueType())) {
      return RefuseType(site, dpt, value.avt);
    }
    if (entry.GetConverter() == nullptr) return RefuseWithoutCodec(site, dpt);
    return entry.GetConverter()->ToKnxValue(dpt, value, groupValue) || FailEncoding(site, dpt, value);
  });
}

bool KnxValueConverter::FromKnxValue(KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  static const CallSite site = TAL_HERE;
  return Guarded(site, "Exception caught during conversion of GroupValue: ", [&] {
    if (dpt.main == 0) {
      const unsigned bits = dpt.size != 0 ? dpt.size : groupValue.GetDefinedSize();
      const DefaultForSize* const row = FindDefaultForSize(bits);
      if (row == nullptr) return RefuseWithoutDpt(site, bits, groupValue);
      dpt.main = row->main;
      dpt.sub = row->sub;
    }
    const DptValueEntry& entry = GetEntry(dpt);
    value.avt = entry.GetValueType();
    if (entry.GetValueType() == avtEmpty) {
      LogAssumedValid(site, dpt);
      return true;
    }
    const std::int32_t expected = ExpectedBitsOf(dpt.main);
    const SizeCheck size = CheckSize(expected, groupValue.GetDefinedSize());
    if (size == SizeCheck::Failed) return RefuseSize(site, dpt, groupValue.GetDefinedSize(), expected);
    if (entry.GetConverter() == nullptr) return RefuseWithoutCodec(site, dpt);
    const GroupValue& received = size == SizeCheck::Passed ? groupValue : NoOctets();
    return entry.GetConverter()->FromKnxValue(dpt, received, value) || FailDecoding(site, dpt, groupValue);
  });
}

TalKnxValueConverter::TalKnxValueConverter() = default;
TalKnxValueConverter::~TalKnxValueConverter() = default;

void TalKnxValueConverter::Init() { m_converter.Init(); }

bool TalKnxValueConverter::ToKnxValue(KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  return m_converter.ToKnxValue(dpt, value, groupValue);
}

bool TalKnxValueConverter::FromKnxValue(KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  return m_converter.FromKnxValue(dpt, groupValue, value);
}

bool TalKnxValueConverter::ToKnxValue(KNXDPT& dpt, const std::string& serialised, GroupValue& groupValue) {
  AROVALUE value;
  value.Deserialize(serialised);  // Deliberate: a text that is none counts as a value of type avtEmpty
  return m_converter.ToKnxValue(dpt, value, groupValue);
}

bool TalKnxValueConverter::ToKnxValue(const std::string& serialised, unsigned long size, GroupValue& groupValue) {
  KNXDPT dpt{static_cast<std::uint8_t>(size), 0, 0};
  return ToKnxValue(dpt, serialised, groupValue);
}

bool TalKnxValueConverter::FromKnxValue(const GroupValue& groupValue, std::string& serialised, bool internalFormat) {
  KNXDPT dpt{static_cast<std::uint8_t>(groupValue.GetDefinedSize()), 0, 0};
  AROVALUE value;
  if (!m_converter.FromKnxValue(dpt, groupValue, value)) return false;
  try {
    value.Serialize(serialised, internalFormat);
    return true;
  } catch (const std::bad_alloc&) {  // no exception leaves a conversion
    return false;
  }
}

}  // namespace Tal
