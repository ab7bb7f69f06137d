// Short ways to write values and octets.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/BinaryData.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/KnxDpt.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/optional/optional_io.hpp>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

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

/// A value from its serialised text, in which zeros at the end of a time may be missing. "7=8:65536" is the content of
/// 8:65536 under type 7.
inline AROVALUE Value(std::string text) {
  const std::size_t equals = std::min(text.find('='), text.find(':'));
  const bool hasType = equals != text.npos && text[equals] == '=';
  const auto type = static_cast<AroValueType>(hasType ? std::stoi(text) : 0);
  if (hasType) text.erase(0, equals + 1);
  AROVALUE value;
  for (int zeros = 0; !value.Deserialize(text); ++zeros) {
    EXPECT_LT(zeros, 10) << "no value: " << text;
    if (zeros == 10) break;
    text += " 0";
  }
  if (hasType) value.avt = type;
  return value;
}
/// "9", "9.1" or, with a size in bits, "9.1/16".
inline KNXDPT ReadDpt(const std::string& text) {
  KNXDPT dpt{};
  EXPECT_GE(std::sscanf(text.c_str(), "%hu.%hu/%hhu", &dpt.main, &dpt.sub, &dpt.size), 1) << text;
  return dpt;
}

/// Octets in hex; their size in bits may follow: "0C 1A/16".
inline KnxStack::GroupValue Octets(const std::string& text) {
  std::vector<std::uint8_t> octets;
  const std::size_t slash = std::min(text.find('/'), text.size());
  for (std::size_t at = 0; at < slash; at += 3) {
    octets.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(at, 2), nullptr, 16)));
  }
  const std::size_t bits = slash < text.size() ? std::stoul(text.substr(slash + 1)) : 8 * octets.size();
  return {KnxStack::BinaryData(octets.data(), octets.size()), static_cast<unsigned>(bits)};
}
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
