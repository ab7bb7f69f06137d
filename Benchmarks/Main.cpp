// Measures every operation: tal_bench [--filter TEXT] [--rounds N] [--json FILE], or counts instructions under
// callgrind: tal_bench --instructions (Benchmarks/instructions.sh does).
#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "Goals.h"
#include "Operation.h"

namespace Bench {
namespace {

struct Figure {
  double nanoseconds;  ///< median of the rounds
  double spread;       ///< (largest - smallest) / median
  double allocations;
};
using Figures = std::map<std::string, Figure>;

/// Keeps every round's time, and prints nothing.
class Collector final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      if (run.error_occurred)
        std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
      m_times[run.run_name.function_name].push_back(run.counters.at("ns"));
      m_allocations[run.run_name.function_name] = run.counters.at("allocations");
    }
  }
  Figures Take() {
    Figures figures;
    for (auto& [name, times] : m_times) {
      std::sort(times.begin(), times.end());
      const double median = times[times.size() / 2];
      figures[name] = {median, (times.back() - times.front()) / median, m_allocations[name]};
    }
    return figures;
  }

 private:
  std::map<std::string, std::vector<double>> m_times;
  std::map<std::string, double> m_allocations;
};

double Now(clockid_t clock) {
  std::timespec now = {};
  ::clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

/// One round of an operation. Where only this thread works, its own processor time counts: what else the machine does
/// is left out.
void Measure(benchmark::State& state, const Operation& operation) {
  const clockid_t clock = operation.isCounted ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC;
  operation.run(1);
  const std::size_t before = CountAllocations();
  const double start = Now(clock);
  std::size_t times = 0;
  for (auto _ : state) {
    operation.run(operation.batch);
    times += operation.batch;
  }
  const double all = static_cast<double>(times * operation.per);
  state.counters["ns"] = (Now(clock) - start) / all;
  state.counters["allocations"] = static_cast<double>(CountAllocations() - before) / all;
}

/// The geometric mean over a group without its mix, or one figure; 0 when nothing of it was measured.
double ValueOf(const Figures& figures, const std::string& group) {
  if (group.back() != '/') return figures.count(group) != 0 ? figures.at(group).nanoseconds : 0;
  double logs = 0;
  int count = 0;
  for (const auto& [name, figure] : figures) {
    if (name.rfind(group, 0) != 0 || name.find("mixed") != name.npos) continue;
    logs += std::log(figure.nanoseconds);
    ++count;
  }
  return count == 0 ? 0 : std::exp(logs / count);
}

void PrintTable(const Operations& operations, const Figures& figures, nlohmann::ordered_json& json) {
  std::printf("%-34s %12s %8s %8s  %s\n", "operation", "ns", "spread", "allocs", "ratio");
  for (const Operation& operation : operations) {
    const auto found = figures.find(operation.name);
    if (found == figures.end()) continue;
    const Figure& figure = found->second;
    auto& row = json["operations"][operation.name];
    row = {{"ns", figure.nanoseconds}, {"spread", figure.spread}};
    std::printf("%-34s %12.1f %7.0f%%", operation.name.c_str(), figure.nanoseconds, 100 * figure.spread);
    if (operation.isProcess) {  // whose allocations are not seen from here
      std::printf("        -");
    } else {
      row["allocations"] = figure.allocations;
      std::printf(" %8.2f", figure.allocations);
    }
    const double baseline = operation.baseline.empty() ? 0 : ValueOf(figures, operation.baseline);
    if (baseline > 0) {
      row["baseline"] = operation.baseline;
      row["ratio"] = figure.nanoseconds / baseline;
      std::printf("  %.2f x %s", figure.nanoseconds / baseline, operation.baseline.c_str());
    }
    std::printf("\n");
  }
}

void PrintGoals(const Figures& figures, nlohmann::ordered_json& json) {
  std::printf("\n%-34s %12s %8s\n", "goal", "reached", "at most");
  const auto print = [&](const std::string& name, double reached, double limit, const char* unit) {
    json["goals"][name] = {{"reached", reached}, {"limit", limit}};
    std::printf("%-34s %12.2f %8.2f %s%s\n", name.c_str(), reached, limit, unit, reached <= limit ? "" : "   MISSED");
  };
  for (const Goal& goal : kGoals) {
    const double value = ValueOf(figures, goal.group);
    const double baseline = ValueOf(figures, goal.baseline);
    if (value > 0 && baseline > 0) print(goal.group, value / baseline, goal.limit, goal.baseline);
  }
  for (const TimeGoal& goal : kTimeGoals) {
    const double value = ValueOf(figures, goal.operation);
    const double minus = *goal.minus == '\0' ? 0 : ValueOf(figures, goal.minus);
    if (value > 0 && (*goal.minus == '\0' || minus > 0))
      print(goal.operation, value - minus, goal.nanoseconds, *goal.minus == '\0' ? "ns" : "ns more");
  }
}

/// One dump of counters for each operation; says how often it was done in each.
int CountInstructions(const Operations& operations) {
  if (RUNNING_ON_VALGRIND == 0) {
    std::fprintf(stderr, "tal_bench: --instructions works under callgrind only: run Benchmarks/instructions.sh\n");
    return 2;
  }
  for (const Operation& operation : operations) {
    if (!operation.isCounted) continue;
    operation.run(1);
    CALLGRIND_ZERO_STATS;
    operation.run(operation.batch);
    CALLGRIND_DUMP_STATS_AT(operation.name.c_str());
    std::printf("%s %zu\n", operation.name.c_str(), operation.batch * operation.per);
  }
  return 0;
}

}  // namespace
}  // namespace Bench

int main(int argc, char** argv) {
  using namespace Bench;
  CLI::App app("Measures libtalobjectmodel against baselines of the same run.", "tal_bench");
  std::string filter;
  std::string jsonFile;
  int rounds = 11;
  double seconds = 0.02;
  bool instructions = false;
  app.add_option("--filter", filter, "Only operations with this text in their names");
  app.add_option("--rounds", rounds, "Rounds, in alternating order; the median counts")->check(CLI::Range(1, 1000));
  app.add_option("--seconds", seconds, "How long an operation runs in a round, at least")->check(CLI::PositiveNumber);
  app.add_option("--json", jsonFile, "Write the figures to this file")->take_last();
  app.add_flag("--instructions", instructions, "Count under callgrind instead");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  ::setenv("TZ", "Europe/Berlin", 1);

  Operations all;
  AddBaselines(all);
  AddDirectConversion(all);
  AddTableConversion(all);
  AddTexts(all);
  AddIdentifiers(all);
  AddMessenger(all);
  AddTalctl(all);
  Operations operations;
  std::copy_if(all.begin(), all.end(), std::back_inserter(operations),
               [&](const Operation& operation) { return operation.name.find(filter) != std::string::npos; });
  if (operations.empty()) {
    std::fprintf(stderr, "tal_bench: no operation has '%s' in its name\n", filter.c_str());
    return 2;
  }
  if (instructions) return CountInstructions(operations);

  for (const Operation& operation : operations) {
    benchmark::RegisterBenchmark(operation.name.c_str(),
                                 [&operation](benchmark::State& state) { Measure(state, operation); })
        ->MinTime(seconds)
        ->Repetitions(rounds);
  }
  std::vector<std::string> flags = {argv[0], "--benchmark_enable_random_interleaving=true"};
  std::vector<char*> pointers;
  for (std::string& flag : flags) pointers.push_back(flag.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  const Figures figures = collector.Take();
  nlohmann::ordered_json json;
  PrintTable(operations, figures, json);
  PrintGoals(figures, json);
  if (jsonFile.empty()) return 0;
  std::ofstream file(jsonFile);
  file << json.dump(2) << '\n';
  if (file.flush()) return 0;
  std::fprintf(stderr, "tal_bench: %s cannot be written\n", jsonFile.c_str());
  return 1;
}
