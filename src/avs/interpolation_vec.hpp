/// Vector kernels of AVS luma interpolation. A block of a vector is a strip 8 columns wide.
///
/// The filters as six taps around a sample, from 2 before it to 3 behind it. Along one axis they run on bytes, which
/// holds a half sample at 8 times its value in -510..2550. Positions between take half samples along one axis first,
/// and the other axis from these as words.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "avs/interpolation_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

struct AvsTaps {
  int weight[6];
  bool half;
};
/// [fraction]
inline constexpr AvsTaps kAvsTaps[4] = {{{0, 0, 1, 0, 0, 0}, false},
                                        {{-1, -2, 96, 42, -7, 0}, false},
                                        {{0, -1, 5, 5, -1, 0}, true},
                                        {{0, -7, 42, 96, -2, -1}, false}};

/// Weights of pairs of bytes.
template <int B>
MOX_INLINE simd::u8<B> avs_weights(int first, int second) {
  return simd::as<simd::u8>(simd::splat<simd::u16, B>((first & 0xFF) | (second & 0xFF) << 8));
}

/// Pairs of samples around each of 8 columns: those 1 before and 0, 1 and 2 behind, 2 before and 3 behind.
template <int B>
struct AvsPairs {
  simd::u8<B> near, behind, far;
};

/// 13 columns as two runs of 8: 2 before to 5 behind the first, 3 to 10 behind it.
template <int B>
MOX_INLINE simd::u8<B> load_avs_span(const Mox8u* s, const simd::Strips<B>& strips) {
  return simd::load8x2<simd::u8, B>(s - 2, 5, strips);
}

/// Where in a span the samples `first` and `second` behind each column are.
template <int kFirst, int kSecond>
inline constexpr auto kAvsSpanPairs = make_table<16>([]<std::size_t I>() {
  const int column = static_cast<int>(I / 2) + (I % 2 == 0 ? kFirst : kSecond);
  return static_cast<Mox8u>(column <= 5 ? column + 2 : column + 5);
});

template <int B>
MOX_INLINE AvsPairs<B> avs_pairs_across(const Mox8u* s, const simd::Strips<B>& strips) {
  const auto span = load_avs_span<B>(s, strips);
  const auto pick = [&](const auto& where) { return lookup(span, simd::table<simd::u8, B>(where.data())); };
  return {pick(kAvsSpanPairs<-1, 0>), pick(kAvsSpanPairs<1, 2>), pick(kAvsSpanPairs<-2, 3>)};
}

template <int B>
MOX_INLINE AvsPairs<B> avs_pairs_down(const Mox8u* s, std::ptrdiff_t step, const simd::Strips<B>& strips) {
  const auto row = [&](int y) { return simd::load8<simd::u8, B>(s + y * step, strips); };
  return {lo8(row(-1), row(0)), lo8(row(1), row(2)), lo8(row(-2), row(3))};
}

/// Half samples at 8 times their value.
template <int B>
MOX_INLINE simd::s16<B> avs_half(simd::u8<B> near, simd::u8<B> behind) {
  return maddubs(near, avs_weights<B>(-1, 5)) + maddubs(behind, avs_weights<B>(5, -1));
}

/// Samples of a filter along one axis, not yet limited to 0..255.
template <AvsTaps kTaps, int B>
MOX_INLINE simd::s16<B> avs_filtered(const AvsPairs<B>& pairs) {
  const auto& w = kTaps.weight;
  if constexpr (kTaps.half) return mulhrs(avs_half(pairs.near, pairs.behind), simd::splat<simd::s16, B>(4096));
  // The sum is 35190 at most; from 32640 on it gives 255, so that it may saturate in the end.
  const auto first = maddubs(pairs.near, avs_weights<B>(w[1], w[2])) + maddubs(pairs.far, avs_weights<B>(w[0], w[5])) +
                     simd::splat<simd::s16, B>(64);  // -1785..24544
  return simd::shr<7>(adds(first, maddubs(pairs.behind, avs_weights<B>(w[3], w[4]))));
}

/// Half samples of a half sample, at 64 times their value: -10200..26520. Taps lie `step` words apart.
template <int B>
MOX_INLINE simd::s16<B> avs_centre(const Mox16s* t, std::ptrdiff_t step, const simd::Strips<B>& strips) {
  const auto at = [&](int i) { return simd::load16<simd::s16, B>(t + i * step, strips); };
  const auto middle = at(0) + at(1);  // 5100 at most
  return simd::shl<2>(middle) + middle - (at(-1) + at(2));
}

/// Quarter samples of half samples: the sum of products is 351,900 at most.
template <AvsTaps kTaps, int B>
MOX_INLINE simd::s16<B> avs_quarter_of_half(const Mox16s* t, std::ptrdiff_t step, const simd::Strips<B>& strips) {
  using simd::s16, simd::s32;
  const auto& w = kTaps.weight;
  auto low = simd::splat<s32, B>(512), high = low;
  for (int i = 0; i < 6; i += 2) {
    const auto weights = simd::as<s16>(simd::splat<s32, B>((w[i] & 0xFFFF) | shl32(w[i + 1], 16)));
    const auto a = simd::load16<s16, B>(t + (i - 2) * step, strips),
               b = simd::load16<s16, B>(t + (i - 1) * step, strips);
    low = low + madd(lo16(a, b), weights);
    high = high + madd(hi16(a, b), weights);
  }
  return packs(simd::shr<10>(low), simd::shr<10>(high));
}

/// A strip in each block of a vector.
template <int B>
struct AvsStrip {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  Mox8u* dst;
  std::ptrdiff_t dstStep;
  int rows;  ///< 16 at most
  simd::Strips<B> srcStrips, dstStrips;

  /// Stores value(row) for all rows.
  template <class Value>
  MOX_INLINE void fill(Value value) const {
    Mox8u* to = dst;
    for (int y = 0; y < rows; ++y, to += dstStep) {
      const auto v = value(y);
      simd::store8(packus(v, v), to, dstStrips);
    }
  }
  const Mox8u* row(int y) const { return src + y * srcStep; }
};

/// Runs body on the strips of a block: side by side if it is 16 wide, its upper and its lower half if it is 8 wide.
template <int W, class Body>
MOX_INLINE void for_avs_strips(const MoxiInterpKernelArgs<Mox8u>& a, Body body) {
  constexpr int B = simd::kBlocks;
  for (int y = 0; y < a.height; y += kLocalHeight) {
    const int rows = std::min(a.height - y, kLocalHeight);
    const Mox8u* const src = a.pSrc + y * a.srcStep;
    Mox8u* const dst = a.pDst + y * a.dstStep;
    if constexpr (W == 8) {
      const int part = rows / B;
      body(AvsStrip<B>{src, a.srcStep, dst, a.dstStep, part, simd::strips<B>(part * a.srcStep),
                       simd::strips<B>(part * a.dstStep)});
    } else {
      for (int x = 0; x < W; x += 8 * B)
        body(AvsStrip<B>{src + x, a.srcStep, dst + x, a.dstStep, rows, simd::strips<B>(8), simd::strips<B>(8)});
    }
  }
}

/// Rows of words between the two stages of a position: those of one strip after those of the other.
template <int B, int kWords, int kRows>
struct AvsHalfRows {
  alignas(32) Mox16s words[kRows * B * kWords];
  static constexpr std::ptrdiff_t kStep = B * kWords;
  MOX_INLINE static simd::Strips<B> strips() { return simd::strips<B>(kWords * static_cast<int>(sizeof(Mox16s))); }
};

/// Fractions along one axis.
template <int kDx, int kDy, int B>
MOX_INLINE void interpolate_avs_axis(const AvsStrip<B>& strip) {
  strip.fill([&](int y) {
    if constexpr (kDy == 0)
      return avs_filtered<kAvsTaps[kDx]>(avs_pairs_across<B>(strip.row(y), strip.srcStrips));
    else
      return avs_filtered<kAvsTaps[kDy]>(avs_pairs_down<B>(strip.row(y), strip.srcStep, strip.srcStrips));
  });
}

/// Half samples across first, then any fraction down, or the mean of the centre half sample and a full sample.
template <int kDx, int kDy, int B>
MOX_INLINE void interpolate_avs_across_first(const AvsStrip<B>& strip) {
  constexpr bool kQuarter = kDx == 2 && kDy != 2;
  constexpr int kBefore = kQuarter ? 2 : 1, kAfter = kQuarter ? 3 : 2;
  AvsHalfRows<B, 8, kLocalRows> half;
  Mox16s* to = half.words;
  for (int y = -kBefore; y < strip.rows + kAfter; ++y, to += half.kStep) {
    const auto pairs = avs_pairs_across<B>(strip.row(y), strip.srcStrips);
    simd::store16(avs_half(pairs.near, pairs.behind), to, half.strips());
  }
  strip.fill([&](int y) {
    const Mox16s* const t = half.words + (y + kBefore) * half.kStep;
    if constexpr (kQuarter) {
      return avs_quarter_of_half<kAvsTaps[kDy], B>(t, half.kStep, half.strips());
    } else {
      const auto centre = avs_centre<B>(t, half.kStep, half.strips());
      if constexpr (kDx == 2) return mulhrs(centre, simd::splat<simd::s16, B>(512));
      const auto full = simd::load8_wide<B>(strip.row(y + (kDy == 3)) + (kDx == 3), strip.srcStrips);
      return simd::shr<7>(adds(centre, simd::shl<6>(full) + simd::splat<simd::s16, B>(64)));
    }
  });
}

/// Half samples down first, for the 13 columns that quarters across are made from.
template <int kDx, int B>
MOX_INLINE void interpolate_avs_down_first(const AvsStrip<B>& strip) {
  AvsHalfRows<B, 16, kLocalHeight> half;
  Mox16s* to = half.words;
  for (int y = 0; y < strip.rows; ++y, to += half.kStep) {
    const auto span = [&](int i) { return load_avs_span<B>(strip.row(y + i), strip.srcStrips); };
    const auto a = span(-1), b = span(0), c = span(1), d = span(2);
    simd::store16(avs_half(lo8(a, b), lo8(c, d)), to, half.strips());
    simd::store16(avs_half(hi8(a, b), hi8(c, d)), to + 5, half.strips());
  }
  strip.fill(
      [&](int y) { return avs_quarter_of_half<kAvsTaps[kDx], B>(half.words + y * half.kStep + 2, 1, half.strips()); });
}

template <int W, int kDx, int kDy>
MoxStatus interpolate_avs_luma(const MoxiInterpKernelArgs<Mox8u>& a) {
  for_avs_strips<W>(a, [](const auto& strip) {
    if constexpr (kDx == 0 || kDy == 0)
      interpolate_avs_axis<kDx, kDy>(strip);
    else if constexpr (kDx != 2 && kDy == 2)
      interpolate_avs_down_first<kDx>(strip);
    else
      interpolate_avs_across_first<kDx, kDy>(strip);
  });
  return moxStsOk;
}

/// [width AND 16 | dy * 4 | dx], widths 8 and 16
inline constexpr auto avs_interpolate_luma_type_table_8u_ssse3 =
    make_table<32>([]<std::size_t I>() -> InterpKernel<Mox8u> {
      if constexpr (I % 16 == 0) return px::avs_interpolate_luma_type_table_8u_ssse3[I];
      return &interpolate_avs_luma<avs_luma_width(I), I % 4, I / 4 % 4>;
    });

}  // namespace mox::vec
