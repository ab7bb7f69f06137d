#include "Bare.h"

#include <BasePlatform/AroValueType.h>

#include <cmath>
#include <cstring>

namespace Bench {
namespace {

template <class... Octets>
bool Put(BareGroupValue& out, unsigned bits, Octets... octets) noexcept {
  const std::uint8_t all[] = {static_cast<std::uint8_t>(octets)...};
  std::memcpy(out.octets, all, sizeof all);
  out.count = sizeof...(octets);
  out.bits = static_cast<std::uint8_t>(bits);
  return true;
}

bool PutFloat16(double number, BareGroupValue& out) noexcept {
  if (!(number >= -671088.64 && number <= 670760.96)) return false;
  double mantissa = number * 100;
  unsigned exponent = 0;
  for (; mantissa < -2048 || mantissa > 2047; mantissa /= 2) ++exponent;
  const auto bits = static_cast<unsigned>(std::lrint(mantissa));
  const unsigned word = (mantissa < 0 ? 0x8000u : 0u) | exponent << 11 | (bits & 0x7FFu);
  return Put(out, 16, word >> 8, word);
}

bool IsDate(const AROTIME& time) noexcept {
  return time.year >= 1900 && time.month >= 1 && time.month <= 12 && time.day >= 1 && time.day <= 31;
}
bool IsClock(const AROTIME& time) noexcept { return time.hour < 24 && time.minute < 60 && time.second < 60; }

unsigned WeekdayOf(unsigned set) noexcept {
  return set == 0 || (set & (set - 1)) != 0 ? 0 : static_cast<unsigned>(__builtin_ctz(set)) + 1;
}

}  // namespace

bool BareEncode(unsigned main, const BareValue& value, BareGroupValue& out) noexcept {
  const std::uint32_t number = value.number;
  const AROTIME& time = value.time;
  switch (main) {
    case 1: return value.type == avtBool && Put(out, 1, number & 1);
    case 5:
    case 6: return value.type == avtByte && Put(out, 8, number);
    case 17: return value.type == avtByte && number < 64 && Put(out, 8, number);
    case 20: return value.type == avtByte && number < 5 && Put(out, 8, number);
    case 7: return value.type == avtWord && number <= 0xFFFF && Put(out, 16, number >> 8, number);
    case 8: {
      const auto integer = static_cast<std::int32_t>(number);
      return value.type == avtInteger && integer >= -32768 && integer <= 32767 && Put(out, 16, number >> 8, number);
    }
    case 9: return value.type == avtFloat && PutFloat16(value.real, out);
    case 10:
      return value.type == avtDayTime && IsClock(time) &&
             Put(out, 24, WeekdayOf(time.weekDays) << 5 | time.hour, time.minute, time.second);
    case 11:
      return value.type == avtDate && IsDate(time) && time.year >= 1990 && time.year < 2090 &&
             Put(out, 24, time.day, time.month, time.year % 100);
    case 12: return value.type == avtDWord && Put(out, 32, number >> 24, number >> 16, number >> 8, number);
    case 13: return value.type == avtInteger && Put(out, 32, number >> 24, number >> 16, number >> 8, number);
    case 14: {
      const auto single = static_cast<float>(value.real);
      std::uint32_t bits;
      std::memcpy(&bits, &single, sizeof bits);
      return value.type == avtFloat && Put(out, 32, bits >> 24, bits >> 16, bits >> 8, bits);
    }
    case 16: {
      if (value.type != avtString) return false;
      std::memset(out.octets, 0, sizeof out.octets);
      const std::size_t length = value.text.size() < 14 ? value.text.size() : 14;
      std::memcpy(out.octets, value.text.data(), length);
      out.count = 14;
      out.bits = 112;
      return true;
    }
    case 19:
      return value.type == avtDateTime && IsDate(time) && IsClock(time) &&
             Put(out, 64, time.year - 1900, time.month, time.day, WeekdayOf(time.weekDays) << 5 | time.hour,
                 time.minute, time.second, 0x20, 0);
    case 232: return value.type == avtDWord && Put(out, 24, number >> 16, number >> 8, number);
    default: return false;
  }
}

bool BareDecode(unsigned main, const BareGroupValue& in, BareValue& out) noexcept {
  const std::uint8_t* const octets = in.octets;
  const auto number = [&](int type, std::uint32_t content) noexcept {
    out.type = type;
    out.number = content;
    return true;
  };
  const auto word = [&]() noexcept { return static_cast<std::uint32_t>(octets[0] << 8 | octets[1]); };
  const auto dword = [&]() noexcept { return word() << 16 | static_cast<std::uint32_t>(octets[2] << 8 | octets[3]); };
  switch (main) {
    case 1: return in.bits <= 6 && in.count == 1 && number(avtBool, octets[0] & 1u);
    case 5:
    case 6: return in.bits == 8 && in.count == 1 && number(avtByte, octets[0]);
    case 17: return in.bits == 8 && in.count == 1 && octets[0] < 64 && number(avtByte, octets[0]);
    case 20: return in.bits == 8 && in.count == 1 && octets[0] < 5 && number(avtByte, octets[0]);
    case 7: return in.bits == 16 && in.count == 2 && number(avtWord, word());
    case 8:
      return in.bits == 16 && in.count == 2 &&
             number(avtInteger, static_cast<std::uint32_t>(static_cast<std::int16_t>(word())));
    case 9: {
      if (in.bits != 16 || in.count != 2) return false;
      const int mantissa = static_cast<int>(word() & 0x7FF) - ((octets[0] & 0x80) != 0 ? 2048 : 0);
      out.type = avtFloat;
      out.real = mantissa * (1 << (octets[0] >> 3 & 0x0F)) / 100.0;
      return true;
    }
    case 10:
      if (in.bits != 24 || in.count != 3) return false;
      out.type = avtDayTime;
      out.time.hour = octets[0] & 0x1F;
      out.time.minute = octets[1] & 0x3F;
      out.time.second = octets[2] & 0x3F;
      out.time.weekDays = static_cast<std::uint16_t>(octets[0] >> 5 == 0 ? 0 : 1 << ((octets[0] >> 5) - 1));
      return IsClock(out.time);
    case 11:
      if (in.bits != 24 || in.count != 3) return false;
      out.type = avtDate;
      out.time.day = octets[0] & 0x1F;
      out.time.month = octets[1] & 0x0F;
      out.time.year = static_cast<std::uint16_t>(octets[2] + (octets[2] >= 90 ? 1900 : 2000));
      return octets[2] < 100 && IsDate(out.time);
    case 12: return in.bits == 32 && in.count == 4 && number(avtDWord, dword());
    case 13: return in.bits == 32 && in.count == 4 && number(avtInteger, dword());
    case 14: {
      if (in.bits != 32 || in.count != 4) return false;
      const std::uint32_t bits = dword();
      float single;
      std::memcpy(&single, &bits, sizeof single);
      out.type = avtFloat;
      out.real = single;
      return true;
    }
    case 16:
      if (in.bits != 112 || in.count != 14) return false;
      out.type = avtString;
      out.text = {reinterpret_cast<const char*>(octets), ::strnlen(reinterpret_cast<const char*>(octets), 14)};
      return true;
    case 19:
      if (in.bits != 64 || in.count != 8) return false;
      out.type = avtDateTime;
      out.time.SetDateTime(static_cast<std::uint16_t>(1900 + octets[0]), octets[1] & 0x0F, octets[2] & 0x1F,
                           octets[3] & 0x1F, octets[4] & 0x3F, octets[5] & 0x3F);
      return IsDate(out.time) && IsClock(out.time);
    case 232:
      return in.bits == 24 && in.count == 3 &&
             number(avtDWord, static_cast<std::uint32_t>(octets[0] << 16 | octets[1] << 8 | octets[2]));
    default: return false;
  }
}

}  // namespace Bench
