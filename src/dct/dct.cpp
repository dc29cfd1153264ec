#include "moxvc/dct.h"

#include "dct/dct.hpp"
#include "dct/dct_px.hpp"
#include "dct/dct_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

namespace {
/// Bytes of a row: 8 words, 8 words of each of two channels, 8 samples, 8 samples of each of two channels.
constexpr Mox32s kWords = 16, kWordPairs = 32, kSamples = 8, kSamplePairs = 16;
/// The step of 64 values without gaps.
constexpr Mox32s kDense = 16;
}  // namespace

MoxStatus mox::moxiDCT8x8Fwd_8u16s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (srcStep < kSamples) return moxStsBadStep;
  return active::dct_forward_8u(pSrc, srcStep, pDst);
}

MoxStatus mox::moxiDCT8x8Inv_16s8u_C1R(const Mox16s* pSrc, Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (dstStep < kSamples) return moxStsBadStep;
  return active::dct_inverse_8u<false>(pSrc, pDst, dstStep);
}

MoxStatus moxiDCT8x8Fwd_16s_C1(const Mox16s* pSrc, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::dct_forward_16s(pSrc, kDense, pDst);
}

MoxStatus moxiDCT8x8Fwd_16s_C1I(Mox16s* pSrcDst) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::dct_forward_16s(pSrcDst, kDense, pSrcDst);
}

MoxStatus moxiDCT8x8Fwd_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (srcStep < kWords) return moxStsBadStep;
  return active::dct_forward_16s(pSrc, srcStep, pDst);
}

MoxStatus moxiDCT8x8Fwd_8u16s_C2P2(const Mox8u* pSrcUV, Mox32s srcStep, Mox16s* pDstU, Mox16s* pDstV) {
  if (any_null(pSrcUV, pDstU, pDstV)) return moxStsNullPointer;
  return active::dct_forward_pair(pSrcUV, srcStep, pDstU, pDstV);
}

MoxStatus moxiDCT8x8Inv_16s_C1(const Mox16s* pSrc, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::dct_inverse_16s<false>(pSrc, pDst, kDense);
}

MoxStatus moxiDCT8x8Inv_16s_C1I(Mox16s* pSrcDst) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::dct_inverse_16s<false>(pSrcDst, pSrcDst, kDense);
}

MoxStatus moxiDCT8x8Inv_16s_C1R(const Mox16s* pSrc, Mox16s* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (dstStep < kWords) return moxStsBadStep;
  return active::dct_inverse_16s<false>(pSrc, pDst, dstStep);
}

MoxStatus moxiDCT8x8InvOrSet_16s8u_C1R(const Mox16s* pSrc, Mox8u* pDst, Mox32s dstStep, Mox32s flag) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (dstStep < kSamples) return moxStsBadStep;
  return flag ? active::dct_set_8u(*pSrc, pDst, dstStep) : moxiDCT8x8Inv_16s8u_C1R(pSrc, pDst, dstStep);
}

MoxStatus moxiDCT8x8InvOrSet_16s8u_P2C2(const Mox16s* pSrcU, const Mox16s* pSrcV, Mox8u* pDstUV, Mox32s dstStep,
                                        Mox32s flag) {
  if (any_null(pSrcU, pSrcV, pDstUV)) return moxStsNullPointer;
  return active::dct_inverse_pair_8u<false>(pSrcU, pSrcV, pDstUV, dstStep, flag);
}

MoxStatus moxiDCT8x8Inv_AANTransposed_16s_C1(const Mox16s* pSrc, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::dct_inverse_16s<true>(pSrc, pDst, kDense);
}

MoxStatus moxiDCT8x8Inv_AANTransposed_16s_C1R(const Mox16s* pSrc, Mox16s* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (dstStep < kWords) return moxStsBadStep;
  return active::dct_inverse_16s<true>(pSrc, pDst, dstStep);
}

MoxStatus moxiDCT8x8Inv_AANTransposed_16s_P2C2R(const Mox16s* pSrcU, const Mox16s* pSrcV, Mox16s* pDstUV,
                                                Mox32s dstStep) {
  if (any_null(pSrcU, pSrcV, pDstUV)) return moxStsNullPointer;
  if (dstStep < kWordPairs) return moxStsBadStep;
  return active::dct_inverse_pair_16s(pSrcU, pSrcV, pDstUV, dstStep);
}

MoxStatus moxiDCT8x8Inv_AANTransposed_16s8u_C1R(const Mox16s* pSrc, Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (dstStep < kSamples) return moxStsBadStep;
  return active::dct_inverse_8u<true>(pSrc, pDst, dstStep);
}

MoxStatus moxiDCT8x8Inv_AANTransposed_16s8u_P2C2R(const Mox16s* pSrcU, const Mox16s* pSrcV, Mox8u* pDstUV,
                                                  Mox32s dstStep) {
  if (any_null(pSrcU, pSrcV, pDstUV)) return moxStsNullPointer;
  if (dstStep < kSamplePairs) return moxStsBadStep;
  return active::dct_inverse_pair_8u<true>(pSrcU, pSrcV, pDstUV, dstStep, 0);
}
