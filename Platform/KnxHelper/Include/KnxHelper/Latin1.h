// Text between UTF-8 and ISO 8859-1, the character set of KNX texts.
#pragma once

#include <KnxHelper/Export.h>
#include <KnxHelper/Utf8String.h>

#include <string>

namespace Tal {

/// Text in ISO 8859-1, one byte a character. Any bytes are legal.
class KnxStyleString {
 public:
  /// Takes any bytes as they are.
  explicit KnxStyleString(std::string bytes) noexcept : m_bytes(std::move(bytes)) {}
  /// The bytes.
  const std::string& GetBytes() const noexcept { return m_bytes; }

 private:
  std::string m_bytes;
};

/// Each code point up to U+00FF becomes its byte, every other code point one "_".
KNXHELPER_EXPORT KnxStyleString getLatin1FromUTF8Lossy(const UTF8String& text);

/// Every byte becomes its code point.
KNXHELPER_EXPORT UTF8String getUTF8FromLatin1(const KnxStyleString& text);

}  // namespace Tal
