#include "moxvc/mpeg2_quantization.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "mpeg2/quantization_px.hpp"
#include "mpeg2/quantization_vec.hpp"

using namespace mox;

MoxStatus moxiQuantIntra_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const float* pQuantMatrix, Mox32s* pCount) {
  if (any_null(pSrcDst, pCount)) return moxStsNullPointer;
  if (quantScale == 0) return moxStsZeroDivisor;
  return active::quantize_by_matrix(pSrcDst, 1, quantScale,
                                    pQuantMatrix ? pQuantMatrix : active::kIntraReciprocals.data(), pCount);
}

MoxStatus moxiQuant_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const float* pQuantMatrix, Mox32s* pCount) {
  if (any_null(pSrcDst, pCount)) return moxStsNullPointer;
  if (quantScale == 0) return moxStsZeroDivisor;
  if (pQuantMatrix) return active::quantize_by_matrix(pSrcDst, 0, quantScale, pQuantMatrix, pCount);
  if (quantScale >= 2) return active::quantize_flat(pSrcDst, quantScale, pCount);
  *pCount = 64 - active::zeros(pSrcDst);
  return moxStsOk;
}

MoxStatus moxiQuantInvIntra_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const Mox16u* pQuantMatrix) {
  if (any_null(pSrcDst, pQuantMatrix)) return moxStsNullPointer;
  return active::dequantize_intra(pSrcDst, quantScale, pQuantMatrix);
}

MoxStatus moxiQuantInv_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const Mox16u* pQuantMatrix) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (pQuantMatrix) return active::dequantize_by_matrix(pSrcDst, quantScale, pQuantMatrix);
  return active::dequantize_flat(pSrcDst, quantScale);
}

MoxStatus moxiCountZeros8x8_16s_C1(const Mox16s* pSrc, Mox32s* pCount) {
  if (any_null(pCount, pSrc)) return moxStsNullPointer;
  *pCount = active::zeros(pSrc);
  return moxStsOk;
}
