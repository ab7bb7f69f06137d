#include <BasePlatform/AroValueBytes.h>
#include <Tal/KnxConverter.h>
#include <Tal/Text.h>
#include <Tal/TimeOfDay.h>
#include <TalLog/LogRecord.h>

#include <cmath>
#include <limits>
#include <ostream>

#include "AroTimeFields.h"
#include "KnxWire.h"
#include "TimeRefusals.h"

namespace Tal {
namespace {

using KnxStack::GroupValue;

constexpr char kScaleFailed[] = "Failed to calculate the scale factor because of invalid ";

/// Prints the two bounds of a range for a message: "[0, 254]".
template <class Number>
struct Interval {
  Number first;
  Number second;
  friend std::ostream& operator<<(std::ostream& os, const Interval& interval) {
    return os << '[' << interval.first << ", " << interval.second << ']';
  }
};
template <class Number>
Interval(Number, Number) -> Interval<Number>;

/// One scale factor for all four classes: @p internal and @p external are spans, the texts say what they are called.
struct ScaleTexts {
  const char* internal;
  const char* external;
  const char* either;  ///< between the two in the last message
};
constexpr ScaleTexts kIntegerTexts = {"internal range ", "external range ", " or because of invalid external range "};
constexpr ScaleTexts kFloatIntegerTexts = {"double range ", "integer range ", " or because invalid integer range "};
constexpr ScaleTexts kFloatTexts = {"double range ", "external range ", " or because invalid external range "};

template <class Internal, class External>
void SetScaleFactor(const CallSite& site, const ScaleTexts& texts, double internalSpan, double externalSpan,
                    const Interval<Internal>& internal, const Interval<External>& external, double& scaleFactor) {
  if (internalSpan == 0.0) {
    TAL_LOG_AT(Error, site) << kScaleFailed << texts.internal << internal << '.';
  } else if (externalSpan == 0.0) {
    TAL_LOG_AT(Error, site) << kScaleFailed << texts.external << external << '.';
  } else if (const double quotient = externalSpan / internalSpan; quotient != 0.0) {
    scaleFactor = quotient;
  } else {
    scaleFactor = 1.0;
    TAL_LOG_AT(Error, site) << kScaleFailed << texts.internal << internal << texts.either << external << '.';
  }
}

/// Difference of two bounds, exact in 64 bits before it is rounded to a double: 0 for equal bounds only.
double Span(std::int64_t min, std::int64_t max) {
  const auto a = static_cast<std::uint64_t>(min);
  const auto b = static_cast<std::uint64_t>(max);
  return max >= min ? static_cast<double>(b - a) : -static_cast<double>(a - b);
}

/// The low 32 bits of a bound as a signed number.
std::int32_t Low32(std::int64_t bound) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(bound)); }

}  // namespace

IntegerRange::IntegerRange(std::int32_t internalMin, std::int32_t internalMax, std::int32_t externalMin,
                           std::int32_t externalMax)
    : m_internalMin(internalMin), m_internalMax(internalMax), m_externalMin(externalMin), m_externalMax(externalMax) {
  CalculateScaleFactor();
}

void IntegerRange::CalculateScaleFactor() {
  SetScaleFactor(TAL_HERE, kIntegerTexts, Span(m_internalMin, m_internalMax), Span(m_externalMin, m_externalMax),
                 Interval{m_internalMin, m_internalMax}, Interval{m_externalMin, m_externalMax}, m_scaleFactor);
}

std::int32_t IntegerRange::ToExternal(std::int32_t value) const noexcept {
  const double scaled = m_externalMin + (static_cast<double>(value) - m_internalMin) * m_scaleFactor;
  const double rounded = scaled > 0 ? scaled + 0.5 : scaled < 0 ? scaled - 0.5 : scaled;
  if (rounded >= std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  if (rounded <= std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(rounded);
}

std::ostream& operator<<(std::ostream& os, const IntegerRange& range) {
  return os << "IntegerRange(" << range.m_internalMin << ", " << range.m_internalMax << ", " << range.m_externalMin
            << ", " << range.m_externalMax << ')';
}

LongIntegerRange::LongIntegerRange(std::int64_t internalMin, std::int64_t internalMax, std::int64_t externalMin,
                                   std::int64_t externalMax)
    : m_internalMin(internalMin), m_internalMax(internalMax), m_externalMin(externalMin), m_externalMax(externalMax) {
  CalculateScaleFactor();
}

void LongIntegerRange::CalculateScaleFactor() {
  // Deliberate: the messages show 32 bits of each bound, as the log readers of the device expect them.
  SetScaleFactor(TAL_HERE, kIntegerTexts, Span(m_internalMin, m_internalMax), Span(m_externalMin, m_externalMax),
                 Interval{Low32(m_internalMin), Low32(m_internalMax)},
                 Interval{Low32(m_externalMin), Low32(m_externalMax)}, m_scaleFactor);
}

std::ostream& operator<<(std::ostream& os, const LongIntegerRange& range) {
  // Deliberate: the same name as the 32-bit range.
  return os << "IntegerRange(" << range.m_internalMin << ", " << range.m_internalMax << ", " << range.m_externalMin
            << ", " << range.m_externalMax << ')';
}

FloatIntegerRange::FloatIntegerRange()
    : FloatIntegerRange(-671088.64, 670760.96, std::numeric_limits<std::int32_t>::min(),
                        std::numeric_limits<std::int32_t>::max()) {}

FloatIntegerRange::FloatIntegerRange(double floatMin, double floatMax, std::int32_t integerMin, std::int32_t integerMax)
    : m_floatMin(floatMin), m_floatMax(floatMax), m_integerMin(integerMin), m_integerMax(integerMax) {
  CalculateScaleFactor();
}

void FloatIntegerRange::CalculateScaleFactor() {
  SetScaleFactor(TAL_HERE, kFloatIntegerTexts, m_floatMax - m_floatMin, Span(m_integerMin, m_integerMax),
                 Interval{m_floatMin, m_floatMax}, Interval{m_integerMin, m_integerMax}, m_scaleFactor);
}

std::ostream& operator<<(std::ostream& os, const FloatIntegerRange& range) {
  return os << "FloatIntegerRange(" << range.m_floatMin << ", " << range.m_floatMax << ", " << range.m_integerMin
            << ", " << range.m_integerMax << ')';
}

FloatRange::FloatRange(double first, double second, double externalFirst, double externalSecond)
    : m_first(first), m_second(second), m_externalFirst(externalFirst), m_externalSecond(externalSecond) {
  CalculateScaleFactor();
}

void FloatRange::CalculateScaleFactor() {
  SetScaleFactor(TAL_HERE, kFloatTexts, std::abs(m_second - m_first), std::abs(m_externalSecond - m_externalFirst),
                 Interval{m_first, m_second}, Interval{m_externalFirst, m_externalSecond}, m_scaleFactor);
}

std::ostream& operator<<(std::ostream& os, const FloatRange& range) {
  return os << "FloatRange(" << range.m_first << ", " << range.m_second << ", " << range.m_externalFirst << ", "
            << range.m_externalSecond << ')';
}

// ---- codecs ----

namespace {

// Both are called for every conversion: the level is asked before anything is put together.

#define LOG_ENCODE_ENTRY(dpt, value) (!IsLogEnabled(LogLevel::Debug) ? void() : LogEncodeEntry(TAL_HERE, dpt, value))
#define LOG_DECODE_ENTRY(dpt, groupValue) \
  (!IsLogEnabled(LogLevel::Debug) ? void() : LogDecodeEntry(TAL_HERE, dpt, groupValue))

void LogEncodeEntry(const CallSite& site, const KNXDPT& dpt, const AROVALUE& value) {
  TAL_LOG_AT(Debug, site) << "DPT is used. DPT = " << dpt << " avt=" << AroValueType{value.avt}
                          << " val=" << value.ToString();
}

void LogDecodeEntry(const CallSite& site, const KNXDPT& dpt, const GroupValue& groupValue) {
  TAL_LOG_AT(Debug, site) << "DPT is used. DPT = " << dpt << " grp.size=" << groupValue.GetDefinedSize()
                          << " grp.val=" << groupValue.GetRawData().ToString();
}

bool Refuse(const CallSite& site, const char* message) {
  TAL_LOG_AT(Error, site) << message;
  return false;
}

/// Refuses what the fields of @p dpt may not hold: "The internal value of DPT=9.1, f=1e+06 is out of the allowed
/// range."
template <class Number>
bool RefuseInternal(const CallSite& site, const KNXDPT& dpt, Number number) {
  TAL_LOG_AT(Error, site) << "The internal value of DPT=" << dpt << ", f=" << number << " is out of the allowed range.";
  return false;
}

/// Refuses an integer outside its range, naming the value's type.
template <class Number>
bool RefuseTyped(const CallSite& site, const KNXDPT& dpt, AroValueType type, Number number) {
  TAL_LOG_AT(Error, site) << "The internal value of DPT=" << dpt << ", avt=" << type << " is out of range: " << number
                          << '!';
  return false;
}

/// Reads what is no date or time: no value.
bool ReadNothing(AROVALUE& value) {
  value.avt = avtInvalid;
  return true;
}

// Types with a date and a time, which date and time codecs take as well; the last two have no name.
bool HasDateAndTime(AroValueType type) {
  return type == avtDateTime || type == static_cast<AroValueType>(102) || type == static_cast<AroValueType>(201);
}

}  // namespace

bool KnxConverterDefault::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  constexpr std::size_t kRoom = 24;
  std::uint8_t buffer[kRoom] = {};
  std::size_t size = (dpt.size + 7u) / 8u;
  const auto type = static_cast<std::int32_t>(AroValueType{value.avt});
  if (type == 1005 || type == 1037) {  // always one octet
    size = 1;
    if (!AroValueToByteArray(value, buffer, size)) {
      TAL_LOG(Error) << "AroValueToByteArray failed. DPT=" << dpt;
      return false;
    }
    groupValue.SetAsUnsigned8(buffer[0]);
    return true;
  }
  if (type == avtBool) {
    // Deliberate: other main types are accepted without anything being written.
    if (dpt.main == 1) groupValue.SetAsBoolean(value.GetBool());
    if (dpt.main == 2) groupValue.SetAsUnsigned2(value.GetByte());
    return true;
  }
  if (size == 0 || size > kRoom - 1) size = kRoom;
  const std::size_t room = size;
  if (!AroValueToByteArray(value, buffer, size)) {
    TAL_LOG(Error) << "AroValueToByteArray failed. DPT=" << dpt << " data size =" << room;
    return false;
  }
  if (size > 1) {
    groupValue.SetRawData(KnxStack::BinaryData(buffer, size));
  } else {
    groupValue.SetAsUnsigned8(buffer[0]);
  }
  return true;
}

bool KnxConverterDefault::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  const KnxStack::BinaryData& octets = groupValue.GetRawData();
  if (ByteArrayToAroValue(octets.data(), octets.size(), value, groupValue.GetDefinedSize() == 1)) return true;
  value = AROVALUE();
  TAL_LOG(Error) << "ByteArrayToAroValue failed. DPT=" << dpt << " data size =" << octets.size();
  return false;
}

bool KnxConverter1Bit::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 1 || value.avt != avtBool) return false;
  groupValue.SetAsBoolean(value.GetBool());
  return true;
}

bool KnxConverter1Bit::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  if (dpt.main != 1) return false;
  value.SetBool(groupValue.GetAsBoolean());
  return true;
}

bool KnxConverter2Bit::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 2 || value.avt != avtByte) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtByte) or DPT main number (2.x)!");
  }
  groupValue.SetAsUnsigned2(value.GetByte());
  return true;
}

bool KnxConverter2Bit::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 2) return Refuse(TAL_HERE, "Wrong DPT main number (2.x)!");
  value.SetByte(groupValue.GetAsUnsigned2());
  value.avt = avtByte;
  return true;
}

bool KnxConverter4Bit::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 3 || value.avt != avtByte) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtByte) or DPT main number (3.x)!");
  }
  const std::uint8_t step = value.GetByte();
  if (step > 15) {
    TAL_LOG(Error) << "Value out of raw range [0..15]: " << unsigned{step};
    return false;
  }
  groupValue.SetAsUnsigned4(step);
  return true;
}

bool KnxConverter4Bit::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 3) return Refuse(TAL_HERE, "Wrong DPT main number (3.x)!");
  // Deliberate: the type stays what the row says, avtFloat; the payload is this byte.
  value.SetByte(groupValue.GetAsUnsigned4());
  return true;
}

namespace {

constexpr char kNotAscii[] = "Value out of raw range [0..127] for DPT 4.001: ";

}  // namespace

bool KnxConverter8BitString::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 4 || value.avt != avtString) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtString) or DPT main number (4.x)!");
  }
  const std::string latin1 = Vanta::Utf8ToIso88591(value.text);
  const char character = latin1.empty() ? '\0' : latin1.front();
  const auto octet = static_cast<unsigned char>(character);
  if (dpt.sub == 1 && octet >= 128) {
    TAL_LOG(Error) << kNotAscii << unsigned{octet};
    return false;
  }
  groupValue.SetAsChar(character);
  return true;
}

bool KnxConverter8BitString::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 4) return Refuse(TAL_HERE, "Wrong DPT main number (4.x)!");
  const std::uint8_t octet = groupValue.GetAsUnsigned8();
  if (octet < 128) {
    value.text.assign(1, static_cast<char>(octet));
  } else if (dpt.sub == 1) {
    TAL_LOG(Error) << kNotAscii << unsigned{octet};
    return false;
  } else {
    value.text = Vanta::Iso88591ToUtf8(groupValue.GetAsString14());
  }
  value.avt = avtString;
  return true;
}

bool KnxConverterByte8BitUnsigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (value.avt != avtByte) return Refuse(TAL_HERE, "Wrong aro value type (avtByte)!");
  const std::uint8_t octet = value.GetByte();
  if (dpt.main == 5 && dpt.sub == 6 && !m_range.Contains(octet)) {
    TAL_LOG(Error) << "Value out of raw range [0..254] for DPT 5.006: " << unsigned{octet};
    return false;
  }
  groupValue.SetAsUnsigned8(octet);
  return true;
}

bool KnxConverterByte8BitUnsigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  const std::uint8_t octet = groupValue.GetAsUnsigned8();
  if (!m_range.Contains(octet)) {
    TAL_LOG(Error) << "Value out of raw range " << m_range << " for DPT " << dpt << "; value was " << unsigned{octet};
    return false;
  }
  value.SetByte(octet);
  value.avt = avtByte;
  return true;
}

bool KnxConverterInteger8BitSigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 6 || value.avt != avtInteger) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtInteger) or DPT main number (6.x)!");
  }
  // Deliberate: no range check; the low eight bits are sent, so 200 goes out as -56.
  groupValue.SetAsSigned8(static_cast<std::int8_t>(value.GetByte()));
  return true;
}

bool KnxConverterInteger8BitSigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  value.SetInteger(groupValue.GetAsSigned8());
  value.avt = avtInteger;
  return true;
}

namespace {

bool IsStatusMode(unsigned mode) { return mode == 1 || mode == 2 || mode == 4; }

}  // namespace

bool KnxConverterStatus8Bit::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  // Deliberate: any one of the three suffices.
  if (dpt.main != 6 && dpt.sub != 20 && value.avt != avtByte) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtByte) or DPT main number (6.020)!");
  }
  // Deliberate: written first and judged as written, so the group value keeps an octet that is refused.
  groupValue.SetAsUnsigned8(value.GetByte());
  const unsigned mode = groupValue.GetAsUnsigned3();
  return IsStatusMode(mode) || RefuseInternal(TAL_HERE, dpt, mode);
}

bool KnxConverterStatus8Bit::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 6 && dpt.sub != 20) return Refuse(TAL_HERE, "Wrong DPT main number (6.020)!");
  const unsigned mode = static_cast<unsigned>(groupValue.GetAsSigned8()) & 0x07u;
  if (!IsStatusMode(mode)) return RefuseInternal(TAL_HERE, dpt, mode);
  value.SetByte(groupValue.GetAsUnsigned8());
  value.avt = avtByte;
  return true;
}

// Deliberate, in the numeric codecs below: where the text of a refusal says "or", main number or value type alone
// suffices, and the payload is taken as it stands.

bool KnxConverterInteger16BitUnsigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 7 && value.avt != avtWord) {
    return Refuse(TAL_HERE, "Wrong DPT main number (7.x) or aro value type (avtWord)!");
  }
  groupValue.SetAsUnsigned16(value.GetWord());
  return true;
}

bool KnxConverterInteger16BitUnsigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 7) return Refuse(TAL_HERE, "Wrong DPT main number (7.x)!");
  value.SetDWord(groupValue.GetAsUnsigned16());
  value.avt = avtWord;
  return true;
}

bool KnxConverterInteger16BitSigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 8 && value.avt != avtInteger) {
    return Refuse(TAL_HERE, "Wrong DPT main number (8.x) or aro value type (avtInteger)!");
  }
  groupValue.SetAsSigned16(static_cast<std::int16_t>(value.GetWord()));
  return true;
}

bool KnxConverterInteger16BitSigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 8) return Refuse(TAL_HERE, "Wrong DPT main number (8.x)!");
  value.SetInteger(groupValue.GetAsSigned16());
  value.avt = avtInteger;
  return true;
}

namespace {

constexpr double kNoValueNumber = 32767.0;      // what a value of type 0 is sent as
constexpr std::uint16_t kInvalidWord = 0x7FFF;  // what is read as a value of type 0

}  // namespace

bool KnxConverterFloat16BitFloat::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 9 && value.avt != avtFloat && value.avt != avtInvalid) {
    return Refuse(TAL_HERE, "Wrong DPT main number (9.x) or aro value type (avtFloat)!");
  }
  if (value.avt == avtInvalid) {
    // Deliberate: the number 32767 and not the word 7F FF, which only stands for "no value" when it is read.
    groupValue.SetAsFloat16(kNoValueNumber);
    return true;
  }
  const double number = value.GetFloat();
  if (!m_range.Contains(number)) return RefuseInternal(TAL_HERE, dpt, number);
  groupValue.SetAsFloat16(number);
  return true;
}

bool KnxConverterFloat16BitFloat::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (groupValue.GetAsUnsigned16() == kInvalidWord) {
    value.avt = avtInvalid;
    return true;
  }
  const double number = groupValue.GetAsFloat16();
  value.SetFloat(number);  // Deliberate: before the check, so that a caller can look at what was refused
  return m_range.Contains(number) || RefuseInternal(TAL_HERE, dpt, number);
}

bool KnxConverterFloat32BitFloat::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 14 && value.avt != avtFloat && value.avt != avtInvalid) {
    return Refuse(TAL_HERE, "Wrong DPT main number (14.x) or aro value type (avtFloat)!");
  }
  const bool hasValue = value.avt != avtInvalid;
  groupValue.SetAsFloat32(hasValue ? static_cast<float>(value.GetFloat()) : std::numeric_limits<float>::quiet_NaN());
  return true;
}

bool KnxConverterFloat32BitFloat::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 14) return Refuse(TAL_HERE, "Wrong DPT main number (14.x)!");
  value.SetFloat(groupValue.GetAsFloat32());
  value.avt = avtFloat;
  return true;
}

bool KnxConverterInteger24BitUnsigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  KnxWire::WriteUnsigned24(groupValue, value.GetDWord());
  return true;
}

bool KnxConverterInteger24BitUnsigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  value.SetDWord(groupValue.GetRawData().GetUInt32Value(0));
  return true;
}

bool KnxConverterInteger32BitUnsigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (value.avt != avtDWord) return Refuse(TAL_HERE, "Wrong aro value type (avtDWord)!");
  const std::uint32_t number = value.GetDWord();
  if (!m_range.Contains(number)) return RefuseTyped(TAL_HERE, dpt, value.avt, number);
  groupValue.SetAsUnsigned32(number);
  return true;
}

bool KnxConverterInteger32BitUnsigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  const std::uint32_t number = groupValue.GetAsUnsigned32();
  if (!m_range.Contains(number)) return RefuseTyped(TAL_HERE, dpt, value.avt, number);
  value.SetDWord(number);
  value.avt = avtDWord;
  return true;
}

bool KnxConverterInteger32BitSigned::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 13 && value.avt != avtInteger) {
    return Refuse(TAL_HERE, "Wrong DPT main number (13.x) or aro value type (avtInteger)!");
  }
  const std::int32_t number = value.GetInteger();
  if (!m_range.Contains(number)) return RefuseTyped(TAL_HERE, dpt, value.avt, number);
  groupValue.SetAsSigned32(m_range.ToExternal(number));
  return true;
}

bool KnxConverterInteger32BitSigned::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 13) return Refuse(TAL_HERE, "Wrong DPT main number (13.x)!");
  const std::int32_t number = groupValue.GetAsSigned32();
  if (!m_range.Contains(number)) {
    TAL_LOG(Error) << "The group value of DPT=" << dpt << " is out of range: " << number << '!';
    return false;
  }
  value.SetInteger(number);  // Deliberate: not scaled back; the external side is read as it is
  value.avt = avtInteger;
  return true;
}

bool KnxConverter14ByteString::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 16 || value.avt != avtString) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtString) or DPT main number (16.x)!");
  }
  return KnxWire::WriteText(groupValue, value.text) || Refuse(TAL_HERE, "Got AROVALUE that contains a non-UTF8 string");
}

bool KnxConverter14ByteString::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 16) return Refuse(TAL_HERE, "Wrong DPT main number (16.x)!");
  value.text = KnxWire::ReadText(groupValue);
  value.avt = avtString;
  return true;
}

bool KnxConverterDate::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  const bool isDate = value.avt == avtDate || value.avt == static_cast<AroValueType>(105) || HasDateAndTime(value.avt);
  if (dpt.main != 11 || !isDate) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtDate) or DPT main number (11.x)!");
  }
  const AROTIME& time = value.time;
  const bool isInRange = time.year >= 1990 && time.year <= 2089;
  if (!isInRange || !AROTIME::IsValidDate(time.year, time.month, time.day)) return RefuseDate(TAL_HERE, time);
  groupValue.SetAsDate(time.day, time.month, time.year);
  return true;
}

bool KnxConverterDate::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 11) return Refuse(TAL_HERE, "Wrong DPT main number (11.x)!");
  const KnxStack::BinaryData& octets = groupValue.GetRawData();
  if (octets.size() != KnxWire::kDateOctets || octets.GetUInt8Value(2) > KnxWire::kLastTwoDigitYear) {
    return ReadNothing(value);
  }
  const KnxStack::Date date = groupValue.GetAsDate();
  if (!AROTIME::IsValidDate(date.year, date.month, date.day)) return ReadNothing(value);
  value.time.Clear(true);
  value.time.SetDate(date.year, date.month, date.day);
  return true;
}

bool KnxConverterTimeOfDay::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  const bool isTime = value.avt == avtTime || value.avt == static_cast<AroValueType>(104) || HasDateAndTime(value.avt);
  if (dpt.main != 10 || !isTime) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtTime) or DPT main number (10.x)!");
  }
  const boost::optional<TalApp::TimeOfDay> timeOfDay = TalApp::FromAroTime(value.time);
  if (!timeOfDay) return RefuseTimeOfDay(TAL_HERE, value.time);
  groupValue.SetAsTimeOfDay(timeOfDay->GetHour(), timeOfDay->GetMinute(), timeOfDay->GetSecond(),
                            static_cast<unsigned>(timeOfDay->GetWeekday()));
  return true;
}

bool KnxConverterTimeOfDay::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 10) return Refuse(TAL_HERE, "Wrong DPT main number (10.x)!");
  if (groupValue.GetRawData().size() < KnxWire::kTimeOfDayOctets) return ReadNothing(value);
  const KnxStack::DayTime fields = groupValue.GetAsTimeOfDay();
  const auto timeOfDay = TalApp::TimeOfDay::Create(fields.hour, fields.minute, fields.second,
                                                   static_cast<TalApp::DayOfWeek>(fields.weekday));
  if (!timeOfDay) return ReadNothing(value);
  SetTimeOfDay(value.time, *timeOfDay);
  return true;
}

bool KnxConverterDateTime::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 19 || !HasDateAndTime(value.avt)) {
    return Refuse(TAL_HERE, "Wrong aro value type (avtDateTime) or DPT main number (19.x)!");
  }
  const AROTIME& time = value.time;
  if (!AROTIME::IsValidDate(time.year, time.month, time.day) ||
      !AROTIME::IsValidTime(time.hour, time.minute, time.second)) {
    return RefuseDate(TAL_HERE, time);
  }
  KnxWire::WriteDateTime(groupValue, time);
  return true;
}

bool KnxConverterDateTime::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 19) return Refuse(TAL_HERE, "Wrong DPT main number (19.x)!");
  if (groupValue.GetRawData().size() < KnxWire::kDateTimeOctetsRead) return ReadNothing(value);
  const KnxWire::DateTime moment = KnxWire::UnpackDateTime(groupValue.GetRawData());
  if (!AROTIME::IsValidDate(moment.year, moment.month, moment.day) ||
      !AROTIME::IsValidTime(moment.hour, moment.minute, moment.second)) {
    return ReadNothing(value);
  }
  value.time.Clear(true);
  value.time.SetDateTime(moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second);
  return true;
}

namespace {

constexpr char kReservedBit[] = "Reserved bit is used for scene number in DPT scene control!";
constexpr char kSceneOutOfRange[] = "Scene number is out of range (>63) for SceneNumber: ";

}  // namespace

bool KnxConverterSceneNumber::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  // Deliberate: any one of the three suffices, and all 32 bits of the payload are looked at.
  if (dpt.main != 17 && dpt.sub != 1 && value.avt != avtByte) {
    return Refuse(TAL_HERE, "Wrong DPT main number (17.001) or aro value type (avtByte)!");
  }
  const std::int32_t scene = value.GetInteger();
  if (!m_range.Contains(scene)) {
    TAL_LOG(Error) << kSceneOutOfRange << scene;
    return false;
  }
  groupValue.SetAsUnsigned8(value.GetByte());
  return true;
}

bool KnxConverterSceneNumber::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 17 && dpt.sub != 1) return Refuse(TAL_HERE, "Wrong DPT main number (17.001)!");
  const std::int32_t scene = groupValue.GetAsUnsigned8();
  value.SetInteger(scene);  // Deliberate: before the check, so that a caller can look at what was refused
  if (!m_range.Contains(scene)) {
    TAL_LOG(Error) << kSceneOutOfRange << scene;
    return false;
  }
  value.avt = avtByte;
  return true;
}

bool KnxConverterSceneControl::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 18 || dpt.sub != 1 || value.avt != avtByte) {
    return Refuse(TAL_HERE, "Wrong DPT for Scene number (18.001) or aro value type (avtByte).");
  }
  const std::uint8_t octet = value.GetByte();
  if ((octet & 0x40) != 0) {
    TAL_LOG(Error) << "Scene number is out of range (>63) for SceneControl: " << (octet & 0x7F);
    return false;
  }
  groupValue.SetAsUnsigned8(octet);
  return true;
}

bool KnxConverterSceneControl::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 18 || dpt.sub != 1) return Refuse(TAL_HERE, "Wrong DPT for Scene number, only 18.001 is valid.");
  const std::uint8_t octet = groupValue.GetAsUnsigned8();
  if ((octet & 0x40) != 0) return Refuse(TAL_HERE, kReservedBit);
  // Deliberate: the type stays what the row says, avtInteger; the payload is this byte.
  value.SetByte(octet);
  return true;
}

bool KnxConverterSceneInfo::ToKnxValue(const KNXDPT& dpt, const AROVALUE& value, GroupValue& groupValue) {
  LOG_ENCODE_ENTRY(dpt, value);
  if (dpt.main != 26 || dpt.sub != 1 || value.avt != avtByte) {
    return Refuse(TAL_HERE, "Wrong DPT for Scene number (26.001) or aro value type (avtByte).");
  }
  const std::uint8_t octet = value.GetByte();
  if ((octet & 0x80) != 0) return Refuse(TAL_HERE, "Reserved bit 8 is set for SceneInfo; skipped.");
  groupValue.SetAsUnsigned8(octet);
  return true;
}

bool KnxConverterSceneInfo::FromKnxValue(const KNXDPT& dpt, const GroupValue& groupValue, AROVALUE& value) {
  LOG_DECODE_ENTRY(dpt, groupValue);
  if (dpt.main != 26 || dpt.sub != 1) return Refuse(TAL_HERE, "Wrong DPT for Scene number, only 26.001 is valid.");
  const std::uint8_t octet = groupValue.GetAsUnsigned8();
  if ((octet & 0x80) != 0) return Refuse(TAL_HERE, kReservedBit);  // Deliberate: the text of scene control serves both
  value.SetByte(octet);
  return true;
}

}  // namespace Tal
