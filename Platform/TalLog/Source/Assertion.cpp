#include <TalLog/Assertion.h>
#include <TalLog/LogRecord.h>

#include <cstdio>
#include <exception>
#include <string>

namespace Tal {

void AssertionFailed(const char* const* pieces) noexcept {
  // Function, path and line are set apart; the rest is a sentence that carries its own blanks.
  static const char* const kBefore[] = {"", " ", ":"};
  std::string text;
  for (std::size_t i = 0; pieces[i] != nullptr; ++i) {
    if (i < std::size(kBefore)) text += kBefore[i];
    text += pieces[i];
  }
  std::fprintf(stderr, "%s\n", text.c_str());
  std::fflush(stderr);
  TAL_LOG(Fatal) << text;
  std::terminate();
}

}  // namespace Tal
