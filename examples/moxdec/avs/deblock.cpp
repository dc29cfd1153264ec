#include "moxdec/avs/deblock.hpp"

#include <cstdlib>

#include "moxdec/avs/tables.hpp"

namespace moxdec::avs {
namespace {

bool far_apart(Vector a, Vector b) { return std::abs(a.x - b.x) >= 4 || std::abs(a.y - b.y) >= 4; }

/// Of the edge between two blocks.
Mox8u strength(const BlockMotion& p, const BlockMotion& q) {
  if (p.is_intra() || q.is_intra()) return 2;
  for (const Direction direction : {kForward, kBackward}) {
    if (p.reference[direction] != q.reference[direction]) return 1;
    if (p.reference[direction] >= 0 && far_apart(p.vector[direction], q.vector[direction])) return 1;
  }
  return 0;
}

/// Thresholds of the outer and the inner edge.
struct Thresholds {
  std::array<Mox8u, 2> alpha, beta, clip;

  void set(int edge, int qp, const PictureHeader& header) {
    const auto a = static_cast<std::size_t>(filter_index(qp, header.alpha_offset));
    const auto b = static_cast<std::size_t>(filter_index(qp, header.beta_offset));
    alpha[edge] = kAlpha[a], beta[edge] = kBeta[b], clip[edge] = kClip[a];
  }
};

class MacroblockFilter {
 public:
  MacroblockFilter(const Picture& picture, int mb_x, int mb_y) : picture_(picture), mb_x_(mb_x), mb_y_(mb_y) {}

  void filter() const {
    filter_edges(1, 0, moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR, moxiFilterDeblockingChroma_VerEdge_AVS_8u_C1IR);
    filter_edges(0, 1, moxiFilterDeblockingLuma_HorEdge_AVS_8u_C1IR, moxiFilterDeblockingChroma_HorEdge_AVS_8u_C1IR);
  }

 private:
  using Filter = decltype(&moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR);

  int address(int mb_x, int mb_y) const { return mb_y * picture_.mb_width() + mb_x; }
  int qp(int at) const { return picture_.qps[static_cast<std::size_t>(at)]; }

  /// Edges across which the neighbour lies at (-dx, -dy): the macroblock's own, if there is a neighbour in the slice,
  /// and the one inside.
  void filter_edges(int dx, int dy, Filter luma, Filter chroma) const {
    const int here = address(mb_x_, mb_y_), there = address(mb_x_ - dx, mb_y_ - dy);
    const bool outer =
        mb_x_ >= dx && mb_y_ >= dy &&
        picture_.slices[static_cast<std::size_t>(here)] == picture_.slices[static_cast<std::size_t>(there)];
    std::array<Mox8u, 4> strengths{};
    for (int edge = outer ? 0 : 1; edge < 2; ++edge) {
      for (int half = 0; half < 2; ++half) {
        const int x = 2 * mb_x_ + (dx ? edge : half), y = 2 * mb_y_ + (dy ? edge : half);
        strengths[2 * edge + half] = strength(picture_.motion_at(x - dx, y - dy), picture_.motion_at(x, y));
      }
    }
    const int other = outer ? there : here;
    Thresholds thresholds;
    thresholds.set(0, (qp(here) + qp(other) + 1) / 2, picture_.header);
    thresholds.set(1, qp(here), picture_.header);
    call(luma, 0, thresholds, strengths);
    thresholds.set(0, (chroma_qp(qp(here)) + chroma_qp(qp(other)) + 1) / 2, picture_.header);
    for (int plane = 1; plane < 3; ++plane) call(chroma, plane, thresholds, strengths);
  }

  void call(Filter kernel, int plane, const Thresholds& thresholds, const std::array<Mox8u, 4>& strengths) const {
    const int size = plane == 0 ? 16 : 8;
    kernel(picture_.sample(plane, size * mb_x_, size * mb_y_), picture_.frame->step(plane), thresholds.alpha.data(),
           thresholds.beta.data(), thresholds.clip.data(), strengths.data());
  }

  const Picture& picture_;
  int mb_x_, mb_y_;
};

}  // namespace

void filter_picture(const Picture& picture) {
  for (int mb_y = 0; mb_y < picture.sequence.mb_height(); ++mb_y) {
    for (int mb_x = 0; mb_x < picture.mb_width(); ++mb_x) MacroblockFilter(picture, mb_x, mb_y).filter();
  }
}

}  // namespace moxdec::avs
