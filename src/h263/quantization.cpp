#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h263/quantization_px.hpp"
#include "h263/quantization_vec.hpp"
#include "moxvc/h263_coefficients.h"

using namespace mox;

MoxStatus moxiQuantIntra_H263_16s_C1I(Mox16s* pSrcDst, Mox32s qp, Mox32s* pCountNonZero, Mox32s advIntraFlag,
                                      Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  if (advIntraFlag) {
    *pCountNonZero = active::quantize(pSrcDst, qp, active::advanced_rule(qp, modQuantFlag != 0));
    return moxStsOk;
  }
  const Mox16s dc = active::quantize_dc(pSrcDst[0]);
  const Mox32s count = active::quantize(pSrcDst, qp, active::intra_rule(qp, modQuantFlag != 0));
  *pCountNonZero = count + (pSrcDst[0] == 0);  // the DC is none
  pSrcDst[0] = dc;
  return moxStsOk;
}

MoxStatus moxiQuantInter_H263_16s_C1I(Mox16s* pSrcDst, Mox32s qp, Mox32s* pCountNonZero, Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  *pCountNonZero = active::quantize(pSrcDst, qp, active::inter_rule(qp, modQuantFlag != 0));
  return moxStsOk;
}

MoxStatus moxiQuantInvIntra_H263_16s_C1I(Mox16s* pSrcDst, Mox32s indexLast, Mox32s qp, Mox32s advIntraFlag,
                                         Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  if (indexLast < 0) return moxStsOutOfRange;
  if (advIntraFlag) {
    active::dequantize(pSrcDst, indexLast, active::advanced_dequant_rule(qp));
    return moxStsOk;
  }
  const Mox16s dc = pSrcDst[0];
  if (indexLast > 0) active::dequantize(pSrcDst, indexLast, active::dequant_rule(qp, modQuantFlag != 0));
  pSrcDst[0] = wrap16(8 * dc);
  return moxStsOk;
}

MoxStatus moxiQuantInvInter_H263_16s_C1I(Mox16s* pSrcDst, Mox32s indexLast, Mox32s qp, Mox32s modQuantFlag) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  if (indexLast < 0) return moxStsOutOfRange;
  active::dequantize(pSrcDst, indexLast, active::dequant_rule(qp, modQuantFlag != 0));
  return moxStsOk;
}
