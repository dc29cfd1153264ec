/// Numbers of the H.264 intra prediction modes, and which neighbours each one uses.
#pragma once

#include "moxvc/types.h"

namespace mox {

/// Neighbours of a block that may be used, as bits: the flags of edgeAvailability.
inline constexpr Mox32u kTop = 1, kLeft = 2, kTopLeft = 32, kTopRight = 64;
inline constexpr Mox32u kWholeCorner = kTop | kLeft | kTopLeft;

/// Modes of 4x4 and 8x8 blocks.
enum IntraMode : Mox32u {
  kVertical,
  kHorizontal,
  kDC,
  kDiagonalDownLeft,
  kDiagonalDownRight,
  kVerticalRight,
  kHorizontalDown,
  kVerticalLeft,
  kHorizontalUp,
};
inline constexpr Mox32u kLastIntraMode = kHorizontalUp;

/// [mode]: neighbours that the prediction is made from. DC takes what there is and needs none.
inline constexpr Mox32u kEdgesOfMode[kLastIntraMode + 1] = {
    kTop, kLeft, 0, kTop | kTopRight, kWholeCorner, kWholeCorner, kWholeCorner, kTop | kTopRight, kLeft};

/// Modes of 16x16 luma macroblocks, and what they cannot do without.
enum IntraMode16x16 : Mox32u { kVertical16x16, kHorizontal16x16, kDC16x16, kPlane16x16 };
inline constexpr Mox32u kEdgesOfMode16x16[4] = {kTop, kLeft, 0, kWholeCorner};

/// Modes of chroma, which count in another order, and what they cannot do without.
enum IntraModeChroma : Mox32u { kDCChroma, kHorizontalChroma, kVerticalChroma, kPlaneChroma };
inline constexpr Mox32u kEdgesOfModeChroma[4] = {0, kLeft, kTop, kWholeCorner};

/// The sample value that stands for a missing neighbour: half of the range.
constexpr Mox32s mid_sample(Mox32s depth) { return 1 << (depth - 1); }

}  // namespace mox
