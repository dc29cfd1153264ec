#include <array>
#include <numeric>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

// 64 blocks one after the other: levels grow rare and small with the scan position.
constexpr int kBlocks = 64;
template <class T>
const T* blocks() {
  T* const values = buffer<T>(16 * kBlocks, 0, 0);
  std::mt19937 engine;
  for (int i = 0; i < 16 * kBlocks; ++i) {
    const int position = i % 16;
    if (static_cast<int>(engine() % 20) < 16 - position) values[i] = static_cast<T>(engine() % (position < 4 ? 7 : 3));
    if (engine() % 2) values[i] = static_cast<T>(-values[i]);
  }
  return values;
}
const Mox16s* const kSource = blocks<Mox16s>();
const Mox32s* const kSource32 = blocks<Mox32s>();

const auto kScan = [] {
  std::array<Mox32s, 16> scan{};
  std::iota(scan.begin(), scan.end(), 0);
  return scan;
}();
Mox8u* const kNumbers = buffer<Mox8u>(4, 0, 0);
Mox16s* const kLevels = buffer<Mox16s>(16, 0, 0);
Mox32s* const kLevels32 = buffer<Mox32s>(16, 0, 0);
Mox8u* const kRuns = buffer<Mox8u>(16, 0, 0);

/// A call for the next block, with the arguments between the block and the results.
template <class Function, class T, class... Arguments>
Row next(Symbol<Function> symbol, const T* source, T* levels, Arguments... arguments) {
  return loop(symbol, "", [=, i = 0](Function* function) mutable {
    i = (i + 1) % kBlocks;
    return function(source + 16 * i, arguments..., kNumbers, kNumbers + 1, kNumbers + 2, kNumbers + 3, levels, kRuns);
  });
}

const Row kRows[] = {
    next(MOX_FN(moxiEncodeCoeffsCAVLC_H264_16s), kSource, kLevels, 0, kScan.data(), 15),
    next(MOX_FN(moxiEncodeCoeffsCAVLC_H264_32s), kSource32, kLevels32, 0, kScan.data(), 15),
    next(MOX_FN(moxiEncodeChromaDcCoeffsCAVLC_H264_16s), kSource, kLevels),
    next(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s), kSource32, kLevels32),
    next(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s), kSource, kLevels),
    next(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s), kSource32, kLevels32),
};
const Family kAnalysis("h264_cavlc_analysis", kRows);

}  // namespace
}  // namespace mox::bench
