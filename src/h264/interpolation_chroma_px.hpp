/// Portable kernels of H.264 chroma interpolation: bilinear in eighths, by types that tell which axes have a fraction.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/table.hpp"
#include "h264/interpolation.hpp"

namespace mox {

/// Type of a kernel: bit 0 horizontal fraction, bit 1 vertical fraction.
constexpr Mox32s chroma_type(Mox32s dx, Mox32s dy) { return (dx != 0) | (dy != 0) << 1; }
/// Index of the 8-bit tables by width. Widths 0 and 2 give row 0, 4 and 6 row 1, 8 and 10 row 2, 12 and 14 row 3.
constexpr Mox32s chroma_index_8u(Mox32s width, Mox32s dx, Mox32s dy) { return (width & 12) | chroma_type(dx, dy); }
/// Columns that the kernels of a row of those tables write.
constexpr Mox32s chroma_width_8u(Mox32s width) { return width < 4 ? 2 : width < 8 ? 4 : 8; }

static_assert(chroma_index_8u(2, 0, 7) == 2 && chroma_index_8u(6, 1, 1) == 7 && chroma_index_8u(14, 1, 0) == 13);

}  // namespace mox

namespace mox::px {

/// The value of a sample whose right neighbour is `right` samples away.
template <int kType, class T>
constexpr Mox32s chroma_value(const T* s, std::ptrdiff_t right, std::ptrdiff_t step, Mox32s dx, Mox32s dy) {
  if constexpr (kType == 0) return s[0];
  if constexpr (kType == 1) return ((8 - dx) * s[0] + dx * s[right] + 4) >> 3;
  if constexpr (kType == 2) return ((8 - dy) * s[0] + dy * s[step] + 4) >> 3;
  return ((8 - dx) * (8 - dy) * s[0] + dx * (8 - dy) * s[right] + (8 - dx) * dy * s[step] + dx * dy * s[step + right] +
          32) >>
         6;
}

template <int kType, class T>
void chroma_row(const T* src, std::ptrdiff_t step, T* __restrict dst, int width, Mox32s dx, Mox32s dy) {
  for (int x = 0; x < width; ++x) dst[x] = static_cast<T>(chroma_value<kType>(src + x, 1, step, dx, dy));
}

/// Interpolates a block W columns wide, or of any width if W is 0. Reads one more column right of the block if the type
/// has a horizontal fraction, one more row below if it has a vertical one.
template <class T, int W, int kType>
MoxStatus interpolate_chroma(const MoxiInterpKernelArgs<T>& a) {
  const int width = W > 0 ? W : a.width;
  const Mox32s dx = a.dx, dy = a.dy;
  const std::ptrdiff_t step = a.srcStep, dstStep = a.dstStep;
  const T* src = a.pSrc;
  T* dst = a.pDst;
  for (int y = a.height; y > 0; --y, src += step, dst += dstStep) chroma_row<kType>(src, step, dst, width, dx, dy);
  return moxStsOk;
}

/// The same from a row of U and V pairs to two destinations of one step. Steps in bytes, widths in pairs.
template <int kType>
MoxStatus interpolate_chroma_nv12(const MoxiInterpKernelArgs<Mox8u>& a) {
  const Mox8u* src = a.pSrc;
  for (int y = 0; y < a.height; ++y, src += a.srcStep) {
    for (int x = 0; x < a.width; ++x) {
      const Mox8u* pair = src + 2 * x;
      a.pDst[y * a.dstStep + x] = static_cast<Mox8u>(chroma_value<kType>(pair, 2, a.srcStep, a.dx, a.dy));
      a.pDst2[y * a.dstStep + x] = static_cast<Mox8u>(chroma_value<kType>(pair + 1, 2, a.srcStep, a.dx, a.dy));
    }
  }
  return moxStsOk;
}

inline void split_row(const Mox8u* src, Mox8u* __restrict u, Mox8u* __restrict v, int width) {
  for (int x = 0; x < width; ++x) u[x] = src[2 * x], v[x] = src[2 * x + 1];
}

/// Parts the U and V samples that the kernel of a type reads for W columns.
template <int W, int kType>
MoxStatus split_chroma_nv12(const MoxiInterpKernelArgs<Mox8u>& a) {
  const std::ptrdiff_t srcStep = a.srcStep, dstStep = a.dstStep;
  const Mox8u* src = a.pSrc;
  Mox8u *u = a.pDst, *v = a.pDst2;
  for (int y = a.height + (kType >> 1); y > 0; --y, src += srcStep, u += dstStep, v += dstStep)
    split_row(src, u, v, W + (kType & 1));
  return moxStsOk;
}

/// Width of a row of chroma_index_8u.
constexpr int chroma_row_width(std::size_t row) { return row == 0 ? 2 : row == 1 ? 4 : 8; }

/// [row of chroma_index_8u | type]; rows of widths 2, 4, 8, 8
inline constexpr auto h264_interpolate_chroma_type_table_8u_v8u8 = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_chroma<Mox8u, chroma_row_width(I / 4), I % 4>; });
/// The first of two stages: the second is the planar kernel of the same index.
inline constexpr auto h264_interpolate_chroma_type_table_nv12touv_8u_v8u8 = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox8u> { return &split_chroma_nv12<chroma_row_width(I / 4), I % 4>; });

/// [type], any width
inline constexpr auto h264_interpolate_chroma_type_table_8u_pxmx =
    make_table<4>([]<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_chroma<Mox8u, 0, I>; });
inline constexpr auto h264_interpolate_chroma_type_table_16u_pxmx =
    make_table<4>([]<std::size_t I>() -> InterpKernel<Mox16u> { return &interpolate_chroma<Mox16u, 0, I>; });
/// [type], any width; one pass
inline constexpr auto h264_interpolate_chroma_type_table_nv12touv_8u_pxmx =
    make_table<4>([]<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_chroma_nv12<I>; });

/// The full formula whatever the fraction, so it always reads one more column and one more row.
inline MoxStatus own_InterpolateChroma_H264_16u(const MoxiInterpKernelArgs<Mox16u>& a) {
  return interpolate_chroma<Mox16u, 0, 3>(a);
}

/// Splits the samples that the block needs into a U and a V block, then runs the planar kernel on each. typeIndex is
/// chroma_index_8u. Blocks higher than the local ones are done in parts.
inline MoxStatus launch_h264_interpolate_chroma_nv12touv(const MoxiInterpKernelArgs<Mox8u>& block) {
  constexpr int kStep = 16;
  alignas(16) Mox8u u[(kLocalHeight + 1) * kStep], v[(kLocalHeight + 1) * kStep];
  for (int y = 0; y < block.height; y += kLocalHeight) {
    MoxiInterpKernelArgs<Mox8u> part = block;
    part.height = std::min(block.height - y, kLocalHeight);
    part.pSrc += y * block.srcStep;
    part.pDst = u, part.pDst2 = v, part.dstStep = kStep;
    h264_interpolate_chroma_type_table_nv12touv_8u_v8u8[block.typeIndex](part);

    const InterpKernel<Mox8u> planar = h264_interpolate_chroma_type_table_8u_v8u8[block.typeIndex];
    part.srcStep = kStep, part.dstStep = block.dstStep;
    part.pSrc = u, part.pDst = block.pDst + y * block.dstStep;
    planar(part);
    part.pSrc = v, part.pDst = block.pDst2 + y * block.dstStep;
    planar(part);
  }
  return moxStsOk;
}

}  // namespace mox::px
