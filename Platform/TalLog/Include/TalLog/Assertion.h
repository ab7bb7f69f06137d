// Assertions that stay in release builds.
#pragma once

#include <TalLog/CallSite.h>
#include <TalLog/Export.h>

namespace Tal {

/// Writes a failed assertion to standard error and, at FATAL, to the default logger, then calls std::terminate().
/// @param pieces  null-terminated: function name, source path, line as text, and the rest of the sentence in pieces.
[[noreturn]] TALLOG_EXPORT void AssertionFailed(const char* const* pieces) noexcept;

}  // namespace Tal

/// Ends the process unless @p expr holds; the report names @p function, @p path (an array of characters) and @p line
/// (text), whatever the place it stands in.
#define TAL_ASSERT2_AT(expr, function, path, line) TAL_ASSERT2_IMPL(expr, #expr, function, path, line)
/// The same, naming the place where it stands.
#define TAL_ASSERT2(expr) TAL_ASSERT2_IMPL(expr, #expr, __func__, __FILE__, TAL_LINE_TEXT(__LINE__))

/// @cond  what the above is made of
#define TAL_LINE_TEXT_IMPL(line) #line
/// @endcond
/// A line number, such as __LINE__, as text.
#define TAL_LINE_TEXT(line) TAL_LINE_TEXT_IMPL(line)
/// @cond
#define TAL_ASSERT2_IMPL(expr, expression, function, path, line)                                   \
  do {                                                                                             \
    if (!(expr)) {                                                                                 \
      static constexpr ::Tal::SourcePath<sizeof(path)> talSource{path};                            \
      static const char* const talPieces[] = {function,   talSource.text, line,   " TAL_ASSERT2(", \
                                              expression, ") failed",     nullptr};                \
      ::Tal::AssertionFailed(talPieces);                                                           \
    }                                                                                              \
  } while (false)
/// @endcond
