/// Vector intra prediction of 8x8 luma blocks.
#pragma once

#include "frame/generation.hpp"
#include "h264/intra8x8_px.hpp"
#include "h264/intra_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The neighbours of an 8x8 block after their filter. `available` are those that the mode's samples come from; the
/// corner may be missing beside a row or a column alone, and the samples above and right anywhere.
template <class Pixel>
struct FilteredEdges {
  using Line = IntraLine<Pixel>;
  px::Block<Pixel> block;
  Mox32u available;

  MOX_INLINE Line top() const {
    const bool right = available & kTopRight;
    const auto last = all_samples(block(right ? 15 : 7, -1));
    const Line behind{right ? load_neighbours<8>(&block(8, -1)) : last};
    const auto line =
        filtered(before(0, -1), ended<16>(joined<8>(Line{load_neighbours<8>(&block(0, -1))}, behind), last));
    return ended<16>(line, repeated<15>(line));
  }
  MOX_INLINE Line left() const {
    const Line column{load_column<8>(&block(-1, 0), block.step)};
    const auto line = filtered(before(-1, 0), ended<8>(column, all_samples(block(-1, 7))));
    return ended<8>(line, repeated<7>(line));
  }
  MOX_INLINE Line around() const {
    const auto behind = all_samples(block(available & kTopRight ? 8 : 7, -1));
    const auto above = ended<8>(Line{load_neighbours<8>(&block(0, -1))}, behind);
    const Line upwards{load_column<8>(&block(-1, 7), -block.step)};
    const auto line = joined<8>(upwards, preceded(all_samples(block(-1, -1)), above));
    return filtered(all_samples(block(-1, 7)), line);
  }

 private:
  /// The corner, or the sample beside it that stands in for it.
  MOX_INLINE IntraBytes before(int x, int y) const {
    return all_samples(available & kTopLeft ? block(-1, -1) : block(x, y));
  }
  static MOX_INLINE Line filtered(IntraBytes before, const Line& line) {
    return smooth(preceded(before, line), line, from<1>(line));
  }
};

/// What lacks an edge is portable.
template <class Pixel>
void predict_luma_8x8_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u available, Mox32s depth = 8) {
  const px::Block<Pixel> block{pSrcDst, step};
  if (mode > kLastIntraMode) mode = kDC;
  if (kEdgesOfMode[mode] & ~available & kWholeCorner) {
    return px::predict_luma_8x8_h264(pSrcDst, step, mode, available, depth);
  }
  const FilteredEdges<Pixel> edges{block, available & px::kFilteredEdgesOfMode[mode]};
  if (mode != kDC) return predict_from<8>(block, mode, edges);
  const bool top = available & kTop, left = available & kLeft;
  const Mox32s sum = (top ? sum_of<8>(edges.top()) : 0) + (left ? sum_of<8>(edges.left()) : 0);
  fill_block<8, 8>(block, all_samples(static_cast<Pixel>(rounded_mean<8>(sum, top + left, depth))));
}

}  // namespace mox::vec
