/// Portable kernel of the H.261 loop filter.
#pragma once

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Weights 1, 2, 1 along the rows and down the columns, none across the border of the block. Corners come out as they
/// are. All is read before anything is written.
inline MoxStatus filter_8x8(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  Mox32s t[8][8];
  for (int y = 0; y < 8; ++y, src += srcStep) {
    for (int x = 0; x < 8; ++x) t[y][x] = x % 7 == 0 ? 4 * src[x] : 2 * src[x] + src[x - 1] + src[x + 1];
  }
  for (int y = 0; y < 8; ++y, dst += dstStep) {
    for (int x = 0; x < 8; ++x) {
      dst[x] = clip8(y % 7 == 0 ? (t[y][x] + 2) >> 2 : (t[y - 1][x] + 2 * t[y][x] + t[y + 1][x] + 8) >> 4);
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
