#include "h264/intra.hpp"

#include "frame/arguments.hpp"
#include "moxvc/h264_intra.h"

using namespace mox;

MoxStatus moxiPredictIntra_4x4_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode, Mox32s edgeAvailability) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (step < 4) return moxStsBadStep;
  if (outside(mode, 0, 8)) return moxStsOutOfRange;
  return active::predict_luma_4x4_h264(pSrcDst, step, static_cast<Mox32u>(mode), static_cast<Mox32u>(edgeAvailability));
}

MoxStatus moxiPredictIntra_16x16_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode, Mox32s edgeAvailability) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(mode, 0, 3)) return moxStsOutOfRange;
  return predict_luma_16x16_h264(pSrcDst, step, static_cast<Mox32u>(mode), static_cast<Mox32u>(edgeAvailability));
}

MoxStatus moxiPredictIntraChroma8x8_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode, Mox32s edgeAvailability) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (step < 8) return moxStsBadStep;
  if (outside(mode, 0, 3)) return moxStsOutOfRange;
  return predict_chroma_h264<8>(pSrcDst, step, static_cast<Mox32u>(mode), static_cast<Mox32u>(edgeAvailability));
}
