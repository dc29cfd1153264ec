/// Kernels of all generations timed side by side. A family is a list of rows, a row one function with its arguments:
///
///   const Row kRows[] = {call(MOX_FN(moxiScanInv_16s_C1), "whole block", scanned, block, 63, 0)};
///   const Family kScan("scan", kRows);
///
/// Every row is run with each generation, on the same data.
#pragma once

#include <benchmark/benchmark.h>
#include <x86intrin.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "moxvc.h"
#include "support/generations.hpp"

namespace mox::bench {

using test::Library;
using test::Symbol;

/// So many calls lie between two readings of the time stamp, since the reading itself costs about one call of a small
/// kernel; fewer of a long one, so that a batch ends before something else is likely to come in between.
inline constexpr int kBatch = 64;
inline constexpr std::uint64_t kBatchTicks = 1'000'000;

struct Row {
  std::string name;
  std::function<void(const Library&, benchmark::State&)> measure;
  bool counted = true;  ///< in the mean ratios of the family
};

/// Times a callable that returns a status: the counter "ticks" becomes the median batch, per call.
template <class Body>
void measure(benchmark::State& state, Body body) {
  const std::uint64_t first = __rdtsc();
  if (const MoxStatus status = body(); status < moxStsOk) {
    state.SkipWithError(("status " + std::to_string(status)).c_str());
    return;
  }
  const int calls = static_cast<int>(std::clamp<std::uint64_t>(kBatchTicks / (__rdtsc() - first + 1), 1, kBatch));
  std::vector<double> batches;
  for (auto _ : state) {
    const std::uint64_t start = __rdtsc();
    for (int i = 0; i < calls; ++i) body();
    batches.push_back(static_cast<double>(__rdtsc() - start) / calls);
  }
  const auto middle = batches.begin() + static_cast<std::ptrdiff_t>(batches.size() / 2);
  std::nth_element(batches.begin(), middle, batches.end());
  state.counters["ticks"] = *middle;
}

template <class Function>
std::string row_name(Symbol<Function> symbol, std::string_view variant) {
  return std::string(symbol.name).append(variant.empty() ? "" : " ").append(variant);
}

/// A row of a function that takes the same arguments in every call.
template <class Function, class... Arguments>
Row call(Symbol<Function> symbol, std::string_view variant, Arguments... arguments) {
  return {row_name(symbol, variant), [=](const Library& library, benchmark::State& state) {
            measure(state, [=, function = library[symbol]] { return function(arguments...); });
          }};
}

/// A row whose calls need more than that, such as a cursor to put back: `body(function)` makes one call and returns its
/// status.
template <class Function, class Body>
Row loop(Symbol<Function> symbol, std::string_view variant, Body body) {
  return {row_name(symbol, variant), [=](const Library& library, benchmark::State& state) {
            measure(state, [=, function = library[symbol]]() mutable { return body(function); });
          }};
}

/// Rows that belong together; a family's static object adds it to the program.
class Family {
 public:
  Family(const char* name, std::span<const Row> rows);
};

/// Memory for arguments, aligned to 64 bytes and kept until the program ends, filled with numbers of low..high.
template <class T>
T* buffer(std::size_t count, int low, int high) {
  constexpr std::size_t kAlignment = 64;
  auto* values =
      static_cast<T*>(std::aligned_alloc(kAlignment, (count * sizeof(T) + kAlignment - 1) & ~(kAlignment - 1)));
  static std::mt19937 engine;
  std::uniform_int_distribution<int> number(low, high);
  std::generate_n(values, count, [&] { return static_cast<T>(number(engine)); });
  return values;
}

/// Input that a call overwrites, put back before each call. That is part of the call's time; a row of `restoring` tells
/// how much.
template <class T>
class Fresh {
 public:
  Fresh(std::size_t count, int low, int high)
      : bytes_(count * sizeof(T)), source_(buffer<T>(count, low, high)), work_(buffer<T>(count, 0, 0)) {}
  T* data() const { return work_; }
  void restore() const { std::memcpy(work_, source_, bytes_); }

 private:
  std::size_t bytes_;
  const T* source_;
  T* work_;
};

/// A row of what the other rows of a family do before each call.
template <class Restore>
Row restoring(const char* name, Restore restore) {
  return {name,
          [=](const Library&, benchmark::State& state) {
            measure(state, [=] {
              restore();
              benchmark::ClobberMemory();
              return moxStsOk;
            });
          },
          false};
}

/// The first of the samples of a picture area of 64 x 64, 16 samples away from its edges; rows are kPictureStep apart.
inline constexpr Mox32s kPictureStep = 64;
template <class T>
T* picture(int low, int high) {
  return buffer<T>(kPictureStep * 64, low, high) + 16 * kPictureStep + 16;
}

}  // namespace mox::bench
