// Conversion by the table of datapoint types.
#pragma once

#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/KnxDpt.h>
#include <Tal/Export.h>
#include <Tal/KnxConverter.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Tal {

/// A row of the table. Copies have a codec of their own.
class TALOBJECTMODEL_EXPORT DptValueEntry {
 public:
  /// Keeps a clone of @p converter, which may be null.
  DptValueEntry(const KNXDPT& dpt, AroValueType valueType, AroDP::AroValueSubType valueSubType,
                const KnxConverter* converter);
  /// With a clone of the codec.
  DptValueEntry(const DptValueEntry& other);
  DptValueEntry& operator=(const DptValueEntry&) = delete;
  virtual ~DptValueEntry();

  /// Main and sub number, and the size in bits.
  const KNXDPT& GetDpt() const noexcept { return m_dpt; }
  /// The type of its values; avtEmpty: everything is taken for valid.
  AroValueType GetValueType() const noexcept { return m_valueType; }
  /// What its values stand for.
  AroDP::AroValueSubType GetValueSubType() const noexcept { return m_valueSubType; }
  /// Null when the row has none.
  KnxConverter* GetConverter() const noexcept { return m_converter.get(); }

 private:
  KNXDPT m_dpt;
  AroValueType m_valueType;
  AroDP::AroValueSubType m_valueSubType;
  std::unique_ptr<KnxConverter> m_converter;
};

/// The table: main number, then sub number, both ascending; sub number 0 stands for the whole main type.
class TALOBJECTMODEL_EXPORT DptValueMap {
 public:
  using SubMap = std::map<std::uint16_t, DptValueEntry>;  ///< rows of a main type by sub number
  using MainMap = std::map<std::uint16_t, SubMap>;        ///< rows by main number

  /// Without rows.
  DptValueMap();
  virtual ~DptValueMap();
  DptValueMap(const DptValueMap&) = delete;
  DptValueMap& operator=(const DptValueMap&) = delete;

  /// Adds a row. A row that is there already stays as it is.
  /// @return  true when the table now has a row for main and sub.
  bool Insert(const DptValueEntry& entry);

  /// Removes every row.
  void Clear();

  /// Takes the rows of @p standard. They are copied only when one of the two tables changes.
  void ShareRowsOf(const DptValueMap& standard);

  /// The row of exactly main.sub, else of the main type (sub 0), else the fallback row (type avtEmpty, raw codec) after
  /// one ERROR record "No Entry found for DPT = ...". The size in @p dpt plays no part. The reference is good until the
  /// rows are removed.
  const DptValueEntry& GetEntry(const KNXDPT& dpt) const;

  /// All rows; good until they change.
  const MainMap& Rows() const noexcept;

 private:
  struct Table;  ///< rows, and an index of them
  Table& OwnTable();

  std::shared_ptr<Table> m_table;  ///< perhaps another map's too; null: no rows
};

/// Converts values to group values and back with the codec that a table names for the datapoint type.
///
/// A datapoint type that is not given (main 0) is chosen: for a value from its type and the size in bits, for a group
/// value from its size. It is written into the caller's KNXDPT and stays there also when the conversion then fails.
///
/// No exception leaves ToKnxValue() and FromKnxValue(): a failure is false after ERROR records, the codec's own first;
/// when no type could be chosen, after an INFO record, with an ERROR record behind it on decoding. After Init()
/// conversions may run on several threads; Init() and adding rows must be alone.
class TALOBJECTMODEL_EXPORT KnxValueConverter {
 public:
  /// Starts without rows: every conversion then succeeds and writes nothing. Call Init().
  KnxValueConverter();
  virtual ~KnxValueConverter();

  /// Fills the table with the standard rows; rows that were added are gone.
  void Init();

  /// Adds a row with a clone of @p converter: the codec of another row (GetEntry()), or one of the caller's own class.
  /// A row that is there already stays as it is.
  /// @return  true when the table now has a row for main and sub.
  bool AddDptValueMapEntry(unsigned short main, unsigned short sub, unsigned char size, AroValueType avt,
                           AroDP::AroValueSubType ast, const KnxConverter& converter);

  /// Encodes @p value. Its type must suit the row's; type 0 ("no value") suits every row, and its codec
  /// judges it. A datapoint type without a row is taken for valid: ERROR records, true, and nothing is written.
  /// @return  false: @p groupValue is as it was, except where the row's codec says otherwise.
  bool ToKnxValue(KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue);

  /// Decodes @p groupValue, whose size in bits must be the main type's; sizes up to 6 bits count as one. A datapoint
  /// type without a row is taken for valid: ERROR records, true, and a value of type avtEmpty.
  /// @return  false: @p value is as it was when no datapoint type could be chosen; else its type is the row's, and its
  ///          content may have been written.
  bool FromKnxValue(KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value);

  /// True when a value of type @p valueType may be written to a row of type @p entryType; not symmetric: a date with
  /// time may be written as a date, a date not as a date with time.
  bool AreValueTypesCompatible(AroValueType valueType, AroValueType entryType);

  /// Chooses main and sub number by the size in @p dpt; false, with nothing changed, when there is no choice.
  bool GetDefaultMappingDptForSize(KNXDPT& dpt);
  /// Chooses main and sub number and size by the type of @p value and the size in @p dpt; false as above.
  bool GetDefaultMappingDptForValueType(KNXDPT& dpt, const AROVALUE& value);

  /// See DptValueMap::GetEntry().
  const DptValueEntry& GetEntry(const KNXDPT& dpt) const;

 private:
  bool FillDptValueMap();

  DptValueMap m_map;
};

/// KnxValueConverter for callers that keep values as serialised text (AROVALUE::Serialize()). Adds no checks and no
/// records; threads as there.
class TALOBJECTMODEL_EXPORT TalKnxValueConverter {
 public:
  /// Starts without rows, as KnxValueConverter does. Call Init().
  TalKnxValueConverter();
  ~TalKnxValueConverter();

  /// Fills the table with the standard rows.
  void Init();

  /// KnxValueConverter::ToKnxValue().
  bool ToKnxValue(KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue);
  /// KnxValueConverter::FromKnxValue().
  bool FromKnxValue(KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value);

  /// Encodes a serialised value. A text that is none counts as a value of type avtEmpty.
  bool ToKnxValue(KNXDPT& dpt, const std::string& serialised, KnxStack::GroupValue& groupValue);
  /// The same for a datapoint type chosen by the value's type and @p size in bits (low 8 bits), not a DPT number.
  bool ToKnxValue(const std::string& serialised, unsigned long size, KnxStack::GroupValue& groupValue);
  /// Decodes @p groupValue as the datapoint type chosen by its size into serialised text, in the internal format when
  /// @p internalFormat is true. On false the text is as it was.
  bool FromKnxValue(const KnxStack::GroupValue& groupValue, std::string& serialised, bool internalFormat);

 private:
  KnxValueConverter m_converter;
};

}  // namespace Tal
