/// Vector kernels of H.264 weighted prediction.
///
/// The samples of two blocks stand side by side as pairs, weighted and added up by one instruction. All that streams
/// ask for fits words or doublewords; other weights, shifts and offsets are left to the portable kernels.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/block_pair_vec.hpp"
#include "h264/weighting_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Bytes, with sums in words: -32640..32640. A product with a power of two and half of 65536 shifts and rounds.
class WeightedBytes {
 public:
  static constexpr bool fits(const Weighting& by) {
    const auto [least, most] = std::minmax(by.weight1, by.weight2);
    return least >= -128 && most <= 128 && !outside(by.weight1 + by.weight2, -128, 128) && by.shift <= 15 &&
           by.rounding == 1 << by.shift >> 1 && !outside(by.offset, -32768, 32767) &&
           (negative(by) || (most < 128 && by.shift > 0));
  }
  explicit WeightedBytes(const Weighting& by) : offset_(by.offset) {
    const int sign = negative(by) ? -1 : 1;
    weights_ = (sign * by.weight1 & 0xFF) | (sign * by.weight2 & 0xFF) << 8;
    scale_ = sign * (32768 >> by.shift);
  }
  template <int B>
  MOX_INLINE simd::u8<B> operator()(simd::u8<B> a, simd::u8<B> b) const {
    const auto result = [this](simd::u8<B> pairs) {
      const auto sums = maddubs(pairs, simd::as<simd::u8>(simd::splat<simd::u16, B>(weights_)));
      return adds(mulhrs(sums, simd::splat<simd::s16, B>(scale_)), simd::splat<simd::s16, B>(offset_));
    };
    return packus(result(lo8(a, b)), result(hi8(a, b)));
  }

 private:
  /// Weights and scale change their signs: so 128 becomes a signed byte, and a scale of 32768 a signed word.
  static constexpr bool negative(const Weighting& by) { return std::min(by.weight1, by.weight2) > -128; }

  int weights_, scale_, offset_;
};

/// Words less 32768, with sums in doublewords. What was taken off, rounding and offset are added before the shift.
class WeightedWords {
 public:
  static constexpr bool fits(const Weighting& by) {
    return !outside(by.weight1, -4096, 4095) && !outside(by.weight2, -4096, 4095) && by.shift <= 12 &&
           !outside(by.rounding, 0, 4096) && !outside(by.offset, -65536, 65535) && by.max <= 65535;
  }
  explicit WeightedWords(const Weighting& by)
      : weights_((by.weight1 & 0xFFFF) | shl32(by.weight2, 16)),
        bias_(by.rounding + shl32(by.offset, by.shift) + 32768 * (by.weight1 + by.weight2)),
        shift_(by.shift),
        max_(by.max) {}
  template <int B>
  MOX_INLINE simd::u8<B> operator()(simd::u8<B> a, simd::u8<B> b) const {
    const auto signed_words = [](simd::u8<B> v) { return simd::as<simd::s16>(v) ^ simd::splat<simd::s16, B>(-32768); };
    const auto result = [this](simd::s16<B> pairs) {
      const auto sums = madd(pairs, simd::as<simd::s16>(simd::splat<simd::s32, B>(weights_)));
      return shr(sums + simd::splat<simd::s32, B>(bias_), shift_);
    };
    const auto first = signed_words(a), second = signed_words(b);
    const auto samples = packus(result(lo16(first, second)), result(hi16(first, second)));
    return simd::as<simd::u8>(min(samples, simd::splat<simd::u16, B>(max_)));
  }

 private:
  int weights_, bias_, shift_, max_;
};

template <class T>
using WeightedSamples = std::conditional_t<sizeof(T) == 1, WeightedBytes, WeightedWords>;

/// Two blocks. A width and height of 0 stand for those of `size`.
template <int W, int H, class T>
MoxStatus weight_pair(const BlockPair<T>& at, const Weighting& by, MoxiSize size) {
  using Samples = WeightedSamples<T>;
  const auto portable = [&] { return px::weight_pair<0, 0>(at, by, size); };
  if (!Samples::fits(by)) return portable();
  const Samples samples(by);
  return combine_block<W, H>(
      at, size, [&](auto a, auto b) { return samples(a, b); }, portable);
}

/// One block, in place.
template <int W, class T>
MoxStatus weight_single(T* block, std::ptrdiff_t step, const Weighting& by, MoxiSize size) {
  using Samples = WeightedSamples<T>;
  const auto portable = [&] { return px::weight_single<0>(block, step, by, size); };
  if (!Samples::fits(by)) return portable();
  const Samples samples(by);
  const BlockPair<T> at = {block, step, block, step, block, step};
  return combine_block<W, 0>(
      at, size, [&](auto a) { return samples(a, a); }, portable);
}

template <int W, int H>
MoxStatus bidir_weight_block_H264_P3P1(const BlockPair<Mox8u>& at, const Weighting& by, MoxiSize size) {
  return weight_pair<W, H>(at, by, size);
}

/// [bidir_index], for sides of 2, 4, 8 and 16.
inline constexpr auto bidir_weight_block_H264_8u_P3P1 = make_table<16>([]<std::size_t I>() {
  constexpr int kWidth = 2 << I / 4;
  return &bidir_weight_block_H264_P3P1<kWidth, 0>;
});

/// [width], any height.
inline constexpr auto unidir_weight_8u =
    make_table<17>([]<std::size_t I>() { return &weight_single<fixed_width(I), Mox8u>; });
inline constexpr auto unidir_weight_16u =
    make_table<17>([]<std::size_t I>() { return &weight_single<fixed_width(I), Mox16u>; });
inline constexpr auto bidir_weight_16u =
    make_table<17>([]<std::size_t I>() { return &weight_pair<fixed_width(I), 0, Mox16u>; });
inline constexpr auto bidir_average_16u =
    make_table<17>([]<std::size_t I>() { return &average_block<fixed_width(I), 0, Mox16u>; });

}  // namespace mox::vec
