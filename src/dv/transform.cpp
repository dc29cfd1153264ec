#include "moxvc/dv_transform.h"

#include "dv/transform_px.hpp"
#include "dv/transform_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

MoxStatus moxiQuantInv_DV_16s_C1I(Mox16s* pSrcDst, Mox32u blockParam) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::dv_dequantize(pSrcDst, {blockParam});
}

MoxStatus moxiQuantInv_DV100_16s_C1I(Mox16s* pSrcDst, Mox32u blockParam, Mox32s kind) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(kind, 0, kDv100Kinds - 1)) return moxStsOutOfRange;
  return active::dv100_dequantize(pSrcDst, {blockParam}, kind);
}

MoxStatus moxiDCT2x4x8Inv_16s_C1I(Mox16s* pSrcDst) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::dct_inverse_248(pSrcDst);
}

MoxStatus moxiDCT8x4x2To4x4Inv_DV_16s_C1I(Mox16s* pSrcDst) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::dct_inverse_reduced<4>(pSrcDst);
}

MoxStatus moxiDCT8x4x2To2x2Inv_DV_16s_C1I(Mox16s* pSrcDst) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::dct_inverse_reduced<2>(pSrcDst);
}
