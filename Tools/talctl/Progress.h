// A line that tells how far a long command is.
#pragma once

#include <chrono>
#include <ostream>
#include <streambuf>
#include <string>

namespace Talctl {

/// Shows a line of progress at the end of a stream while it lives: after a second, a few times a second. The line makes
/// way for everything else that is written to the stream, and is gone in the end.
class Progress final : private std::streambuf {
 public:
  /// @param isWanted  false: it shows nothing.
  Progress(std::ostream& err, bool isWanted);
  ~Progress() override;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Looks at the clock only: call it now and then.
  void Tell(unsigned long lines, unsigned long refused);

  std::chrono::duration<double> Elapsed() const { return Clock::now() - m_start; }

 private:
  using Clock = std::chrono::steady_clock;

  void Erase();
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override { return m_inner->pubsync(); }

  std::ostream& m_err;
  std::streambuf* const m_inner;  ///< what the stream had before
  const bool m_isWanted;
  const Clock::time_point m_start = Clock::now();
  Clock::time_point m_next = m_start + std::chrono::seconds(1);
  std::size_t m_width = 0;  ///< of the line that is shown
};

}  // namespace Talctl
