// A KNX group value: octets, their size in bits, and the layouts of the basic datapoint types.
#pragma once

#include <KnxStackApi/BinaryData.h>
#include <KnxStackApi/Export.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace KnxStack {

/// A date as datapoint type 11.001 carries it, with its full year. What GetAsDate() reads is not judged, and may lie
/// outside these ranges.
struct Date {
  std::uint8_t day;    ///< 1 to 31
  std::uint8_t month;  ///< 1 to 12
  std::uint16_t year;  ///< 1990 to 2089
};

/// A time of day as datapoint type 10.001 carries it; weekday 0 is no day, 1 Monday ... 7 Sunday. What GetAsTimeOfDay()
/// reads is not judged, and may lie outside these ranges.
struct DayTime {
  std::uint8_t hour;     ///< 0 to 23
  std::uint8_t minute;   ///< 0 to 59
  std::uint8_t second;   ///< 0 to 59
  std::uint8_t weekday;  ///< 0 to 7
};

/// What a group object sends and receives. Values shorter than an octet stand in the low bits of one octet; the bus
/// sends them in a short form, which a receiver sees as size 6.
///
/// Setters replace octets and size; numbers are written most significant octet first. A setter that cannot represent
/// its argument throws GroupValueException and leaves the group value as it was.
///
/// Getters look at the octets and not at the size: they need their count of octets, ignore further ones, mask values
/// shorter than an octet, and throw GroupValueException when octets are missing.
///
/// Values of up to 14 octets need no memory beside the object.
class GroupValue {
 public:
  /// No octets, size 0.
  GroupValue() noexcept = default;

  /// Keeps both arguments, also when they disagree.
  GroupValue(BinaryData octets, unsigned definedSize) noexcept
      : m_octets(std::move(octets)), m_definedSize(definedSize) {}

  /// Size in bits.
  unsigned GetDefinedSize() const noexcept { return m_definedSize; }
  /// The octets.
  const BinaryData& GetRawData() const noexcept { return m_octets; }

  /// The octets as BinaryData::ToString() prints them.
  std::string ToString() const { return m_octets.ToString(); }

  /// A number in as many bits as the name says; of a shorter one the low bits.
  /// @{
  void SetAsBoolean(bool value) { Set(1, Octet(value ? 1u : 0u)); }
  void SetAsUnsigned2(std::uint8_t value) { Set(2, Octet(value & 0x03u)); }
  void SetAsUnsigned3(std::uint8_t value) { Set(3, Octet(value & 0x07u)); }
  void SetAsUnsigned4(std::uint8_t value) { Set(4, Octet(value & 0x0Fu)); }
  void SetAsChar(char value) { SetAsUnsigned8(static_cast<std::uint8_t>(value)); }
  void SetAsUnsigned8(std::uint8_t value) { Set(8, value); }
  void SetAsSigned8(std::int8_t value) { SetAsUnsigned8(static_cast<std::uint8_t>(value)); }
  void SetAsUnsigned16(std::uint16_t value) { Set(16, Octet(value >> 8u), Octet(value)); }
  void SetAsSigned16(std::int16_t value) { SetAsUnsigned16(static_cast<std::uint16_t>(value)); }
  void SetAsUnsigned32(std::uint32_t value) {
    Set(32, Octet(value >> 24), Octet(value >> 16), Octet(value >> 8), Octet(value));
  }
  void SetAsSigned32(std::int32_t value) { SetAsUnsigned32(static_cast<std::uint32_t>(value)); }
  /// @}
  /// IEEE 754 single precision; NaN and infinities are sent as they are.
  void SetAsFloat32(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    SetAsUnsigned32(bits);
  }
  /// The two-octet float nearest to @p value (Float16.h). @throws GroupValueException beyond its range.
  KNXSTACKAPI_EXPORT void SetAsFloat16(double value);
  /// A date in three octets. @throws GroupValueException for a day that is none, or outside 1990-01-01 to 2089-12-31.
  KNXSTACKAPI_EXPORT void SetAsDate(unsigned day, unsigned month, unsigned year);
  /// A time of day in three octets; weekday 0 is no day, 1 Monday.
  /// @throws GroupValueException unless hour < 24, minute < 60, second < 60 and weekday <= 7.
  KNXSTACKAPI_EXPORT void SetAsTimeOfDay(unsigned hour, unsigned minute, unsigned second, unsigned weekday);
  /// 14 octets of ISO 8859-1: @p latin1 cut at 14 characters, or filled up with zeros.
  KNXSTACKAPI_EXPORT void SetAsString14(std::string_view latin1);
  /// The low eight bits of up to 14 numbers; their size is 8 bits each.
  template <class... Octets>
  void SetOctets(Octets... octets) noexcept {
    Set(8 * sizeof...(octets), octets...);
  }
  /// Any octets; their size is 8 bits each.
  void SetRawData(BinaryData octets) noexcept {
    m_definedSize = static_cast<unsigned>(8 * octets.size());
    m_octets = std::move(octets);
  }

  /// The number that as many bits as the name says make: of one octet the low ones, else the first two or four octets.
  /// @throws GroupValueException  for want of octets.
  /// @{
  bool GetAsBoolean() const { return (First() & 0x01u) != 0; }
  std::uint8_t GetAsUnsigned2() const { return Octet(First() & 0x03u); }
  std::uint8_t GetAsUnsigned3() const { return Octet(First() & 0x07u); }
  std::uint8_t GetAsUnsigned4() const { return Octet(First() & 0x0Fu); }
  std::uint8_t GetAsUnsigned8() const { return First(); }
  std::int8_t GetAsSigned8() const { return static_cast<std::int8_t>(First()); }
  std::uint16_t GetAsUnsigned16() const {
    return static_cast<std::uint16_t>(m_octets.GetUInt8Value(0) << 8 | m_octets.GetUInt8Value(1));
  }
  std::int16_t GetAsSigned16() const { return static_cast<std::int16_t>(GetAsUnsigned16()); }
  std::uint32_t GetAsUnsigned32() const {
    m_octets.GetUInt8Value(3);  // all four must be there
    return m_octets.GetUInt32Value(0);
  }
  std::int32_t GetAsSigned32() const { return static_cast<std::int32_t>(GetAsUnsigned32()); }
  float GetAsFloat32() const {
    const std::uint32_t bits = GetAsUnsigned32();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }
  /// @}
  /// The number of the two-octet float (Float16.h); NaN for the word 7F FF. @throws GroupValueException  as above.
  KNXSTACKAPI_EXPORT double GetAsFloat16() const;
  /// Years 90 to 99 are 1990 to 1999, others 2000 onwards; the fields are masked to their bits, not judged.
  KNXSTACKAPI_EXPORT Date GetAsDate() const;
  /// The fields are masked to their bits, not judged.
  KNXSTACKAPI_EXPORT DayTime GetAsTimeOfDay() const;
  /// ISO 8859-1: up to 14 octets, ended by the first zero octet; shorter data (none at all too) give a shorter text.
  KNXSTACKAPI_EXPORT std::string GetAsString14() const;

 private:
  static constexpr std::uint8_t Octet(std::uint32_t value) noexcept { return static_cast<std::uint8_t>(value); }
  std::uint8_t First() const { return m_octets.GetUInt8Value(0); }
  template <class... Octets>
  void Set(unsigned definedSize, Octets... octets) noexcept {
    m_octets.Assign(octets...);
    m_definedSize = definedSize;
  }

  BinaryData m_octets;
  unsigned m_definedSize = 0;
};

}  // namespace KnxStack
