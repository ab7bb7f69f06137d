// Short ways to write values and octets.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/BinaryData.h>
#include <KnxStackApi/GroupValue.h>

#include <boost/optional/optional_io.hpp>
#include <cstdint>
#include <ostream>
#include <string>

namespace TalTest {

inline AROVALUE Typed(AroValueType type) {
  AROVALUE value;
  value.avt = type;
  return value;
}
/// A value of type @p type with one payload set.
template <class Payload, class Content>
AROVALUE With(AroValueType type, void (AROVALUE::*set)(Payload) noexcept, Content content) {
  AROVALUE value = Typed(type);
  (value.*set)(content);
  return value;
}
inline AROVALUE Bool(bool content) { return With(avtBool, &AROVALUE::SetBool, content); }
inline AROVALUE Byte(std::uint8_t number) { return With(avtByte, &AROVALUE::SetByte, number); }
/// Takes 32 bits, so that numbers beyond 16 can be put under avtWord.
inline AROVALUE Word(std::uint32_t number) { return With(avtWord, &AROVALUE::SetDWord, number); }
inline AROVALUE DWord(std::uint32_t number) { return With(avtDWord, &AROVALUE::SetDWord, number); }
inline AROVALUE Integer(std::int32_t number) { return With(avtInteger, &AROVALUE::SetInteger, number); }
inline AROVALUE Float(double number) { return With(avtFloat, &AROVALUE::SetFloat, number); }
inline AROVALUE Text(std::string text) {
  AROVALUE value = Typed(avtString);
  value.text = std::move(text);
  return value;
}
inline AROTIME Time(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
                    std::uint8_t second, std::uint16_t weekDays = 0) {
  AROTIME time;
  time.SetDateTime(year, month, day, hour, minute, second);
  time.weekDays = weekDays;
  return time;
}
inline AROVALUE Timed(AroValueType type, const AROTIME& time) {
  AROVALUE value = Typed(type);
  value.time = time;
  return value;
}

constexpr unsigned long Dpt(unsigned long main, unsigned long sub = 1) { return main << 16 | sub; }

/// "0C 1A/16": octets and size in bits.
inline std::string Wire(const KnxStack::GroupValue& groupValue) {
  return groupValue.ToString() + "/" + std::to_string(groupValue.GetDefinedSize());
}

}  // namespace TalTest

inline std::ostream& operator<<(std::ostream& os, const AROVALUE& value) {
  std::string text;
  value.Serialize(text, false);
  return os << text;
}
inline std::ostream& operator<<(std::ostream& os, const AROTIME& time) { return os << time.ToString(); }
