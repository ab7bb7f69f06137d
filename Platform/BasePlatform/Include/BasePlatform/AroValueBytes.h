// Raw packing: values as octets, most significant first, without any datapoint type.
#pragma once

#include <BasePlatform/AroValue.h>
#include <BasePlatform/Export.h>

#include <cstddef>
#include <cstdint>

/// Packs the payload of @p value: 1 octet for avtByte and the types 1005 and 1037, 2 for avtWord, 4 for avtInteger and
/// avtDWord, 8 for avtFloat, the text's bytes for avtString.
/// @param value   what is packed.
/// @param buffer  where the octets go.
/// @param size    in: room in @p buffer, out: octets written.
/// @return      false, with nothing changed, when the room is too small or the type has no raw form.
BASEPLATFORM_EXPORT bool AroValueToByteArray(const AROVALUE& value, std::uint8_t* buffer, std::size_t& size) noexcept;

/// Unpacks @p size octets into type and payload: 1 octet gives avtBool (if @p isBool) or avtByte, 2 avtWord, 4
/// avtDWord.
/// @return  false, with nothing changed, for every other size; with size 0 nothing is read.
BASEPLATFORM_EXPORT bool ByteArrayToAroValue(const std::uint8_t* octets, std::size_t size, AROVALUE& value,
                                             bool isBool) noexcept;
