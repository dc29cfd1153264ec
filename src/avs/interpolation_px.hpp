/// Portable kernels of AVS luma interpolation: sixteen quarter-sample positions as data.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "h264/interpolation_luma_px.hpp"

namespace mox {

/// Full sample, and the half samples to its right (H, 8 times its value), below it (V, 8 times) and diagonally between
/// (J, 64 times).
enum class AvsSample { kA, kH, kV, kJ };

/// A weighted sample of the column `right` and the row `down` of the block's own.
struct AvsTerm {
  Mox32s weight = 0;
  AvsSample sample = AvsSample::kA;
  int right = 0, down = 0;
};

/// A position: the sum of its terms, rounded and shifted.
struct AvsPosition {
  int shift;
  AvsTerm terms[4];
};

/// A quarter sample along an axis: three quarters of the way from the half sample `half` to the sample `near` before it
/// (kBefore), or to the one behind it.
template <bool kBefore>
constexpr AvsPosition avs_quarter(int shift, AvsSample near, AvsSample half, int right, int down) {
  if (kBefore) return {shift, {{1, half, -right, -down}, {7, half}, {56, near}, {8, near, right, down}}};
  return {shift, {{8, near}, {7, half}, {56, near, right, down}, {1, half, right, down}}};
}
/// The mean of the centre half sample and a full sample.
constexpr AvsPosition avs_diagonal(int right, int down) {
  return {7, {{64, AvsSample::kA, right, down}, {1, AvsSample::kJ}}};
}

namespace avs_positions {
inline constexpr AvsSample A = AvsSample::kA, H = AvsSample::kH, V = AvsSample::kV, J = AvsSample::kJ;
/// [dy * 4 + dx]
inline constexpr AvsPosition kPositions[16] = {{0, {{1, A}}},
                                               avs_quarter<true>(7, A, H, 1, 0),
                                               {3, {{1, H}}},
                                               avs_quarter<false>(7, A, H, 1, 0),
                                               avs_quarter<true>(7, A, V, 0, 1),
                                               avs_diagonal(0, 0),
                                               avs_quarter<true>(10, H, J, 0, 1),
                                               avs_diagonal(1, 0),
                                               {3, {{1, V}}},
                                               avs_quarter<true>(10, V, J, 1, 0),
                                               {6, {{1, J}}},
                                               avs_quarter<false>(10, V, J, 1, 0),
                                               avs_quarter<false>(7, A, V, 0, 1),
                                               avs_diagonal(0, 1),
                                               avs_quarter<false>(10, H, J, 0, 1),
                                               avs_diagonal(1, 1)};
}  // namespace avs_positions

/// Index of the kernel table, and the columns that its kernels write: widths 0 and 8 give 8, 16 and 24 give 16.
constexpr Mox32s avs_luma_index(Mox32s width, Mox32s dx, Mox32s dy) { return (width & 16) | dy * 4 | dx; }
constexpr Mox32s avs_luma_width(Mox32s width) { return width & 16 ? 16 : 8; }
static_assert(avs_luma_index(24, 3, 2) == 27 && avs_luma_index(8, 0, 3) == 12);

}  // namespace mox

namespace mox::px {

/// The four taps around the half sample between s[0] and s[step].
constexpr Mox32s avs_taps(const Mox8u* s, std::ptrdiff_t step) {
  return -s[-step] + 5 * (s[0] + s[step]) - s[2 * step];
}

template <AvsSample kSample>
constexpr Mox32s avs_sample(const Mox8u* s, std::ptrdiff_t step) {
  if constexpr (kSample == AvsSample::kA) return *s;
  if constexpr (kSample == AvsSample::kH) return avs_taps(s, 1);
  if constexpr (kSample == AvsSample::kV) return avs_taps(s, step);
  return -avs_taps(s - 1, step) + 5 * (avs_taps(s, step) + avs_taps(s + 1, step)) - avs_taps(s + 2, step);
}

template <AvsTerm kTerm>
constexpr Mox32s avs_term(const Mox8u* s, std::ptrdiff_t step) {
  if constexpr (kTerm.weight == 0) return 0;
  return kTerm.weight * avs_sample<kTerm.sample>(s + kTerm.right + kTerm.down * step, step);
}

/// Interpolates a block W columns wide. Reads what the terms of the position reach: at most 2 columns left and 3 right
/// of the block, 2 rows above and 3 below.
template <int W, AvsPosition kPosition>
MoxStatus interpolate_avs_luma(const MoxiInterpKernelArgs<Mox8u>& a) {
  const Mox8u* src = a.pSrc;
  Mox8u* dst = a.pDst;
  for (int y = 0; y < a.height; ++y, src += a.srcStep, dst += a.dstStep) {
    for (int x = 0; x < W; ++x) {
      const Mox32s sum =
          avs_term<kPosition.terms[0]>(src + x, a.srcStep) + avs_term<kPosition.terms[1]>(src + x, a.srcStep) +
          avs_term<kPosition.terms[2]>(src + x, a.srcStep) + avs_term<kPosition.terms[3]>(src + x, a.srcStep);
      dst[x] = clip8((sum + (1 << kPosition.shift >> 1)) >> kPosition.shift);
    }
  }
  return moxStsOk;
}

/// [width AND 16 | dy * 4 | dx], widths 8 and 16
inline constexpr auto avs_interpolate_luma_type_table_8u_ssse3 =
    make_table<32>([]<std::size_t I>() -> InterpKernel<Mox8u> {
      constexpr int kWidth = avs_luma_width(I);
      if constexpr (I % 16 == 0) return h264_interpolate_luma_type_table_8u_v8u8[luma_index_8u(kWidth, 0, 0)];
      return &interpolate_avs_luma<kWidth, avs_positions::kPositions[I % 16]>;
    });

}  // namespace mox::px
