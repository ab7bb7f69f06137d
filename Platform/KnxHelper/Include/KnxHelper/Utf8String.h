// Text that is known to be UTF-8.
#pragma once

#include <KnxHelper/Export.h>

#include <boost/optional.hpp>
#include <string>
#include <string_view>

namespace Tal {

class KnxStyleString;

/// True when every byte is below 0x80: such text is the same in UTF-8 and in ISO 8859-1.
inline bool IsAscii(std::string_view text) noexcept {
  unsigned char all = 0;
  for (const char character : text) all = static_cast<unsigned char>(all | static_cast<unsigned char>(character));
  return all < 0x80;
}

/// Owns bytes that are valid UTF-8; made only from text that has just been checked.
class UTF8String {
 public:
  /// @return nothing when @p text is not valid UTF-8.
  KNXHELPER_EXPORT static boost::optional<UTF8String> Create(std::string text);

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
