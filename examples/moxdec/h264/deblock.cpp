#include "moxdec/h264/deblock.hpp"

#include <algorithm>
#include <array>

#include "common/h264_tables.hpp"
#include "moxdec/h264/strengths.hpp"

namespace moxdec::h264 {
namespace {

/// What the library takes for the edges of one direction of one plane: [0] outer edge, [1] inner edges, and tc0 for
/// each strength in use.
struct Thresholds {
  std::array<std::uint8_t, 2> alpha;
  std::array<std::uint8_t, 2> beta;
  std::array<std::uint8_t, 16> tc0;

  /// No sample can change: each step across an edge must be below alpha.
  bool all_zero() const { return (alpha[0] | alpha[1]) == 0; }
};

/// tc0 by the quantiser index and the strength 0 to 4; strengths 0 and 4 need none.
constexpr auto kTc0 = [] {
  std::array<std::array<std::uint8_t, 5>, 52> table{};
  for (int i = 0; i < 52; ++i) {
    for (int strength = 1; strength <= 3; ++strength) table[i][strength] = example::kDeblockTc0[strength - 1][i];
  }
  return table;
}();

/// For an outer and an inner mean quantiser. `edge_stride` is how many of the four luma edges lie between two edges of
/// the plane: 1 for luma, 2 for 4:2:0 chroma.
Thresholds find_thresholds(const SliceHeader& slice, int outer_qp, int inner_qp, const Strengths& strengths,
                           int edge_stride) {
  Thresholds found;
  const int qp[2] = {outer_qp, inner_qp};
  std::array<int, 2> index;
  for (int i = 0; i < 2; ++i) {
    index[i] = std::clamp(qp[i] + slice.alpha_offset, 0, 51);
    found.alpha[i] = example::kDeblockAlpha[index[i]];
    found.beta[i] = example::kDeblockBeta[std::clamp(qp[i] + slice.beta_offset, 0, 51)];
  }
  for (int edge = 0; edge < 4 / edge_stride; ++edge) {
    const auto& tc0 = kTc0[index[edge > 0]];
    for (int i = 0; i < 4; ++i) found.tc0[4 * edge + i] = tc0[strengths[4 * edge * edge_stride + i]];
  }
  return found;
}

constexpr int mean(int a, int b) { return (a + b + 1) >> 1; }

/// The two directions differ in the neighbour and in the functions.
struct Direction {
  EdgeDirection edges;
  using Filter = MoxStatus (*)(Mox8u*, Mox32s, const Mox8u*, const Mox8u*, const Mox8u*, const Mox8u*);
  Filter luma;
  Filter chroma;
};
constexpr Direction kVertical = {EdgeDirection::kVertical, moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR,
                                 moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR};
constexpr Direction kHorizontal = {EdgeDirection::kHorizontal, moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR,
                                   moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR};

/// Filters the edges of one direction in all planes. `outer` is null if the outer edge stays as it is.
void filter_edges(const Picture& picture, int x, int y, const MbInfo& mb, const MbInfo* outer,
                  const Direction& direction) {
  const Slice& slice = picture.slices[static_cast<std::size_t>(mb.slice)];
  Strengths strengths;
  if (!find_strengths(picture, mb, outer, direction.edges, strengths)) return;
  const int outer_qp = outer ? outer->qp : mb.qp;
  const Thresholds luma = find_thresholds(slice.header, mean(outer_qp, mb.qp), mb.qp, strengths, 1);
  if (!luma.all_zero()) {
    direction.luma(picture.samples<Mox8u>(0, 16 * x, 16 * y), picture.frame->step(0), luma.alpha.data(),
                   luma.beta.data(), luma.tc0.data(), strengths.data());
  }
  for (int plane = 1; plane < 3; ++plane) {
    const auto& chroma_qp = slice.chroma_qp[plane - 1];
    const int inner = chroma_qp[mb.qp];
    const Thresholds chroma = find_thresholds(slice.header, mean(chroma_qp[outer_qp], inner), inner, strengths, 2);
    if (chroma.all_zero()) continue;
    direction.chroma(picture.samples<Mox8u>(plane, 8 * x, 8 * y), picture.frame->step(plane), chroma.alpha.data(),
                     chroma.beta.data(), chroma.tc0.data(), strengths.data());
  }
}

}  // namespace

void deblock_row(Picture& picture, int row) {
  for (int x = 0; x < picture.mb_width; ++x) {
    const MbInfo& mb = picture.at(x, row);
    const Deblocking mode = picture.slices[static_cast<std::size_t>(mb.slice)].header.deblocking;
    if (mode == Deblocking::kOff) continue;
    const MbInfo* left = x > 0 ? &picture.at(x - 1, row) : nullptr;
    const MbInfo* top = row > 0 ? &picture.at(x, row - 1) : nullptr;
    if (mode == Deblocking::kInsideSlice) {
      if (left && left->slice != mb.slice) left = nullptr;
      if (top && top->slice != mb.slice) top = nullptr;
    }
    filter_edges(picture, x, row, mb, left, kVertical);
    filter_edges(picture, x, row, mb, top, kHorizontal);
  }
}

}  // namespace moxdec::h264
