#include "block/metrics_candidates_px.hpp"
#include "block/metrics_candidates_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_metrics.h"

using namespace mox;

namespace {

template <const auto& kTable>
MoxStatus all_sums(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                   Mox32s numCandidates) {
  if (any_null(pSrc, pRef, pDstSAD)) return moxStsNullPointer;
  if (whole_groups(numCandidates) < 1) return moxStsBadSize;
  return kTable[place_index(pRef)](pSrc, srcStep, pRef, refStep, pDstSAD, whole_groups(numCandidates));
}

template <const auto& kTable>
MoxStatus all_sums_and_smallest(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                                Mox32s numCandidates, Mox32s* pMinIndex) {
  if (any_null(pSrc, pRef, pDstSAD, pMinIndex)) return moxStsNullPointer;
  if (whole_groups(numCandidates) < 1) return moxStsBadSize;
  kTable[place_index(pRef)](pSrc, srcStep, pRef, refStep, pDstSAD, whole_groups(numCandidates));
  *pMinIndex = active::index_of_smallest(pDstSAD, whole_groups(numCandidates));
  return moxStsOk;
}

}  // namespace

MoxStatus moxiSAD16x16xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                   Mox16u* pDstSAD, Mox32s numCandidates) {
  return all_sums<active::sad_16x16xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates);
}

MoxStatus moxiSAD8x8xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                                 Mox32s numCandidates) {
  return all_sums<active::sad_8x8xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates);
}

MoxStatus moxiSAD4x4xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                                 Mox32s numCandidates) {
  return all_sums<active::sad_4x4xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates);
}

MoxStatus moxiSAD2x2xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                                 Mox32s numCandidates) {
  return all_sums<active::sad_2x2xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates);
}

MoxStatus moxiSAD16x16xNI_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                    Mox16u* pDstSAD, Mox32s numCandidates, Mox32s* pMinIndex) {
  return all_sums_and_smallest<active::sad_16x16xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates,
                                                                   pMinIndex);
}

MoxStatus moxiSAD8x8xNI_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                                  Mox32s numCandidates, Mox32s* pMinIndex) {
  return all_sums_and_smallest<active::sad_8x8xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates,
                                                                 pMinIndex);
}

MoxStatus moxiSAD4x4xNI_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox16u* pDstSAD,
                                  Mox32s numCandidates, Mox32s* pMinIndex) {
  return all_sums_and_smallest<active::sad_4x4xn_8u_table_sse41>(pSrc, srcStep, pRef, refStep, pDstSAD, numCandidates,
                                                                 pMinIndex);
}
