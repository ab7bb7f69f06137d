// The types a value of the object model may have.
#pragma once

#include <cstdint>

/// Number of a value type. Every 32-bit number is legal, named or not; the numbers are a contract with the device-stack
/// service and appear in serialised values.
enum AroValueType : std::int32_t {
  avtInvalid = 0,    ///< no value
  avtEmpty = 1,      ///< a value without content
  avtBool = 2,       ///< truth value
  avtFloat = 3,      ///< double
  avtInteger = 4,    ///< signed 32-bit number
  avtByte = 6,       ///< unsigned 8-bit number
  avtWord = 7,       ///< unsigned 16-bit number
  avtDWord = 8,      ///< unsigned 32-bit number
  avtString = 10,    ///< text, UTF-8
  avtDate = 11,      ///< date, carried as AROTIME
  avtTime = 12,      ///< time of day, carried as AROTIME
  avtDateTime = 13,  ///< date with time, carried as AROTIME
  avtDayTime = 15,   ///< time of day with weekday, carried as AROTIME
};

/// The type of a value together with the content-kind word that follows it: setting the type sets both.
class AroValueTag {
 public:
  /// Sets type and content kind.
  constexpr AroValueTag(AroValueType type = avtEmpty) noexcept : m_type(type), m_contentKind(ContentKindOf(type)) {}
  /// The type.
  constexpr operator AroValueType() const noexcept { return m_type; }

  /// 1 for type 0, 0 for type 1, 2 for every other type.
  constexpr std::uint32_t ContentKind() const noexcept { return m_contentKind; }

 private:
  static constexpr std::uint32_t ContentKindOf(AroValueType type) noexcept {
    return type == avtInvalid ? 1u : type == avtEmpty ? 0u : 2u;
  }

  AroValueType m_type;
  std::uint32_t m_contentKind;
};
