#include "avs/deblock_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/avs_deblock.h"

using namespace mox;

namespace {

using EdgeKernel = void (*)(Mox8u*, std::ptrdiff_t, const Mox8u*, const AvsThresholds&);

/// Runs the kernel on `edges` edges, `next` bytes apart; those without strength are passed over.
MoxStatus filter_edges(EdgeKernel kernel, int edges, Mox8u* pSrcDst, std::ptrdiff_t step, std::ptrdiff_t next,
                       const Mox8u* pAlpha, const Mox8u* pBeta, const Mox8u* pThresholds, const Mox8u* pBs) {
  for (int e = 0; e < edges; ++e) {
    if (pBs[2 * e] | pBs[2 * e + 1])
      kernel(pSrcDst + e * next, step, pBs + 2 * e, {pAlpha[e], pBeta[e], pThresholds[e]});
  }
  return moxStsOk;
}

}  // namespace

MoxStatus moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                       const Mox8u* pBeta, const Mox8u* pThresholds, const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return filter_edges(&active::deblock_avs_vertical<true>, 2, pSrcDst, srcDstStep, 8, pAlpha, pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingLuma_HorEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                       const Mox8u* pBeta, const Mox8u* pThresholds, const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return filter_edges(&active::deblock_avs_horizontal<true>, 2, pSrcDst, srcDstStep, std::ptrdiff_t{8} * srcDstStep,
                      pAlpha, pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingChroma_VerEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                         const Mox8u* pBeta, const Mox8u* pThresholds,
                                                         const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return filter_edges(&active::deblock_avs_vertical<false>, 1, pSrcDst, srcDstStep, 0, pAlpha, pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingChroma_HorEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                         const Mox8u* pBeta, const Mox8u* pThresholds,
                                                         const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return filter_edges(&active::deblock_avs_horizontal<false>, 1, pSrcDst, srcDstStep, 0, pAlpha, pBeta, pThresholds,
                      pBs);
}
