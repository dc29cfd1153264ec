#include <new>

#include "filters/denoise_mosquito_px.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/memory.hpp"

using namespace mox;

namespace {

constexpr Mox32s kLargestPicture = 16384;

}  // namespace

MoxStatus moxiFilterDenoiseMosquitoInitAlloc_8u_C1(MoxiSize picSize, Mox32s edgeThreshold, Mox32s flatThreshold,
                                                   MoxiDenoiseMosquitoState** ppState) {
  if (any_null(ppState)) return moxStsNullPointer;
  if (outside(picSize.width, 1, kLargestPicture) || outside(picSize.height, 1, kLargestPicture)) return moxStsBadSize;
  if (outside(edgeThreshold, 1, 255)) return moxStsOutOfRange;
  if (outside(flatThreshold, 1, edgeThreshold)) return moxStsOutOfRange;
  Mox8u* const memory = moxsMalloc_8u(sizeof(MoxiDenoiseMosquitoState));
  if (any_null(memory)) return moxStsNoMemory;
  const MoxiSize grid = {(picSize.width + 7) >> 3, (picSize.height + 7) >> 3};
  Mox8u* const kinds = moxsMalloc_8u(grid.width * grid.height);
  if (any_null(kinds)) {
    moxsFree(memory);
    return moxStsNoMemory;
  }
  *ppState = new (memory) MoxiDenoiseMosquitoState{picSize, grid, edgeThreshold, flatThreshold, kinds};
  return moxStsOk;
}

MoxStatus moxiFilterDenoiseMosquito_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, MoxiRect roi,
                                           MoxiDenoiseMosquitoState* pState) {
  if (any_null(pSrc, pDst, pState)) return moxStsNullPointer;
  if (roi.width < 1 || roi.height < 1) return moxStsBadSize;
  const MoxiSize picture = pState->picture;
  if (outside(roi.x, 0, picture.width - 1LL * roi.width)) return moxStsRegionTooSmall;
  if (outside(roi.y, 0, picture.height - 1LL * roi.height)) return moxStsRegionTooSmall;
  return active::ownFilterDenoiseMosquito_8u({pSrc, srcStep, pDst, dstStep, picture},
                                             {roi.x, roi.y, roi.x + roi.width, roi.y + roi.height}, *pState);
}

MoxStatus moxiFilterDenoiseMosquitoFree_8u_C1(MoxiDenoiseMosquitoState* pState) {
  if (any_null(pState)) return moxStsNullPointer;
  moxsFree(pState->kinds);
  moxiFree(pState);
  return moxStsOk;
}
