#include <Format/Cursor.h>
#include <Format/ValueText.h>

#include <algorithm>

namespace Format {
namespace {

// Shapes of values: ~ an optional sign, * digits, % hexadecimal digits, $ one of them, anything else itself in any
// case.
struct ShapeRow {
  AroValueType type;
  const char* shape;
};
constexpr ShapeRow kShapes[] = {
    {avtBool, "true"},
    {avtBool, "false"},
    {avtBool, "on"},
    {avtBool, "off"},
    {avtBool, "1"},
    {avtBool, "0"},
    {avtInteger, "~*"},
    {avtInteger, "~0x%"},
    {avtFloat, "~0x%"},
    {avtFloat, "~*"},
    {avtFloat, "~*."},
    {avtFloat, "~*.*"},
    {avtFloat, "~.*"},
    {avtFloat, "~*e~*"},
    {avtFloat, "~*.e~*"},
    {avtFloat, "~*.*e~*"},
    {avtFloat, "~.*e~*"},
    {avtFloat, "~nan"},
    {avtFloat, "~inf"},
    {avtTime, "*:*:*"},
    {avtTime, "Mon *:*:*"},
    {avtTime, "Tue *:*:*"},
    {avtTime, "Wed *:*:*"},
    {avtTime, "Thu *:*:*"},
    {avtTime, "Fri *:*:*"},
    {avtTime, "Sat *:*:*"},
    {avtTime, "Sun *:*:*"},
    {avtDate, "*-*-*"},
    {avtDateTime, "*-*-*T*:*:*"},
    {avtDateTime, "*-*-* *:*:*"},
};
constexpr char kColourShape[] = "#$$$$$$";
constexpr unsigned kColourMain = 232;

bool IsHex(char c) { return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'f'); }

/// Where a text leaves its shape; npos: nowhere.
std::size_t FaultInShape(std::string_view text, std::string_view shape) {
  std::size_t at = 0;
  const auto skip = [&](bool (*belongs)(char), std::size_t most) {
    const std::size_t first = at;
    while (at < text.size() && at - first < most && belongs(text[at])) ++at;
    return at > first;
  };
  for (const char c : shape) {
    bool isGood = true;
    switch (c) {
      case '~': skip([](char sign) { return sign == '+' || sign == '-'; }, 1); break;
      case '*': isGood = skip(IsDigit, text.npos); break;
      case '%': isGood = skip(IsHex, text.npos); break;
      case '$': isGood = skip(IsHex, 1); break;
      default: isGood = at < text.size() && ToLower(text[at]) == ToLower(c); at += isGood ? 1 : 0;
    }
    if (!isGood) return at;
  }
  return at == text.size() ? text.npos : at;
}

/// The type under which a type's shapes stand.
AroValueType ShapedAs(AroValueType type) {
  switch (type) {
    case avtByte:
    case avtWord:
    case avtDWord: return avtInteger;
    case avtDayTime: return avtTime;
    default: return type;
  }
}

}  // namespace

std::size_t FaultIn(std::string_view text, const Dpt& dpt, AroValueType type) {
  std::size_t furthest = dpt.main == kColourMain ? FaultInShape(text, kColourShape) : 0;
  for (const ShapeRow& row : kShapes) {
    if (row.type == ShapedAs(type)) furthest = std::max(furthest, FaultInShape(text, row.shape));
  }
  return furthest == text.npos ? 0 : furthest;
}

}  // namespace Format
