/// Portable kernels of H.264 dequantisation and inverse transforms. Rows of 8-bit samples are `step` bytes apart, rows
/// of 16-bit samples `step` samples; blocks of coefficients are dense unless a step is given.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/arithmetic.hpp"
#include "h264/quant_tables.hpp"
#include "h264/transform_core.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Prediction plus residual(x, y) for a block of N x N samples, limited to 0..limit. Both planes may be the same.
template <int N, class Sample, class Residual>
void add_to_prediction(const Sample* pPred, Mox32s predStep, Sample* pDst, Mox32s dstStep, Mox32s limit,
                       Residual residual) {
  for (int y = 0; y < N; ++y) {
    for (int x = 0; x < N; ++x) pDst[x] = static_cast<Sample>(clip(add32(pPred[x], residual(x, y)), 0, limit));
    pPred += predStep, pDst += dstStep;
  }
}

// ---- 4x4 blocks without scaling lists: what the macroblock functions call. ----

/// Coefficient 0 of a block: the given one, or the product, not yet cut to 16 bits.
inline Mox32s dc_of(const Mox16s* pDC, const Mox16s* pCoeff, Mox32s qp) {
  return pDC ? *pDC : mul32(pCoeff[0], InvQuantTable[qp][0]);
}

/// Every sample plus (dc + 32) >> 6.
inline void add_dc(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst, Mox32s dstStep, Mox32s dc) {
  const Mox16s r = wrap16(round6<Wrap32>(dc));
  add_to_prediction<4>(pPred, predStep, pDst, dstStep, 255, [r](int, int) { return r; });
}

/// Dequantises 16 coefficients from pCoeff to block, coefficient 0 replaced if pDC is given; then the saturating
/// transform, and the residual is added. block may be pCoeff: it holds the residual afterwards.
inline void add_block(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst, Mox32s dstStep, const Mox16s* pDC,
                      const Mox16s* pCoeff, Mox16s* block, Mox32s qp) {
  const Mox16s dc = wrap16(dc_of(pDC, pCoeff, qp));
  for (int i = 0; i < 16; ++i) block[i] = wrap16(pCoeff[i] * InvQuantTable_16s[qp][i]);
  block[0] = dc;
  inverse_4x4<Sat16>(block);
  add_to_prediction<4>(pPred, predStep, pDst, dstStep, 255, [block](int x, int y) { return block[4 * y + x]; });
}

/// All 16 coefficients dequantised; pCoeff keeps its contents, here and in the three kernels that follow.
inline void dequant_transform_residual_and_add_no_dc_h264_mmp(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                              Mox32s dstStep, Mox16s* pCoeff, Mox32s qp) {
  Mox16s block[16];
  add_block(pPred, predStep, pDst, dstStep, nullptr, pCoeff, block, qp);
}

/// A couple is two horizontally adjacent blocks, the left one first in pDC and pCoeff.
inline void dequant_transform_residual_and_add_no_dc_couple_h264_sse2(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                                      Mox32s dstStep, Mox16s* pCoeff, Mox32s qp) {
  dequant_transform_residual_and_add_no_dc_h264_mmp(pPred, predStep, pDst, dstStep, pCoeff, qp);
  dequant_transform_residual_and_add_no_dc_h264_mmp(pPred + 4, predStep, pDst + 4, dstStep, pCoeff + 16, qp);
}

/// *pDC, already dequantised, in place of coefficient 0.
inline void dequant_transform_residual_and_add_dc_ac_h264_mmp(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                              Mox32s dstStep, const Mox16s* pDC, Mox16s* pCoeff,
                                                              Mox32s qp) {
  Mox16s block[16];
  add_block(pPred, predStep, pDst, dstStep, pDC, pCoeff, block, qp);
}

/// A quadrant is two couples, one below the other, in place. DC values stand in the 4x4 array of a macroblock's.
inline void dequant_transform_residual_and_add_no_dc_quadrant(Mox8u* pSrcDst, Mox32s step, Mox16s* pCoeff, Mox32s qp) {
  for (int i = 0; i < 2; ++i) {
    Mox8u* const rows = pSrcDst + 4 * i * std::ptrdiff_t{step};
    dequant_transform_residual_and_add_no_dc_couple_h264_sse2(rows, step, rows, step, pCoeff + 32 * i, qp);
  }
}

inline void dequant_transform_residual_and_add_dc_ac_couple_h264_sse2(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                                      Mox32s dstStep, const Mox16s* pDC, Mox16s* pCoeff,
                                                                      Mox32s qp) {
  dequant_transform_residual_and_add_dc_ac_h264_mmp(pPred, predStep, pDst, dstStep, pDC, pCoeff, qp);
  dequant_transform_residual_and_add_dc_ac_h264_mmp(pPred + 4, predStep, pDst + 4, dstStep, pDC + 1, pCoeff + 16, qp);
}

inline void dequant_transform_residual_and_add_dc_ac_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC,
                                                              Mox16s* pCoeff, Mox32s qp) {
  for (int i = 0; i < 2; ++i) {
    Mox8u* const rows = pSrcDst + 4 * i * std::ptrdiff_t{step};
    dequant_transform_residual_and_add_dc_ac_couple_h264_sse2(rows, step, rows, step, pDC + 4 * i, pCoeff + 32 * i, qp);
  }
}

inline void dequant_transform_residual_and_add_no_ac_h264_mmp(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                              Mox32s dstStep, const Mox16s* pDC) {
  add_dc(pPred, predStep, pDst, dstStep, *pDC);
}

inline void dequant_transform_residual_and_add_no_ac_couple_h264_sse2(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                                      Mox32s dstStep, const Mox16s* pDC) {
  add_dc(pPred, predStep, pDst, dstStep, pDC[0]);
  add_dc(pPred + 4, predStep, pDst + 4, dstStep, pDC[1]);
}

/// pDC or null; with `ac` the residual replaces the coefficients, without it pSrcDst is at most read.
inline void dequant_transform_residual_and_add_h264_sse2(const Mox8u* pPred, Mox16s* pSrcDst, const Mox16s* pDC,
                                                         Mox8u* pDst, Mox32s predStep, Mox32s dstStep, Mox32s qp,
                                                         Mox32s ac) {
  if (ac) {
    add_block(pPred, predStep, pDst, dstStep, pDC, pSrcDst, pSrcDst, qp);
  } else {
    add_dc(pPred, predStep, pDst, dstStep, dc_of(pDC, pSrcDst, qp));
  }
}

/// A quadrant with given DC values, those of each couple dcStep behind those of the one before.
inline void dequant_transform_residual_and_add_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC, int dcStep,
                                                        Mox16s* pCoeff, Mox32s qp) {
  for (int i = 0; i < 4; ++i) {
    Mox8u* const block = pSrcDst + i / 2 * 4 * std::ptrdiff_t{step} + i % 2 * 4;
    Mox16s* const coeff = pCoeff + 16 * i;
    add_block(block, step, block, step, pDC + i / 2 * dcStep + i % 2, coeff, coeff, qp);
  }
}

/// The same without coefficients.
inline void add_dc_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC, int dcStep) {
  for (int i = 0; i < 2; ++i) {
    Mox8u* const rows = pSrcDst + 4 * i * std::ptrdiff_t{step};
    dequant_transform_residual_and_add_no_ac_couple_h264_sse2(rows, step, rows, step, pDC + i * dcStep);
  }
}

/// multiplier InvQuantLuma16x16DCTable[qp]; rightShift 2, 1 or 0, rounded.
inline void dequant_transform_luma_dc_h264_sse2(Mox16s* pDC, Mox32s multiplier, Mox32s rightShift) {
  hadamard_4x4<Wrap16>(pDC);
  const Mox32s half = (1 << rightShift) >> 1;
  for (int i = 0; i < 16; ++i) pDC[i] = wrap16(add32(mul32(pDC[i], multiplier), half) >> rightShift);
}

/// multiplier InvQuantTable[qp][0]; halves are rounded down.
inline void dequant_transform_chroma_dc_h264_sse2(Mox16s* pDC, Mox32s multiplier) {
  hadamard_2x2<Wrap16>(pDC);
  for (int i = 0; i < 4; ++i) pDC[i] = wrap16(mul32(pDC[i], multiplier) >> 1);
}

/// The residual alone, in place, rows step / 2 coefficients apart, in wrapping arithmetic.
inline MoxStatus dequant_transform_residual(Mox16s* pSrcDst, Mox32s step, const Mox16s* pDC, Mox32s ac, Mox32s qp) {
  const std::ptrdiff_t row = step / 2;
  const Mox32s dc = dc_of(pDC, pSrcDst, qp);
  if (!ac) {
    for (int y = 0; y < 4; ++y) std::fill_n(pSrcDst + y * row, 4, wrap16(round6<Wrap32>(dc)));
    return moxStsOk;
  }
  for (int i = 0; i < 16; ++i) {
    Mox16s& value = pSrcDst[i / 4 * row + i % 4];
    value = wrap16(value * InvQuantTable_16s[qp][i]);
  }
  pSrcDst[0] = wrap16(dc);
  inverse_4x4<Wrap16>(pSrcDst, row);
  return moxStsOk;
}

// ---- Blocks with scaling lists, and transforms alone. P is Wrap16 or Wrap32 by the width of the coefficients. ----

/// The scale of coefficient 0: the caller's, or that of a flat list.
inline Mox32s dc_scale(const Mox16s* pLevelScale, int rem) {
  return pLevelScale ? *pLevelScale : InvLevelScale_4x4_default[rem][0];
}

/// The residual of a 4x4 block with AC coefficients replaces them and is added to the prediction.
template <class P, class Sample>
void scaled_add_block(const Sample* pPred, Mox32s predStep, typename P::Value* pSrcDst, const typename P::Value* pDC,
                      Sample* pDst, Mox32s dstStep, Mox32s qp, const Mox16s* pLevelScale, Mox32s limit) {
  const Rescale rescale = rescale_4x4(h264_qp6[qp]);
  const Mox16s* const scale = pLevelScale ? pLevelScale : InvLevelScale_4x4_default[h264_qp_rem[qp]].data();
  const Mox32s dc = pDC ? *pDC : rescale(mul32(pSrcDst[0], scale[0]));
  for (int i = 0; i < 16; ++i) pSrcDst[i] = keep<P>(rescale(mul32(pSrcDst[i], scale[i])));
  pSrcDst[0] = keep<P>(dc);
  inverse_4x4<P>(pSrcDst);
  add_to_prediction<4>(pPred, predStep, pDst, dstStep, limit, [pSrcDst](int x, int y) { return pSrcDst[4 * y + x]; });
}

/// Coefficient 0 of a block without AC coefficients: the given one, or the dequantised one as P keeps it.
template <class P>
typename P::Value scaled_dc(const typename P::Value* pSrcDst, const typename P::Value* pDC, Mox32s qp,
                            const Mox16s* pLevelScale) {
  const Mox32s product = mul32(pSrcDst[0], dc_scale(pLevelScale, h264_qp_rem[qp]));
  return pDC ? *pDC : keep<P>(rescale_4x4(h264_qp6[qp])(product));
}

inline MoxStatus scaled_residual_add_16s(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst, const Mox16s* pDC,
                                         Mox8u* pDst, Mox32s dstStep, Mox32s qp, Mox32s ac, const Mox16s* pLevelScale) {
  if (ac) {
    scaled_add_block<Wrap16>(pPred, predStep, pSrcDst, pDC, pDst, dstStep, qp, pLevelScale, 255);
  } else {
    add_dc(pPred, predStep, pDst, dstStep, scaled_dc<Wrap16>(pSrcDst, pDC, qp, pLevelScale));
  }
  return moxStsOk;
}

/// A DC added to a sample of more than 8 bits: the residual is cut to 16 bits, the sum saturates as a signed number and
/// is then limited as an unsigned one. A negative sum therefore becomes the largest sample, not 0; callers rely on it.
constexpr Mox16u add_dc_high(Mox16u prediction, Mox32s residual, Mox32s limit) {
  const Mox16s sum = sat16(wrap16(prediction) + wrap16(residual));
  return static_cast<Mox16u>(std::min<Mox32s>(static_cast<Mox16u>(sum), limit));
}
static_assert(add_dc_high(5, -10, 1023) == 1023 && add_dc_high(5, -5, 1023) == 0 && add_dc_high(5, 65536, 1023) == 5);

inline MoxStatus scaled_residual_add_32s(const Mox16u* pPred, Mox32s predStep, Mox32s* pSrcDst, const Mox32s* pDC,
                                         Mox16u* pDst, Mox32s dstStep, Mox32s qp, Mox32s ac, Mox32s bitDepth,
                                         const Mox16s* pLevelScale) {
  const Mox32s limit = sample_max(bitDepth);
  if (ac & 1) {
    scaled_add_block<Wrap32>(pPred, predStep, pSrcDst, pDC, pDst, dstStep, qp, pLevelScale, limit);
    return moxStsOk;
  }
  const Mox32s r = round6<Wrap32>(scaled_dc<Wrap32>(pSrcDst, pDC, qp, pLevelScale));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) pDst[x] = add_dc_high(pPred[x], r, limit);
    pPred += predStep, pDst += dstStep;
  }
  return moxStsOk;
}

template <class P>
MoxStatus residual_4x4(const typename P::Value* pSrc, typename P::Value* pDst) {
  typename P::Value block[16];
  std::copy_n(pSrc, 16, block);
  inverse_4x4<P>(block);
  std::copy_n(block, 16, pDst);
  return moxStsOk;
}

template <class P>
MoxStatus chroma_dc_2x2(typename P::Value* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  const Rescale rescale = rescale_2x2(h264_qp6[qp]);
  const Mox32s scale = dc_scale(pLevelScale, h264_qp_rem[qp]);
  hadamard_2x2<P>(pSrcDst);
  for (int i = 0; i < 4; ++i) pSrcDst[i] = keep<P>(rescale(mul32(pSrcDst[i], scale)));
  return moxStsOk;
}

/// product rescaled: Right rules the values that were shifted to the right, Left those that were not.
template <class Right, class Left>
constexpr typename Right::Value rescale_and_keep(Rescale rescale, Mox32s product) {
  return rescale.right > 0 ? keep<Right>(rescale(product)) : keep<Left>(rescale(product));
}

/// 4:2:2 chroma DC: the QP is 3 above that of the AC coefficients, `scale` the one of that QP. S is Sat16 where P is
/// Wrap16.
template <class S, class P>
void scaled_chroma_dc_2x4(typename P::Value* pSrcDst, Mox32s qp, Mox32s scale) {
  const Rescale rescale = rescale_8x8(h264_qp6[qp + 3]);
  hadamard_2x4<S, P>(pSrcDst);
  for (int i = 0; i < 8; ++i) pSrcDst[i] = rescale_and_keep<S, P>(rescale, mul32(pSrcDst[i], scale));
}

template <class S, class P>
MoxStatus chroma_dc_2x4(typename P::Value* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  scaled_chroma_dc_2x4<S, P>(pSrcDst, qp, dc_scale(pLevelScale, h264_qp_rem[qp + 3]));
  return moxStsOk;
}

template <class S, class P>
MoxStatus luma_dc_4x4(typename P::Value* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  const Rescale rescale = rescale_8x8(h264_qp6[qp]);
  const Mox32s scale = dc_scale(pLevelScale, h264_qp_rem[qp]);
  hadamard_4x4<S>(pSrcDst);
  for (int i = 0; i < 16; ++i) pSrcDst[i] = rescale_and_keep<S, P>(rescale, mul32(pSrcDst[i], scale));
  return moxStsOk;
}

template <class S, class P>
MoxStatus dequant_8x8(typename P::Value* pSrcDst, Mox32s qpPer, const Mox16s* pInvLevelScale) {
  const Rescale rescale = rescale_8x8(qpPer);
  for (int i = 0; i < 64; ++i) {
    pSrcDst[i] = rescale_and_keep<S, P>(rescale, mul32(sat16(pSrcDst[i]), pInvLevelScale[i]));
  }
  return moxStsOk;
}

/// Saturating; the residual replaces the coefficients.
inline MoxStatus residual_8x8_add_16s(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst, Mox8u* pDst,
                                      Mox32s dstStep) {
  inverse_8x8<Sat16>(pSrcDst);
  for (int i = 0; i < 64; ++i) pSrcDst[i] = round6<Sat16>(pSrcDst[i]);
  add_to_prediction<8>(pPred, predStep, pDst, dstStep, 255, [pSrcDst](int x, int y) { return pSrcDst[8 * y + x]; });
  return moxStsOk;
}

/// Wrapping; the prediction joins before the last shift, which shows only where the sum wraps. pSrcDst is only read.
inline MoxStatus residual_8x8_add_32s(const Mox16u* pPred, Mox32s predStep, const Mox32s* pSrcDst, Mox16u* pDst,
                                      Mox32s dstStep, Mox32s bitDepth) {
  alignas(16) Mox32s block[64];
  std::copy_n(pSrcDst, 64, block);
  inverse_8x8<Wrap32>(block);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      const Mox32s sum = add32(add32(block[8 * y + x], 32), pPred[x] << 6);
      pDst[x] = clip_depth(sum >> 6, bitDepth);
    }
    pPred += predStep, pDst += dstStep;
  }
  return moxStsOk;
}

// ---- SP and SI blocks: prediction and residual are added in the transform domain and quantised again. ----

/// t quantised with the multiplier `forward` and back with `inverse`: sign(t) * (((|t| * forward + half) >> shift) *
/// inverse). Products wrap.
constexpr Mox32s requantise(Mox32s t, Mox32s forward, int shift, Mox32s inverse) {
  const Mox32s magnitude = t > 0 ? t : sub32(0, t);
  const Mox32s value = mul32(add32(mul32(magnitude, forward), 1 << (shift - 1)) >> shift, inverse);
  return t > 0 ? value : sub32(0, value);
}

inline MoxStatus dequant_transform_residual_sisp(Mox16s* pSrcDst, const Mox16s* pPredictCoef, const Mox16s* pDC,
                                                 Mox32s ac, Mox32s qp, Mox32s qs, Mox32s switchFlag) {
  const auto& dequant = InvQuantTable[switchFlag ? qs : qp];
  const int shift = h264_qp6[qs] + 15;
  Mox16s block[16];
  for (int i = 0; i < 16; ++i) {
    const int position_class = QuantIndex[i];
    const bool coded = ac || i == 0;
    const Mox32s residual = coded ? mul32(pSrcDst[i] * dequant[position_class], MATR[i]) >> 6 : 0;
    block[i] = wrap16(requantise(add32(residual, pPredictCoef[i]), QuantCoef[h264_qp_rem[qs]][i], shift,
                                 InvQuantTable[qs][position_class]));
  }
  if (pDC) block[0] = *pDC;
  inverse_4x4<Wrap16>(block);
  std::transform(block, block + 16, pSrcDst, [](Mox16s value) { return Mox16s{clip8(value)}; });
  return moxStsOk;
}

inline MoxStatus dequant_transform_chroma_dc_sisp(Mox16s* pSrcDst, const Mox16s* pDCPredict, Mox32s qp, Mox32s qs,
                                                  Mox32s switchFlag) {
  const Mox32s dequant = InvQuantTable[switchFlag ? qs : qp][0];
  const int shift = h264_qp6[qs] + 16;
  Mox16s prediction[4];
  std::copy_n(pDCPredict, 4, prediction);
  hadamard_2x2<Wrap16>(prediction);
  Mox32s sums[4];  // of four 16-bit values: 18 bits, cut to 16 when they are stored
  for (int i = 0; i < 4; ++i) {
    const Mox32s t = prediction[i] + (pSrcDst[i] * dequant >> 1);
    sums[i] = wrap16(requantise(t, QuantCoef[h264_qp_rem[qs]][0], shift, InvQuantTable[qs][0]));
  }
  hadamard_2x2<Wrap32>(sums);
  for (int i = 0; i < 4; ++i) pSrcDst[i] = wrap16(sums[i] >> 1);
  return moxStsOk;
}

}  // namespace mox::px
