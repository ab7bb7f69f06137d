// Files of a test's own.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace TalTest {

/// A file with @p content that no other test run shares; gone at the end.
class TempFile {
 public:
  TempFile(const std::string& name, const std::string& content)
      : path(testing::TempDir() + std::to_string(::getpid()) + name) {
    std::ofstream(path, std::ios::binary) << content;
  }
  ~TempFile() { std::remove(path.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const std::string path;
};

}  // namespace TalTest
