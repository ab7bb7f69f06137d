// Text that is known to be UTF-8.
#pragma once

#include <KnxHelper/Export.h>

#include <boost/optional.hpp>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Tal {

class KnxStyleString;

/// True when every byte is below 0x80: such text is the same in UTF-8 and in ISO 8859-1.
inline bool IsAscii(std::string_view text) noexcept {
  constexpr std::size_t kStep = sizeof(std::uint64_t);
  constexpr std::uint64_t kUpperBits = 0x8080808080808080u;
  std::uint64_t all = 0;
  const auto add = [&](std::size_t from) {
    std::uint64_t octets;
    std::memcpy(&octets, text.data() + from, kStep);
    all |= octets;
  };
  if (text.size() < kStep) {
    for (const char character : text) all |= static_cast<unsigned char>(character);
  } else {
    for (std::size_t i = 0; i + kStep <= text.size(); i += kStep) add(i);
    add(text.size() - kStep);  // the last ones, some of them for the second time
  }
  return (all & kUpperBits) == 0;
}

/// Owns bytes that are valid UTF-8; made only from text that has just been checked.
class UTF8String {
 public:
  /// @return nothing when @p text is not valid UTF-8.
  KNXHELPER_EXPORT static boost::optional<UTF8String> Create(std::string text);

  /// The bytes, valid UTF-8.
  const std::string& GetBytes() const noexcept { return m_bytes; }

 private:
  explicit UTF8String(std::string bytes) noexcept : m_bytes(std::move(bytes)) {}
  friend UTF8String getUTF8FromLatin1(const KnxStyleString& text);

  std::string m_bytes;
};

/// Makes any bytes valid UTF-8. Valid text stays as it is. In other text each broken sequence becomes one "?": a byte
/// that cannot start a sequence, an incomplete or overlong sequence, an invalid code point (with the continuation bytes
/// behind it). A sequence that is cut off at the end is incomplete.
/// @return  nothing only if the repair itself were defective.
KNXHELPER_EXPORT boost::optional<UTF8String> TryRepairUTF8(std::string text);

}  // namespace Tal
