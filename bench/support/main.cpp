/// The benchmark program: runs every row with every generation and prints one line a row.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr const char* kGenerations[] = {"px", "e9", "v3"};
constexpr std::size_t kColumns = std::size(kGenerations);
constexpr int kNameWidth = 70;

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

double ticks_per_second() {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const std::uint64_t first = __rdtsc();
  while (Clock::now() - start < std::chrono::milliseconds(50)) {
  }
  const std::uint64_t ticks = __rdtsc() - first;
  return static_cast<double>(ticks) / std::chrono::duration<double>(Clock::now() - start).count();
}

/// One row of the printed table; a time of 0 was not measured.
struct Line {
  std::string family, name;
  bool counted;
  double ticks[kColumns] = {};
  bool measured() const {
    return std::any_of(std::begin(ticks), std::end(ticks), [](double t) { return t > 0; });
  }
  double ratio(std::size_t column) const { return ticks[0] > 0 ? ticks[column] / ticks[0] : 0; }
};

/// All rows in the order in which the families gave them.
std::vector<Line>& table() {
  static std::vector<Line> lines;
  return lines;
}

std::string benchmark_name(const Line& line, std::string_view generation) {
  return std::string(line.family).append("/").append(line.name).append("/").append(generation);
}

void print_number(const char* format, double number) {
  number > 0 ? std::printf(format, number) : std::printf("%8s", "");
}

/// Collects the times, and prints them as a table with each family's mean ratios.
class Reporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override {
    std::printf(
        "Time-stamp ticks (%.2f GHz) for one of many calls in a row, argument tests included, nothing subtracted.\n"
        "Median of batches of %d calls, the least of the repetitions; data hot in the first-level cache. Input that a\n"
        "function overwrites is copied afresh for each call. Ratios are of ticks: below 1 is faster than px.\n"
        "%s, compiler %s\n",
        ticks_per_second() / 1e9, kBatch, processor().c_str(), __VERSION__);
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        failed_ = true;
        std::printf("%s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
      } else if (run.run_type == Run::RT_Iteration) {
        note(run.run_name.function_name, run.counters.at("ticks"));
      }
    }
  }

  /// A call has failed, so what was timed was not the function's work.
  bool failed() const { return failed_; }

  void Finalize() override {
    std::erase_if(table(), [](const Line& line) { return !line.measured(); });
    for (auto line = table().begin(); line != table().end();) {
      const auto end = std::find_if(line, table().end(), [&](const Line& l) { return l.family != line->family; });
      print_family({line, end});
      line = end;
    }
  }

 private:
  static void note(const std::string& benchmark, double ticks) {
    for (Line& line : table()) {
      for (std::size_t i = 0; i < kColumns; ++i) {
        if (benchmark != benchmark_name(line, kGenerations[i])) continue;
        line.ticks[i] = line.ticks[i] > 0 ? std::min(line.ticks[i], ticks) : ticks;
      }
    }
  }

  static void print_family(std::span<const Line> lines) {
    std::printf("\n%-*s%8s%8s%8s%8s%8s\n", kNameWidth, lines.front().family.c_str(), "px", "e9", "v3", "e9/px",
                "v3/px");
    for (const Line& line : lines) {
      std::printf("  %-*s", kNameWidth - 2, line.name.c_str());
      for (double ticks : line.ticks) print_number("%8.1f", ticks);
      for (std::size_t i = 1; i < kColumns; ++i) print_number("%8.2f", line.ratio(i));
      std::printf("\n");
    }
    std::printf("  %-*s", kNameWidth - 2 + 8 * static_cast<int>(kColumns), "geometric mean");
    for (std::size_t i = 1; i < kColumns; ++i) print_number("%8.2f", mean_ratio(lines, i));
    std::printf("\n");
  }

  static double mean_ratio(std::span<const Line> lines, std::size_t column) {
    double logarithms = 0;
    int count = 0;
    for (const Line& line : lines) {
      if (line.counted && line.ratio(column) > 0) logarithms += std::log(line.ratio(column)), ++count;
    }
    return count ? std::exp(logarithms / count) : 0;
  }

  bool failed_ = false;
};

}  // namespace

Family::Family(const char* name, std::span<const Row> rows) {
  for (const Row& row : rows) {
    const Line line{name, row.name, row.counted};
    table().push_back(line);
    for (const char* generation : kGenerations) {
      const Library* library = Library::open(generation);
      if (!library) continue;
      benchmark::RegisterBenchmark(benchmark_name(line, generation).c_str(),
                                   [row, library](benchmark::State& state) { row.measure(*library, state); });
    }
  }
}

}  // namespace mox::bench

int main(int argc, char** argv) {
  // Short runs, repeated in random order, so that a disturbance does not hit one generation alone.
  std::vector<std::string> defaults = {argv[0], "--benchmark_min_time=0.02", "--benchmark_repetitions=5",
                                       "--benchmark_enable_random_interleaving=true"};
  std::vector<char*> arguments;
  for (std::string& text : defaults) arguments.push_back(text.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  mox::bench::Reporter reporter;
  return benchmark::RunSpecifiedBenchmarks(&reporter) > 0 && !reporter.failed() ? 0 : 1;
}
