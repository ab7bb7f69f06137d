// Sub types of object-model values: what a number or text stands for.
#pragma once

#include <BasePlatform/Export.h>

#include <cstdint>

namespace AroDP {

/// Number of a value sub type. Every 32-bit number is legal, named or not.
enum AroValueSubType : std::int32_t {
  astGeneric = 0,
  astSwitch = 2001,    ///< a switch state
  astStatus = 3001,    ///< status bits
  astStep = 3002,      ///< a dimming or blind step
  astMeasured = 3003,  ///< a measured quantity
  astScene = 4001,     ///< a scene
  astAscii = 8001,     ///< text of ASCII characters
  astLatin1 = 8002,    ///< text of ISO 8859-1 characters
};

/// The enumerator without "ast" ("Generic" for 0); "Unknown" for a number without a name.
BASEPLATFORM_EXPORT const char* GetNameFromValueSubType(AroValueSubType subType) noexcept;

}  // namespace AroDP
