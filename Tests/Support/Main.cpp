#include <gmock/gmock.h>

#include <clocale>
#include <locale>

/// The C library does not free the search path that it makes of LOCPATH.
extern "C" const char* __lsan_default_suppressions() { return "leak:__argz_add_sep\n"; }

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  std::locale::global(std::locale(""));  // the whole suite must pass in any locale; an unknown one ends here
  testing::InitGoogleMock(&argc, argv);
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // the logging library runs threads of its own
  return RUN_ALL_TESTS();
}
