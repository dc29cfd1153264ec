/// Portable kernels of AVS chroma interpolation and weighting.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "h264/interpolation_chroma_px.hpp"

namespace mox {

/// Index of the chroma table, for widths 4 and 8.
constexpr Mox32s avs_chroma_index(Mox32s width, Mox32s dx, Mox32s dy) { return (width & 8) >> 1 | chroma_type(dx, dy); }
static_assert(avs_chroma_index(4, 0, 7) == 2 && avs_chroma_index(8, 1, 1) == 7);

}  // namespace mox

namespace mox::px {

/// [width AND 8 >> 1 | type], widths 4 and 8: the kernels of H.264, whose formula is the same.
inline constexpr auto avs_interpolate_chroma_table = make_table<8>(
    []<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_chroma < Mox8u, I / 4 == 0 ? 4 : 8, I % 4 > ; });

/// Weights W columns. The factor is a number of 9 bits, since it is multiplied in 16 bits by 128; the sum stays within
/// 16 bits or beyond the limits of a sample.
template <int W>
MoxStatus weight_avs_prediction(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                Mox32u scale, Mox32u shift, int height) {
  const Mox32s factor = wrap16(static_cast<Mox32s>(scale << 7 & 0xFFFF)) >> 7;
  const Mox32s offset = wrap16(static_cast<Mox32s>(shift & 0xFFFF));
  for (int y = 0; y < height; ++y, src += srcStep, dst += dstStep) {
    for (int x = 0; x < W; ++x) dst[x] = clip8(((src[x] * factor + 16) >> 5) + offset);
  }
  return moxStsOk;
}

}  // namespace mox::px
