/// Lossless macroblocks with horizontal or vertical intra prediction: each of their values is a sample's difference
/// from its neighbour, so that sums along rows or columns make differences from the prediction (ITU-T H.264 8.5.15).
#pragma once

#include "moxdec/h264/macroblock.hpp"

namespace moxdec::h264 {

enum class SumDirection { kNone, kRows, kColumns };

/// Of luma modes, and of chroma modes, which have another order.
constexpr SumDirection luma_sums(Mox32u mode) {
  return mode == 0 ? SumDirection::kColumns : mode == 1 ? SumDirection::kRows : SumDirection::kNone;
}
constexpr SumDirection chroma_sums(Mox32u mode) {
  return mode == 2 ? SumDirection::kColumns : mode == 1 ? SumDirection::kRows : SumDirection::kNone;
}

/// Sums in the coefficients of an Intra 4x4 or 8x8 macroblock, block by block.
template <class Coeff>
void sum_blocks(Macroblock& mb, Coeff* blocks);

/// The prediction of a plane that is done as a whole, to which its summed values are to be added.
template <class Sample>
struct PredictedPlane {
  Sample* samples;
  Mox32s step;  // in samples
  int columns;  // of 4x4 blocks: 4 luma, in coding order; 2 chroma, in raster order
  int rows;
  int max_sample;
};

/// `coded` has the bits of Macroblock::coded. DC values begin at `dc`, the coded blocks without them at `blocks`.
/// Returns what lies behind the last block.
template <class Sample, class Coeff>
Coeff* add_sums(const PredictedPlane<Sample>& plane, SumDirection direction, Mox32u coded, const Coeff* dc,
                Coeff* blocks);

}  // namespace moxdec::h264
