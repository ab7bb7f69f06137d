#include <Format/JsonLine.h>

#include <algorithm>
#include <charconv>

namespace Format {
namespace {

/// Text that stands between quotes as it is.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; });
}

template <class Integer>
void AppendNumber(std::string& text, Integer number) {
  char digits[24];
  text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

std::string Dumped(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

}  // namespace

void JsonLine::AddKey(std::string_view key) {
  m_text += m_text.empty() ? "{\"" : ",\"";
  m_text += key;
  m_text += "\":";
}

void JsonLine::Add(std::string_view key, const Json& value) {
  AddKey(key);
  switch (value.type()) {
    case Json::value_t::number_integer: return AppendNumber(m_text, value.get<std::int64_t>());
    case Json::value_t::number_unsigned: return AppendNumber(m_text, value.get<std::uint64_t>());
    case Json::value_t::boolean: m_text += value.get<bool>() ? "true" : "false"; return;
    default: m_text += Dumped(value);
  }
}

void JsonLine::Add(std::string_view key, std::string_view text) {
  AddKey(key);
  if (!IsPlain(text)) {
    m_text += Dumped(Json(text));
    return;
  }
  m_text += '"';
  m_text += text;
  m_text += '"';
}

std::string JsonLine::Take() {
  m_text += m_text.empty() ? "{}\n" : "}\n";
  return std::move(m_text);
}

}  // namespace Format
