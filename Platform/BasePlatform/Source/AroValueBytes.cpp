#include <BasePlatform/AroValueBytes.h>

#include <cstring>

namespace {

/// Octets of the payload in the raw form of a number; 0 for a type that has none.
std::size_t NumberSize(AroValueType type) noexcept {
  switch (static_cast<std::int32_t>(type)) {
    case avtByte:
    case 1005:
    case 1037: return 1;
    case avtWord: return 2;
    case avtInteger:
    case avtDWord: return 4;
    case avtFloat: return 8;
    default: return 0;
  }
}

}  // namespace

bool AroValueToByteArray(const AROVALUE& value, std::uint8_t* buffer, std::size_t& size) noexcept {
  if (value.avt == avtString) {
    if (size < value.text.size()) return false;
    size = value.text.size();
    if (size > 0) std::memcpy(buffer, value.text.data(), size);
    return true;
  }
  const std::size_t needed = NumberSize(value.avt);
  if (needed == 0 || size < needed) return false;
  size = needed;
  for (std::size_t i = 0; i < needed; ++i) {
    buffer[i] = static_cast<std::uint8_t>(value.GetPayload() >> (8 * (needed - 1 - i)));
  }
  return true;
}

bool ByteArrayToAroValue(const std::uint8_t* octets, std::size_t size, AROVALUE& value, bool isBool) noexcept {
  if (size != 1 && size != 2 && size != 4) return false;
  std::uint64_t payload = 0;
  for (std::size_t i = 0; i < size; ++i) payload = payload << 8 | octets[i];
  value.avt = size == 4 ? avtDWord : size == 2 ? avtWord : isBool ? avtBool : avtByte;
  value.SetPayload(value.avt == avtBool ? (payload != 0 ? 1 : 0) : payload);
  return true;
}
