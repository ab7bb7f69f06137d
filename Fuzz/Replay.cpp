// Runs a fuzz target over the inputs in folders, without a fuzzer: what every test run does with the seeds.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <vector>

#include "Input.h"

int main(int argc, char** argv) {
  std::set<std::filesystem::path> inputs;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) inputs.insert(entry.path());
  }
  if (inputs.empty()) {
    std::cerr << "no inputs: expected folders with one file for each input\n";
    return 2;
  }
  for (const std::filesystem::path& path : inputs) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
      std::cerr << path << " cannot be read\n";
      return 1;
    }
    std::cerr << path.filename() << '\n';  // the last one named is the one that failed
    // A copy of exactly that size, so that memory checkers see a step beyond the end.
    const std::vector<std::uint8_t> octets(content.begin(), content.end());
    LLVMFuzzerTestOneInput(octets.data(), octets.size());
  }
  std::cerr << inputs.size() << " inputs, all well\n";
  return 0;
}
