#include <iostream>

#include "Talctl.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);  // answers are flushed when the input pauses
  return Talctl::Run({argv + 1, argv + argc}, {std::cin, std::cout, std::cerr});
}
