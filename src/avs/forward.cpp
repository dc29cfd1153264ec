#include "avs/forward_vec.hpp"

#include <cstddef>

#include "avs/reconstruct.hpp"
#include "frame/generation.hpp"
#include "moxvc/avs_forward.h"

using namespace mox;

namespace {

inline constexpr Mox32s kMostRounding = 128;

/// A block of the source and its place in the reconstructed plane.
struct CodedBlock {
  const Mox8u* source;
  std::ptrdiff_t sourceStep;
  Mox8u* plane;
  std::ptrdiff_t planeStep;
};

/// Predicts a block in the plane, makes the levels of what the prediction leaves, and reconstructs it. True if there
/// are levels.
bool take_apart(const CodedBlock& block, Mox32u mode, Mox32u neighbours, Mox16s* levels, Mox32s qp, Mox32s rounding) {
  active::predict_avs_intra(block.plane, block.planeStep, mode, neighbours);
  Mox16s residual[64];
  for (int y = 0; y < 8; ++y) {
    const Mox8u* const wanted = block.source + y * block.sourceStep;
    const Mox8u* const predicted = block.plane + y * block.planeStep;
    for (int x = 0; x < 8; ++x) residual[8 * y + x] = static_cast<Mox16s>(wanted[x] - predicted[x]);
  }
  if (active::transform_quant_avs(residual, levels, qp, rounding) == 0) return false;
  active::add_avs_residual(levels, active::avs_dequant(qp), block.plane, block.planeStep);
  return true;
}

}  // namespace

MoxStatus moxiTransformQuant8x8Fwd_AVS_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s* pNumLevels, Mox32s qp,
                                              Mox32s rounding) {
  if (any_null(pSrc, pDst, pNumLevels)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp)) return moxStsOutOfRange;
  if (outside(rounding, 0, kMostRounding)) return moxStsBadArg;
  *pNumLevels = active::transform_quant_avs(pSrc, pDst, qp, rounding);
  return moxStsOk;
}

MoxStatus moxiDisassembleLumaIntra_AVS_16s8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                 Mox16s* pDstCoeffs, const Mox32u* pMBIntraTypes, Mox32u* pCbp,
                                                 Mox32s qp, Mox32s rounding, Mox32u edgeType) {
  if (any_null(pSrc, pSrcDst, pDstCoeffs, pMBIntraTypes, pCbp)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp) || !avs_modes_exist(pMBIntraTypes)) return moxStsOutOfRange;
  if (outside(rounding, 0, kMostRounding)) return moxStsBadArg;
  if (!avs_edges_suffice(pMBIntraTypes, edgeType)) return moxStsEdgeUnavailable;
  Mox32u cbp = 0;
  for (int b = 0; b < 4; ++b) {
    const CodedBlock block{pSrc + avs_block_offset(b, srcStep), srcStep, pSrcDst + avs_block_offset(b, srcDstStep),
                           srcDstStep};
    const bool coded =
        take_apart(block, pMBIntraTypes[b], avs_luma_neighbours(b, edgeType), pDstCoeffs + 64 * b, qp, rounding);
    cbp |= static_cast<Mox32u>(coded) << b;
  }
  *pCbp = cbp;
  return moxStsOk;
}

MoxStatus moxiDisassembleChromaIntra_AVS_16s8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                   Mox16s* pDstCoeffs, Mox32u intraChromaMode, Mox32u* pCbp, Mox32s qp,
                                                   Mox32s rounding, Mox32u edgeType) {
  if (any_null(pSrc, pSrcDst, pDstCoeffs, pCbp)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp) || intraChromaMode >= kAvsChromaModes) return moxStsOutOfRange;
  if (outside(rounding, 0, kMostRounding)) return moxStsBadArg;
  const Mox32u mode = kAvsModeOfChroma[intraChromaMode], neighbours = avs_chroma_neighbours(edgeType);
  if (kAvsNeeds[mode] & ~neighbours) return moxStsEdgeUnavailable;
  const CodedBlock block{pSrc, srcStep, pSrcDst, srcDstStep};
  *pCbp = take_apart(block, mode, neighbours, pDstCoeffs, qp, rounding);
  return moxStsOk;
}
