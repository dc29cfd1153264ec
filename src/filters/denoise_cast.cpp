#include "filters/denoise_cast_px.hpp"
#include "filters/denoise_cast_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

MoxStatus moxiFilterDenoiseCASTInit(MoxiDenoiseCASTState* pState, Mox32s noiseLevel, Mox32s spatialStrength,
                                    Mox32s temporalStrength) {
  if (any_null(pState)) return moxStsNullPointer;
  if (outside(noiseLevel, 1, 32)) return moxStsOutOfRange;
  if (outside(spatialStrength, 0, 16)) return moxStsOutOfRange;
  if (outside(temporalStrength, 0, 15)) return moxStsOutOfRange;
  *pState = active::cast_parameters(noiseLevel, spatialStrength, temporalStrength);
  return moxStsOk;
}

MoxStatus moxiFilterDenoiseCAST_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPrev, Mox32s prevStep,
                                       Mox8u* pDst, Mox32s dstStep, MoxiSize roiSize,
                                       const MoxiDenoiseCASTState* pState) {
  if (any_null(pSrc, pPrev, pDst, pState)) return moxStsNullPointer;
  if (roiSize.width < 1 || roiSize.height < 1) return moxStsBadSize;
  return active::ownFilterDenoiseCAST_8u({pSrc, srcStep, pPrev, prevStep, pDst, dstStep, roiSize}, *pState);
}
