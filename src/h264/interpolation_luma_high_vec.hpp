/// Vector kernels of H.264 luma interpolation, 16-bit.
///
/// The arithmetic goes by the bit depth. Words hold half samples along one axis of up to 14 bits, and sums for the
/// centre half sample of up to 10 bits; anything deeper is done in doublewords. One body over the positions' data
/// serves both.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/generation.hpp"
#include "h264/interpolation_luma_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Pairs of taps of one weight, added: 1, -5 and 20.
template <class Vector>
struct LumaTaps {
  Vector outer, middle, inner;
};
template <class At>
MOX_INLINE auto luma_taps(At at) {
  return LumaTaps<decltype(at(0))>{at(-2) + at(3), at(-1) + at(2), at(0) + at(1)};
}

/// Columns as words: 16 in two blocks, 8 in each of the blocks, or 4 in each half of a block. The latter two are
/// strips, each `gap` bytes below the one before.
template <int Columns, int Blocks>
struct LumaWords {
  static constexpr int kColumns = Columns, B = Blocks, kStrips = kColumns == 4 ? 2 : kColumns == 8 ? B : 1;
  using Vector = simd::s16<B>;

  MOX_INLINE static Vector load(const Mox16u* p, std::ptrdiff_t gap) {
    if constexpr (kColumns == 4) return simd::load8x2<simd::s16, B>(p, gap, simd::strips<B>(0));
    if constexpr (kColumns == 8) return simd::load16<simd::s16, B>(p, simd::strips<B>(gap));
    if constexpr (kColumns == 16) return simd::load_row<simd::s16, B>(p);
  }
  MOX_INLINE static void store(Vector v, Mox16u* p, std::ptrdiff_t gap) {
    if constexpr (kColumns == 4) simd::store8x2(v, p, gap, simd::strips<B>(0));
    if constexpr (kColumns == 8) simd::store16(v, p, simd::strips<B>(gap));
    if constexpr (kColumns == 16) simd::store_row(v, p);
  }
  MOX_INLINE static Vector limit(Vector v, Mox32s max) {
    return simd::min(simd::max(v, simd::zero<simd::s16, B>()), simd::splat<simd::s16, B>(max));
  }
  MOX_INLINE static Vector mean(Vector a, Vector b) {
    return simd::as<simd::s16>(avg(simd::as<simd::u16>(a), simd::as<simd::u16>(b)));
  }
  /// Half samples along one axis, up to 14 bits: taps are 32766 at most. Divided by 16 in two steps, which come to
  /// -40958..40957 between and at the end; what saturates there is outside the samples' range by then.
  MOX_INLINE static Vector half(const LumaTaps<Vector>& t) {
    const Vector between = adds(t.inner - t.middle, simd::shr<2>(t.outer - t.middle));
    const Vector sixteenth = adds(simd::shr<2>(between), t.inner);
    return mean(simd::max(sixteenth, simd::zero<simd::s16, B>()), simd::zero<simd::s16, B>());
  }
  /// Sums of taps less 16384, up to 10 bits: -26614..26582. Wraps on the way.
  MOX_INLINE static Vector sum(const LumaTaps<Vector>& t) {
    const Vector fifth = simd::shl<2>(t.inner) - t.middle;
    return t.outer + fifth * simd::splat<simd::s16, B>(5) - simd::splat<simd::s16, B>(16384);
  }
  MOX_INLINE static Vector half_of_sum(Vector sum) {
    return simd::shr<5>(sum + simd::splat<simd::s16, B>(16)) + simd::splat<simd::s16, B>(512);
  }
  /// Centre half samples from the sums of six rows, and 32 times what these lack.
  MOX_INLINE static Vector centre(const Vector* sums) {
    const auto weights = [](int first, int second) {
      return simd::as<simd::s16>(simd::splat<simd::s32, B>((first & 0xFFFF) | shl32(second, 16)));
    };
    const auto bias = simd::splat<simd::s32, B>(32 * 16384 + 512);
    const auto low = madd(lo16(sums[0], sums[1]), weights(1, -5)) + madd(lo16(sums[2], sums[3]), weights(20, 20)) +
                     madd(lo16(sums[4], sums[5]), weights(-5, 1)) + bias;
    const auto high = madd(hi16(sums[0], sums[1]), weights(1, -5)) + madd(hi16(sums[2], sums[3]), weights(20, 20)) +
                      madd(hi16(sums[4], sums[5]), weights(-5, 1)) + bias;
    return packs(simd::shr<10>(low), simd::shr<10>(high));
  }
};

/// Columns as doublewords, 4 a block. Sums of sums are 115,603,740 at most.
template <int Columns>
struct LumaDoublewords {
  static constexpr int kColumns = Columns, B = kColumns / 4, kStrips = 1;
  using Vector = simd::s32<B>;

  MOX_INLINE static Vector load(const Mox16u* p, std::ptrdiff_t) { return simd::load_row_doublewords<B>(p); }
  MOX_INLINE static void store(Vector v, Mox16u* p, std::ptrdiff_t) {
    const auto samples = simd::part<0>(simd::regroup(packus(v, v)));
    if constexpr (B == 1)
      simd::store_rows<8, 1>(simd::as<simd::u8>(samples), p, 0);
    else
      simd::store_row(samples, p);
  }
  MOX_INLINE static Vector limit(Vector v, Mox32s max) {
    return simd::min(simd::max(v, simd::zero<simd::s32, B>()), simd::splat<simd::s32, B>(max));
  }
  MOX_INLINE static Vector mean(Vector a, Vector b) { return simd::shr<1>(a + b + simd::splat<simd::s32, B>(1)); }
  MOX_INLINE static Vector sum(const LumaTaps<Vector>& t) {
    const Vector fifth = simd::shl<2>(t.inner) - t.middle;
    return t.outer + simd::shl<2>(fifth) + fifth;
  }
  MOX_INLINE static Vector half_of_sum(Vector sum) { return simd::shr<5>(sum + simd::splat<simd::s32, B>(16)); }
  MOX_INLINE static Vector half(const LumaTaps<Vector>& t) { return half_of_sum(sum(t)); }
  MOX_INLINE static Vector centre(const Vector* sums) {
    const Vector v = sum(luma_taps([sums](int i) { return sums[i + 2]; }));
    return simd::shr<10>(v + simd::splat<simd::s32, B>(512));
  }
};

/// `height` rows of the columns that the lanes take: 16 at most for positions with the centre half sample.
template <LumaPosition kPosition, class Lanes>
MOX_INLINE void interpolate_luma_lanes(const Mox16u* src, std::ptrdiff_t step, Mox16u* dst, std::ptrdiff_t dstStep,
                                       int height, Mox32s max) {
  constexpr bool kCentre = kPosition.has(LumaSample::kJ);
  const int rows = height / Lanes::kStrips;
  const std::ptrdiff_t gap = 2 * rows * step, dstGap = 2 * rows * dstStep;
  const auto taps = [gap](const Mox16u* p, std::ptrdiff_t distance) {
    return luma_taps([=](int i) { return Lanes::load(p + i * distance, gap); });
  };
  typename Lanes::Vector sums[kCentre ? kLocalRows : 1];  // across, from two rows above the block on
  if constexpr (kCentre) {
    const Mox16u* p = src - 2 * step;
    for (int y = 0; y < rows + 5; ++y, p += step) sums[y] = Lanes::sum(taps(p, 1));
  }
  const auto value = [&]<LumaPoint kPoint>(int y) {
    const Mox16u* const p = src + kPoint.right + kPoint.down * step;
    if constexpr (kPoint.sample == LumaSample::kG) return Lanes::load(p, gap);
    if constexpr (kPoint.sample == LumaSample::kB && !kCentre) return Lanes::limit(Lanes::half(taps(p, 1)), max);
    if constexpr (kPoint.sample == LumaSample::kB && kCentre)
      return Lanes::limit(Lanes::half_of_sum(sums[y + 2 + kPoint.down]), max);
    if constexpr (kPoint.sample == LumaSample::kH) return Lanes::limit(Lanes::half(taps(p, step)), max);
    if constexpr (kPoint.sample == LumaSample::kJ) return Lanes::limit(Lanes::centre(sums + y), max);
  };
  for (int y = 0; y < rows; ++y, src += step, dst += dstStep) {
    auto samples = value.template operator()<kPosition.u>(y);
    if constexpr (kPosition.v.sample != LumaSample::kNone)
      samples = Lanes::mean(samples, value.template operator()<kPosition.v>(y));
    Lanes::store(samples, dst, dstGap);
  }
}

/// Greatest bit depth that words do for a position.
constexpr Mox32s luma_word_depth(const LumaPosition& position) {
  if (position.has(LumaSample::kJ)) return 10;
  return position.has(LumaSample::kB) || position.has(LumaSample::kH) ? 14 : 16;
}

/// Takes as many columns as there are for whole vectors, from x on.
template <LumaPosition kPosition, class Lanes>
MOX_INLINE void interpolate_luma_columns(const MoxiInterpKernelArgs<Mox16u>& a, int& x, int top, int height) {
  const Mox16u* const src = a.pSrc + top * a.srcStep;
  Mox16u* const dst = a.pDst + top * a.dstStep;
  for (; x + Lanes::kColumns <= a.width; x += Lanes::kColumns)
    interpolate_luma_lanes<kPosition, Lanes>(src + x, a.srcStep, dst + x, a.dstStep, height, sample_max(a.bitDepth));
}

/// `height` rows from `top` on of a block of any width that is a multiple of 4.
template <LumaPosition kPosition>
MOX_INLINE void interpolate_luma_rows(const MoxiInterpKernelArgs<Mox16u>& a, int top, int height) {
  int x = 0;
  if (a.bitDepth <= luma_word_depth(kPosition)) {
    constexpr int kStrips = kPosition.has(LumaSample::kJ) ? simd::kBlocks : 1;
    if constexpr (simd::kBlocks == 2) interpolate_luma_columns<kPosition, LumaWords<16, 2>>(a, x, top, height);
    interpolate_luma_columns<kPosition, LumaWords<8, kStrips>>(a, x, top, height);
    interpolate_luma_columns<kPosition, LumaWords<4, 1>>(a, x, top, height);
  } else {
    if constexpr (simd::kBlocks == 2) interpolate_luma_columns<kPosition, LumaDoublewords<8>>(a, x, top, height);
    interpolate_luma_columns<kPosition, LumaDoublewords<4>>(a, x, top, height);
  }
}

/// Where rows of sums are kept, blocks higher than 16 rows are done in parts.
template <LumaPosition kPosition>
MoxStatus interpolate_luma_16u(const MoxiInterpKernelArgs<Mox16u>& a) {
  if constexpr (kPosition.has(LumaSample::kJ)) {
    for (int top = 0; top < a.height; top += kLocalHeight)
      interpolate_luma_rows<kPosition>(a, top, std::min(a.height - top, kLocalHeight));
  } else {
    interpolate_luma_rows<kPosition>(a, 0, a.height);
  }
  return moxStsOk;
}

/// [dy * 4 | dx], any width
inline constexpr auto h264_interpolate_luma_type_table_16u_pxmx = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox16u> { return &interpolate_luma_16u<luma_points::kPositions[I]>; });

/// [dx * 4 | dy], any width
inline constexpr auto InterpolFnTbl_16u = make_table<16>([]<std::size_t I>() -> InterpKernel<Mox16u> {
  return h264_interpolate_luma_type_table_16u_pxmx[luma_position(I / 4, I % 4)];
});

}  // namespace mox::vec
