#include "moxdec/h264/deblock.hpp"

#include <algorithm>
#include <array>

#include "common/h264_tables.hpp"
#include "moxdec/h264/strengths.hpp"

namespace moxdec::h264 {
namespace {

/// What the library takes for the edges of one direction of one plane: [0] outer edge, [1] inner edges, and tc0 for
/// each strength in use.
template <class Sample>
struct Thresholds {
  std::array<Sample, 2> alpha;
  std::array<Sample, 2> beta;
  std::array<Sample, 16> tc0;

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
template <class Sample>
Thresholds<Sample> find_thresholds(const SliceHeader& slice, int outer_qp, int inner_qp, const Strengths& strengths,
                                   int edge_stride) {
  const int unit = 1 << (slice.sps->bit_depth_luma - 8);
  const auto scaled = [unit](int value) { return static_cast<Sample>(value * unit); };
  Thresholds<Sample> found;
  const int qp[2] = {outer_qp, inner_qp};
  std::array<int, 2> index;
  for (int i = 0; i < 2; ++i) {
    index[i] = std::clamp(qp[i] + slice.alpha_offset, 0, 51);
    found.alpha[i] = scaled(example::kDeblockAlpha[index[i]]);
    found.beta[i] = scaled(example::kDeblockBeta[std::clamp(qp[i] + slice.beta_offset, 0, 51)]);
  }
  for (int edge = 0; edge < 4 / edge_stride; ++edge) {
    const auto& tc0 = kTc0[index[edge > 0]];
    for (int i = 0; i < 4; ++i) found.tc0[4 * edge + i] = scaled(tc0[strengths[4 * edge * edge_stride + i]]);
  }
  return found;
}

constexpr int mean(int a, int b) { return (a + b + 1) >> 1; }

/// The functions of one direction.
struct Filters {
  MoxStatus (*luma_8)(Mox8u*, Mox32s, const Mox8u*, const Mox8u*, const Mox8u*, const Mox8u*);
  MoxStatus (*chroma_8)(Mox8u*, Mox32s, const Mox8u*, const Mox8u*, const Mox8u*, const Mox8u*);
  MoxStatus (*chroma_422_8)(const MoxiDeblockParams*);
  MoxStatus (*luma_16)(const MoxiDeblockParams_16u*);
  MoxStatus (*chroma_16)(const MoxiDeblockParams_16u*);
  MoxStatus (*chroma_422_16)(const MoxiDeblockParams_16u*);
};
constexpr Filters kVertical = {
    moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR,     moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR,
    moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR, moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR,
    moxiFilterDeblockingChromaVerEdge_H264_16u_C1IR,   moxiFilterDeblockingChroma422VerEdge_H264_16u_C1IR};
constexpr Filters kHorizontal = {
    moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR,     moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR,
    moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR, moxiFilterDeblockingLumaHorEdge_H264_16u_C1IR,
    moxiFilterDeblockingChromaHorEdge_H264_16u_C1IR,   moxiFilterDeblockingChroma422HorEdge_H264_16u_C1IR};

enum class PlaneKind { kLuma, kChroma, kChroma422 };

void filter_plane(const Filters& f, PlaneKind kind, Mox8u* samples, Mox32s step, const Thresholds<Mox8u>& thresholds,
                  const Strengths& strengths, int) {
  const auto& [alpha, beta, tc0] = thresholds;
  if (kind == PlaneKind::kChroma422) {
    const MoxiDeblockParams params = {samples, step, alpha.data(), beta.data(), tc0.data(), strengths.data()};
    f.chroma_422_8(&params);
    return;
  }
  (kind == PlaneKind::kLuma ? f.luma_8 : f.chroma_8)(samples, step, alpha.data(), beta.data(), tc0.data(),
                                                     strengths.data());
}
void filter_plane(const Filters& f, PlaneKind kind, Mox16u* samples, Mox32s step, const Thresholds<Mox16u>& thresholds,
                  const Strengths& strengths, int bit_depth) {
  const auto& [alpha, beta, tc0] = thresholds;
  const MoxiDeblockParams_16u params = {samples,          step,     alpha.data(), beta.data(), tc0.data(),
                                        strengths.data(), bit_depth};
  (kind == PlaneKind::kLuma ? f.luma_16 : kind == PlaneKind::kChroma ? f.chroma_16 : f.chroma_422_16)(&params);
}

/// Rows of 4:2:2 chroma are those of luma, but its transform is always 4x4: it has edges at rows 4 and 12 where luma
/// may have none. Blocks on both sides of these belong to one 8x8 block of luma.
Strengths strengths_of_422_rows(const MbInfo& mb, const Strengths& luma) {
  Strengths strengths = luma;
  if (!mb.transform_8x8) return strengths;
  for (const int block : {4, 12}) {
    for (int i = block; i < block + 4; ++i) {
      strengths[i] = !is_inter(mb) ? 3 : mb.coded_blocks >> i & 1 ? 2 : 0;
    }
  }
  return strengths;
}

/// Filters the edges of one direction in all planes. `outer` is null if the outer edge stays as it is.
template <class Sample>
void filter_edges(const Picture& picture, int x, int y, const MbInfo& mb, const MbInfo* outer,
                  EdgeDirection direction) {
  const Slice& slice = picture.slices[static_cast<std::size_t>(mb.slice)];
  const Filters& filters = direction == EdgeDirection::kVertical ? kVertical : kHorizontal;
  const int bit_depth = slice.header.sps->bit_depth_luma;
  Strengths strengths;
  if (!find_strengths(picture, mb, outer, direction, strengths)) return;
  const int outer_qp = outer ? outer->qp : mb.qp;
  const auto luma = find_thresholds<Sample>(slice.header, mean(outer_qp, mb.qp), mb.qp, strengths, 1);
  if (!luma.all_zero()) {
    filter_plane(filters, PlaneKind::kLuma, picture.samples<Sample>(0, 16 * x, 16 * y),
                 picture.frame->sample_step<Sample>(0), luma, strengths, bit_depth);
  }
  const int height = slice.header.sps->chroma_mb_height();
  if (height == 0) return;
  const PlaneKind kind = height == 16 ? PlaneKind::kChroma422 : PlaneKind::kChroma;
  const bool all_rows = kind == PlaneKind::kChroma422 && direction == EdgeDirection::kHorizontal;
  if (all_rows) strengths = strengths_of_422_rows(mb, strengths);
  for (int plane = 1; plane < 3; ++plane) {
    const int outer_chroma_qp = slice.chroma_qp(plane, outer_qp), inner = slice.chroma_qp(plane, mb.qp);
    const auto chroma =
        find_thresholds<Sample>(slice.header, mean(outer_chroma_qp, inner), inner, strengths, all_rows ? 1 : 2);
    if (chroma.all_zero()) continue;
    filter_plane(filters, kind, picture.samples<Sample>(plane, 8 * x, height * y),
                 picture.frame->sample_step<Sample>(plane), chroma, strengths, bit_depth);
  }
}

template <class Sample>
void filter_row(Picture& picture, int row) {
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
    filter_edges<Sample>(picture, x, row, mb, left, EdgeDirection::kVertical);
    filter_edges<Sample>(picture, x, row, mb, top, EdgeDirection::kHorizontal);
  }
}

}  // namespace

void deblock_row(Picture& picture, int row) {
  picture.frame->format().sample_bytes() == 1 ? filter_row<Mox8u>(picture, row) : filter_row<Mox16u>(picture, row);
}

}  // namespace moxdec::h264
