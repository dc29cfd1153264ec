/// The benchmark program: runs every row with every generation and prints one line a row; --csv=FILE also writes them.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <map>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr const char* kGenerations[] = {"px", "e9", "v3"};
constexpr std::size_t kColumns = std::size(kGenerations);
constexpr int kNameWidth = 70, kTicksWidth = 11, kSpeedupWidth = 8;

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
  double speedup(std::size_t column) const { return ticks[column] > 0 ? ticks[0] / ticks[column] : 0; }
};

/// All rows in the order in which the families gave them.
std::vector<Line>& table() {
  static std::vector<Line> lines;
  return lines;
}

std::string benchmark_name(const Line& line, std::string_view generation) {
  return std::string(line.family).append("/").append(line.name).append("/").append(generation);
}

void print_number(double number, int width, int decimals) {
  number > 0 ? std::printf("%*.*f", width, decimals, number) : std::printf("%*s", width, "");
}

/// Collects the times, and prints them as a table with each family's mean ratios.
class Reporter : public benchmark::BenchmarkReporter {
 public:
  explicit Reporter(std::string csv) : csv_(std::move(csv)) {}

  bool ReportContext(const Context&) override {
    std::printf(
        "Time-stamp ticks (%.2f GHz) for one of many calls in a row, argument tests included, nothing subtracted.\n"
        "Median of batches of up to %d calls, the least of the repetitions; data hot in the first-level cache. Input "
        "that a\n"
        "function overwrites is copied afresh for each call. px/e9 and px/v3: above 1 is faster than px.\n"
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
        const double ticks = run.counters.at("ticks");
        const auto [time, is_first] = least_.try_emplace(run.run_name.function_name, ticks);
        if (!is_first) time->second = std::min(time->second, ticks);
      }
    }
  }

  /// A call has failed, so what was timed was not the function's work.
  bool failed() const { return failed_; }

  void Finalize() override {
    for (Line& line : table()) fill_in(line);
    std::erase_if(table(), [](const Line& line) { return !line.measured(); });
    for (auto line = table().begin(); line != table().end();) {
      const auto end = std::find_if(line, table().end(), [&](const Line& l) { return l.family != line->family; });
      print_family({line, end});
      line = end;
    }
    if (!csv_.empty()) write_csv(csv_);
  }

 private:
  void fill_in(Line& line) const {
    for (std::size_t i = 0; i < kColumns; ++i) {
      const auto time = least_.find(benchmark_name(line, kGenerations[i]));
      if (time != least_.end()) line.ticks[i] = time->second;
    }
  }

  /// Ticks alone, in the order of the printed table; a time that was not measured is empty.
  static void write_csv(const std::string& path) {
    std::ofstream out(path);
    out << "family,row,counted";
    for (const char* generation : kGenerations) out << ',' << generation;
    out << '\n' << std::fixed << std::setprecision(2);
    for (const Line& line : table()) {
      out << line.family << ",\"" << line.name << "\"," << line.counted;
      for (double ticks : line.ticks) ticks > 0 ? out << ',' << ticks : out << ',';
      out << '\n';
    }
  }

  static void print_family(std::span<const Line> lines) {
    std::printf("\n%-*s", kNameWidth, lines.front().family.c_str());
    for (const char* generation : kGenerations) std::printf("%*s", kTicksWidth, generation);
    std::printf("%*s%*s\n", kSpeedupWidth, "px/e9", kSpeedupWidth, "px/v3");
    for (const Line& line : lines) {
      std::printf("  %-*s", kNameWidth - 2, line.name.c_str());
      for (double ticks : line.ticks) print_number(ticks, kTicksWidth, 1);
      for (std::size_t i = 1; i < kColumns; ++i) print_number(line.speedup(i), kSpeedupWidth, 2);
      std::printf("\n");
    }
    std::printf("  %-*s", kNameWidth - 2 + kTicksWidth * static_cast<int>(kColumns), "geometric mean");
    for (std::size_t i = 1; i < kColumns; ++i) print_number(mean_speedup(lines, i), kSpeedupWidth, 2);
    std::printf("\n");
  }

  static double mean_speedup(std::span<const Line> lines, std::size_t column) {
    double logarithms = 0;
    int count = 0;
    for (const Line& line : lines) {
      if (line.counted && line.speedup(column) > 0) logarithms += std::log(line.speedup(column)), ++count;
    }
    return count ? std::exp(logarithms / count) : 0;
  }

  std::string csv_;
  std::map<std::string, double> least_;  ///< of the repetitions of a benchmark
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
  std::vector<std::string> defaults = {argv[0], "--benchmark_min_time=0.01", "--benchmark_repetitions=5",
                                       "--benchmark_enable_random_interleaving=true"};
  std::vector<char*> arguments;
  for (std::string& text : defaults) arguments.push_back(text.data());
  constexpr std::string_view kCsv = "--csv=";
  std::string csv;
  for (char* argument : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
    if (std::string_view(argument).starts_with(kCsv)) {
      csv = argument + kCsv.size();
    } else {
      arguments.push_back(argument);
    }
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  mox::bench::Reporter reporter(csv);
  return benchmark::RunSpecifiedBenchmarks(&reporter) > 0 && !reporter.failed() ? 0 : 1;
}
