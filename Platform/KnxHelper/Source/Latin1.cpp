#include <KnxHelper/Latin1.h>

namespace Tal {

KnxStyleString getLatin1FromUTF8Lossy(const UTF8String& text) {
  std::string latin1;
  const std::string& bytes = text.GetBytes();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      latin1 += bytes[i];
    } else if (lead >= 0xC0) {  // continuation bytes were taken with their lead or stand for nothing
      const bool isLatin1 = lead <= 0xC3;
      latin1 += isLatin1 ? static_cast<char>((lead & 0x03) << 6 | (bytes[i + 1] & 0x3F)) : '_';
    }
  }
  return KnxStyleString(std::move(latin1));
}

UTF8String getUTF8FromLatin1(const KnxStyleString& text) {
  std::string utf8;
  for (const char character : text.GetBytes()) {
    const auto octet = static_cast<unsigned char>(character);
    if (octet < 0x80) {
      utf8 += character;
    } else {
      utf8 += static_cast<char>(0xC0 | octet >> 6);
      utf8 += static_cast<char>(0x80 | (octet & 0x3F));
    }
  }
  return UTF8String(std::move(utf8));
}

}  // namespace Tal
