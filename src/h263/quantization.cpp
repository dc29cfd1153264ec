#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h263/quantization_px.hpp"
#include "moxvc/h263_coefficients.h"

using namespace mox;

MoxStatus moxiQuantIntra_H263_16s_C1I(Mox16s* pSrcDst, Mox32s qp, Mox32s* pCountNonZero, Mox32s advIntraFlag,
                                      Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  return active::quantize_intra(pSrcDst, qp, pCountNonZero, advIntraFlag != 0, modQuantFlag != 0);
}

MoxStatus moxiQuantInter_H263_16s_C1I(Mox16s* pSrcDst, Mox32s qp, Mox32s* pCountNonZero, Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  return active::quantize_inter(pSrcDst, qp, pCountNonZero, modQuantFlag != 0);
}

MoxStatus moxiQuantInvIntra_H263_16s_C1I(Mox16s* pSrcDst, Mox32s indexLast, Mox32s qp, Mox32s advIntraFlag,
                                         Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  if (indexLast < 0) return moxStsOutOfRange;
  return active::dequantize_intra(pSrcDst, indexLast, qp, advIntraFlag != 0, modQuantFlag != 0);
}

MoxStatus moxiQuantInvInter_H263_16s_C1I(Mox16s* pSrcDst, Mox32s indexLast, Mox32s qp, Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  if (indexLast < 0) return moxStsOutOfRange;
  return active::dequantize_inter(pSrcDst, indexLast, qp, modQuantFlag != 0);
}
