// Codecs: each turns values of one KNX layout into group values and back.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/KnxDpt.h>
#include <Tal/Range.h>

#include <memory>

namespace Tal {

/// What a row of the DPT table converts with. The interface is for everyone; the codecs below live in the library,
/// which hands them out through KnxValueConverter::GetEntry().
///
/// ToKnxValue() writes the group value and returns true, or leaves it alone and returns false after one ERROR record.
/// FromKnxValue() writes the value and returns true, or returns false after one ERROR record; a codec that does not set
/// the value's type leaves the one that the caller prepared. Each codec checks main number and value type itself.
/// Exceptions to this stand with the codec. On entry both write a DEBUG record. What the group value's setters and
/// getters throw passes through; codecs throw nothing of their own.
///
/// A codec keeps no state but its range, so one object may be used from several threads.
class KnxConverter {
 public:
  virtual ~KnxConverter() = default;
  /// Encodes @p value as datapoint type @p dpt, whose size plays no part but in KnxConverterDefault.
  virtual bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) = 0;
  /// Decodes @p groupValue as datapoint type @p dpt; its octets count, its size in bits only for
  /// KnxConverterDefault.
  virtual bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) = 0;
  /// A copy of this object, range included.
  virtual std::unique_ptr<KnxConverter> Clone() const = 0;

 protected:
  /// @cond  for codecs alone
  KnxConverter() = default;
  KnxConverter(const KnxConverter&) = default;
  KnxConverter& operator=(const KnxConverter&) = default;
  /// @endcond
};

/// Any datapoint type without a codec of its own: the value's raw octets (AroValueBytes.h), up to 24. Booleans are
/// written for main types 1 and 2; for others nothing is written and the result is true. Data that cannot be read empty
/// the value. No entry records.
class KnxConverterDefault final : public KnxConverter {
 public:
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterDefault>(*this); }
};

/// 1.x, a truth value (avtBool). Refuses without a record, and reads without an entry record.
class KnxConverter1Bit final : public KnxConverter {
 public:
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverter1Bit>(*this); }
};

/// 2.x, a switch bit and a priority bit (avtByte); higher bits are not sent.
class KnxConverter2Bit final : public KnxConverter {
 public:
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverter2Bit>(*this); }
};

/// 3.x, a dimming or blind step 0 to 15 (avtByte).
class KnxConverter4Bit final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverter4Bit(const FloatIntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  /// Leaves the caller's value type.
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverter4Bit>(*this); }
  /// The range that it was made with.
  const FloatIntegerRange& Range() const noexcept { return m_range; }

 private:
  FloatIntegerRange m_range;  // carried only
};

/// 4.x, the first character of a text (avtString): 4.001 ASCII, others ISO 8859-1.
class KnxConverter8BitString final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverter8BitString(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverter8BitString>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// An unsigned octet (avtByte), unscaled, for any main type. The range is consulted when reading, and when
/// writing 5.006.
class KnxConverterByte8BitUnsigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterByte8BitUnsigned(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterByte8BitUnsigned>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;
};

/// 6.x, a signed octet (avtInteger): the low eight bits are sent; reading never fails.
class KnxConverterInteger8BitSigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterInteger8BitSigned(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override {
    return std::make_unique<KnxConverterInteger8BitSigned>(*this);
  }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// 6.020, five status bits and a mode of 1, 2 or 4 in the low three (avtByte). Writes before it judges the mode: on
/// false the group value holds the octet. Accepts what main 6, sub 20 or avtByte alone speaks for.
class KnxConverterStatus8Bit final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterStatus8Bit(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterStatus8Bit>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// 7.x, an unsigned 16-bit number (avtWord): the low 16 bits of any value are sent.
class KnxConverterInteger16BitUnsigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterInteger16BitUnsigned(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override {
    return std::make_unique<KnxConverterInteger16BitUnsigned>(*this);
  }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// 8.x, a signed 16-bit number (avtInteger): the low 16 bits of any value are sent.
class KnxConverterInteger16BitSigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterInteger16BitSigned(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override {
    return std::make_unique<KnxConverterInteger16BitSigned>(*this);
  }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// 9.x, the two-octet float (avtFloat) within the first range, NaN as 7F FF. A value of type 0 is sent as the number
/// 32767; 7F FF is read as type 0. A number out of range stays in the value when reading fails.
class KnxConverterFloat16BitFloat final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterFloat16BitFloat(const FloatRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterFloat16BitFloat>(*this); }
  /// The range that it was made with.
  const FloatRange& Range() const noexcept { return m_range; }

 private:
  FloatRange m_range;
};

/// 14.x, IEEE 754 single precision (avtFloat). A value of type 0 is sent as NaN.
class KnxConverterFloat32BitFloat final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterFloat32BitFloat(const FloatRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterFloat32BitFloat>(*this); }
  /// The range that it was made with.
  const FloatRange& Range() const noexcept { return m_range; }

 private:
  FloatRange m_range;  // carried only
};

/// The low 24 bits of the payload, for any main and value type. Leaves the caller's value type.
class KnxConverterInteger24BitUnsigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterInteger24BitUnsigned(const LongIntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override {
    return std::make_unique<KnxConverterInteger24BitUnsigned>(*this);
  }
  /// The range that it was made with.
  const LongIntegerRange& Range() const noexcept { return m_range; }

 private:
  LongIntegerRange m_range;  // carried only
};

/// 12.x, an unsigned 32-bit number (avtDWord) within the internal range, for any main type.
class KnxConverterInteger32BitUnsigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterInteger32BitUnsigned(const LongIntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override {
    return std::make_unique<KnxConverterInteger32BitUnsigned>(*this);
  }
  /// The range that it was made with.
  const LongIntegerRange& Range() const noexcept { return m_range; }

 private:
  LongIntegerRange m_range;
};

/// 13.x, a signed 32-bit number (avtInteger) within the internal range, scaled to the external range when writing only.
class KnxConverterInteger32BitSigned final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterInteger32BitSigned(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override {
    return std::make_unique<KnxConverterInteger32BitSigned>(*this);
  }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;
};

/// 16.x, text of 14 characters (avtString, UTF-8): others than those of ISO 8859-1 as "_", longer text is cut.
class KnxConverter14ByteString final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverter14ByteString(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverter14ByteString>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// 11.x, a date from 1990 to 2089 (avtDate, or a type with date and time). What is no date is read as type 0.
class KnxConverterDate final : public KnxConverter {
 public:
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterDate>(*this); }
};

/// 10.x, a time of day with weekday (avtTime, or a type with date and time). What is no time is read as type 0.
class KnxConverterTimeOfDay final : public KnxConverter {
 public:
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterTimeOfDay>(*this); }
};

/// 19.x, date with time (avtDateTime). What is no date or time is read as type 0.
class KnxConverterDateTime final : public KnxConverter {
 public:
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterDateTime>(*this); }
};

/// 17.x, a scene number within the range (avtByte, or any value that main 17 or sub 1 speaks for; 32 bits are looked
/// at). A number out of range stays in the value when reading fails.
class KnxConverterSceneNumber final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterSceneNumber(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterSceneNumber>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;
};

/// 18.001, a scene number 0 to 63 with a learn bit (0x80) (avtByte). Leaves the caller's value type.
class KnxConverterSceneControl final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterSceneControl(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterSceneControl>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

/// 26.001, a scene number 0 to 63 with an inactive bit (0x40) (avtByte). Leaves the caller's value type.
class KnxConverterSceneInfo final : public KnxConverter {
 public:
  /// @param range  what Range() gives; kept as a copy.
  explicit KnxConverterSceneInfo(const IntegerRange& range) : m_range(range) {}
  bool ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, KnxStack::GroupValue& groupValue) override;
  bool FromKnxValue(const KNXDPT& dpt, const KnxStack::GroupValue& groupValue, AROVALUE& value) override;
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<KnxConverterSceneInfo>(*this); }
  /// The range that it was made with.
  const IntegerRange& Range() const noexcept { return m_range; }

 private:
  IntegerRange m_range;  // carried only
};

}  // namespace Tal
