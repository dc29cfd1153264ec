#include "moxdec/h263/deblock.hpp"

namespace moxdec::h263 {
namespace {

using Filter = decltype(&moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR);

/// Filters the edges of a plane, horizontal ones above blocks or vertical ones at their left. An edge counts if the
/// macroblock behind it is coded, which then tells the strength, or else the one in front of it.
void filter_edges(const Picture& picture, int plane, bool vertical) {
  const Filter filter =
      vertical ? moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR : moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR;
  const int shift = plane == 0, step = picture.frame->step(plane);
  for (int y = vertical ? 0 : 1; y < picture.mb_height() << shift; ++y) {
    for (int x = vertical ? 1 : 0; x < picture.mb_width() << shift; ++x) {
      const Macroblock& behind = picture.at(x >> shift, y >> shift);
      const Macroblock& front = picture.at((x - vertical) >> shift, (y - !vertical) >> shift);
      if (!behind.coded && !front.coded) continue;
      const int quantiser = behind.coded ? behind.quantiser : front.quantiser;
      filter(picture.frame->samples<Mox8u>(plane) + 8 * y * step + 8 * x, static_cast<Mox32u>(step),
             plane == 0 ? quantiser : picture.header.options.chroma_quantiser(quantiser));
    }
  }
}

}  // namespace

void deblock_picture(const Picture& picture) {
  for (int plane = 0; plane < 3; ++plane) {
    filter_edges(picture, plane, false);
    filter_edges(picture, plane, true);
  }
}

}  // namespace moxdec::h263
