/// Portable intra prediction of 8x8 luma blocks: the filter of the neighbours, then the directional formulas (8.3.2).
#pragma once

#include "h264/intra_px.hpp"

namespace mox::px {

/// [mode]: neighbours that the prediction is made from, those that only the filter looks at included.
inline constexpr Mox32u kFilteredEdgesOfMode[kLastIntraMode + 1] = {
    kTop | kTopLeft | kTopRight,
    kLeft | kTopLeft,
    kWholeCorner | kTopRight,
    kTop | kTopLeft | kTopRight,
    kWholeCorner | kTopRight,
    kWholeCorner | kTopRight,
    kWholeCorner,
    kTop | kTopLeft | kTopRight,
    kLeft | kTopLeft,
};

/// Weights 1, 2, 1 along the line of neighbours; a sample without a neighbour on one side stands in for it. Edges that
/// are not available keep their values and have no part in the others'.
template <class Pixel>
Edge<8, Pixel> filter_edge(const Edge<8, Pixel>& raw, Mox32u available) {
  const auto present = [available](int i) {
    return i >= -8 && i <= 16 && available & (i < 0 ? kLeft : i == 0 ? kTopLeft : kTop);
  };
  Edge<8, Pixel> filtered = raw;
  for (int i = -8; i <= 16; ++i) {
    if (!present(i)) continue;
    const Mox32s here = raw.around(i);
    const Mox32s before = present(i - 1) ? raw.around(i - 1) : here;
    const Mox32s behind = present(i + 1) ? raw.around(i + 1) : here;
    filtered.line[8 + i] = static_cast<Pixel>(smooth(before, here, behind));
  }
  return filtered;
}

/// 8x8 luma in any mode. Denied edges count as mid-range samples, which nobody is told of. A mode above 8 predicts like
/// DC.
template <class Pixel>
void predict_luma_8x8_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u available, Mox32s depth = 8) {
  const Block<Pixel> block{pSrcDst, step};
  if (mode > kLastIntraMode) mode = kDC;
  available &= kFilteredEdgesOfMode[mode];
  if (!(available & kTop)) available &= ~kTopRight;  // they are one row of 16 samples, or none
  const Edge<8, Pixel> edge = filter_edge(load_edge<8>(block, available, mid_sample(depth)), available);
  if (mode != kDC) return predict_direction(block, mode, edge);
  const Pixel* const left = available & kLeft ? edge.line : nullptr;
  const Pixel* const top = available & kTop ? edge.line + 9 : nullptr;
  const Mox32s dc = mean_of_edges<8>(top, left, 1, depth);
  each_sample<8, 8>(block, [dc](int, int) { return dc; });
}

}  // namespace mox::px
