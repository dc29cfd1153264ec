#include "filters/denoise_cast_px.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/state_record.hpp"

using namespace mox;

namespace {

/// "CAST" in memory.
constexpr Mox32u kCastTag = 0x54534143;

}  // namespace

MoxStatus moxiFilterDenoiseCASTGetSize(Mox32s* pSize) {
  if (any_null(pSize)) return moxStsNullPointer;
  *pSize = kRecordSize<MoxiDenoiseCASTState>;
  return moxStsOk;
}

MoxStatus moxiFilterDenoiseCASTInit(MoxiDenoiseCASTState* pState, Mox32s noiseLevel, Mox32s spatialStrength,
                                    Mox32s temporalStrength) {
  if (any_null(pState)) return moxStsNullPointer;
  if (outside(noiseLevel, 1, 32)) return moxStsOutOfRange;
  if (outside(spatialStrength, 0, 16)) return moxStsOutOfRange;
  if (outside(temporalStrength, 0, 15)) return moxStsOutOfRange;
  MoxiDenoiseCASTState& state = *record_in(pState);
  state = active::cast_parameters(noiseLevel, spatialStrength, temporalStrength);
  state.tag = kCastTag;
  return moxStsOk;
}

MoxStatus moxiFilterDenoiseCAST_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPrev, Mox32s prevStep,
                                       Mox8u* pDst, Mox32s dstStep, MoxiSize roiSize,
                                       const MoxiDenoiseCASTState* pState) {
  if (any_null(pSrc, pPrev, pDst, pState)) return moxStsNullPointer;
  const MoxiDenoiseCASTState& state = *record_in(pState);
  if (state.tag != kCastTag) return moxStsBadContext;
  if (roiSize.width < 1 || roiSize.height < 1) return moxStsBadSize;
  return active::ownFilterDenoiseCAST_8u({pSrc, srcStep, pPrev, prevStep, pDst, dstStep, roiSize}, state);
}
