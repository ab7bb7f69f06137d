// What the one-step conversions do for a main type.
#pragma once

namespace Tal {

/// True when AroValueToGroupValue() encodes values of the main type.
bool HasDirectEncoder(unsigned long main) noexcept;
/// True when GroupValueToAroValue() decodes values of the main type.
bool HasDirectDecoder(unsigned long main) noexcept;

}  // namespace Tal
