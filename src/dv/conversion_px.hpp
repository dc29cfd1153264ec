/// Portable conversion of decoded DV macroblocks to packed 4:2:2.
#pragma once

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"

namespace mox::px {

inline constexpr int kDvConverted = 5, kDvBlockValues = 64;

enum class DvChroma { k411, k411Edge, k420, k422 };

/// A macroblock: its luma blocks by columns and rows, how many blocks one of them lies behind the one before it, and
/// what chroma has. Positions are those of N x N samples in a block.
struct DvShape {
  int columns, rows, distance;
  DvChroma chroma_kind;

  /// The value of a luma sample, from the first luma block on.
  constexpr int luma(int x, int y, int n) const {
    return (y / n * columns + x / n) * distance * kDvBlockValues + y % n * n + x % n;
  }
  /// The value of the chroma samples of a luma sample, from the first block of the plane on.
  constexpr int chroma(int x, int y, int n) const {
    switch (chroma_kind) {
      case DvChroma::k411: return y * n + x / 4;
      case DvChroma::k411Edge: return y % n * n + x / 4 + y / n * (n / 2);
      // Whole lines belong to fields, lines of reduced pictures do not.
      case DvChroma::k420: return (n == 8 ? y / 4 * 2 + y % 2 : y / 2) * n + x / 2;
      case DvChroma::k422: break;
    }
    return y / n * kDvBlockValues + y % n * n + x / 2;
  }
};
inline constexpr DvShape kDv411 = {4, 1, 1, DvChroma::k411}, kDv411Edge = {2, 2, 1, DvChroma::k411Edge},
                         kDv420 = {2, 2, 1, DvChroma::k420}, kDv422 = {2, 1, 2, DvChroma::k422},
                         kDv422Eight = {2, 2, 1, DvChroma::k422};

/// A sample, or for N = 1 a DC of 8 times that; both 128 too low.
template <int N>
constexpr Mox8u dv_sample(Mox32s value) {
  return clip8((N == 1 ? (value + 4) >> 3 : value) + 128);
}

template <const DvShape& kShape, int N>
void dv_macroblock_to_packed(const Mox16s* luma, const Mox16s* cr, const Mox16s* cb, Mox8u* dst,
                             std::ptrdiff_t dstStep) {
  for (int y = 0; y < kShape.rows * N; ++y) {
    for (int x = 0; x < kShape.columns * N; ++x) {
      const Mox16s* const chroma = x % 2 ? cr : cb;
      dst[y * dstStep + 2 * x] = dv_sample<N>(luma[kShape.luma(x, y, N)]);
      dst[y * dstStep + 2 * x + 1] = dv_sample<N>(chroma[kShape.chroma(x, y, N)]);
    }
  }
}

}  // namespace mox::px
