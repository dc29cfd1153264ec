/// Vector kernels of AVS chroma interpolation and weighting.
#pragma once

#include <cstddef>

#include "avs/prediction_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Rows of a chroma block as bytes: two rows of 4, or a row of 8 in each block of the vector.
template <int W>
struct AvsChromaRows {
  static constexpr int B = W == 8 ? simd::kBlocks : 1, kRows = W == 8 ? B : 2;
  MOX_INLINE static simd::u8<B> load(const Mox8u* p, std::ptrdiff_t step) {
    if constexpr (W == 8)
      return simd::load8<simd::u8, B>(p, simd::strips<B>(step));
    else
      return simd::load_rows<4, 2>(p, step);
  }
  MOX_INLINE static void store(simd::u8<B> v, Mox8u* p, std::ptrdiff_t step) {
    if constexpr (W == 8)
      simd::store8(v, p, simd::strips<B>(step));
    else
      simd::store_rows<4, 2>(v, p, step);
  }
};

/// All types weigh in 1/64, which is exact where a fraction is 0.
template <int W, int kType>
MoxStatus interpolate_avs_chroma(const MoxiInterpKernelArgs<Mox8u>& a) {
  using Rows = AvsChromaRows<W>;
  constexpr int B = Rows::B;
  const auto weights = [](Mox32s first, Mox32s second) {
    return simd::as<simd::u8>(simd::splat<simd::u16, B>(first | second << 8));
  };
  const Mox32s dx = a.dx, dy = a.dy;
  const auto upper = kType == 2 ? weights(8 * (8 - dy), 8 * dy) : weights((8 - dx) * (8 - dy), dx * (8 - dy));
  const auto lower = weights((8 - dx) * dy, dx * dy);
  const std::ptrdiff_t step = a.srcStep;
  for (int y = 0; y < a.height; y += Rows::kRows) {
    const Mox8u* const s = a.pSrc + y * step;
    const auto pairs = [&](const Mox8u* p, std::ptrdiff_t other) {
      return lo8(Rows::load(p, step), Rows::load(p + other, step));
    };
    auto sum = maddubs(pairs(s, kType == 2 ? step : 1), upper);  // 16320 at most, both together too
    if constexpr (kType == 3) sum = sum + maddubs(pairs(s + step, 1), lower);
    const auto v = mulhrs(sum, simd::splat<simd::s16, B>(512));
    Rows::store(packus(v, v), a.pDst + y * a.dstStep, a.dstStep);
  }
  return moxStsOk;
}

/// [width AND 8 >> 1 | type]
inline constexpr auto avs_interpolate_chroma_table = make_table<8>([]<std::size_t I>() -> InterpKernel<Mox8u> {
  if constexpr (I % 4 == 0) return px::avs_interpolate_chroma_table[I];
  return &interpolate_avs_chroma < I / 4 == 0 ? 4 : 8, I % 4 > ;
});

/// p * 8 * scale * 128 is the rounded product in 1/32 of the multiplication by highs.
template <int W>
MoxStatus weight_avs_prediction(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                Mox32u scale, Mox32u shift, int height) {
  using simd::s16, simd::u8;
  constexpr int B = simd::kBlocks;  // rows at a time; heights are multiples of 4
  const auto factor = simd::splat<s16, B>(static_cast<Mox32s>(scale << 7 & 0xFFFF));
  const auto offset = simd::splat<s16, B>(static_cast<Mox32s>(shift & 0xFFFF));
  const auto weighted = [&](s16<B> p) { return adds(mulhrs(simd::shl<3>(p), factor), offset); };
  const auto from = simd::strips<B>(srcStep), to = simd::strips<B>(dstStep);
  for (int y = 0; y < height; y += B, src += B * srcStep, dst += B * dstStep) {
    if constexpr (W == 8) {
      const auto v = weighted(simd::load8_wide<B>(src, from));
      simd::store8(packus(v, v), dst, to);
    } else {
      const auto p = simd::load16<u8, B>(src, from);
      simd::store16(packus(weighted(wide_lo(p)), weighted(wide_hi(p))), dst, to);
    }
  }
  return moxStsOk;
}

}  // namespace mox::vec
