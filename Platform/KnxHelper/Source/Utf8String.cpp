#include <KnxHelper/Utf8String.h>
#include <utf8.h>

#include <iterator>

namespace Tal {

boost::optional<UTF8String> UTF8String::Create(std::string text) {
  if (!IsAscii(text) && !utf8::is_valid(text.begin(), text.end())) return boost::none;
  return UTF8String(std::move(text));
}

boost::optional<UTF8String> TryRepairUTF8(std::string text) {
  if (IsAscii(text) || utf8::is_valid(text.begin(), text.end())) return UTF8String::Create(std::move(text));
  text += '\0';  // a sequence that is cut off at the end becomes an incomplete one
  std::string repaired;
  repaired.reserve(text.size());
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(repaired), '?');
  if (repaired.back() == '\0') repaired.pop_back();
  return UTF8String::Create(std::move(repaired));
}

}  // namespace Tal
