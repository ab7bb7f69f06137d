// Any bytes through the repair of UTF-8 and the ISO 8859-1 functions, against plain readings of what they are to do.
#include <KnxHelper/Latin1.h>
#include <Tal/Text.h>

#include <vector>

#include "Input.h"

namespace {

unsigned At(const std::string& text, std::size_t i) { return static_cast<unsigned char>(text[i]); }
bool IsContinuation(const std::string& text, std::size_t i) { return i < text.size() && (At(text, i) & 0xC0) == 0x80; }

/// Octets that a sequence with this first one has; 0: none begins so.
std::size_t LengthOf(unsigned lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0 || lead >= 0xF8) return 0;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

constexpr std::uint32_t kBroken = 0xFFFFFFFF;

/// The code points of a text, kBroken for each broken sequence.
std::vector<std::uint32_t> CodePoints(const std::string& text) {
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};  // by length: less is overlong
  std::vector<std::uint32_t> points;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = LengthOf(At(text, i));
    std::uint32_t point = length < 2 ? At(text, i) : At(text, i) & (0x7Fu >> length);
    std::size_t octets = 1;
    for (; octets < length && IsContinuation(text, i + octets); ++octets)
      point = point << 6 | (At(text, i + octets) & 0x3F);
    const bool isGood = octets == length && point >= kSmallest[length] && point <= 0x10FFFF && point >> 11 != 0x1B;
    points.push_back(isGood ? point : kBroken);
    i += octets;
    if (!isGood && length != 0) {
      while (IsContinuation(text, i)) ++i;  // belongs to what is broken
    }
  }
  return points;
}

std::string Written(std::uint32_t point) {
  const auto octet = [](std::uint32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits)); };
  if (point < 0x80) return {octet(point)};
  if (point < 0x800) return {octet(0xC0 | point >> 6), octet(0x80 | (point & 0x3F))};
  if (point < 0x10000)
    return {octet(0xE0 | point >> 12), octet(0x80 | (point >> 6 & 0x3F)), octet(0x80 | (point & 0x3F))};
  return {octet(0xF0 | point >> 18), octet(0x80 | (point >> 12 & 0x3F)), octet(0x80 | (point >> 6 & 0x3F)),
          octet(0x80 | (point & 0x3F))};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::string repaired;
  std::string latin1;
  bool isLatin1 = true;
  for (const std::uint32_t point : CodePoints(text)) {
    repaired += point == kBroken ? "?" : Written(point);
    latin1 += point == kBroken ? '?' : point <= 0xFF ? static_cast<char>(static_cast<unsigned char>(point)) : '_';
    isLatin1 = isLatin1 && point <= 0xFF;
  }
  const Tal::UTF8String utf8 = Tal::RepairUTF8(text);
  FUZZ_CHECK(utf8.GetBytes() == repaired, repaired);
  FUZZ_CHECK(AROVALUE::EnsureUTF8(text) == repaired, repaired);
  FUZZ_CHECK(Tal::UTF8String::Create(text).has_value() == (repaired == text), repaired);
  FUZZ_CHECK(Tal::getLatin1FromUTF8Lossy(utf8).GetBytes() == latin1, latin1);

  std::string fromLatin1;
  for (const char c : text) fromLatin1 += Written(static_cast<unsigned char>(c));
  FUZZ_CHECK(Tal::getUTF8FromLatin1(Tal::KnxStyleString(text)).GetBytes() == fromLatin1, fromLatin1);

  // The functions on zero-terminated text.
  const std::string front = text.substr(0, text.find('\0'));
  std::string frontUtf8;
  for (const char c : front) frontUtf8 += Written(static_cast<unsigned char>(c));
  FUZZ_CHECK(Vanta::Iso88591ToUtf8(text) == frontUtf8, frontUtf8);
  FUZZ_CHECK(Vanta::Utf8ToIso88591(frontUtf8) == front, front);
  if (isLatin1 && repaired == text)
    FUZZ_CHECK(Vanta::Utf8ToIso88591(text) == latin1.substr(0, latin1.find('\0')), latin1);
  FUZZ_CHECK(Vanta::Utf8ToIso88591(text).size() <= front.size(), text);
  return 0;
}
