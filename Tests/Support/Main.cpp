#include <gmock/gmock.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <locale>

// Guards the runs in other time zones and locales: they must not pass because the environment had no effect.

TEST(Environment, HasTheTimeZoneThatTheRunAsksFor) {
  const char* const minutes = std::getenv("TAL_TEST_UTC_OFFSET");
  if (minutes == nullptr) return;
  const std::time_t noon = 1672574400;  // 2023-01-01 12:00 UTC
  EXPECT_EQ(std::localtime(&noon)->tm_gmtoff, 60 * std::atol(minutes));
}

TEST(Environment, HasTheDecimalPointThatTheRunAsksFor) {
  const char* const point = std::getenv("TAL_TEST_DECIMAL_POINT");
  if (point == nullptr) return;
  char text[8];
  std::snprintf(text, sizeof text, "%.1f", 0.5);
  EXPECT_EQ(std::string(text), std::string("0") + point + "5");
}

/// The C library does not free the search path that it makes of LOCPATH.
extern "C" const char* __lsan_default_suppressions() { return "leak:__argz_add_sep\n"; }

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  std::locale::global(std::locale(""));  // the whole suite must pass in any locale; an unknown one ends here
  testing::InitGoogleMock(&argc, argv);
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // the logging library runs threads of its own
  return RUN_ALL_TESTS();
}
