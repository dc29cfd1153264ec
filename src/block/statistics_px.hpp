/// Portable kernels of block statistics, and the last steps of each measure, which all generations share.
#pragma once

#include <cstddef>
#include <type_traits>

#include "block/half_pel_px.hpp"
#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox {

/// Sum and sum of squares of a block. The squares wrap to 32 bits; those of 8-bit samples fit.
struct Moments {
  Mox32s sum, squares;
};

/// 256 times the variance of 256 8-bit samples. The square of the sum fits 32 bits without sign, not with: 65280^2.
inline MoxStatus store_variance_256(Moments block, Mox32s* var) {
  const auto sum = static_cast<Mox32u>(block.sum);
  *var = block.squares - static_cast<Mox32s>(sum * sum / 256);
  return moxStsOk;
}

/// Variance of 64 samples. Each step rounds to single precision: the build forbids to fuse the product and the
/// difference, which would skip one rounding.
inline MoxStatus store_variance_and_sum_64(Moments block, Mox32s* var, Mox32s* sum) {
  const float mean = static_cast<float>(block.sum) / 64;
  const float mean_square = mean * mean;
  *var = static_cast<Mox32s>(static_cast<float>(block.squares) / 64 - mean_square);
  *sum = block.sum;
  return moxStsOk;
}

/// What a prediction of 8x8 samples leaves: its own sum, and the sum of the squared errors.
struct PredictionError {
  Mox32s predicted, squares;
};

/// Mean error times 8, and variance of the error. kWordMean: only 16 bits of the mean enter its square.
template <bool kWordMean>
void store_error_statistics(const PredictionError& block, Mox32s srcSum, Mox32s* var, Mox32s* mean) {
  const Mox32s m = sub32(srcSum, block.predicted) / 8;
  const Mox32s square = kWordMean ? wrap16(m) * wrap16(m) : mul32(m, m);
  *var = block.squares > square ? sub32(block.squares, square) / 64 : 0;
  *mean = m;
}

/// Sums of differences have twice the width of the samples.
template <class T>
using DifferenceSum = std::conditional_t<sizeof(T) == 1, Mox16s, Mox32s>;

/// Thresholds as the comparisons use them: a difference with the width of the samples and a sign.
template <class T>
constexpr Mox32s edge_threshold(Mox32u difference) {
  return static_cast<std::make_signed_t<T>>(difference);
}
static_assert(edge_threshold<Mox8u>(127) == 127 && edge_threshold<Mox8u>(200) == -56);
static_assert(edge_threshold<Mox8u>(256 + 3) == 3 && edge_threshold<Mox16u>(65535) == -1);

/// srcSum, var and mean have an entry for each 8x8 block.
using VarMeanDiffKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep,
                                        const Mox32s* srcSum, Mox32s* var, Mox32s* mean);
using SumsDiffChannelsKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, const Mox8u* predU, Mox32s predStepU,
                                             const Mox8u* predV, Mox32s predStepV, Mox16s* sumsU, Mox16s* diffU,
                                             Mox16s* sumsV, Mox16s* diffV);

/// Index of tables with 4 entries: differences of the first channel wanted | of the second one << 1.
constexpr std::size_t channels_index(const Mox16s* diffU, const Mox16s* diffV) {
  return std::size_t{diffU != nullptr} | std::size_t{diffV != nullptr} << 1;
}
static_assert(channels_index(nullptr, nullptr) == 0);

}  // namespace mox

namespace mox::px {

template <int W, int H, class T>
Moments moments(const T* src, Mox32s srcStep) {
  Moments m = {};
  for (int y = 0; y < H; ++y, src = step_bytes(src, srcStep)) {
    for (int x = 0; x < W; ++x) {
      const Mox32s p = load<T>(src + x);
      m = {m.sum + p, add32(m.squares, p * p)};
    }
  }
  return m;
}

/// Sum of the absolute deviations of W x W samples from their mean, rounded with halves up.
template <int W>
MoxStatus mean_abs_dev(const Mox8u* src, Mox32s srcStep, Mox32s* result) {
  const Mox32s mean = (moments<W, W>(src, srcStep).sum + W * W / 2) / (W * W);
  Mox32s sum = 0;
  for (int y = 0; y < W; ++y, src += srcStep) {
    for (int x = 0; x < W; ++x) sum += src[x] < mean ? mean - src[x] : src[x] - mean;
  }
  *result = sum;
  return moxStsOk;
}

template <HalfPel P>
PredictionError prediction_error_8x8(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  PredictionError e = {};
  for (int y = 0; y < 8; ++y, src += srcStep, ref += refStep) {
    for (int x = 0; x < 8; ++x) {
      const Mox32s p = predict<P>(ref + x, refStep, 0), d = src[x] - p;
      e = {e.predicted + p, e.squares + d * d};
    }
  }
  return e;
}

/// The 8x8 blocks of 16 x H samples, in raster order.
template <int H, HalfPel P>
MoxStatus var_mean_diff(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, const Mox32s* srcSum,
                        Mox32s* var, Mox32s* mean) {
  for (int k = 0; k < H / 4; ++k) {
    const std::ptrdiff_t x = k % 2 * 8, y = k / 2 * 8;
    const auto error = prediction_error_8x8<P>(src + y * srcStep + x, srcStep, ref + y * refStep + x, refStep);
    store_error_statistics<H == 16>(error, srcSum[k], var + k, mean + k);
  }
  return moxStsOk;
}

/// Index: half_pel_index.
inline constexpr auto kVarMeanDiff16x8 =
    make_table<4>([]<std::size_t I>() -> VarMeanDiffKernel { return &var_mean_diff<8, half_pel(I)>; });
inline constexpr auto kVarMeanDiff16x16 =
    make_table<4>([]<std::size_t I>() -> VarMeanDiffKernel { return &var_mean_diff<16, half_pel(I)>; });

/// Sum of the differences of a 4x4 block, which go to diff if kDiff. Samples of src lie kDistance elements apart.
template <bool kDiff, int kDistance, class T>
Mox32s sum_diff_4x4(const T* src, Mox32s srcStep, const T* pred, Mox32s predStep, [[maybe_unused]] Mox16s* diff) {
  Mox32s sum = 0;
  for (int i = 0; i < 16; ++i) {
    const std::ptrdiff_t x = i % 4, y = i / 4;
    const Mox32s s = load<T>(step_bytes(src + kDistance * x, y * srcStep));
    const Mox16s d = wrap16(s - load<T>(step_bytes(pred + x, y * predStep)));
    if constexpr (kDiff) store(diff + i, d);
    sum += d;
  }
  return sum;
}

/// W x W samples; sums and differences of their 4x4 blocks in raster order.
template <int W, bool kDiff, int kDistance = 1, class T>
MoxStatus sums_diff(const T* src, Mox32s srcStep, const T* pred, Mox32s predStep, DifferenceSum<T>* sums,
                    Mox16s* diff) {
  for (int i = 0; i < W * W / 16; ++i) {
    const std::ptrdiff_t x = i % (W / 4) * 4, y = i / (W / 4) * 4;
    const Mox32s sum =
        sum_diff_4x4<kDiff, kDistance>(step_bytes(src + kDistance * x, y * srcStep), srcStep,
                                       step_bytes(pred + x, y * predStep), predStep, kDiff ? diff + 16 * i : nullptr);
    store(sums + i, static_cast<DifferenceSum<T>>(sum));
  }
  return moxStsOk;
}

/// 8 x 8 samples of each of two interleaved channels.
template <bool kDiffU, bool kDiffV>
MoxStatus sums_diff_channels(const Mox8u* src, Mox32s srcStep, const Mox8u* predU, Mox32s predStepU, const Mox8u* predV,
                             Mox32s predStepV, Mox16s* sumsU, Mox16s* diffU, Mox16s* sumsV, Mox16s* diffV) {
  sums_diff<8, kDiffU, 2>(src, srcStep, predU, predStepU, sumsU, diffU);
  return sums_diff<8, kDiffV, 2>(src + 1, srcStep, predV, predStepV, sumsV, diffV);
}

/// Index: channels_index.
inline constexpr auto kSumsDiffChannels = make_table<4>(
    []<std::size_t I>() -> SumsDiffChannelsKernel { return &sums_diff_channels<(I & 1) != 0, (I & 2) != 0>; });

/// Samples of a 16 x 16 block that differ from their right or their lower neighbour by more than the threshold,
/// 0 to 225.
template <class T>
Mox32s count_edges(const T* src, Mox32s srcStep, Mox32s threshold) {
  const auto exceeds = [threshold](Mox32s a, Mox32s b) {
    constexpr Mox32s kMost = static_cast<Mox32s>(static_cast<T>(-1) / 2);
    return clip(a < b ? b - a : a - b, 0, kMost) > threshold;
  };
  Mox32s count = 0;
  for (int y = 0; y < 15; ++y, src = step_bytes(src, srcStep)) {
    for (int x = 0; x < 15; ++x) {
      const Mox32s p = load<T>(src + x), right = load<T>(src + x + 1), below = load<T>(step_bytes(src + x, srcStep));
      count += exceeds(p, right) || exceeds(p, below);
    }
  }
  return count;
}

}  // namespace mox::px
