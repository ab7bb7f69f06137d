// What ends a command early: signals that ask for it, a reader that goes away.
#pragma once

#include <csignal>

namespace Talctl {

/// Turns Ctrl-C, a request to end and a terminal that goes away into something to ask for, while it lives; a signal
/// that is ignored stays so, as under nohup. The second one ends the process as ever, should the first not be heeded.
class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// The signal that came; 0: none did.
  static int Signal();

  /// Waits until @p descriptor can be read, is at its end, or a signal came.
  static void WaitToRead(int descriptor);

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction m_previous[3];
};

/// True when nobody is left to read a pipe.
bool IsReaderGone(int descriptor);

}  // namespace Talctl
