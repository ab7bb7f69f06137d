// Guards the runs in other time zones and locales: they must not pass because the environment had no effect.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

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
