#include <Tal/KnxValueConverter.h>
#include <TalLog/LogRecord.h>

#include <new>

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

/// Shared by all tables without rows; the reference that stays here makes each copy it before it changes.
const std::shared_ptr<DptValueMap::MainMap>& NoRows() {
  static const auto rows = std::make_shared<DptValueMap::MainMap>();
  return rows;
}

const DptValueEntry& FallbackEntry() {
  static const KnxConverterDefault raw;
  static const DptValueEntry entry({}, avtEmpty, AroDP::astGeneric, &raw);
  return entry;
}

}  // namespace

DptValueMap::DptValueMap() : m_rows(NoRows()) {}
DptValueMap::~DptValueMap() = default;

DptValueMap::MainMap& DptValueMap::OwnRows() {
  if (m_rows.use_count() > 1) m_rows = std::make_shared<MainMap>(*m_rows);
  return *m_rows;
}

bool DptValueMap::Insert(const DptValueEntry& entry) {
  // Deliberate: a row that is there already counts as success and stays.
  MainMap& rows = OwnRows();
  const auto [main, isNew] = rows.try_emplace(entry.GetDpt().main);
  try {
    main->second.try_emplace(entry.GetDpt().sub, entry);
  } catch (...) {
    if (isNew) rows.erase(main);  // a main type without rows would be taken for known
    throw;
  }
  return true;
}

void DptValueMap::Clear() { m_rows = NoRows(); }

void DptValueMap::ShareRowsOf(const DptValueMap& standard) { m_rows = standard.m_rows; }

const DptValueEntry& DptValueMap::GetEntry(const KNXDPT& dpt) const {
  constexpr char kNoEntry[] = "No Entry found for DPT = ";
  const auto main = m_rows->find(dpt.main);
  if (main == m_rows->end()) {
    TAL_LOG(Error) << kNoEntry << dpt;
    return FallbackEntry();
  }
  const SubMap& subs = main->second;
  const auto exact = subs.find(dpt.sub);
  if (exact != subs.end()) return exact->second;
  if (dpt.sub == 0) {
    TAL_LOG(Error) << kNoEntry << dpt;
    return FallbackEntry();
  }
  if (!subs.empty() && subs.begin()->first == 0) return subs.begin()->second;
  TAL_LOG(Error) << kNoEntry << dpt.main << ".x";
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

/// What both directions say of a datapoint type without a row.
void LogAssumedValid(const CallSite& site, const KNXDPT& dpt) {
  TAL_LOG_AT(Error, site) << "No Entry found for DPT = " << dpt;
  TAL_LOG_AT(Error, site) << "Assume validity and accept value!";
}

bool RefuseWithoutCodec(const CallSite& site, const KNXDPT& dpt) {
  TAL_LOG_AT(Error, site) << "NULL pointer as KnxConverter for DPT = " << dpt;
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
  const CallSite site = TAL_HERE;
  return Guarded(site, "Exception caught during conversion of AROVALUE to GroupValue: ", [&] {
    if (dpt.main == 0 && !GetDefaultMappingDptForValueType(dpt, value) && !GetDefaultMappingDptForSize(dpt)) {
      TAL_LOG_AT(Info, site) << "Could not find DPT for bit size " << unsigned{dpt.size};
      return false;
    }
    const DptValueEntry& entry = GetEntry(dpt);
    if (entry.GetValueType() == avtEmpty) {
      LogAssumedValid(site, dpt);  // Deliberate: true, and nothing is written
      return true;
    }
    if (value.avt != avtInvalid && !AreValueTypesCompatible(value.avt, entry.GetValueType())) {
      TAL_LOG_AT(Error, site) << "Invalid value type found for DPT = " << dpt << " val.avt=" << AroValueType{value.avt};
      return false;
    }
    if (entry.GetConverter() == nullptr) return RefuseWithoutCodec(site, dpt);
    if (entry.GetConverter()->ToKnxValue(dpt, value, groupValue)) return true;
    TAL_LOG_AT(Error, site) << "Convert to KNX value failed for DPT = " << dpt << " val = " << value.ToString();
    return false;
  });
}

bool KnxValueConverter::FromKnxValue(KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  const CallSite site = TAL_HERE;
  return Guarded(site, "Exception caught during conversion of GroupValue: ", [&] {
    if (dpt.main == 0) {
      const unsigned bits = dpt.size != 0 ? dpt.size : groupValue.GetDefinedSize();
      const DefaultForSize* const row = FindDefaultForSize(bits);
      if (row == nullptr) {
        TAL_LOG_AT(Info, site) << "Could not find DPT for bit size " << bits;
        TAL_LOG_AT(Error, site) << "Convert from KNX value failed. Missing DPT. GroupValue = " << groupValue.ToString();
        return false;
      }
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
    if (size == SizeCheck::Failed) {
      TAL_LOG_AT(Error, site) << "Failed to convert a GroupValue for DPT " << dpt
                              << " because of unexpected bit size: " << groupValue.GetDefinedSize()
                              << ", expected: " << expected;
      return false;
    }
    if (entry.GetConverter() == nullptr) return RefuseWithoutCodec(site, dpt);
    static const GroupValue nothing;
    const GroupValue& received = size == SizeCheck::Passed ? groupValue : nothing;
    if (entry.GetConverter()->FromKnxValue(dpt, received, value)) return true;
    TAL_LOG_AT(Error, site) << "Convert from KNX value failed for DPT = " << dpt
                            << " GroupValue = " << groupValue.ToString();
    return false;
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
