#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "Talctl.h"

namespace {

/// Takes the places of standard streams that are closed, so that no file gets what is meant for them: an input without
/// lines, outputs that cannot be written.
void FillStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) == -1) ::open("/dev/null", O_RDONLY);
  }
}

/// A terminal that does more than a typewriter.
bool IsTerminal(int descriptor) {
  const char* const kind = std::getenv("TERM");
  return ::isatty(descriptor) != 0 && kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
}

bool AreSame(int one, int other) {
  struct stat first = {};
  struct stat second = {};
  return ::fstat(one, &first) == 0 && ::fstat(other, &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

/// Ends the process as the signal would have done it.
int EndBy(int signal) {
  std::signal(signal, SIG_DFL);
  ::raise(signal);
  return Talctl::kSignal + signal;
}

}  // namespace

int main(int argc, char** argv) {
  FillStandardStreams();
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);  // answers are flushed when the input pauses
  Talctl::Streams streams{std::cin, std::cout, std::cerr, STDIN_FILENO, STDOUT_FILENO};
  streams.outIsTerminal = IsTerminal(STDOUT_FILENO);
  streams.errIsTerminal = IsTerminal(STDERR_FILENO);
  streams.showsProgress =
      streams.errIsTerminal && !AreSame(STDERR_FILENO, STDOUT_FILENO) && !AreSame(STDERR_FILENO, STDIN_FILENO);
  const int status = Talctl::Run({argv + 1, argv + argc}, streams);
  return status > Talctl::kSignal ? EndBy(status - Talctl::kSignal) : status;
}
