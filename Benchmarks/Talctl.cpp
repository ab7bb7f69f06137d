// talctl as a process: its streams from a pipe, and its start.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "Operation.h"

namespace Bench {
namespace {

constexpr std::size_t kLines = 400000;

void Shell(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("cannot run " + command);
}

/// A file of lines, gone at the end.
class LineFile {
 public:
  explicit LineFile(std::vector<std::string> lines) : m_lines(std::move(lines)) {}
  ~LineFile() {
    if (!m_path.empty()) std::remove(m_path.c_str());
  }
  LineFile(const LineFile&) = delete;
  LineFile& operator=(const LineFile&) = delete;

  /// Written when it is asked for first.
  const std::string& Path() {
    if (!m_path.empty()) return m_path;
    static int number = 0;
    const std::string name = "tal_bench." + std::to_string(::getpid()) + '.' + std::to_string(number++);
    m_path = std::filesystem::temp_directory_path() / name;
    std::ofstream file(m_path);
    for (std::size_t i = 0; i < kLines; ++i) file << m_lines[i % m_lines.size()] << '\n';
    return m_path;
  }

 private:
  const std::vector<std::string> m_lines;
  std::string m_path;
};

}  // namespace

void AddTalctl(Operations& operations) {
  const auto values = std::make_shared<LineFile>(
      std::vector<std::string>{"9.001 21.5", "5.001 128", "1.001 on", "13.001 -65536", "12.001 305419896"});
  const auto octets = std::make_shared<LineFile>(
      std::vector<std::string>{"9.001 0C33", "5.001 80", "1.001 01", "13.001 FFFF0000", "12.001 12345678"});
  const auto add = [&](const std::string& name, const std::shared_ptr<LineFile>& lines, const std::string& arguments) {
    operations.push_back({"talctl_line/" + name, "",
                          [lines, arguments](std::size_t times) {
                            for (; times > 0; --times) {
                              Shell("cat '" + lines->Path() + "' | '" TAL_BENCH_TALCTL "' " + arguments +
                                    " >/dev/null");
                            }
                          },
                          1, kLines, true, false});
  };
  add("encode", values, "encode");
  add("encode_map", values, "encode --converter table");
  add("encode_json", values, "encode --json");
  add("decode_map", octets, "decode --converter table");
  add("decode_map_json", octets, "decode --converter table --json");
  const auto start = [&](const std::string& name, const std::string& baseline, const std::string& command) {
    operations.push_back({name, baseline,
                          [command](std::size_t times) {
                            for (; times > 0; --times) Shell("exec " + command + " >/dev/null");
                          },
                          1, 1, true, false});
  };
  start("start/empty", "", "'" TAL_BENCH_EMPTY "'");
  start("start/talctl", "start/empty", "'" TAL_BENCH_TALCTL "' --version");
}

}  // namespace Bench
