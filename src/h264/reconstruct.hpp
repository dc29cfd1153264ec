/// The ways through a macroblock that all reconstruction families share.
///
/// A family brings a Residual: a record of what its blocks are dequantised with, with those of these members that it
/// needs:
///   Coeff                                   type of a coefficient
///   depth                                   bits of a sample
///   add_4x4(block, step, coeffs)            adds a block that has all its coefficients
///   add_4x4(block, step, dc, coeffs)        adds a block whose DC is given; null coeffs: nothing but the DC
///   add_8x8(block, step, coeffs)            adds an 8x8 block
///   kQuadrants                              whether it takes four 4x4 blocks at once, unless lossless():
///   add_quadrant(block, step, dc, dcStep, coeffs)   they have all their coefficients; dc null or as below
///   kPairs                                  whether it takes two 8x8 blocks at once, unless lossless():
///   add_pair(block, step, coeffs)           they lie side by side
///   luma_dc(dc), chroma_dc(dc)              makes the DC values of a plane, in place
/// The residual is added to the prediction that the plane holds. Not kernels: they call the generation's kernels.
#pragma once

#include "h264/intra.hpp"
#include "h264/intra8x8_px.hpp"
#include "h264/intra8x8_vec.hpp"
#include "h264/inverse_transform_px.hpp"
#include "h264/inverse_transform_vec.hpp"
#include "h264/macroblock.hpp"

namespace mox {

/// The blocks of a quadrant that `coded` has. dc null, or the DC values of all four, the lower ones dcStep behind the
/// upper ones: then a block that is not coded gets its DC.
template <class Pixel, class Residual>
void add_quadrant(Pixel* first, Mox32s step, Mox32u coded, const typename Residual::Coeff* dc, int dcStep,
                  const PackedCoeffs<typename Residual::Coeff>& coeffs, const Residual& residual) {
  if constexpr (Residual::kQuadrants) {
    if (coded == 15 && !residual.lossless()) return residual.add_quadrant(first, step, dc, dcStep, coeffs.take(64));
  }
  if constexpr (sizeof(Pixel) == 1) {
    if (coded == 0 && dc && !residual.lossless()) return active::add_dc_quadrant(first, step, dc, dcStep);
  }
  if (!(dc || coded)) return;
  for (int i = 0; i < 4; ++i) {
    const bool ac = coded >> i & 1;
    Pixel* const block = move(first, step, {i % 2 * 4, i / 2 * 4});
    if (dc) {
      residual.add_4x4(block, step, dc + i / 2 * dcStep + i % 2, ac ? coeffs.take(16) : nullptr);
    } else if (ac) {
      residual.add_4x4(block, step, coeffs.take(16));
    }
  }
}

/// The blocks of a pair of 8x8 blocks side by side that `coded` has.
template <class Pixel, class Residual>
void add_pair(Pixel* first, Mox32s step, Mox32u coded, const PackedCoeffs<typename Residual::Coeff>& coeffs,
              const Residual& residual) {
  if constexpr (Residual::kPairs) {
    if (coded == 3 && !residual.lossless()) return residual.add_pair(first, step, coeffs.take(128));
  }
  for (int i = 0; i < 2; ++i) {
    if (coded >> i & 1) residual.add_8x8(move(first, step, {8 * i, 0}), step, coeffs.take(64));
  }
}

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
  for (int i = 0; i < 4; ++i) {
    add_quadrant(block, step, coded >> 4 * i & 15, nullptr, 0, coeffs, residual);
    block = move(block, step, xyoff8[i]);
  }
  return moxStsOk;
}

template <class Pixel, class Residual>
MoxStatus inter_8x8(typename Residual::Coeff** ppSrcCoeff, Pixel* block, Mox32s step, Mox32u coded,
                    const Residual& residual) {
  PackedCoeffs coeffs(ppSrcCoeff);
  for (int y = 0; y < 2; ++y) {
    add_pair(block, step, coded >> 2 * y & 3, coeffs, residual);
    block = move(block, step, {0, 8});
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
  const Coeff* dc = zeroArray16<Coeff>;
  if (coded & kLumaDC) {
    Coeff* const own = coeffs.take(16);
    residual.luma_dc(own);
    dc = own;
  }
  for (int i = 0; i < 4; ++i) {
    const Mox32u ac = coded >> (kFirstLumaBlock + 4 * i) & 15;
    add_quadrant(block, step, ac, dc + block_subblock_mapping[4 * i], 4, coeffs, residual);
    block = move(block, step, xyoff8[i]);
  }
  return moxStsOk;
}

/// What a call has to do in one chroma plane.
template <class Pixel, class Residual>
struct ChromaPlane {
  typename Residual::Coeff** ppSrcCoeff;
  Pixel* first;
  Mox32s step;
  Mox32u coded;  ///< bit 0 the DC block, bit i + 1 block i
  Residual residual;
};

/// The DC values of a plane of 8 x H samples, taken from the stream if they are in it.
template <int H, class Pixel, class Residual>
const typename Residual::Coeff* take_chroma_dc(const ChromaPlane<Pixel, Residual>& plane) {
  if (!(plane.coded & 1)) return zeroArray16<typename Residual::Coeff>;
  auto* const dc = PackedCoeffs(plane.ppSrcCoeff).take(H / 2);
  plane.residual.chroma_dc(dc);
  return dc;
}

/// The 4x4 blocks of a plane of 8 x H samples, each with its DC.
template <int H, class Pixel, class Residual>
void add_chroma(const ChromaPlane<Pixel, Residual>& plane, const typename Residual::Coeff* dc) {
  const PackedCoeffs coeffs(plane.ppSrcCoeff);
  for (int i = 0; i < H / 8; ++i) {
    Pixel* const block = move(plane.first, plane.step, {0, 8 * i});
    add_quadrant(block, plane.step, plane.coded >> (4 * i + 1) & 15, dc + 4 * i, 2, coeffs, plane.residual);
  }
}

/// The residual of both chroma planes. The DC blocks of both come first in a stream that they share.
template <int H, class Pixel, class Residual>
MoxStatus chroma_inter(const ChromaPlane<Pixel, Residual>& u, const ChromaPlane<Pixel, Residual>& v) {
  if (!(u.coded | v.coded)) return moxStsOk;
  const auto* const dc_u = take_chroma_dc<H>(u);
  const auto* const dc_v = take_chroma_dc<H>(v);
  add_chroma<H>(u, dc_u);
  add_chroma<H>(v, dc_v);
  return moxStsOk;
}

/// Prediction of both chroma planes, 8 x H each. They have the same neighbours, so a refusal comes before anything is
/// written.
template <int H, class Pixel, class Residual>
MoxStatus predict_both_chroma(const ChromaPlane<Pixel, Residual>& u, const ChromaPlane<Pixel, Residual>& v, Mox32u mode,
                              Mox32u edgeType) {
  const Mox32u available = neighbours_of_macroblock(edgeType);
  const Mox32s depth = u.residual.depth;
  const MoxStatus status = predict_chroma_h264<H>(u.first, u.step, mode, available, depth);
  return status == moxStsOk ? predict_chroma_h264<H>(v.first, v.step, mode, available, depth) : status;
}

/// The same for halves with different left neighbours.
template <int H, class Pixel, class Residual>
MoxStatus predict_both_chroma_halves(const ChromaPlane<Pixel, Residual>& u, const ChromaPlane<Pixel, Residual>& v,
                                     Mox32u mode, Mox32u edgeTypeTop, Mox32u edgeTypeBottom) {
  const Mox32u upper = neighbours_of_macroblock(edgeTypeTop), lower = neighbours_of_macroblock(edgeTypeBottom);
  const Mox32s depth = u.residual.depth;
  const MoxStatus status = predict_chroma_halves_h264<H>(u.first, u.step, mode, upper, lower, depth);
  return status == moxStsOk ? predict_chroma_halves_h264<H>(v.first, v.step, mode, upper, lower, depth) : status;
}

/// Prediction and residual of both chroma planes.
template <int H, class Pixel, class Residual>
MoxStatus chroma_intra(const ChromaPlane<Pixel, Residual>& u, const ChromaPlane<Pixel, Residual>& v, Mox32u mode,
                       Mox32u edgeType) {
  const MoxStatus predicted = predict_both_chroma<H>(u, v, mode, edgeType);
  return predicted == moxStsOk ? chroma_inter<H>(u, v) : predicted;
}
template <int H, class Pixel, class Residual>
MoxStatus chroma_intra_halves(const ChromaPlane<Pixel, Residual>& u, const ChromaPlane<Pixel, Residual>& v, Mox32u mode,
                              Mox32u edgeTypeTop, Mox32u edgeTypeBottom) {
  const MoxStatus predicted = predict_both_chroma_halves<H>(u, v, mode, edgeTypeTop, edgeTypeBottom);
  return predicted == moxStsOk ? chroma_inter<H>(u, v) : predicted;
}

}  // namespace mox
