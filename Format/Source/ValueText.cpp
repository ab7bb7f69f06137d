#include <Format/ValueText.h>

#include <Tal/TimeOfDay.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <cmath>
#include <cstdio>
#include <limits>

#include <Format/Cursor.h>

namespace Format {
namespace {

constexpr unsigned kAnyMain = 0;
constexpr unsigned kSigned8 = 6;
constexpr unsigned kColour = 232;

enum class Converters { Both, Direct, Table };

struct ExpectationRow {
  AroValueType type;
  unsigned main;
  Converters converters;
  const char* text;
};

// The first row that fits counts.
constexpr ExpectationRow kExpectations[] = {
    {avtBool, kAnyMain, Converters::Both, "true, false, on, off, 1 or 0"},
    {avtByte, kSigned8, Converters::Direct, "a whole number from -128 to 255"},
    {avtByte, 2, Converters::Direct, "a whole number from 0 to 255, of which the low two bits are sent"},
    {avtByte, 3, Converters::Direct, "a whole number from 0 to 255, of which the low four bits are sent"},
    {avtByte, 23, Converters::Direct, "a whole number from 0 to 255, of which the low two bits are sent"},
    {avtByte, 17, Converters::Direct, "a scene number from 0 to 63"},
    {avtByte, 26, Converters::Table, "a scene number from 0 to 63, plus 64 for an inactive scene"},
    {avtByte, kSigned8, Converters::Table, "five status bits and a mode of 1, 2 or 4 in the low three bits"},
    {avtByte, kAnyMain, Converters::Both, "a whole number from 0 to 255"},
    {avtWord, kAnyMain, Converters::Direct, "a whole number from 0 to 65535"},
    {avtWord, kAnyMain, Converters::Table, "a whole number from 0 to 4294967295, of which the low 16 bits are sent"},
    {avtInteger, 8, Converters::Direct, "a whole number from -32768 to 32767"},
    {avtInteger, 8, Converters::Table, "a whole number, of which the low 16 bits are sent"},
    {avtInteger, kSigned8, Converters::Table, "a whole number, of which the low eight bits are sent"},
    {avtInteger, kAnyMain, Converters::Both, "a whole number from -2147483648 to 2147483647"},
    {avtDWord, kColour, Converters::Both, "a colour, #RRGGBB or a whole number of which the low 24 bits are sent"},
    {avtDWord, kAnyMain, Converters::Both, "a whole number from 0 to 4294967295"},
    {avtFloat, 9, Converters::Direct, "a number from -671088.64 to 670760.96 with a decimal point, or nan"},
    {avtFloat, kAnyMain, Converters::Both, "a number with a decimal point, or nan, inf, -inf"},
    {avtString, 4, Converters::Both,
     "a character of ISO 8859-1 (4.001: of ASCII) in UTF-8; others are sent cut to one octet"},
    {avtString, kAnyMain, Converters::Both, "text in UTF-8"},
    {avtDayTime, kAnyMain, Converters::Both, "a time of day such as 12:30:15 or Mon 12:30:15"},
    {avtTime, kAnyMain, Converters::Both, "a time of day such as 12:30:15 or Mon 12:30:15"},
    {avtDate, kAnyMain, Converters::Both, "a date from 1990-01-01 to 2089-12-31, such as 2023-01-01"},
    {avtDateTime, kAnyMain, Converters::Both,
     "a date with time such as 2023-01-01T12:30:15; the years 1900 to 2155 keep their century"},
};

/// Codecs that refuse to encode values outside the range of their row.
bool IsConsulted(const Tal::DptDescription& row) {
  constexpr const char* kCodecs[] = {"KnxConverterFloat16BitFloat", "KnxConverterSceneNumber"};
  const bool is5006 = row.dpt.main == 5 && row.dpt.sub == 6;
  return is5006 || std::find(std::begin(kCodecs), std::end(kCodecs), row.codec) != std::end(kCodecs);
}

struct BoolWord {
  const char* word;
  bool value;
};
constexpr BoolWord kBoolWords[] = {{"true", true}, {"false", false}, {"on", true},
                                   {"off", false}, {"1", true},      {"0", false}};

// By the bits of AroWeekDays, from Monday.
constexpr const char* kDayNames[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};

bool ReadBool(std::string_view text, bool& value) {
  for (const BoolWord& row : kBoolWords) {
    if (!SameText(text, row.word)) continue;
    value = row.value;
    return true;
  }
  return false;
}

/// A number's sign and what follows it.
struct Signed {
  bool negative;
  std::string_view magnitude;
};
Signed TakeSign(std::string_view text) {
  Cursor cursor(text);
  const bool negative = cursor.Word("-");
  if (!negative) cursor.Word("+");
  return {negative, cursor.Rest()};
}

/// The whole of @p text as decimal or 0x... digits.
bool ReadMagnitude(std::string_view text, std::uint64_t& magnitude) {
  Cursor cursor(text);
  const int base = cursor.Word("0x") ? 16 : 10;
  const std::string_view digits = cursor.Rest();
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, magnitude, base);
  return error == std::errc() && stop == end;
}

/// A whole number with an optional sign that fits @p Number. Nothing may follow.
template <class Number>
bool ReadWhole(std::string_view text, Number& number) {
  const auto [negative, digits] = TakeSign(text);
  std::uint64_t magnitude;
  if (!ReadMagnitude(digits, magnitude) || magnitude > std::uint64_t{1} << 32) return false;
  const std::int64_t whole = negative ? -static_cast<std::int64_t>(magnitude) : static_cast<std::int64_t>(magnitude);
  if (whole < std::numeric_limits<Number>::min() || whole > std::numeric_limits<Number>::max()) return false;
  number = static_cast<Number>(whole);
  return true;
}

/// True for a decimal number below 1, however small.
bool IsBelowOne(std::string_view text) {
  const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
  const std::string_view mantissa = text.substr(0, mark);
  std::string_view exponentText = text.substr(std::min(mark + 1, text.size()));
  if (!exponentText.empty() && exponentText.front() == '+') exponentText.remove_prefix(1);
  std::int64_t exponent = 0;
  const auto parsed = std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  if (parsed.ec == std::errc::result_out_of_range) return exponentText.front() == '-';
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto digit = static_cast<std::int64_t>(std::min(mantissa.find_first_of("123456789"), mantissa.size()));
  return exponent <= digit - point;
}

/// A number with an optional sign: decimal, 0x... for whole numbers, nan or inf. What is too small for a double is 0.
bool ReadFloat(std::string_view text, double& number) {
  const auto [negative, digits] = TakeSign(text);
  std::uint64_t whole;
  if (SameText(digits.substr(0, 2), "0x")) {
    if (!ReadMagnitude(digits, whole)) return false;
    number = static_cast<double>(whole);
  } else {
    const bool named = SameText(digits, "nan") || SameText(digits, "inf");
    if (!named && digits.find_first_not_of("0123456789.eE+-") != digits.npos) return false;
    const char* const end = digits.data() + digits.size();
    if (digits.empty() || digits.front() == '-') return false;
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (stop != end) return false;
    if (error == std::errc::result_out_of_range && IsBelowOne(digits)) {
      number = 0.0;
    } else if (error != std::errc()) {
      return false;
    }
  }
  if (negative) number = -number;
  return true;
}

bool ReadClock(Cursor& cursor, AROTIME& time) {
  return cursor.Number(time.hour) && cursor.Word(":") && cursor.Number(time.minute) && cursor.Word(":") &&
         cursor.Number(time.second);
}

bool ReadCalendar(Cursor& cursor, AROTIME& time) {
  return cursor.Number(time.year) && cursor.Word("-") && cursor.Number(time.month) && cursor.Word("-") &&
         cursor.Number(time.day);
}

bool ReadDayTime(Cursor& cursor, AROTIME& time) {
  for (unsigned day = 0; day < std::size(kDayNames); ++day) {
    if (!cursor.Word(kDayNames[day])) continue;
    time.weekDays = static_cast<std::uint16_t>(AroWeekDays::Monday << day);
    if (!cursor.Word(" ")) return false;
    break;
  }
  return ReadClock(cursor, time);
}

bool ReadTime(std::string_view text, AroValueType type, AROTIME& time) {
  Cursor cursor(text);
  const bool isClock = type == avtDayTime || type == avtTime;
  const bool good = isClock           ? ReadDayTime(cursor, time)
                    : type == avtDate ? ReadCalendar(cursor, time)
                                      : ReadCalendar(cursor, time) && (cursor.Word("T") || cursor.Word(" ")) &&
                                            ReadClock(cursor, time);
  return good && cursor.AtEnd();
}

bool ReadColour(std::string_view text, std::uint32_t& number) {
  return text.size() == 7 && text[0] == '#' && ReadWhole("0x" + std::string(text.substr(1)), number);
}

/// Reads @p text into a number of type @p Number and stores it with one of the value's setters.
template <class Number>
bool Read(std::string_view text, AROVALUE& value, void (AROVALUE::*set)(Number) noexcept) {
  Number number;
  if (!ReadWhole(text, number)) return false;
  (value.*set)(number);
  return true;
}

bool ReadContent(std::string_view text, unsigned main, AROVALUE& value) {
  bool truth;
  double real;
  std::uint32_t colour;
  std::int8_t signedByte;
  switch (value.avt) {
    case avtBool:
      if (!ReadBool(text, truth)) return false;
      value.SetBool(truth);
      return true;
    case avtByte:
      if (main == kSigned8 && ReadWhole(text, signedByte)) {
        value.SetByte(static_cast<std::uint8_t>(signedByte));
        return true;
      }
      return Read(text, value, &AROVALUE::SetByte);
    case avtWord:  // as 32 bits: the library says what is too much for 16
    case avtDWord:
      if (main == kColour && ReadColour(text, colour)) {
        value.SetDWord(colour);
        return true;
      }
      return Read(text, value, &AROVALUE::SetDWord);
    case avtInteger: return Read(text, value, &AROVALUE::SetInteger);
    case avtFloat:
      if (!ReadFloat(text, real)) return false;
      value.SetFloat(real);
      return true;
    case avtString: value.text = text; return true;
    case avtDayTime:
    case avtTime:
    case avtDate:
    case avtDateTime: return ReadTime(text, value.avt, value.time);
    default: return true;  // the library encodes no such type, whatever the content, and says so
  }
}

template <class... Fields>
std::string Print(const char* format, Fields... fields) {
  char text[64];
  std::snprintf(text, sizeof text, format, fields...);
  return text;
}

std::string FormatClock(const AROTIME& time) {
  return Print("%02u:%02u:%02u", unsigned{time.hour}, unsigned{time.minute}, unsigned{time.second});
}

std::string FormatCalendar(const AROTIME& time) {
  return Print("%04u-%02u-%02u", unsigned{time.year}, unsigned{time.month}, unsigned{time.day});
}

std::string FormatDayTime(const AROTIME& time) {
  std::string day;
  for (unsigned i = 0; i < std::size(kDayNames); ++i) {
    if (time.weekDays == AroWeekDays::Monday << i) day = std::string(kDayNames[i]) + ' ';
  }
  return day + FormatClock(time);
}

}  // namespace

std::string Expectation(const Dpt& dpt, Converter converter) {
  const AroValueType type = ValueTypeOf(dpt, converter);
  const auto* const row = converter == Converter::Table ? FindDptRow(dpt) : nullptr;
  if (row != nullptr && row->range && IsConsulted(*row)) {
    return (type == avtFloat ? "a number from " : "a whole number from ") + FormatNumber(row->range->internalMin) +
           " to " + FormatNumber(row->range->internalMax) + (dpt.main == 9 ? ", or nan" : "");
  }
  for (const ExpectationRow& expectation : kExpectations) {
    const bool isConverter = expectation.converters == Converters::Both ||
                             (expectation.converters == Converters::Table) == (converter == Converter::Table);
    const bool isMain = expectation.main == kAnyMain || expectation.main == dpt.main;
    if (expectation.type == type && isConverter && isMain) return expectation.text;
  }
  return "nothing: " + std::to_string(dpt.main) + ".x has no values here";
}

bool ParseValue(std::string_view text, const Dpt& dpt, AroValueType type, AROVALUE& value) {
  AROVALUE parsed;
  parsed.avt = type;
  if (!ReadContent(text, dpt.main, parsed)) return false;
  value = std::move(parsed);
  return true;
}

std::string FormatNumber(double number) {
  AROVALUE value;
  value.avt = avtFloat;
  value.SetFloat(number);
  return value.ToString();
}

std::string FormatValue(const AROVALUE& value) {
  switch (value.avt) {
    case avtBool: return value.GetBool() ? "true" : "false";
    case avtWord: return std::to_string(value.GetDWord());
    case avtString: return value.text;
    case avtDayTime:
    case avtTime: return FormatDayTime(value.time);
    case avtDate: return FormatCalendar(value.time);
    case avtDateTime: return FormatCalendar(value.time) + 'T' + FormatClock(value.time);
    default: return value.ToString();
  }
}

std::string FormatOneLine(const AROVALUE& value) {
  if (value.avt != avtString) return FormatValue(value);
  AROVALUE shown = value;
  boost::algorithm::replace_all(shown.text, "\\", "\\\\");
  const std::string text = shown.ToString();
  return text.empty() || text.front() != ' ' ? text : "\\x20" + text.substr(1);
}

std::string Unescaped(std::string_view text) {
  constexpr struct {
    char letter;
    char character;
  } kEscapes[] = {{'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'\\', '\\'}};
  std::string plain;
  while (!text.empty()) {
    const auto* const escape = text.size() < 2 || text[0] != '\\'
                                   ? std::end(kEscapes)
                                   : std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                                  [&](const auto& row) { return row.letter == text[1]; });
    unsigned octet = 0;
    const char* const digits = text.data() + 2;
    if (escape != std::end(kEscapes)) {
      plain += escape->character;
      text.remove_prefix(2);
    } else if (text.size() >= 4 && text.substr(0, 2) == "\\x" &&
               std::from_chars(digits, digits + 2, octet, 16).ptr == digits + 2) {
      plain += static_cast<char>(octet);
      text.remove_prefix(4);
    } else {
      plain += text.front();
      text.remove_prefix(1);
    }
  }
  return plain;
}

Json ToJson(const AROVALUE& value) {
  switch (value.avt) {
    case avtInvalid:
    case avtEmpty: return nullptr;
    case avtBool: return value.GetBool();
    case avtByte: return value.GetByte();
    case avtWord:
    case avtDWord: return value.GetDWord();
    case avtInteger: return value.GetInteger();
    case avtFloat:
      if (std::isfinite(value.GetFloat())) return value.GetFloat();
      return FormatValue(value);
    default: return FormatValue(value);
  }
}

std::string Line(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n'; }

}  // namespace Format
