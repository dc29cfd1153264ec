/// Vector kernels of block statistics.
#pragma once

#include "block/half_pel_vec.hpp"
#include "block/rows_vec.hpp"
#include "block/statistics_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Sum and sum of squares of vectors of words.
template <int B>
class MomentSums {
 public:
  /// |words| below 32768, or any signed words: a pair of squares wraps at 2^31 as 32 bits do.
  MOX_INLINE void add_squares(simd::s16<B> words) { squares_ = squares_ + madd(words, words); }
  MOX_INLINE void add(simd::u8<B> samples) {
    sum_ = sum_ + sad(samples, simd::zero<simd::u8, B>());
    add_squares(wide_lo(samples)), add_squares(wide_hi(samples));
  }
  MOX_INLINE void add(simd::s16<B> samples) {
    sum_ = sum_ + madd(samples, simd::splat<simd::s16, B>(1));
    add_squares(samples);
  }
  MOX_INLINE Moments result() const { return {total(sum_), total(squares_)}; }

 private:
  simd::s32<B> sum_ = simd::zero<simd::s32, B>(), squares_ = simd::zero<simd::s32, B>();
};

template <int W, int H>
MOX_INLINE Moments moments(const Mox8u* src, Mox32s srcStep) {
  Rows<W, simd::kBlocks> rows(src, srcStep, H);
  MomentSums<rows.B> sums;
  for (int y = 0; y < H; y += rows.kRows, rows.down()) sums.add(rows.at(0));
  return sums.result();
}

template <int W, int H>
MOX_INLINE Moments moments(const Mox16s* src, Mox32s srcStep) {
  static_assert(W == 8);
  Rows<2 * W, simd::kBlocks> rows(reinterpret_cast<const Mox8u*>(src), srcStep, H);
  MomentSums<rows.B> sums;
  for (int y = 0; y < H; y += rows.kRows, rows.down()) sums.add(simd::as<simd::s16>(rows.at(0)));
  return sums.result();
}

/// Sum of the distances of W x W samples from a value.
template <int W>
MOX_INLINE Mox32s distance_from(const Mox8u* src, Mox32s srcStep, Mox32s value) {
  Rows<W, simd::kBlocks> rows(src, srcStep, W);
  const auto values = simd::splat<simd::u8, rows.B>(value);
  auto sum = simd::zero<simd::s32, rows.B>();
  for (int y = 0; y < W; y += rows.kRows, rows.down()) sum = sum + sad(rows.at(0), values);
  return total(sum);
}

template <int W>
MoxStatus mean_abs_dev(const Mox8u* src, Mox32s srcStep, Mox32s* result) {
  const Mox32s mean = (distance_from<W>(src, srcStep, 0) + W * W / 2) / (W * W);
  *result = distance_from<W>(src, srcStep, mean);
  return moxStsOk;
}

/// Errors of the left and the right half of rows of 16; each block of a vector has sums of its own.
template <int B>
struct HalvesError {
  simd::s32<B> predicted = simd::zero<simd::s32, B>();  ///< in elements 0 and 2
  simd::s32<B> left = simd::zero<simd::s32, B>(), right = simd::zero<simd::s32, B>();

  MOX_INLINE void add(simd::u8<B> samples, simd::u8<B> prediction) {
    predicted = predicted + sad(prediction, simd::zero<simd::u8, B>());
    const auto l = wide_lo(samples) - wide_lo(prediction), r = wide_hi(samples) - wide_hi(prediction);
    left = left + madd(l, l), right = right + madd(r, r);
  }
  /// The two 8x8 blocks of block I.
  template <int I, bool kWordMean>
  MOX_INLINE void store(const Mox32s* srcSum, Mox32s* var, Mox32s* mean) const {
    Mox32s sums[4];
    simd::store_row(simd::part<I>(predicted), sums);
    const PredictionError errors[] = {{sums[0], total(simd::part<I>(left))}, {sums[2], total(simd::part<I>(right))}};
    for (int k = 0; k < 2; ++k) store_error_statistics<kWordMean>(errors[k], srcSum[k], var + k, mean + k);
  }
};

template <int H, HalfPel P>
MoxStatus var_mean_diff(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, const Mox32s* srcSum,
                        Mox32s* var, Mox32s* mean) {
  constexpr int B = H == 16 ? simd::kBlocks : 1, kHeight = 8 * B;
  for (std::ptrdiff_t y = 0; y < H; y += kHeight, srcSum += 2 * B, var += 2 * B, mean += 2 * B) {
    Rows<16, B> cur(src + y * srcStep, srcStep, kHeight), rows(ref + y * refStep, refStep, kHeight);
    Sampler<Rows<16, B>, P> sample(rows);
    HalvesError<B> error;
    for (int i = 0; i < 8; ++i, cur.down()) error.add(cur.at(0), sample(rows));
    error.template store<0, H == 16>(srcSum, var, mean);
    if constexpr (B == 2) error.template store<1, H == 16>(srcSum + 2, var + 2, mean + 2);
  }
  return moxStsOk;
}

/// Index: half_pel_index.
inline constexpr auto kVarMeanDiff16x8 =
    make_table<4>([]<std::size_t I>() -> VarMeanDiffKernel { return &var_mean_diff<8, half_pel(I)>; });
inline constexpr auto kVarMeanDiff16x16 =
    make_table<4>([]<std::size_t I>() -> VarMeanDiffKernel { return &var_mean_diff<16, half_pel(I)>; });

/// Four rows of differences: groups of 8 words, each of two 4x4 blocks side by side.
template <int kGroups>
struct FourRows {
  using Words = WordsOf<kGroups>;
  Words row[4];

  /// The two sums of group I, each as two terms. With bytes as samples, kBytes, the four rows may be added as words:
  /// -1020 to 1020.
  template <int I, bool kBytes>
  MOX_INLINE simd::s32<1> sums() const {
    const auto ones = simd::splat<simd::s16, 1>(1);
    const auto words = [this](int y) { return simd::as<simd::s16>(row[y].template group<I>()); };
    if constexpr (kBytes) return madd(words(0) + words(1) + (words(2) + words(3)), ones);
    return madd(words(0), ones) + madd(words(1), ones) + (madd(words(2), ones) + madd(words(3), ones));
  }
  /// The two blocks of group I.
  template <int I>
  MOX_INLINE void store(Mox16s* diff) const {
    const auto words = [this](int y) { return simd::as<simd::s16>(row[y].template group<I>()); };
    simd::store_row(lo64(words(0), words(1)), diff);
    simd::store_row(lo64(words(2), words(3)), diff + 8);
    simd::store_row(hi64(words(0), words(1)), diff + 16);
    simd::store_row(hi64(words(2), words(3)), diff + 24);
  }
};

/// Sums of W / 4 blocks.
template <int W>
MOX_INLINE void store_sums(simd::s32<1> sums, Mox16s* p) {
  const auto words = packs(sums, sums);
  W == 16 ? simd::raw_store8(p, words.r) : simd::raw_store4(p, words.r);
}
template <int W>
MOX_INLINE void store_sums(simd::s32<1> sums, Mox32s* p) {
  W == 16 ? simd::raw_store16(p, sums.r) : simd::raw_store8(p, sums.r);
}

/// A row of W samples as words.
template <int W>
MOX_INLINE auto load_samples(const Mox8u* p) {
  return Columns<W>::load(p, 0);
}
template <int W>
MOX_INLINE auto load_samples(const Mox16u* p) {
  return Columns<W>::load_words(p, 0);
}

template <int W, bool kDiff, class T>
MoxStatus sums_diff(const T* src, Mox32s srcStep, const T* pred, Mox32s predStep, DifferenceSum<T>* sums,
                    [[maybe_unused]] Mox16s* diff) {
  constexpr bool kBytes = sizeof(T) == 1;
  for (int y = 0; y < W; y += 4, sums += W / 4) {
    FourRows<W / 8> rows;
    for (auto& row : rows.row) {
      row = difference(load_samples<W>(src), load_samples<W>(pred));
      src = step_bytes(src, srcStep), pred = step_bytes(pred, predStep);
    }
    store_sums<W>(hadd(rows.template sums<0, kBytes>(), rows.template sums<W / 8 - 1, kBytes>()), sums);
    if constexpr (kDiff) {
      rows.template store<0>(diff);
      if constexpr (W == 16) rows.template store<1>(diff + 32);
      diff += 4 * W;
    }
  }
  return moxStsOk;
}

template <bool kDiffU, bool kDiffV>
MoxStatus sums_diff_channels(const Mox8u* src, Mox32s srcStep, const Mox8u* predU, Mox32s predStepU, const Mox8u* predV,
                             Mox32s predStepV, Mox16s* sumsU, [[maybe_unused]] Mox16s* diffU, Mox16s* sumsV,
                             [[maybe_unused]] Mox16s* diffV) {
  for (int i = 0; i < 4; i += 2) {
    FourRows<2> rows;
    for (auto& row : rows.row) {
      const auto pred = WordsOf<2>::of(simd::wide_low(load_bytes<8>(predU)), simd::wide_low(load_bytes<8>(predV)));
      row = difference(Channels::load(src, 0), pred);
      src += srcStep, predU += predStepU, predV += predStepV;
    }
    const auto sums = hadd(rows.template sums<0, true>(), rows.template sums<1, true>());
    store_sums<8>(sums, sumsU + i);
    store_sums<8>(simd::permute<0x4E>(sums), sumsV + i);
    if constexpr (kDiffU) rows.template store<0>(diffU + 16 * i);
    if constexpr (kDiffV) rows.template store<1>(diffV + 16 * i);
  }
  return moxStsOk;
}

/// Index: channels_index.
inline constexpr auto kSumsDiffChannels = make_table<4>(
    []<std::size_t I>() -> SumsDiffChannelsKernel { return &sums_diff_channels<(I & 1) != 0, (I & 2) != 0>; });

template <template <int> class V, int B>
MOX_INLINE V<B> distance(V<B> a, V<B> b) {
  return subs(a, b) | subs(b, a);
}

/// All ones where the larger of two distances, limited to the signed range of the elements, does not exceed the
/// threshold. Both are compared without sign, moved by half the range.
template <template <int> class V, int B>
MOX_INLINE V<B> within(V<B> across, V<B> down, V<B> most, V<B> movedThreshold) {
  const V<B> moved = min(max(across, down), most) + (most + simd::splat<V, B>(1));
  return equal(subs(moved, movedThreshold), simd::zero<V, B>());
}

inline Mox32s count_edges(const Mox8u* src, Mox32s srcStep, Mox32s threshold) {
  const auto most = simd::splat<simd::u8, 1>(127), moved = simd::splat<simd::u8, 1>(threshold + 128);
  auto inside = simd::zero<simd::u8, 1>();
  auto row = load_bytes<16>(src);
  for (int y = 0; y < 15; ++y) {
    const auto below = load_bytes<16>(src += srcStep);
    // Column 15 has itself for a neighbour, and is not counted.
    const auto right = simd::align<1>(row, row);
    inside = inside - within(distance(row, right), distance(row, below), most, moved);
    row = below;
  }
  // Lanes hold 0 to 15.
  alignas(16) static constexpr Mox8u kColumns[16] = {255, 255, 255, 255, 255, 255, 255, 255,
                                                     255, 255, 255, 255, 255, 255, 255, 0};
  return 225 - total(sad(inside & load_bytes<16>(kColumns), simd::zero<simd::u8, 1>()));
}

inline Mox32s count_edges(const Mox16u* src, Mox32s srcStep, Mox32s threshold) {
  constexpr int B = simd::kBlocks;
  const auto most = simd::splat<simd::u16, B>(32767), moved = simd::splat<simd::u16, B>(threshold + 32768);
  auto sum = simd::zero<simd::s32, B>();
  // Columns 0 to 7 and 7 to 14, of which column 7 counts once: nothing is read beyond column 15.
  alignas(32) static constexpr Mox16s kColumns[16] = {1, 1, 1, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1};
  const auto strips = simd::strips<B>(14);
  for (int i = 0; i < 2; i += B) {
    const Mox16u* p = src + 7 * i;
    auto inside = simd::zero<simd::u16, B>();
    auto row = simd::load16<simd::u16, B>(p, strips);
    for (int y = 0; y < 15; ++y) {
      const auto right = simd::load16<simd::u16, B>(p + 1, strips);
      p = step_bytes(p, srcStep);
      const auto below = simd::load16<simd::u16, B>(p, strips);
      inside = inside - within(distance(row, right), distance(row, below), most, moved);
      row = below;
    }
    sum = sum + madd(simd::as<simd::s16>(inside), simd::load_row<simd::s16, B>(kColumns + 8 * i));
  }
  return 225 - total(sum);
}

}  // namespace mox::vec
