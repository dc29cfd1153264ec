#include "block/metrics_activity_px.hpp"
#include "block/metrics_activity_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_metrics.h"

using namespace mox;

MoxStatus moxiFrameFieldSAD16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pFrameSAD, Mox32s* pFieldSAD) {
  if (any_null(pSrc, pFrameSAD, pFieldSAD)) return moxStsNullPointer;
  return active::frame_field_sad<Mox8u>(pSrc, srcStep, pFrameSAD, pFieldSAD);
}

MoxStatus moxiFrameFieldSAD16x16_16s32s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox32s* pFrameSAD, Mox32s* pFieldSAD) {
  if (any_null(pSrc, pFrameSAD, pFieldSAD)) return moxStsNullPointer;
  return active::frame_field_sad<Mox16s>(pSrc, srcStep, pFrameSAD, pFieldSAD);
}

MoxStatus moxiSubSAD8x8_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                  Mox16s* pDst, Mox32s dstStep, Mox32s* pSAD) {
  if (any_null(pSrc1, pSrc2, pDst, pSAD)) return moxStsNullPointer;
  return active::subtract_sad_8x8(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, pSAD);
}
