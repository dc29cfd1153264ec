/// Vector kernels of H.264 weighted prediction.
///
/// The samples of two blocks stand side by side as pairs, weighted and added up by one instruction. All that streams
/// ask for fits words or doublewords; other weights, shifts and offsets are left to the portable kernels.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/block_pair_vec.hpp"
#include "h264/weighting_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Pairs of bytes. Sums in words are multiplied with a power of two and divided by 32768, which shifts and rounds.
class WeightedPairs {
 public:
  static constexpr bool fits(const Weighting& by, Mox32s weight1, Mox32s weight2) {
    return !outside(weight1, -128, 128) && !outside(weight2, -128, 128) &&
           (!negative(by, weight1, weight2) || (weight1 > -128 && weight2 > -128)) && by.shift <= 15 &&
           by.rounding == 1 << by.shift >> 1;
  }
  WeightedPairs(const Weighting& by, Mox32s weight1, Mox32s weight2) {
    const int sign = negative(by, weight1, weight2) ? -1 : 1;
    weights_ = (sign * weight1 & 0xFF) | (sign * weight2 & 0xFF) << 8;
    factor_ = sign * (32768 >> by.shift);
  }
  template <int B>
  MOX_INLINE simd::s16<B> operator()(simd::u8<B> pairs) const {
    const auto sums = maddubs(pairs, simd::as<simd::u8>(simd::splat<simd::u16, B>(weights_)));
    return mulhrs(sums, simd::splat<simd::s16, B>(factor_));
  }

 private:
  /// Weights and factor change their signs where a weight of 128 would be no signed byte, a factor of 32768 no signed
  /// word.
  static constexpr bool negative(const Weighting& by, Mox32s weight1, Mox32s weight2) {
    return weight1 == 128 || weight2 == 128 || by.shift == 0;
  }

  int weights_, factor_;
};

/// Bytes of two blocks. Sums are -32640..32640.
template <bool kOffset>
class WeightedBytes {
 public:
  static constexpr bool fits(const Weighting& by) {
    return WeightedPairs::fits(by, by.weight1, by.weight2) && !outside(by.weight1 + by.weight2, -128, 128) &&
           !outside(by.offset, -32768, 32767);
  }
  explicit WeightedBytes(const Weighting& by) : shifted_(by, by.weight1, by.weight2), offset_(by.offset) {}

  template <int B>
  MOX_INLINE simd::u8<B> operator()(simd::u8<B> a, simd::u8<B> b) const {
    return packus(result(lo8(a, b)), result(hi8(a, b)));
  }

 private:
  template <int B>
  MOX_INLINE simd::s16<B> result(simd::u8<B> pairs) const {
    if constexpr (kOffset) return adds(shifted_(pairs), simd::splat<simd::s16, B>(offset_));
    return shifted_(pairs);
  }

  WeightedPairs shifted_;
  int offset_;
};

/// Bytes of one block, paired with 1 << shift, whose weight is the offset. Sums that saturate are far enough outside
/// 0..255 by a shift of up to 7. Without a shift they are -32512..32767: so -32768 never meets a factor of -32768.
class WeightedByte {
 public:
  static constexpr bool fits(const Weighting& by) {
    return WeightedPairs::fits(by, by.weight1, by.offset) && by.offset < 128 && by.shift <= 7;
  }
  explicit WeightedByte(const Weighting& by) : shifted_(by, by.weight1, by.offset), one_(1 << by.shift) {}

  template <int B>
  MOX_INLINE simd::u8<B> operator()(simd::u8<B> a) const {
    const auto one = simd::splat<simd::u8, B>(one_);
    return packus(shifted_(lo8(a, one)), shifted_(hi8(a, one)));
  }

 private:
  WeightedPairs shifted_;
  int one_;
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
  MOX_INLINE simd::u8<B> operator()(simd::u8<B> a) const {
    return (*this)(a, a);
  }
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

/// Two blocks. A width or height of 0 stands for that of `size`, the width an even one.
template <int W, int H, class Samples, class T>
MoxStatus weight_pair(const BlockPair<T>& blocks, Samples samples, MoxiSize size) {
  BlockPair<T> at = blocks;
  if constexpr (H > 0) size.height = H;
  return combine_block<W>(at, size, [=](auto a, auto b) { return samples(a, b); });
}

/// One block, in place.
template <int W, class Samples, class T>
MoxStatus weight_single(T* block, std::ptrdiff_t step, Samples samples, MoxiSize size) {
  BlockPair<T> at = {block, step, block, step, block, step};
  return combine_block<W>(at, size, [=](auto a) { return samples(a); });
}

/// [bidir_index], for sides of 2, 4, 8 and 16.
template <class Samples, class T>
inline constexpr auto weight_pair_kernels = make_table<16>([]<std::size_t I>() {
  constexpr int kWidth = 2 << I / 4, kHeight = 2 << I % 4;
  return &weight_pair < kWidth, is_partition(kWidth, kHeight) ? kHeight : 0, Samples, T > ;
});
/// [width], any height.
template <class Samples, class T>
inline constexpr auto weight_single_kernels = make_table<17>([]<std::size_t I>() {
  return &weight_single<fixed_width(I), Samples, T>;
});

/// [width], any height.
inline constexpr auto bidir_average_16u =
    make_table<17>([]<std::size_t I>() { return &average_block<fixed_width(I), 0, Mox16u>; });

MOX_INLINE MoxStatus weight_blocks(const BlockPair<Mox8u>& at, Weighting by, MoxiSize size) {
  if (!WeightedBytes<true>::fits(by)) return px::weight_blocks(at, by, size);
  if (by.offset == 0)
    return weight_pair_kernels<WeightedBytes<false>, Mox8u>[bidir_index(size)](at, WeightedBytes<false>(by), size);
  return weight_pair_kernels<WeightedBytes<true>, Mox8u>[bidir_index(size)](at, WeightedBytes<true>(by), size);
}
MOX_INLINE MoxStatus weight_blocks(const BlockPair<Mox16u>& at, Weighting by, MoxiSize size) {
  if (!WeightedWords::fits(by)) return px::weight_blocks(at, by, size);
  return weight_pair_kernels<WeightedWords, Mox16u>[bidir_index(size)](at, WeightedWords(by), size);
}
MOX_INLINE MoxStatus weight_blocks_of_any_size(const BlockPair<Mox8u>& at, Weighting by, MoxiSize size) {
  using Samples = WeightedBytes<true>;
  if (fixed_width(size.width) > 0 && fixed_width(size.height) > 0) return weight_blocks(at, by, size);
  if (!Samples::fits(by) || size.width % 2 != 0) return px::weight_blocks_of_any_size(at, by, size);
  return weight_pair<0, 0>(at, Samples(by), size);
}

MOX_INLINE MoxStatus weight_block(Mox8u* block, std::ptrdiff_t step, Weighting by, MoxiSize size) {
  if (!WeightedByte::fits(by)) return px::weight_block(block, step, by, size);
  return weight_single_kernels<WeightedByte, Mox8u>[size.width](block, step, WeightedByte(by), size);
}
MOX_INLINE MoxStatus weight_block(Mox16u* block, std::ptrdiff_t step, Weighting by, MoxiSize size) {
  if (!WeightedWords::fits(by)) return px::weight_block(block, step, by, size);
  return weight_single_kernels<WeightedWords, Mox16u>[size.width](block, step, WeightedWords(by), size);
}

}  // namespace mox::vec
