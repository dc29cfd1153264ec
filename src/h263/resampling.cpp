#include "moxvc/h263_resampling.h"

#include <algorithm>
#include <span>

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h263/resampling_px.hpp"
#include "h263/resampling_vec.hpp"

using namespace mox;

namespace {

constexpr bool is_plane(MoxiSize size) { return !outside(size.width, 1, 16384) && !outside(size.height, 1, 16384); }

constexpr bool is_even_plane(MoxiSize size) { return is_plane(size) && ((size.width | size.height) & 1) == 0; }

bool lacks_plane(const Mox8u* const* planes) { return any_null(planes) || any_null(planes[0], planes[1], planes[2]); }

/// True if a row of luma, or of chroma with half the width, is longer than its step.
bool has_short_step(const Mox32s* step, Mox32s width) {
  return step[0] < width || step[1] < width / 2 || step[2] < width / 2;
}

bool has_far_corner(std::span<const MoxiPoint, 4> corners) {
  return std::any_of(corners.begin(), corners.end(), [](MoxiPoint corner) {
    return outside(corner.x, -32768, 32767) || outside(corner.y, -32768, 32767);
  });
}

constexpr Mox32s kHalfSamples = 2, kSixteenths = 3, kColour = 0, kNearest = 3, kColumns = 2, kBoth = 3;

/// Colour of a plane for samples outside, -1 for the nearest one inside.
Mox32s fill_of(Mox32s fillMode, const Mox8u* colour, int plane) {
  constexpr Mox32s kFill[4][2] = {{0, 0}, {16, 128}, {128, 128}, {-1, -1}};  // of luma and chroma
  return fillMode == kColour ? colour[plane] : kFill[fillMode][plane > 0];
}

MoxiSize plane_size(MoxiSize size, int subsampled) { return {size.width >> subsampled, size.height >> subsampled}; }

}  // namespace

MoxStatus moxiResample_H263_8u_P3R(const Mox8u* const ppSrc[3], const Mox32s pSrcStep[3], Mox8u* const ppDst[3],
                                   const Mox32s pDstStep[3], MoxiSize srcSize, MoxiSize dstSize,
                                   const MoxiPoint pCorner[4], Mox32s wda, Mox32s fillMode, const Mox8u pFillColour[3],
                                   Mox32s rcrpr) {
  if (lacks_plane(ppSrc) || any_null(pSrcStep)) return moxStsNullPointer;
  if (lacks_plane(ppDst) || any_null(pDstStep, pCorner)) return moxStsNullPointer;
  if (fillMode == kColour && any_null(pFillColour)) return moxStsNullPointer;
  if (!is_even_plane(srcSize) || !is_even_plane(dstSize)) return moxStsBadSize;
  if (has_short_step(pSrcStep, srcSize.width) || has_short_step(pDstStep, dstSize.width)) return moxStsBadStep;
  if (has_far_corner(std::span<const MoxiPoint, 4>(pCorner, 4))) return moxStsOutOfRange;
  if (outside(wda, kHalfSamples, kSixteenths)) return moxStsOutOfRange;
  if (outside(fillMode, kColour, kNearest) || outside(rcrpr, 0, 1)) return moxStsOutOfRange;
  const ResamplingMap map(dstSize, pCorner, wda == kHalfSamples ? 16 : 2);
  for (int i = 0; i < 3; ++i) {
    const int subsampled = i > 0;
    active::h263_resample({ppSrc[i], pSrcStep[i], plane_size(srcSize, subsampled), ppDst[i], pDstStep[i],
                           plane_size(dstSize, subsampled), fill_of(fillMode, pFillColour, i), subsampled},
                          map, 127 + rcrpr);
  }
  return moxStsOk;
}

MoxStatus moxiUpsampleFour_H263_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, MoxiSize srcSize,
                                       Mox32s rcrpr) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (!is_plane(srcSize)) return moxStsBadSize;
  if (srcStep < srcSize.width || dstStep < 2 * srcSize.width) return moxStsBadStep;
  if (outside(rcrpr, 0, 1)) return moxStsOutOfRange;
  return active::kH263Enlarge[kBoth - 1](pSrc, srcStep, pDst, dstStep, srcSize, 7 + rcrpr);
}

MoxStatus moxiDownsampleFour_H263_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                         MoxiSize srcSize, Mox32s rcrpr) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (!is_even_plane(srcSize)) return moxStsBadSize;
  if (srcStep < srcSize.width || dstStep < srcSize.width / 2) return moxStsBadStep;
  if (outside(rcrpr, 0, 1)) return moxStsOutOfRange;
  return active::h263_halve(pSrc, srcStep, pDst, dstStep, srcSize, 1 + rcrpr);
}

MoxStatus moxiSpatialInterpolation_H263_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               MoxiSize srcSize, Mox32s direction) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (!is_plane(srcSize)) return moxStsBadSize;
  if (srcStep < srcSize.width || dstStep < (direction == kColumns ? 1 : 2) * srcSize.width) return moxStsBadStep;
  if (outside(direction, 1, kBoth)) return moxStsOutOfRange;
  return active::kH263Enlarge[direction - 1](pSrc, srcStep, pDst, dstStep, srcSize, 8);
}
