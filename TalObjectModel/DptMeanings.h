// What datapoint types stand for, in words for people.
#pragma once

#include <cstdint>

namespace Tal {

/// Name, unit and an example value as DptMeaning (TableDescription.h) shows them; "" where there is none.
struct Meaning {
  const char* name;
  const char* unit;
  const char* example;
};

/// Main types that have a row of kMainTypes and none of the table's table.
struct OtherMeaning {
  std::uint16_t main;
  Meaning meaning;
};
// clang-format off
constexpr OtherMeaning kOtherMeanings[] = {
    { 22, {"sixteen status bits",                       "", "5"}},
    { 24, {"text of any length, ISO 8859-1",            "", ""}},
    { 25, {"two numbers of four bits",                  "", ""}},
    { 28, {"text of any length, UTF-8",                 "", ""}},
    { 29, {"electrical energy, 64 bits",                "", ""}},
    { 30, {"24 channels, active or not",                "", ""}},
    { 31, {"choice of three bits",                      "", ""}},
    {200, {"truth value with status",                   "", ""}},
    {201, {"choice with status",                        "", ""}},
    {202, {"unsigned octet with status",                "", ""}},
    {217, {"version of a datapoint type",               "", "2112"}},
    {219, {"alarm information",                         "", ""}},
    {222, {"three two-octet floats",                    "", ""}},
    {229, {"metering value with status",                "", ""}},
    {230, {"meter bus address",                         "", ""}},
    {234, {"language or region, two letters",        "", "25966"}},
    {237, {"DALI: diagnosis of control gear",       "", "129"}},
};

/// The fields of a layout from the first bit on the wire to the last: "name:bits", several of a kind as
/// "name:bits*count", "-" for bits that are not used.
struct Layout {
  std::uint16_t main;
  std::uint16_t sub;  ///< 0: all that have no row of their own
  const char* fields;
};
constexpr Layout kLayouts[] = {
    {  1,  0, "value:1"},
    {  2,  0, "control:1 value:1"},
    {  3,  0, "direction:1 step:3"},
    {  4,  0, "character:8"},
    {  5,  0, "number:8"},
    {  6,  0, "number:8"},
    {  6, 20, "status:1*5 mode:3"},
    {  7,  0, "number:16"},
    {  8,  0, "number:16"},
    {  9,  0, "sign:1 exponent:4 mantissa:11"},
    { 10,  0, "weekday:3 hour:5 -:2 minute:6 -:2 second:6"},
    { 11,  0, "-:3 day:5 -:4 month:4 -:1 year:7"},
    { 12,  0, "number:32"},
    { 13,  0, "number:32"},
    { 14,  0, "sign:1 exponent:8 mantissa:23"},
    { 15,  0, "digit:4*6 error:1 permission:1 direction:1 encrypted:1 index:4"},
    { 16,  0, "character:8*14"},
    { 17,  0, "-:2 scene:6"},
    { 18,  0, "learn:1 -:1 scene:6"},
    { 19,  0, "year:8 -:4 month:4 -:3 day:5 weekday:3 hour:5 -:2 minute:6 -:2 second:6 "
              "fault:1 working-day:1 no-working-day:1 no-year:1 no-date:1 no-weekday:1 no-time:1 summer-time:1 "
              "clock-synchronised:1 -:7"},
    { 20,  0, "choice:8"},
    { 21,  0, "status:1*8"},
    { 22,  0, "status:1*16"},
    { 23,  0, "choice:8"},
    { 25,  0, "high:4 low:4"},
    { 26,  0, "-:1 inactive:1 scene:6"},
    { 27,  0, "mask:1*16 state:1*16"},
    { 29,  0, "number:64"},
    { 30,  0, "channel:1*24"},
    { 31,  0, "choice:3"},
    {200,  0, "value:1 status:8"},
    {201,  0, "choice:8 status:8"},
    {202,  0, "number:8 status:8"},
    {217,  0, "magic:5 version:5 revision:6"},
    {219,  0, "log-number:8 priority:8 area:8 class:8 attributes:8 status:8"},
    {222,  0, "number:16*3"},
    {229,  0, "number:32 unit:8 status:8"},
    {230,  0, "manufacturer:16 identification:32 version:8 medium:8"},
    {232,  0, "red:8 green:8 blue:8"},
    {234,  0, "letter:8*2"},
    {236,  0, "deactivation:1 priority:3 mode:4"},
    {237,  0, "-:5 converter-error:1 ballast-failure:1 lamp-failure:1 response:1 group:1 address:6"},
    {238,  0, "ballast-failure:1 lamp-failure:1 address:6"},
};
// clang-format on

}  // namespace Tal
