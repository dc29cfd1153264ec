#include "moxvc/block_statistics.h"

#include "block/statistics_px.hpp"
#include "block/statistics_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

namespace {

template <class T>
MoxStatus var_sum(const T* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum) {
  if (any_null(pSrc, pVar, pSum)) return moxStsNullPointer;
  return store_variance_and_sum_64(active::moments<8, 8>(pSrc, srcStep), pVar, pSum);
}

template <int W, class T>
MoxStatus sums_diff(const T* pSrc, Mox32s srcStep, const T* pPred, Mox32s predStep, DifferenceSum<T>* pSums,
                    Mox16s* pDiff) {
  if (any_null(pSrc, pPred, pSums)) return moxStsNullPointer;
  return pDiff ? active::sums_diff<W, true>(pSrc, srcStep, pPred, predStep, pSums, pDiff)
               : active::sums_diff<W, false>(pSrc, srcStep, pPred, predStep, pSums, pDiff);
}

}  // namespace

MoxStatus moxiVariance16x16_8u32s(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pVar) {
  if (any_null(pSrc, pVar)) return moxStsNullPointer;
  return store_variance_256(active::moments<16, 16>(pSrc, srcStep), pVar);
}

MoxStatus moxiVarSum8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum) {
  return var_sum(pSrc, srcStep, pVar, pSum);
}

MoxStatus moxiVarMean8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum) {
  return var_sum(pSrc, srcStep, pVar, pSum);
}

MoxStatus moxiVarSum8x8_16s32s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum) {
  return var_sum(pSrc, srcStep, pVar, pSum);
}

MoxStatus moxiVarMean8x8_16s32s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum) {
  return var_sum(pSrc, srcStep, pVar, pSum);
}

MoxStatus moxiMeanAbsDev8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pResult) {
  if (any_null(pSrc, pResult)) return moxStsNullPointer;
  return active::mean_abs_dev<8>(pSrc, srcStep, pResult);
}

MoxStatus moxiMeanAbsDev16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pResult) {
  if (any_null(pSrc, pResult)) return moxStsNullPointer;
  return active::mean_abs_dev<16>(pSrc, srcStep, pResult);
}

MoxStatus moxiVarMeanDiff16x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        const Mox32s* pSrcSum, Mox32s* pVar, Mox32s* pMean, Mox32s mcType) {
  if (any_null(pSrc, pRef, pSrcSum, pVar, pMean)) return moxStsNullPointer;
  return active::kVarMeanDiff16x8[half_pel_index(mcType)](pSrc, srcStep, pRef, refStep, pSrcSum, pVar, pMean);
}

MoxStatus moxiVarMeanDiff16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         const Mox32s* pSrcSum, Mox32s* pVar, Mox32s* pMean, Mox32s mcType) {
  if (any_null(pSrc, pRef, pSrcSum, pVar, pMean)) return moxStsNullPointer;
  if (mcType & ~12) return moxStsOk;
  return active::kVarMeanDiff16x16[half_pel_index(mcType)](pSrc, srcStep, pRef, refStep, pSrcSum, pVar, pMean);
}

MoxStatus moxiSumsDiff8x8Blocks4x4_8u16s_C1(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPred, Mox32s predStep,
                                            Mox16s* pSums, Mox16s* pDiff) {
  return sums_diff<8>(pSrc, srcStep, pPred, predStep, pSums, pDiff);
}

MoxStatus moxiSumsDiff16x16Blocks4x4_8u16s_C1(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPred, Mox32s predStep,
                                              Mox16s* pSums, Mox16s* pDiff) {
  return sums_diff<16>(pSrc, srcStep, pPred, predStep, pSums, pDiff);
}

MoxStatus moxiSumsDiff8x8Blocks4x4_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pPred, Mox32s predStep,
                                              Mox32s* pSums, Mox16s* pDiff) {
  return sums_diff<8>(pSrc, srcStep, pPred, predStep, pSums, pDiff);
}

MoxStatus moxiSumsDiff16x16Blocks4x4_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pPred,
                                                Mox32s predStep, Mox32s* pSums, Mox16s* pDiff) {
  return sums_diff<16>(pSrc, srcStep, pPred, predStep, pSums, pDiff);
}

MoxStatus moxiSumsDiff8x8Blocks4x4_8u16s_C2P2(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPredU, Mox32s predStepU,
                                              const Mox8u* pPredV, Mox32s predStepV, Mox16s* pSumsU, Mox16s* pDiffU,
                                              Mox16s* pSumsV, Mox16s* pDiffV) {
  if (any_null(pSrc, pPredU, pPredV, pSumsU, pSumsV)) return moxStsNullPointer;
  return active::kSumsDiffChannels[channels_index(pDiffU, pDiffV)](pSrc, srcStep, pPredU, predStepU, pPredV, predStepV,
                                                                   pSumsU, pDiffU, pSumsV, pDiffV);
}

MoxStatus moxiEdgesDetect16x16_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32u edgePelDifference, Mox32u edgePelCount,
                                      Mox8u* pResult) {
  if (any_null(pSrc, pResult)) return moxStsNullPointer;
  const auto most = static_cast<Mox32s>(edgePelCount & 0xFF);
  *pResult = active::count_edges(pSrc, srcStep, edge_threshold<Mox8u>(edgePelDifference)) > most;
  return moxStsOk;
}

MoxStatus moxiEdgesDetect16x16_16u_C1R(const Mox16u* pSrc, Mox32s srcStep, Mox32u edgePelDifference,
                                       Mox32u edgePelCount, Mox32u* pResult) {
  if (any_null(pSrc, pResult)) return moxStsNullPointer;
  if (edgePelDifference > 65535 || edgePelCount > 256) return moxStsOk;
  const auto most = static_cast<Mox32s>(edgePelCount);
  *pResult = active::count_edges(pSrc, srcStep, edge_threshold<Mox16u>(edgePelDifference)) > most;
  return moxStsOk;
}
