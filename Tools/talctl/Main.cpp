#include <fcntl.h>
#include <unistd.h>

#include <iostream>

#include "Talctl.h"

namespace {

/// Takes the places of standard streams that are closed, so that no file gets what is meant for them.
void FillStandardStreams() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
  FillStandardStreams();
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);  // answers are flushed when the input pauses
  return Talctl::Run({argv + 1, argv + argc}, {std::cin, std::cout, std::cerr});
}
