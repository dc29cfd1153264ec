/// Portable kernels of H.264 luma interpolation: sixteen quarter-sample positions as data, and one body for all.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "h264/interpolation.hpp"

namespace mox {

/// Full sample, and the half samples to its right (b), below it (h) and diagonally between (j).
enum class LumaSample { kNone, kG, kB, kH, kJ };

/// A sample of the column `right` and the row `down` of the block's own.
struct LumaPoint {
  LumaSample sample = LumaSample::kNone;
  int right = 0, down = 0;
};

/// A position: the mean of two points, or the first alone.
struct LumaPosition {
  LumaPoint u, v = {};
  constexpr bool has(LumaSample sample) const { return u.sample == sample || v.sample == sample; }
};

namespace luma_points {
inline constexpr LumaPoint kG = {LumaSample::kG}, kRightG = {LumaSample::kG, 1, 0}, kLowerG = {LumaSample::kG, 0, 1};
inline constexpr LumaPoint kB = {LumaSample::kB}, kLowerB = {LumaSample::kB, 0, 1};
inline constexpr LumaPoint kH = {LumaSample::kH}, kRightH = {LumaSample::kH, 1, 0};
inline constexpr LumaPoint kJ = {LumaSample::kJ};

/// [dy * 4 + dx]
inline constexpr LumaPosition kPositions[16] = {{kG},          {kB, kG},      {kB},          {kB, kRightG},  //
                                                {kH, kG},      {kB, kH},      {kB, kJ},      {kB, kRightH},  //
                                                {kH},          {kH, kJ},      {kJ},          {kRightH, kJ},  //
                                                {kH, kLowerG}, {kLowerB, kH}, {kLowerB, kJ}, {kLowerB, kRightH}};
}  // namespace luma_points

/// Index of the tables of 16 positions.
constexpr Mox32s luma_position(Mox32s dx, Mox32s dy) { return dy * 4 | dx; }
/// Index of InterpolFnTbl_16u, whose positions come column by column.
constexpr Mox32s luma_position_by_column(Mox32s dx, Mox32s dy) { return dx * 4 | dy; }
/// Index of h264_interpolate_luma_type_table_8u_v8u8. Widths 0, 4 give row 0, 8 and 12 row 1, 16 and 20 row 2, 24 and
/// 28 row 3.
constexpr Mox32s luma_index_8u(Mox32s width, Mox32s dx, Mox32s dy) { return (width * 2 & 48) | luma_position(dx, dy); }
/// Columns that the kernels of a row of that table write.
constexpr Mox32s luma_width_8u(Mox32s width) { return width < 8 ? 4 : width < 16 ? 8 : 16; }

static_assert(luma_index_8u(4, 3, 2) == 11 && luma_index_8u(12, 0, 0) == 16 && luma_index_8u(28, 3, 3) == 63);
static_assert(luma_position_by_column(3, 2) == 14);

}  // namespace mox

namespace mox::px {

/// Widest block of the kernels that take any width.
inline constexpr int kWidestLuma = 28;

/// Vertical sums before rounding, -10 to 42 times the largest sample: -2550 to 10710 for 8-bit samples.
template <class T>
using LumaSum = std::conditional_t<sizeof(T) == 1, Mox16s, Mox32s>;

/// The six taps around the half sample between s[0] and s[step].
template <class S>
constexpr Mox32s six_tap(const S* s, std::ptrdiff_t step) {
  return s[-2 * step] - 5 * s[-step] + 20 * s[0] + 20 * s[step] - 5 * s[2 * step] + s[3 * step];
}

/// The value of a point. `sums` are the vertical sums of the row from two columns left of the block's own on; positions
/// without j have none.
template <LumaPoint kPoint, bool kHasSums, class T>
Mox32s luma_value(const T* src, std::ptrdiff_t step, const LumaSum<T>* sums, Mox32s max) {
  const T* s = src + kPoint.right + kPoint.down * step;
  if constexpr (kPoint.sample == LumaSample::kG) return *s;
  if constexpr (kPoint.sample == LumaSample::kB) return clip((six_tap(s, 1) + 16) >> 5, 0, max);
  if constexpr (kPoint.sample == LumaSample::kH)
    return clip(((kHasSums ? sums[2 + kPoint.right] : six_tap(s, step)) + 16) >> 5, 0, max);
  return clip((six_tap(sums + 2, 1) + 512) >> 10, 0, max);
}

template <LumaPosition kPosition, class T>
void luma_row(const T* src, std::ptrdiff_t step, const LumaSum<T>* sums, T* __restrict dst, int width, Mox32s max) {
  constexpr bool kHasSums = kPosition.has(LumaSample::kJ);
  for (int x = 0; x < width; ++x) {
    Mox32s value = luma_value<kPosition.u, kHasSums>(src + x, step, sums + x, max);
    if constexpr (kPosition.v.sample != LumaSample::kNone)
      value = avg_up(value, luma_value<kPosition.v, kHasSums>(src + x, step, sums + x, max));
    dst[x] = static_cast<T>(value);
  }
}

/// Interpolates a block W columns wide, or of any width up to kWidestLuma if W is 0. Reads 2 columns left and 3 right
/// of the block if the position has a horizontal fraction, 2 rows above and 3 below if it has a vertical one.
template <class T, int W, LumaPosition kPosition>
MoxStatus interpolate_luma(const MoxiInterpKernelArgs<T>& a) {
  const Mox32s max = sizeof(T) == 1 ? 255 : sample_max(a.bitDepth);
  const int width = W > 0 ? W : a.width;
  const std::ptrdiff_t step = a.srcStep, dstStep = a.dstStep;
  const T* src = a.pSrc;
  T* dst = a.pDst;
  LumaSum<T> sums[(W > 0 ? W : kWidestLuma) + 5];
  for (int y = a.height; y > 0; --y, src += step, dst += dstStep) {
    if constexpr (kPosition.has(LumaSample::kJ)) {
      for (int x = 0; x < width + 5; ++x) sums[x] = static_cast<LumaSum<T>>(six_tap(src + x - 2, step));
    }
    luma_row<kPosition>(src, step, sums, dst, width, max);
  }
  return moxStsOk;
}

/// [row of luma_index_8u | dy * 4 | dx]; rows of widths 4, 8, 16, 16
inline constexpr auto h264_interpolate_luma_type_table_8u_v8u8 =
    make_table<64>([]<std::size_t I>() -> InterpKernel<Mox8u> {
      return &interpolate_luma < Mox8u, I / 16 == 0 ? 4 : I / 16 == 1 ? 8 : 16, luma_points::kPositions[I % 16] > ;
    });

/// [dy * 4 | dx], any width
inline constexpr auto h264_interpolate_luma_type_table_8u_pxmx = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_luma<Mox8u, 0, luma_points::kPositions[I]>; });
inline constexpr auto h264_interpolate_luma_type_table_16u_pxmx = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox16u> { return &interpolate_luma<Mox16u, 0, luma_points::kPositions[I]>; });

/// [dx * 4 | dy], any width
inline constexpr auto InterpolFnTbl_16u = make_table<16>([]<std::size_t I>() -> InterpKernel<Mox16u> {
  return h264_interpolate_luma_type_table_16u_pxmx[luma_position(I / 4, I % 4)];
});

}  // namespace mox::px
