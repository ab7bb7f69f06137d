// What fuzz targets share: taking an input apart, and saying what was found.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>
#include <KnxStackApi/KnxDpt.h>
#include <TalLog/Logger.h>
#include <log4cplus/nullappender.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// A target: one input, any octets. Returns 0; what is wrong ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the process with a word on what does not hold.
#define FUZZ_CHECK(condition, about) \
  ((condition) ? void() : ::Fuzz::Fail(__FILE__, __LINE__, #condition, std::string(about)))

namespace Fuzz {

[[noreturn]] inline void Fail(const char* file, int line, const char* condition, const std::string& about) {
  std::fprintf(stderr, "%s:%d: %s does not hold: %s\n", file, line, condition, about.c_str());
  std::abort();
}

/// Numbers off the front of an input, then the rest of it as text. Behind the end everything is zero.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

  bool AtEnd() const { return m_rest.empty(); }

  /// The next @p octets octets, most significant first.
  std::uint64_t Number(std::size_t octets) {
    std::uint64_t number = 0;
    for (; octets > 0; --octets) {
      number = number << 8 | (m_rest.empty() ? 0u : static_cast<unsigned char>(m_rest.front()));
      m_rest.remove_prefix(m_rest.empty() ? 0 : 1);
    }
    return number;
  }
  std::uint8_t Octet() { return static_cast<std::uint8_t>(Number(1)); }
  std::uint16_t Word() { return static_cast<std::uint16_t>(Number(2)); }

  std::string_view Rest() const { return m_rest; }

 private:
  std::string_view m_rest;
};

/// Main number in one octet (255: two more follow), sub number in two.
inline KNXDPT TakeDpt(Input& input) {
  KNXDPT dpt;
  dpt.main = input.Octet();
  if (dpt.main == 255) dpt.main = input.Word();
  dpt.sub = input.Word();
  return dpt;
}

inline unsigned long NumberOf(const KNXDPT& dpt) { return static_cast<unsigned long>(dpt.main) << 16 | dpt.sub; }

inline std::string Shown(const AROVALUE& value) {
  std::string text;
  value.Serialize(text, true);
  return text;
}
inline std::string Shown(const KnxStack::GroupValue& value) {
  return value.ToString() + '/' + std::to_string(value.GetDefinedSize());
}

inline bool IsOneLine(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

/// Builds every log record, and shows none.
class SilentLog {
 public:
  SilentLog() {
    Tal::GetGlobalDefaultLogger().addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    Tal::GetGlobalDefaultLogger().setLogLevel(static_cast<int>(Tal::LogLevel::Debug));
  }
};

/// Before the first input: records as above, local time without changes of clocks.
inline void Prepare() {
  static const SilentLog silent;
  static const bool isUtc = (::setenv("TZ", "UTC", 1), ::tzset(), true);
  static_cast<void>(isUtc);
}

}  // namespace Fuzz
