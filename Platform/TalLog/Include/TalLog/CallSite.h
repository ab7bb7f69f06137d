// Where a log record or an assertion comes from.
#pragma once

#include <cstddef>
#include <string_view>

namespace Tal {

/// A place in the sources. The pointers refer to text of static storage duration.
struct CallSite {
  const char* function;   ///< short name, e.g. "ToKnxValue"
  const char* signature;  ///< full signature as the compiler writes it
  const char* file;       ///< source path without build prefix; a file extension is dropped when it is shown
  int line;               ///< from 1
};

/// @p file without its extension: "TalObjectModel/KnxConverter" for "TalObjectModel/KnxConverter.cpp".
/// A dot in a folder's name is no extension.
constexpr std::string_view WithoutExtension(std::string_view file) noexcept {
  for (std::size_t i = file.size(); i > 0 && file[i - 1] != '/'; --i) {
    if (file[i - 1] == '.') return file.substr(0, i - 1);
  }
  return file;
}

/// A path without its extension as zero-terminated text that is ready at compile time.
template <std::size_t Size>
struct SourcePath {
  /// @param file  a path as a literal.
  constexpr explicit SourcePath(const char (&file)[Size]) noexcept {
    const std::size_t length = WithoutExtension(std::string_view(file, Size - 1)).size();
    for (std::size_t i = 0; i < length; ++i) text[i] = file[i];
  }
  char text[Size] = {};  ///< zero-terminated
};

}  // namespace Tal

/// The place where this stands. A helper that logs for its caller takes it as an argument; inside a lambda the short
/// name would be "operator()", so take it outside.
#define TAL_HERE \
  ::Tal::CallSite { __func__, __PRETTY_FUNCTION__, __FILE__, __LINE__ }
