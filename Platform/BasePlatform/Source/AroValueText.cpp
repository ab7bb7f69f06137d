// The serialised text of a value, in both directions, and the text for log messages.
#include <BasePlatform/AroValue.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <system_error>

namespace {

/// How the body of a type is written.
enum class Body { None, Bool, Float, Integer, Byte, Word, DWord, Text, Time, Raw };

Body BodyOf(AroValueType type) noexcept {
  switch (static_cast<std::int32_t>(type)) {
    case avtInvalid:
    case avtEmpty: return Body::None;
    case avtBool: return Body::Bool;
    case avtFloat: return Body::Float;
    case avtInteger: return Body::Integer;
    case avtByte: return Body::Byte;
    case avtWord: return Body::Word;
    case avtDWord: return Body::DWord;
    case avtString: return Body::Text;
    case avtDate:
    case avtTime:
    case avtDateTime:
    case avtDayTime:
    case 102:
    case 104:
    case 105:
    case 201: return Body::Time;
    default: return Body::Raw;
  }
}

constexpr char kNan[] = "nan";
constexpr char kInternalMark[] = ".7";
constexpr char kHexDigits[] = "0123456789ABCDEF";

template <class Number>
void AppendNumber(std::string& out, Number number) {
  char digits[32];  // room for every integer and for the shortest form of every double
  out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void AppendFloat(std::string& out, double number) {
  if (std::isnan(number)) {
    out += kNan;
  } else {
    AppendNumber(out, number);
  }
}

void AppendBody(std::string& out, const AROVALUE& value) {
  switch (BodyOf(value.avt)) {
    case Body::None: break;
    case Body::Bool: out += value.GetBool() ? '1' : '0'; break;
    case Body::Float: AppendFloat(out, value.GetFloat()); break;
    case Body::Integer: AppendNumber(out, value.GetInteger()); break;
    case Body::Byte: AppendNumber(out, value.GetByte()); break;
    case Body::Word: AppendNumber(out, value.GetWord()); break;
    case Body::DWord: AppendNumber(out, value.GetDWord()); break;
    case Body::Text: out += value.text; break;
    case Body::Time: out += value.time.ToString(); break;
    case Body::Raw:
      for (int shift = 60; shift >= 0; shift -= 4) out += kHexDigits[(value.GetPayload() >> shift) & 0xF];
      break;
  }
}

/// Reads a whole text as a number in the range of @p Number; nothing may precede or follow.
template <class Number>
bool ReadNumber(std::string_view text, Number& number, int base = 10) noexcept {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && stop == end;
}

bool ReadFloat(std::string_view text, double& number) noexcept {
  if (text == kNan) {
    number = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  if (text == "inf" || text == "-inf") {
    number = text.front() == '-' ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    return true;
  }
  if (text.find_first_not_of("0123456789.eE+-") != text.npos) return false;  // no other spelling of inf and nan
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

/// Takes the text up to the next blank (or the end) off @p rest as one field.
template <class Field>
bool ReadField(std::string_view& rest, Field& field, bool last = false) noexcept {
  const std::size_t blank = rest.find(' ');
  if ((blank == rest.npos) != last) return false;
  const std::string_view text = rest.substr(0, blank);
  rest.remove_prefix(last ? rest.size() : blank + 1);
  return ReadNumber(text, field);
}

bool ReadTime(std::string_view text, AROTIME& time) noexcept {
  std::uint8_t flags[2];
  const bool complete = ReadField(text, time.year) && ReadField(text, time.month) && ReadField(text, time.day) &&
                        ReadField(text, time.hour) && ReadField(text, time.minute) && ReadField(text, time.second) &&
                        ReadField(text, time.extraByte) && ReadField(text, time.weekDays) &&
                        ReadField(text, time.extraWord) && ReadField(text, flags[0]) && ReadField(text, flags[1], true);
  if (!complete || flags[0] > 1 || flags[1] > 1) return false;
  time.firstFlag = flags[0] != 0;
  time.secondFlag = flags[1] != 0;
  return true;
}

/// Reads a number and stores it with one of the value's setters.
template <class Number>
bool ReadPayload(std::string_view body, AROVALUE& value, void (AROVALUE::*set)(Number) noexcept) noexcept {
  Number number;
  if (!ReadNumber(body, number)) return false;
  (value.*set)(number);
  return true;
}

bool ReadBody(std::string_view body, AROVALUE& value) {
  switch (BodyOf(value.avt)) {
    case Body::None: return body.empty();
    case Body::Bool: value.SetBool(body == "1"); return body == "0" || body == "1";
    case Body::Float: {
      double number;
      if (!ReadFloat(body, number)) return false;
      value.SetFloat(number);
      return true;
    }
    case Body::Integer: return ReadPayload(body, value, &AROVALUE::SetInteger);
    case Body::Byte: return ReadPayload(body, value, &AROVALUE::SetByte);
    case Body::Word: return ReadPayload(body, value, &AROVALUE::SetWord);
    case Body::DWord: return ReadPayload(body, value, &AROVALUE::SetDWord);
    case Body::Text: value.text = body; return true;
    case Body::Time: return ReadTime(body, value.time);
    case Body::Raw: {
      std::uint64_t payload;
      if (body.size() != 16 || !ReadNumber(body, payload, 16)) return false;
      value.SetPayload(payload);
      return true;
    }
  }
  return false;
}

/// Takes "<type>:" or "<type>.7:" off the front of @p text.
bool ReadType(std::string_view& text, AroValueTag& tag) noexcept {
  const std::size_t colon = text.find(':');
  if (colon == text.npos) return false;
  std::string_view type = text.substr(0, colon);
  constexpr std::size_t kMarkSize = sizeof kInternalMark - 1;
  if (type.size() > kMarkSize && type.substr(type.size() - kMarkSize) == kInternalMark) type.remove_suffix(kMarkSize);
  std::int32_t number;
  if (!ReadNumber(type, number)) return false;
  tag = static_cast<AroValueType>(number);
  text.remove_prefix(colon + 1);
  return true;
}

/// One line: control characters of ASCII and, in UTF-8, of ISO 8859-1 as escapes.
std::string WithoutControls(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto octet = static_cast<unsigned char>(text[i]);
    const bool latin1Control = octet >= 0x80 && octet < 0xA0 && i > 0 && text[i - 1] == '\xC2';
    if (octet == '\n') {
      out += "\\n";
    } else if (octet == '\t') {
      out += "\\t";
    } else if (octet == '\r') {
      out += "\\r";
    } else if (octet < 0x20 || octet == 0x7F || latin1Control) {
      if (latin1Control) out.replace(out.size() - 1, 1, "\\xC2");
      out += "\\x";
      out += kHexDigits[octet >> 4];
      out += kHexDigits[octet & 0xF];
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace

std::string AROVALUE::ToString() const noexcept {
  try {
    std::string body;
    AppendBody(body, *this);
    return WithoutControls(body);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

void AROVALUE::Serialize(std::string& serialised, bool internalFormat) const {
  std::string out;
  if (avt == avtFloat && std::isnan(GetFloat()) && !internalFormat) {
    out = kNan;
  } else {
    AppendNumber(out, static_cast<std::int32_t>(AroValueType{avt}));
    if (internalFormat) out += kInternalMark;
    out += ':';
    AppendBody(out, *this);
  }
  serialised.swap(out);
}

bool AROVALUE::Deserialize(std::string_view serialised) noexcept {
  AROVALUE value;
  if (serialised == kNan) {
    value.avt = avtFloat;
    value.SetFloat(std::numeric_limits<double>::quiet_NaN());
  } else {
    try {
      if (!ReadType(serialised, value.avt) || !ReadBody(serialised, value)) return false;
    } catch (const std::bad_alloc&) {
      return false;
    }
  }
  *this = std::move(value);
  return true;
}
