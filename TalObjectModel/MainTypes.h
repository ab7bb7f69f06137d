// The main types that the library knows: what their values carry.
#pragma once

#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValue.h>
#include <Tal/AroValueHelper.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace Tal {

/// Makes a main type's default value; asserts that it is asked for the type that it makes.
using DefaultCreator = AROVALUE (*)(AroValueType avt);

AROVALUE CreateDefaultValueEmpty(AroValueType avt);
AROVALUE CreateDefaultWord5A5A(AroValueType avt);
AROVALUE CreateDefaultTimeOfDay(AroValueType avt);
AROVALUE CreateDefaultDate(AroValueType avt);
AROVALUE CreateDefaultDateTime(AroValueType avt);
template <class T>
AROVALUE CreateDefault(AroValueType avt) {
  return ToAroValue(T(), avt);
}

struct MainType {
  std::uint16_t main;
  AroValueType valueType;
  AroDP::AroValueSubType subType;
  DefaultCreator createDefault;
};

// clang-format off
constexpr MainType kMainTypes[] = {
    {  1, avtBool,     AroDP::astSwitch,  CreateDefault<bool>},
    {  2, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    {  3, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    {  4, avtEmpty,    AroDP::astGeneric, CreateDefaultValueEmpty},
    {  5, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    {  6, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    {  7, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    {  8, avtInteger,  AroDP::astGeneric, CreateDefault<short>},
    {  9, avtFloat,    AroDP::astGeneric, CreateDefault<float>},
    { 10, avtDayTime,  AroDP::astGeneric, CreateDefaultTimeOfDay},
    { 11, avtDate,     AroDP::astGeneric, CreateDefaultDate},
    { 12, avtDWord,    AroDP::astGeneric, CreateDefault<unsigned int>},
    { 13, avtInteger,  AroDP::astGeneric, CreateDefault<short>},
    { 14, avtFloat,    AroDP::astGeneric, CreateDefault<float>},
    { 15, avtDWord,    AroDP::astGeneric, CreateDefault<unsigned int>},
    { 16, avtString,   AroDP::astGeneric, CreateDefault<std::string>},
    { 17, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 18, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 19, avtDateTime, AroDP::astGeneric, CreateDefaultDateTime},
    { 20, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 21, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 22, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    { 23, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 24, avtString,   AroDP::astGeneric, CreateDefault<std::string>},
    { 25, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 26, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    { 27, avtDWord,    AroDP::astGeneric, CreateDefault<unsigned int>},
    { 28, avtString,   AroDP::astGeneric, CreateDefault<std::string>},
    { 29, avtEmpty,    AroDP::astGeneric, CreateDefaultValueEmpty},
    { 30, avtDWord,    AroDP::astGeneric, CreateDefault<unsigned int>},
    { 31, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
    {200, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    {201, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    {202, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    {217, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    {219, avtEmpty,    AroDP::astGeneric, CreateDefaultValueEmpty},
    {222, avtEmpty,    AroDP::astGeneric, CreateDefaultValueEmpty},
    {229, avtEmpty,    AroDP::astGeneric, CreateDefaultValueEmpty},
    {230, avtEmpty,    AroDP::astGeneric, CreateDefaultValueEmpty},
    {232, avtDWord,    AroDP::astGeneric, CreateDefault<unsigned int>},
    {234, avtWord,     AroDP::astGeneric, CreateDefaultWord5A5A},
    {237, avtWord,     AroDP::astGeneric, CreateDefault<unsigned short>},
    {238, avtByte,     AroDP::astGeneric, CreateDefault<unsigned char>},
};
// clang-format on

/// One more than the largest main type with a row.
constexpr std::size_t kMainTypeLimit = 239;

/// Value types by main type; avtEmpty where there is no row.
constexpr std::array<AroValueType, kMainTypeLimit> MakeValueTypes() {
  std::array<AroValueType, kMainTypeLimit> types = {};
  for (AroValueType& type : types) type = avtEmpty;
  for (const MainType& row : kMainTypes) types[row.main] = row.valueType;
  return types;
}
constexpr std::array<AroValueType, kMainTypeLimit> kValueTypes = MakeValueTypes();

}  // namespace Tal
