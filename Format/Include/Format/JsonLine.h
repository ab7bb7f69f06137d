// JSON objects, a line each.
#pragma once

#include <Format/ValueText.h>

#include <string>
#include <string_view>

namespace Format {

/// An object that is written member by member, without a document in between: for streams of them.
class JsonLine {
 public:
  /// Adds a member.
  /// @param key    plain ASCII without quotes; each once.
  /// @param value  any JSON.
  void Add(std::string_view key, const Json& value);
  /// Adds a text.
  void Add(std::string_view key, std::string_view text);
  /// Adds a text.
  void Add(std::string_view key, const std::string& text) { Add(key, std::string_view(text)); }
  /// Adds a text.
  void Add(std::string_view key, const char* text) { Add(key, std::string_view(text)); }

  /// The object and a line feed. Text that is not UTF-8 shows U+FFFD.
  std::string Take();

 private:
  void AddKey(std::string_view key);

  std::string m_text;
};

}  // namespace Format
