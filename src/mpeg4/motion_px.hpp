/// Portable kernels of MPEG-4 quarter-sample copies.
#pragma once

#include <array>
#include <cstddef>

#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox {

using QuarterCopyKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep);

/// Index of tables with 32 entries: rounding | quarters in x << 1 | quarters in y << 3.
constexpr std::size_t quarter_index(Mox32s acc, Mox32s rounding) {
  return static_cast<std::size_t>(acc << 1 | (rounding & 1));
}
static_assert(quarter_index(15, 1) == 31 && quarter_index(1, 2) == 2 && quarter_index(4, -1) == 9);

constexpr int quarters_in_x(std::size_t index) { return index >> 1 & 3; }
constexpr int quarters_in_y(std::size_t index) { return static_cast<int>(index >> 3); }
constexpr int quarter_rounding(std::size_t index) { return index & 1; }

/// Place in a line of samples 0 to N whose ends are mirrored, the last samples being repeated.
constexpr int mirrored(int i, int N) { return i < 0 ? -1 - i : i > N ? 2 * N + 1 - i : i; }
static_assert(mirrored(-3, 8) == 2 && mirrored(8, 8) == 8 && mirrored(11, 8) == 6);

}  // namespace mox

namespace mox::px {

/// In 1/256, from three samples left of the half position to the fourth right of it.
inline constexpr std::array<Mox32s, 8> kHalfSampleTaps = {-8, 24, -48, 160, 160, -48, 24, -8};

/// The sample at i + Q / 4 of the line s(0) to s(N), whose samples lie `distance` bytes apart.
template <int N, int Q, int kRc>
Mox32s quarter_sample(const Mox8u* s, std::ptrdiff_t distance, int i) {
  if constexpr (Q == 0) return s[i * distance];
  Mox32s sum = 128 - kRc;
  for (int tap = 0; tap < 8; ++tap) {
    sum += kHalfSampleTaps[static_cast<std::size_t>(tap)] * s[mirrored(i - 3 + tap, N) * distance];
  }
  const Mox32s half = clip8(sum >> 8);
  if constexpr (Q == 2) return half;
  return (half + s[(i + Q / 2) * distance] + 1 - kRc) >> 1;
}

template <int W, int H, int Dx, int Dy, int kRc>
MoxStatus copy_quarter(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  Mox8u rows[H + 1][W];
  for (int y = 0; y < H + (Dy != 0); ++y, src += srcStep) {
    for (int x = 0; x < W; ++x) rows[y][x] = static_cast<Mox8u>(quarter_sample<W, Dx, kRc>(src, 1, x));
  }
  for (int y = 0; y < H; ++y, dst += dstStep) {
    for (int x = 0; x < W; ++x) dst[x] = static_cast<Mox8u>(quarter_sample<H, Dy, kRc>(&rows[0][x], W, y));
  }
  return moxStsOk;
}

template <int W, int H>
inline constexpr auto kQuarterCopy = make_table<32>([]<std::size_t I>() -> QuarterCopyKernel {
  return &copy_quarter<W, H, quarters_in_x(I), quarters_in_y(I), quarter_rounding(I)>;
});

/// Index quarter_index.
inline constexpr auto ownvc_Copy16x16QP_8u_C1R = kQuarterCopy<16, 16>;
inline constexpr auto ownvc_Copy16x8QP_8u_C1R = kQuarterCopy<16, 8>;
inline constexpr auto ownvc_Copy8x8QP_8u_C1R = kQuarterCopy<8, 8>;

}  // namespace mox::px
