// The variant that every value of the object model travels in.
#pragma once

#include <BasePlatform/AroTime.h>
#include <BasePlatform/AroValueType.h>
#include <BasePlatform/Export.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// A typed value. The type says which of the payloads counts; setting a payload does not set the type.
///
/// Numbers and truth values share one 64-bit payload, zero at first: a narrower one is the low part of a wider one
/// whatever the machine's byte order, and writing it leaves the upper part alone. So a 32-bit number written under
/// avtWord can be seen to exceed 16 bits. Text and time are members of their own.
///
/// Serialised text. Default form "<type>:<body>" (a NaN of type 3: "nan"), internal form "<type>.7:<body>". Bodies:
/// types 0 and 1 nothing; 2 "0" or "1"; 3 the shortest text that reads back bit by bit, "inf", "-inf", "nan";
/// 4, 6, 7, 8 decimal; 10 the text's bytes to the end, as they are; 11, 12, 13, 15, 102, 104, 105, 201
/// AROTIME::ToString(); every other type the payload as 16 hex digits. No locale has a part in it.
class BASEPLATFORM_EXPORT AROVALUE {
 public:
  AroValueTag avt;   ///< avtEmpty at first
  AROTIME time;      ///< payload of the date and time types
  std::string text;  ///< payload of avtString; any bytes

  /// The payload, or its low part, as a number: whatever the type, and without a check.
  /// @{
  bool GetBool() const noexcept { return GetByte() != 0; }
  std::uint8_t GetByte() const noexcept { return static_cast<std::uint8_t>(m_payload); }
  std::uint16_t GetWord() const noexcept { return static_cast<std::uint16_t>(m_payload); }
  std::uint32_t GetDWord() const noexcept { return static_cast<std::uint32_t>(m_payload); }
  std::int32_t GetInteger() const noexcept { return static_cast<std::int32_t>(GetDWord()); }
  double GetFloat() const noexcept {
    double value;
    std::memcpy(&value, &m_payload, sizeof value);
    return value;
  }
  std::uint64_t GetPayload() const noexcept { return m_payload; }
  /// @}

  /// Writes the payload, or its low part. The type stays: set avt too.
  /// @{
  void SetBool(bool value) noexcept { SetByte(value ? 1 : 0); }
  void SetByte(std::uint8_t value) noexcept { Replace(0xFF, value); }
  void SetWord(std::uint16_t value) noexcept { Replace(0xFFFF, value); }
  void SetDWord(std::uint32_t value) noexcept { Replace(0xFFFFFFFF, value); }
  void SetInteger(std::int32_t value) noexcept { SetDWord(static_cast<std::uint32_t>(value)); }
  void SetFloat(double value) noexcept { std::memcpy(&m_payload, &value, sizeof m_payload); }
  void SetPayload(std::uint64_t payload) noexcept { m_payload = payload; }
  /// @}

  /// The body of the serialised text with control characters as `\n`, `\t`, `\r` or `\xHH`: one line for any type and
  /// payload. Empty when memory runs out.
  std::string ToString() const noexcept;

  /// The enumerator without "avt" ("Empty" for 1); "Unknown" for a number without a name.
  static const char* GetNameFromValueType(AroValueType type) noexcept;

  /// @p text itself when it is valid UTF-8, else with "?" in the place of each broken sequence.
  static std::string EnsureUTF8(std::string text);

  /// Replaces @p serialised with the serialised text, in the internal form when @p internalFormat is true.
  void Serialize(std::string& serialised, bool internalFormat) const;

  /// Reads a serialised text, in either form. The whole text is checked, and every number against its range.
  /// @return false: the text is none; the value is as it was. Never throws (false when memory runs out).
  bool Deserialize(std::string_view serialised) noexcept;

  /// Same type, payload bits, time and text.
  friend bool operator==(const AROVALUE& a, const AROVALUE& b) noexcept {
    return AroValueType{a.avt} == AroValueType{b.avt} && a.m_payload == b.m_payload && a.time == b.time &&
           a.text == b.text;
  }
  /// One of them differs.
  friend bool operator!=(const AROVALUE& a, const AROVALUE& b) noexcept { return !(a == b); }

 private:
  void Replace(std::uint64_t mask, std::uint64_t value) noexcept { m_payload = (m_payload & ~mask) | value; }

  std::uint64_t m_payload = 0;
};
