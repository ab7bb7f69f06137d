// The knowledge of the table converter-driven converter as data.
#pragma once

#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValueType.h>
#include <Tal/KnxConverter.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

#include "DptMeanings.h"

namespace Tal {

/// Bounds of a codec's range: internal is the side of AROVALUE, external the side of KNX. Integers up to 2^53 are
/// exact.
struct Bounds {
  double internalMin, internalMax, externalMin, externalMax;
};
constexpr Bounds Same(double min, double max) { return {min, max, min, max}; }

template <class Number>
Number ToBound(double bound) {
  return static_cast<Number>(bound);  // the rows below hold nothing that does not fit
}

inline IntegerRange MakeRange(const Bounds& b, const IntegerRange*) {
  return {ToBound<std::int32_t>(b.internalMin), ToBound<std::int32_t>(b.internalMax),
          ToBound<std::int32_t>(b.externalMin), ToBound<std::int32_t>(b.externalMax)};
}
inline LongIntegerRange MakeRange(const Bounds& b, const LongIntegerRange*) {
  return {ToBound<std::int64_t>(b.internalMin), ToBound<std::int64_t>(b.internalMax),
          ToBound<std::int64_t>(b.externalMin), ToBound<std::int64_t>(b.externalMax)};
}
inline FloatIntegerRange MakeRange(const Bounds& b, const FloatIntegerRange*) {
  return {b.internalMin, b.internalMax, ToBound<std::int32_t>(b.externalMin), ToBound<std::int32_t>(b.externalMax)};
}
inline FloatRange MakeRange(const Bounds& b, const FloatRange*) {
  return {b.internalMin, b.internalMax, b.externalMin, b.externalMax};
}

/// A codec of type @p Codec, with a range of @p bounds if it carries one.
template <class Codec>
std::unique_ptr<KnxConverter> Make(const Bounds& bounds) {
  if constexpr (std::is_default_constructible_v<Codec>) {
    return std::make_unique<Codec>();
  } else {
    using Range = std::remove_cv_t<std::remove_reference_t<decltype(std::declval<const Codec&>().Range())>>;
    return std::make_unique<Codec>(MakeRange(bounds, static_cast<const Range*>(nullptr)));
  }
}

/// A row of the standard table.
struct DptRow {
  std::uint16_t main;
  std::uint16_t sub;  ///< 0: the whole main type
  std::uint8_t bits;
  AroValueType valueType;
  AroDP::AroValueSubType subType;
  std::unique_ptr<KnxConverter> (*makeCodec)(const Bounds&);
  Bounds bounds;  ///< {}: the codec carries no range
  Meaning meaning;
};

/// "9.001", or "9.x" for a whole main type.
inline std::string DptLabel(const DptRow& row) {
  const std::string sub = std::to_string(row.sub);
  return std::to_string(row.main) + '.' + (row.sub == 0 ? "x" : std::string(3 - sub.size(), '0') + sub);
}

constexpr double kFloatMax = std::numeric_limits<float>::max();

// In the order of insertion.
// Deliberate: the value types of 2.x, 3.x, 17.x and 18.x are not those that their codecs encode. Through the table 2.x,
// 3.x and 18.x can therefore not be encoded at all, and 17.x takes integers and gives bytes; installations rely on the
// types as they are listed. 9.001 to 9.025 end at 670760.0, the others of 9 at 670760.96.
// clang-format off
constexpr DptRow kDptRows[] = {
    {  1,   0,   1, avtBool,     AroDP::astGeneric,  Make<KnxConverter1Bit>,                  {},                            {"truth value: switch, enable, up/down",    "",     "true"}},
    {  2,   0,   2, avtBool,     AroDP::astGeneric,  Make<KnxConverter2Bit>,                  {},                            {"truth value with priority",               "",     "3"}},
    {  3,   0,   4, avtFloat,    AroDP::astStep,     Make<KnxConverter4Bit>,                  {-100.0, 100.0, 0, 15},        {"dimming, blinds: direction, step",        "",     "9"}},
    {  4,   0,   8, avtString,   AroDP::astAscii,    Make<KnxConverter8BitString>,            Same(0, 127),                  {"character",                               "",     "A"}},
    {  4,   1,   8, avtString,   AroDP::astAscii,    Make<KnxConverter8BitString>,            Same(0, 127),                  {"character, ASCII",                        "",     "A"}},
    {  4,   2,   8, avtString,   AroDP::astLatin1,   Make<KnxConverter8BitString>,            Same(0, 255),                  {"character, ISO 8859-1",                   "",     "é"}},
    {  5,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 255),                  {"unsigned octet: percent, angle, counter", "",     "128"}},
    {  5,   6,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 254),                  {"tariff number",                           "",     "3"}},
    {  6,   0,   8, avtInteger,  AroDP::astGeneric,  Make<KnxConverterInteger8BitSigned>,     Same(-128, 127),               {"signed octet: percent, counter",          "",     "-5"}},
    {  6,  20,   8, avtByte,     AroDP::astStatus,   Make<KnxConverterStatus8Bit>,            Same(0, 255),                  {"five status bits with mode",              "",     "20"}},
    {  7,   0,  16, avtWord,     AroDP::astGeneric,  Make<KnxConverterInteger16BitUnsigned>,  Same(0, 65535),                {"pulses, period, current, length",         "",     "1000"}},
    {  8,   0,  16, avtInteger,  AroDP::astGeneric,  Make<KnxConverterInteger16BitSigned>,    Same(-32768, 32767),           {"pulse difference, time lag, rotation",    "",     "-1000"}},
    {  9,   0,  16, avtFloat,    AroDP::astGeneric,  Make<KnxConverterFloat16BitFloat>,       Same(-671088.64, 670760.96),   {"two-octet float",                         "",     "21.5"}},
    {  9,   1,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-273.0, 670760.0),        {"temperature",                             "°C",   "21.5"}},
    {  9,   2,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"temperature difference",                  "K",    "-2.5"}},
    {  9,   3,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"temperature gradient",                    "K/h",  "1.5"}},
    {  9,   4,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(0.0, 670760.0),           {"illuminance",                             "lx",   "500.0"}},
    {  9,   5,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(0.0, 670760.0),           {"wind speed",                              "m/s",  "7.2"}},
    {  9,   6,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(0.0, 670760.0),           {"pressure",                                "Pa",   "98580.48"}},
    {  9,   7,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(0.0, 670760.0),           {"relative humidity",                       "%",    "45.5"}},
    {  9,   8,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(0.0, 670760.0),           {"air quality, CO2 concentration",          "ppm",  "650.0"}},
    {  9,  10,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"time difference",                         "s",    "-12.5"}},
    {  9,  11,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"time difference",                         "ms",   "250.0"}},
    {  9,  20,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"voltage",                                 "mV",   "230.0"}},
    {  9,  21,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"current",                                 "mA",   "-15.5"}},
    {  9,  22,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"power density",                           "W/m²", "820.0"}},
    {  9,  23,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"temperature change per percent",          "K/%",  "0.25"}},
    {  9,  24,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"power",                                   "kW",   "3.5"}},
    {  9,  25,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-670760.0, 670760.0),     {"volume flow",                             "l/h",  "120.0"}},
    {  9,  26,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-671088.64, 670760.96),   {"rain amount",                             "l/m²", "2.4"}},
    {  9,  27,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(-459.6, 670760.96),       {"temperature",                             "°F",   "70.7"}},
    {  9,  28,  16, avtFloat,    AroDP::astMeasured, Make<KnxConverterFloat16BitFloat>,       Same(0.0, 670760.96),          {"wind speed",                              "km/h", "26.0"}},
    { 10,   0,  24, avtTime,     AroDP::astGeneric,  Make<KnxConverterTimeOfDay>,             {},                            {"time of day with weekday",                "",     "Mon 12:30:15"}},
    { 11,   0,  24, avtDate,     AroDP::astGeneric,  Make<KnxConverterDate>,                  {},                            {"date",                                    "",     "2023-01-01"}},
    { 12,   0,  32, avtDWord,    AroDP::astGeneric,  Make<KnxConverterInteger32BitUnsigned>,  Same(0, 4294967295),           {"counter pulses, period",                  "",     "100000"}},
    { 13,   0,  32, avtInteger,  AroDP::astGeneric,  Make<KnxConverterInteger32BitSigned>,    Same(-2147483648, 2147483647), {"counter pulses, flow, energy",            "",     "-100000"}},
    { 14,   0,  32, avtFloat,    AroDP::astGeneric,  Make<KnxConverterFloat32BitFloat>,       Same(-kFloatMax, kFloatMax),   {"four-octet float: SI quantities",         "",     "230.5"}},
    { 15,   0,  32, avtDWord,    AroDP::astGeneric,  Make<KnxConverterInteger32BitUnsigned>,  Same(0, 4294967295),           {"access: card number and result",          "",     "1193046"}},
    { 16,   0, 112, avtString,   AroDP::astAscii,    Make<KnxConverter14ByteString>,          Same(0, 127),                  {"text of 14 characters, ASCII",            "",     "Hello"}},
    { 16,   1, 112, avtString,   AroDP::astLatin1,   Make<KnxConverter14ByteString>,          Same(0, 255),                  {"text of 14 characters, ISO 8859-1",       "",     "Grüße"}},
    { 17,   0,   8, avtInteger,  AroDP::astScene,    Make<KnxConverterSceneNumber>,           Same(0, 63),                   {"scene number",                            "",     "5"}},
    { 18,   0,   8, avtInteger,  AroDP::astScene,    Make<KnxConverterSceneControl>,          Same(0, 63),                   {"scene control",                           "",     "133"}},
    { 19,   0,  64, avtDateTime, AroDP::astGeneric,  Make<KnxConverterDateTime>,              {},                            {"date with time",                          "",     "2023-01-01T12:30:15"}},
    { 20,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 255),                  {"choice of modes",                         "",     "1"}},
    { 20, 102,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 4),                    {"HVAC mode",                               "",     "1"}},
    { 20, 103,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 4),                    {"domestic hot water mode",                 "",     "2"}},
    { 21,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 255),                  {"eight status bits",                       "",     "5"}},
    { 23,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 255),                  {"choice of two bits",                      "",     "2"}},
    { 26,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterSceneInfo>,             {-64, 64, 0, 255},             {"scene information",                       "",     "69"}},
    { 27,   0,  32, avtDWord,    AroDP::astGeneric,  Make<KnxConverterInteger32BitUnsigned>,  Same(0, 4294967295),           {"sixteen switches with mask",              "",     "196609"}},
    {236,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 255),                  {"control with priority",                   "",     "18"}},
    {232,   0,  24, avtDWord,    AroDP::astGeneric,  Make<KnxConverterInteger24BitUnsigned>,  Same(0, 16777215),             {"colour",                                  "",     "#FF8000"}},
    {238,   0,   8, avtByte,     AroDP::astGeneric,  Make<KnxConverterByte8BitUnsigned>,      Same(0, 255),                  {"DALI: diagnosis of a lamp",               "",     "65"}},
};
// clang-format on

constexpr std::int32_t kAnySize = std::numeric_limits<std::int32_t>::max();

/// Bits of the group values of a main type; kAnySize where they vary. Main types that are not listed have 0.
struct ExpectedBits {
  std::uint16_t main;
  std::int32_t bits;
};
// clang-format off
constexpr ExpectedBits kExpectedBits[] = {
    {1, 1}, {2, 2}, {3, 4}, {4, 8}, {5, 8}, {6, 8}, {7, 16}, {8, 16}, {9, 16}, {10, 24}, {11, 24}, {12, 32}, {13, 32},
    {14, 32}, {15, 32}, {16, 112}, {17, 8}, {18, 8}, {19, 64}, {20, 8}, {21, 8}, {22, 16}, {23, 8}, {24, kAnySize},
    {25, 8}, {26, 8}, {27, 32}, {28, kAnySize}, {29, 64}, {30, 24}, {31, 3}, {200, 9}, {201, 16}, {202, 16},
    {203, 24}, {204, 16}, {205, 24}, {206, 24}, {207, 16}, {209, 24}, {210, 32}, {211, 16}, {212, 48}, {213, 64},
    {214, 32}, {215, 40}, {216, 40}, {217, 16}, {218, 40}, {219, 48}, {220, 32}, {221, 48}, {222, 48}, {223, 24},
    {224, 48}, {225, 24}, {229, 48}, {230, 64}, {231, 32}, {232, 24}, {234, 16}, {235, 48}, {236, 8}, {237, 16},
    {238, 8}, {239, 16}, {240, 24}, {241, 32},
};
// clang-format on

constexpr std::size_t kExpectedBitsLimit = 256;  ///< more than the largest main type with a row
constexpr std::array<std::int32_t, kExpectedBitsLimit> MakeExpectedBits() {
  std::array<std::int32_t, kExpectedBitsLimit> bits = {};
  for (const ExpectedBits& row : kExpectedBits) bits[row.main] = row.bits;
  return bits;
}
constexpr std::array<std::int32_t, kExpectedBitsLimit> kExpectedBitsByMain = MakeExpectedBits();

constexpr std::int32_t ExpectedBitsOf(std::uint16_t main) noexcept {
  return main < kExpectedBitsLimit ? kExpectedBitsByMain[main] : 0;
}

/// What a group value of a size is taken for when no datapoint type is given.
struct DefaultForSize {
  std::uint8_t bits;
  std::uint16_t main, sub;
};
constexpr DefaultForSize kDefaultsForSize[] = {
    {1, 1, 1},   {2, 2, 1},    {4, 3, 7},    {8, 5, 0},   {16, 9, 0},   {24, 10, 1},
    {32, 14, 0}, {40, 218, 0}, {48, 219, 1}, {64, 19, 1}, {112, 16, 1},
};

/// What a value is encoded as when no datapoint type is given.
struct DefaultForValueType {
  std::int32_t valueType;
  std::int32_t bits;  ///< the size asked for, or kAnySize
  KNXDPT dpt;
};
// Deliberate: a float of 32 bits gets size 16, and a text of 112 bits gets size 8. Callers see the completed type and
// have come to expect these sizes.
// clang-format off
constexpr DefaultForValueType kDefaultsForValueType[] = {
    {avtBool,     kAnySize, { 1,   1,   1}},
    {1037,        kAnySize, { 4,   3,   7}},
    {avtByte,     kAnySize, { 8,   5,   0}},
    {1036,        kAnySize, { 8,   5,   1}},
    {avtFloat,           0, {16,   9,   0}},
    {avtFloat,           4, { 4,   3,   0}},
    {avtFloat,           8, { 8,   5,   1}},
    {avtFloat,          16, {16,   9,   0}},
    {avtFloat,          32, {16,  14,   0}},
    {avtInteger,         0, {32,  13,   0}},
    {avtInteger,         8, { 8,   6,   0}},
    {avtInteger,        16, {16,   8,   0}},
    {avtDWord,    kAnySize, {32,  12,   1}},
    {9,           kAnySize, {40, 218,   0}},
    {avtString,          0, {112, 16,   1}},
    {avtString,          8, { 8,   4,   1}},
    {avtString,        112, { 8,  16,   0}},
    {avtDate,     kAnySize, {24,  11,   1}},
    {avtTime,     kAnySize, {24,  10,   1}},
    {avtDateTime, kAnySize, {64,  19,   1}},
    {14,          kAnySize, {32,  13, 100}},
};
// clang-format on

/// Some value types.
struct TypeList {
  template <std::size_t Count>
  constexpr TypeList(const std::int32_t (&types)[Count]) noexcept : first(types), last(types + Count) {}
  constexpr bool Has(std::int32_t type) const noexcept {
    for (const std::int32_t* listed = first; listed != last; ++listed) {
      if (*listed == type) return true;
    }
    return false;
  }
  const std::int32_t* first;
  const std::int32_t* last;
};
constexpr std::int32_t kFloatTypes[] = {avtFloat, 1005, 1036, 1037, 1039};
constexpr std::int32_t kIntegerTypes[] = {avtInteger, 14};
constexpr std::int32_t kByteTypes[] = {avtByte, 1021};
constexpr std::int32_t kWordTypes[] = {avtWord, avtDWord, 20};
constexpr std::int32_t kDateTypes[] = {avtDate, 105};
constexpr std::int32_t kTimeTypes[] = {avtTime, 104};
constexpr std::int32_t kDateTimeTypes[] = {avtDateTime, 102, 201};
constexpr std::int32_t kCalendarTypes[] = {avtDate, avtTime, avtDateTime, 102, 104, 105, 201};

/// Values of the one types may be written to rows of the others.
struct CompatibleTypes {
  TypeList valueTypes;
  TypeList entryTypes;
};
// Deliberate: not symmetric. A date with time may be written as a date or a time, but not the other way round.
constexpr CompatibleTypes kCompatibleTypes[] = {
    {kFloatTypes, kFloatTypes},       {kIntegerTypes, kIntegerTypes}, {kByteTypes, kByteTypes},
    {kWordTypes, kWordTypes},         {kDateTypes, kDateTypes},       {kTimeTypes, kTimeTypes},
    {kDateTimeTypes, kCalendarTypes},
};

}  // namespace Tal
