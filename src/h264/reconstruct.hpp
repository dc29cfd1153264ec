/// The ways through a macroblock that all reconstruction families share.
///
/// A family brings a Residual: a record of what its blocks are dequantised with, with those of these members that it
/// needs:
///   Coeff                                   type of a coefficient
///   depth                                   bits of a sample
///   add_4x4(block, step, coeffs)            adds a block that has all its coefficients
///   add_4x4(block, step, dc, coeffs)        adds a block whose DC is given; null coeffs: nothing but the DC
///   add_8x8(block, step, coeffs)            adds an 8x8 block
///   luma_dc(dc), chroma_dc(dc)              makes the DC values of a plane, in place
/// The residual is added to the prediction that the plane holds. Not kernels: they call the generation's kernels.
#pragma once

#include "h264/intra.hpp"
#include "h264/intra8x8_px.hpp"
#include "h264/macroblock.hpp"

namespace mox {

/// Blocks 0 to Blocks - 1 of an Intra 4x4 macroblock, each predicted from the finished ones before it. `coded` has bit
/// i for block i. A substituted edge is reported after all blocks are done.
template <int Blocks, class Pixel, class Residual>
MoxStatus intra_4x4(typename Residual::Coeff** ppSrcCoeff, Pixel* block, Mox32s step, const Mox32u* modes, Mox32u coded,
                    Mox32u edgeType, const Residual& residual) {
  PackedCoeffs coeffs(ppSrcCoeff);
  MoxStatus status = moxStsOk;
  for (int i = 0; i < Blocks; ++i) {
    const Mox32u available = neighbours_4x4(i, edgeType);
    if (active::predict_luma_4x4_h264(block, step, modes[i], available, residual.depth) != moxStsOk) {
      status = moxStsEdgeSubstituted;
    }
    if (coded >> i & 1) residual.add_4x4(block, step, coeffs.take(16));
    block = move(block, step, xyoff[i]);
  }
  return status;
}

/// The same for 8x8 blocks 0 to Blocks - 1. Nothing is reported.
template <int Blocks, class Pixel, class Residual>
MoxStatus intra_8x8(typename Residual::Coeff** ppSrcCoeff, Pixel* block, Mox32s step, const Mox32u* modes, Mox32u coded,
                    Mox32u edgeType, const Residual& residual) {
  PackedCoeffs coeffs(ppSrcCoeff);
  for (int i = 0; i < Blocks; ++i) {
    active::predict_luma_8x8_h264(block, step, modes[i], neighbours_8x8(i, edgeType), residual.depth);
    if (coded >> i & 1) residual.add_8x8(block, step, coeffs.take(64));
    block = move(block, step, xyoff8[i]);
  }
  return moxStsOk;
}

/// The residual of an inter macroblock in 4x4 and in 8x8 blocks, `coded` having bit i for block i.
template <class Pixel, class Residual>
MoxStatus inter_4x4(typename Residual::Coeff** ppSrcCoeff, Pixel* block, Mox32s step, Mox32u coded,
                    const Residual& residual) {
  PackedCoeffs coeffs(ppSrcCoeff);
  for (int i = 0; i < 16; ++i) {
    if (coded >> i & 1) residual.add_4x4(block, step, coeffs.take(16));
    block = move(block, step, xyoff[i]);
  }
  return moxStsOk;
}

template <class Pixel, class Residual>
MoxStatus inter_8x8(typename Residual::Coeff** ppSrcCoeff, Pixel* block, Mox32s step, Mox32u coded,
                    const Residual& residual) {
  PackedCoeffs coeffs(ppSrcCoeff);
  for (int i = 0; i < 4; ++i) {
    if (coded >> i & 1) residual.add_8x8(block, step, coeffs.take(64));
    block = move(block, step, xyoff8[i]);
  }
  return moxStsOk;
}

/// The residual of an Intra 16x16 macroblock: bit 0 of `coded` is the DC block, bit i + 1 block i.
template <class Pixel, class Residual>
MoxStatus residual_16x16(typename Residual::Coeff** ppSrcCoeff, Pixel* block, Mox32s step, Mox32u coded,
                         const Residual& residual) {
  using Coeff = typename Residual::Coeff;
  if (!(coded & (kLumaBlocks | kLumaDC))) return moxStsOk;
  PackedCoeffs coeffs(ppSrcCoeff);
  const Coeff* dc = kNoDC<Coeff>;
  if (coded & kLumaDC) {
    Coeff* const own = coeffs.take(16);
    residual.luma_dc(own);
    dc = own;
  }
  for (int i = 0; i < 16; ++i) {
    const bool ac = coded >> (kFirstLumaBlock + i) & 1;
    residual.add_4x4(block, step, dc + block_subblock_mapping[i], ac ? coeffs.take(16) : nullptr);
    block = move(block, step, xyoff[i]);
  }
  return moxStsOk;
}

/// Predicts both chroma planes, 8 x H each. They have the same neighbours, so a refusal comes before anything is
/// written.
template <int H, class Pixel>
MoxStatus predict_both_chroma(Pixel* u, Pixel* v, Mox32s step, Mox32u mode, Mox32u edgeType, Mox32s depth = 8) {
  const Mox32u available = neighbours_of_macroblock(edgeType);
  const MoxStatus status = predict_chroma_h264<H>(u, step, mode, available, depth);
  return status == moxStsOk ? predict_chroma_h264<H>(v, step, mode, available, depth) : status;
}

/// The same for halves with different left neighbours.
template <int H, class Pixel>
MoxStatus predict_both_chroma_halves(Pixel* u, Pixel* v, Mox32s step, Mox32u mode, Mox32u edgeTypeTop,
                                     Mox32u edgeTypeBottom, Mox32s depth = 8) {
  const Mox32u upper = neighbours_of_macroblock(edgeTypeTop), lower = neighbours_of_macroblock(edgeTypeBottom);
  const MoxStatus status = predict_chroma_halves_h264<H>(u, step, mode, upper, lower, depth);
  return status == moxStsOk ? predict_chroma_halves_h264<H>(v, step, mode, upper, lower, depth) : status;
}

/// The four blocks of a chroma plane of 8 x 8 samples, each with its DC. `coded` has bit i for block i.
template <class Pixel, class Residual, class Coeff>
void add_chroma(Pixel* block, Mox32s step, const Coeff* dc, Mox32u coded, PackedCoeffs<Coeff>& coeffs,
                const Residual& residual) {
  for (int i = 0; i < 4; ++i) {
    residual.add_4x4(block, step, dc + i, coded >> i & 1 ? coeffs.take(16) : nullptr);
    block = move(block, step, kChromaStep[i % 2]);
  }
}

/// Both chroma planes of a macroblock in 4:2:0. The DC blocks of both planes come first in the stream.
template <class Pixel, class Residual>
MoxStatus chroma_residual(typename Residual::Coeff** ppSrcCoeff, Pixel* u, Pixel* v, Mox32s step, Mox32u cbp4x4,
                          const Residual& residual_u, const Residual& residual_v) {
  using Coeff = typename Residual::Coeff;
  if (!(cbp4x4 & kChromaBits)) return moxStsOk;
  PackedCoeffs coeffs(ppSrcCoeff);
  const auto take_dc = [&](int plane, const Residual& residual) -> const Coeff* {
    if (!(cbp4x4 >> (kFirstChromaDC + plane) & 1)) return kNoDC<Coeff>;
    Coeff* const dc = coeffs.take(4);
    residual.chroma_dc(dc);
    return dc;
  };
  const Coeff* const dc_u = take_dc(0, residual_u);
  const Coeff* const dc_v = take_dc(1, residual_v);
  add_chroma(u, step, dc_u, cbp4x4 >> kFirstChromaBlock, coeffs, residual_u);
  add_chroma(v, step, dc_v, cbp4x4 >> (kFirstChromaBlock + 4), coeffs, residual_v);
  return moxStsOk;
}

}  // namespace mox
