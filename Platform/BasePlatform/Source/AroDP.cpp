#include <BasePlatform/AroDP.h>

#include "AroValueName.h"

namespace AroDP {
namespace {

constexpr NamedNumber<AroValueSubType> kNames[] = {
    {astGeneric, "Generic"},   {astSwitch, "Switch"}, {astStatus, "Status"}, {astStep, "Step"},
    {astMeasured, "Measured"}, {astScene, "Scene"},   {astAscii, "Ascii"},   {astLatin1, "Latin1"},
};

}  // namespace

const char* GetNameFromValueSubType(AroValueSubType subType) noexcept { return NameOf(kNames, subType); }

}  // namespace AroDP
