#include "h264/reconstruct.hpp"

#include "frame/arguments.hpp"
#include "moxvc/h264_reconstruct.h"

namespace mox {
namespace {

/// Flat quantisation: the QP says it all.
struct FlatResidual {
  using Coeff = Mox16s;
  static constexpr Mox32s depth = 8;
  static constexpr bool kQuadrants = true;
  Mox32s qp;
  static constexpr bool lossless() { return false; }

  void add_4x4(Mox8u* block, Mox32s step, Mox16s* coeffs) const {
    active::dequant_transform_residual_and_add_no_dc_h264_mmp(block, step, block, step, coeffs, qp);
  }
  void add_4x4(Mox8u* block, Mox32s step, const Mox16s* dc, Mox16s* coeffs) const {
    active::dequant_transform_residual_and_add_h264_sse2(block, coeffs, dc, block, step, step, qp, coeffs != nullptr);
  }
  void add_quadrant(Mox8u* block, Mox32s step, const Mox16s* dc, int dcStep, Mox16s* coeffs) const {
    active::dequant_transform_residual_and_add_quadrant(block, step, dc, dcStep, coeffs, qp);
  }
  void chroma_dc(Mox16s* dc) const { active::dequant_transform_chroma_dc_h264_sse2(dc, InvQuantTable[qp][0]); }
};

/// Chroma plane 0 or 1 of a macroblock.
ChromaPlane<Mox8u, FlatResidual> flat_chroma(Mox16s** ppSrcCoeff, Mox8u* first, Mox32s step, Mox32u cbp4x4, int plane,
                                             Mox32s qp) {
  return {ppSrcCoeff, first, step, chroma_pattern(cbp4x4, plane), {qp}};
}

/// Calls quadrant(first block, pattern) for the quadrants of a macroblock; where that leaves the work, pair(first block
/// of a horizontal pair, its number in coding order, pattern) for both pairs.
template <class Quadrant, class Pair>
void each_quadrant(Mox8u* plane, Mox32s step, Mox32u cbp4x4, Quadrant quadrant, Pair pair) {
  for (int i = 0; i < 16; i += 4) {
    const Mox32u coded = cbp4x4 >> (kFirstLumaBlock + i) & 15;
    if (!quadrant(plane, i, coded)) {
      pair(plane, i, coded & 3);
      pair(move(plane, step, {0, 4}), i + 2, coded >> 2);
    }
    plane = move(plane, step, xyoff8[i / 4]);
  }
}

MoxStatus luma_inter(Mox16s** ppSrcCoeff, Mox8u* plane, Mox32s step, Mox32u cbp4x4, Mox32s qp) {
  if (!(cbp4x4 & kLumaBlocks)) return moxStsOk;
  PackedCoeffs coeffs(ppSrcCoeff);
  const auto quadrant = [&](Mox8u* block, int, Mox32u coded) {
    if (coded == 15) active::dequant_transform_residual_and_add_no_dc_quadrant(block, step, coeffs.take(64), qp);
    return coded == 15 || coded == 0;
  };
  const auto pair = [&](Mox8u* block, int, Mox32u coded) {
    if (coded == 3) {
      active::dequant_transform_residual_and_add_no_dc_couple_h264_sse2(block, step, block, step, coeffs.take(32), qp);
    } else if (coded) {
      FlatResidual{qp}.add_4x4(block + (coded == 2 ? 4 : 0), step, coeffs.take(16));
    }
  };
  each_quadrant(plane, step, cbp4x4, quadrant, pair);
  return moxStsOk;
}

/// The DC values of an Intra 16x16 macroblock by raster position, taken from the stream if they are in it.
const Mox16s* luma_dc(PackedCoeffs<Mox16s>& coeffs, Mox32u cbp4x4, Mox32s qp) {
  if (!(cbp4x4 & kLumaDC)) return zeroArray16<Mox16s>;
  Mox16s* const dc = coeffs.take(16);
  active::dequant_transform_luma_dc_h264_sse2(dc, InvQuantLuma16x16DCTable[qp], qp < 6 ? 2 : qp < 12 ? 1 : 0);
  return dc;
}

MoxStatus luma_16x16(Mox16s** ppSrcCoeff, Mox8u* plane, Mox32s step, Mox32u cbp4x4, Mox32s qp) {
  if (!(cbp4x4 & (kLumaBlocks | kLumaDC))) return moxStsOk;
  PackedCoeffs coeffs(ppSrcCoeff);
  const Mox16s* const all_dc = luma_dc(coeffs, cbp4x4, qp);
  const auto quadrant = [&](Mox8u* block, int i, Mox32u coded) {
    const Mox16s* const dc = all_dc + block_subblock_mapping[i];
    if (coded == 0) active::add_dc_quadrant(block, step, dc, 4);
    if (coded == 15) active::dequant_transform_residual_and_add_dc_ac_quadrant(block, step, dc, coeffs.take(64), qp);
    return coded == 0 || coded == 15;
  };
  const auto pair = [&](Mox8u* block, int i, Mox32u coded) {
    const Mox16s* const dc = all_dc + block_subblock_mapping[i];
    if (coded == 0) {
      active::dequant_transform_residual_and_add_no_ac_couple_h264_sse2(block, step, block, step, dc);
    } else if (coded == 3) {
      active::dequant_transform_residual_and_add_dc_ac_couple_h264_sse2(block, step, block, step, dc, coeffs.take(32),
                                                                        qp);
    } else {
      const int with = coded == 2, without = 1 - with;
      Mox8u* const with_ac = block + 4 * with;
      Mox8u* const without_ac = block + 4 * without;
      active::dequant_transform_residual_and_add_dc_ac_h264_mmp(with_ac, step, with_ac, step, dc + with,
                                                                coeffs.take(16), qp);
      active::dequant_transform_residual_and_add_no_ac_h264_mmp(without_ac, step, without_ac, step, dc + without);
    }
  };
  each_quadrant(plane, step, cbp4x4, quadrant, pair);
  return moxStsOk;
}

/// The upper eight blocks. A mode above 8 ends the work, and the stream is left behind the blocks that are done.
MoxStatus intra_4x4_half(Mox16s** ppSrcCoeff, Mox8u* block, Mox32s step, const Mox32u* modes, Mox32u coded, Mox32s qp,
                         Mox32u edgeType) {
  PackedCoeffs coeffs(ppSrcCoeff);
  MoxStatus status = moxStsOk;
  for (int i = 0; i < 8; ++i) {
    if (modes[i] > kLastIntraMode) return moxStsOutOfRange;
    const Mox32u available = neighbours_4x4_of_half(i, edgeType);
    if (active::predict_luma_4x4_h264(block, step, modes[i], available) != moxStsOk) status = moxStsEdgeSubstituted;
    if (coded >> i & 1) FlatResidual{qp}.add_4x4(block, step, nullptr, coeffs.take(16));
    block = move(block, step, xyoff[i]);
  }
  return status;
}

}  // namespace
}  // namespace mox

using namespace mox;

MoxStatus moxiReconstructLumaInterMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                    Mox32u cbp4x4, Mox32s qp) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return luma_inter(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp4x4, qp);
}

MoxStatus moxiReconstructLumaIntraMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                    const Mox32u* pMBIntraTypes, Mox32u cbp4x4, Mox32s qp,
                                                    Mox32u edgeType) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_4x4<16>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp4x4 >> kFirstLumaBlock, edgeType,
                       FlatResidual{qp});
}

MoxStatus moxiReconstructLumaIntraHalfMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                        const Mox32u* pMBIntraTypes, Mox32u cbp4x2, Mox32s qp,
                                                        Mox32u edgeType) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  if (srcDstYStep <= 0) return moxStsBadStep;
  return intra_4x4_half(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp4x2, qp, edgeType);
}

MoxStatus moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                         Mox32u intraLumaMode, Mox32u cbp4x4, Mox32s qp,
                                                         Mox32u edgeType) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  const MoxStatus predicted =
      predict_luma_16x16_h264(pSrcDstYPlane, srcDstYStep, intraLumaMode, neighbours_of_macroblock(edgeType));
  if (predicted != moxStsOk) return predicted;
  return luma_16x16(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp4x4, qp);
}

MoxStatus moxiReconstructChromaInterMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane, Mox8u* pSrcDstVPlane,
                                                      Mox32s srcDstUVStep, Mox32u cbp4x4, Mox32s chromaQp) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane)) return moxStsNullPointer;
  if (outside(chromaQp, 0, 39)) return moxStsOutOfRange;
  const auto u = flat_chroma(ppSrcCoeff, pSrcDstUPlane, srcDstUVStep, cbp4x4, 0, chromaQp);
  const auto v = flat_chroma(ppSrcCoeff, pSrcDstVPlane, srcDstUVStep, cbp4x4, 1, chromaQp);
  return chroma_inter<8>(u, v);
}

MoxStatus moxiReconstructChromaIntraMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane, Mox8u* pSrcDstVPlane,
                                                      Mox32s srcDstUVStep, Mox32u intraChromaMode, Mox32u cbp4x4,
                                                      Mox32s chromaQp, Mox32u edgeType) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane)) return moxStsNullPointer;
  if (outside(chromaQp, 0, 39)) return moxStsOutOfRange;
  const auto u = flat_chroma(ppSrcCoeff, pSrcDstUPlane, srcDstUVStep, cbp4x4, 0, chromaQp);
  const auto v = flat_chroma(ppSrcCoeff, pSrcDstVPlane, srcDstUVStep, cbp4x4, 1, chromaQp);
  return chroma_intra<8>(u, v, intraChromaMode, edgeType);
}

MoxStatus moxiReconstructChromaIntraHalfsMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                           Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                           Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQp,
                                                           Mox32u edgeTypeTop, Mox32u edgeTypeBottom) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane)) return moxStsNullPointer;
  if (outside(chromaQp, 0, 51)) return moxStsOutOfRange;
  const auto u = flat_chroma(ppSrcCoeff, pSrcDstUPlane, srcDstUVStep, cbp4x4, 0, chromaQp);
  const auto v = flat_chroma(ppSrcCoeff, pSrcDstVPlane, srcDstUVStep, cbp4x4, 1, chromaQp);
  const MoxStatus predicted = predict_both_chroma_halves<8>(u, v, intraChromaMode, edgeTypeTop, edgeTypeBottom);
  if (predicted != moxStsOk) return predicted;
  // Refuses a QP above 39 although the prediction is written: callers see both.
  return moxiReconstructChromaInterMB_H264_16s8u_P2R(ppSrcCoeff, pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep, cbp4x4,
                                                     chromaQp);
}

MoxStatus moxiReconstructChromaIntraHalvesMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                            Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                            Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQp,
                                                            Mox32u edgeTypeTop, Mox32u edgeTypeBottom) {
  return moxiReconstructChromaIntraHalfsMB_H264_16s8u_P2R(ppSrcCoeff, pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep,
                                                          intraChromaMode, cbp4x4, chromaQp, edgeTypeTop,
                                                          edgeTypeBottom);
}
