#include <BasePlatform/AroValue.h>
#include <KnxHelper/Utf8String.h>

#include "AroValueName.h"

namespace {

constexpr NamedNumber<AroValueType> kNames[] = {
    {avtInvalid, "Invalid"},   {avtEmpty, "Empty"}, {avtBool, "Bool"}, {avtFloat, "Float"},
    {avtInteger, "Integer"},   {avtByte, "Byte"},   {avtWord, "Word"}, {avtDWord, "DWord"},
    {avtString, "String"},     {avtDate, "Date"},   {avtTime, "Time"}, {avtDayTime, "DayTime"},
    {avtDateTime, "DateTime"},
};

}  // namespace

const char* AROVALUE::GetNameFromValueType(AroValueType type) noexcept { return NameOf(kNames, type); }

std::string AROVALUE::EnsureUTF8(std::string text) {
  if (Tal::IsAscii(text)) return text;
  const boost::optional<Tal::UTF8String> repaired = Tal::TryRepairUTF8(std::move(text));
  return repaired ? repaired->GetBytes() : std::string();
}
