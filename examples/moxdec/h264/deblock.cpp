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

/// Of an edge, by its mean quantiser.
template <class Sample>
struct Limits {
  Limits(const SliceHeader& slice, int qp) : unit(sizeof(Sample) == 1 ? 1 : 1 << (slice.sps->bit_depth_luma - 8)) {
    const int index = std::clamp(qp + slice.alpha_offset, 0, 51);
    alpha = scaled(example::kDeblockAlpha[index]);
    beta = scaled(example::kDeblockBeta[std::clamp(qp + slice.beta_offset, 0, 51)]);
    tc0_by_strength = kTc0[index].data();
  }
  Sample tc0(int strength) const { return scaled(tc0_by_strength[strength]); }
  Sample scaled(int value) const { return static_cast<Sample>(value * unit); }

  int unit;
  Sample alpha, beta;
  const std::uint8_t* tc0_by_strength;
};

/// For an outer and an inner mean quantiser. `edge_stride` is how many of the four luma edges lie between two edges of
/// the plane: 1 for luma, 2 for 4:2:0 chroma.
template <class Sample>
Thresholds<Sample> find_thresholds(const SliceHeader& slice, int outer_qp, int inner_qp, const Strengths& strengths,
                                   int edge_stride) {
  const Limits<Sample> limits[2] = {{slice, outer_qp}, {slice, inner_qp}};
  Thresholds<Sample> found;
  for (int i = 0; i < 2; ++i) found.alpha[i] = limits[i].alpha, found.beta[i] = limits[i].beta;
  for (int edge = 0; edge < 4 / edge_stride; ++edge) {
    const Limits<Sample>& limit = limits[edge > 0];
    for (int i = 0; i < 4; ++i) found.tc0[4 * edge + i] = limit.tc0(strengths[4 * edge * edge_stride + i]);
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

/// 8 lines of luma or 4 of chroma beside a left edge.
void filter_lines(bool luma, Mox8u* lines, Mox32s step, const Limits<Mox8u>& limits, const Mox8u* tc0,
                  const std::uint8_t* strengths, int) {
  (luma ? moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR : moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR)(
      lines, step, limits.alpha, limits.beta, tc0, strengths);
}
void filter_lines(bool luma, Mox16u* lines, Mox32s step, const Limits<Mox16u>& limits, const Mox16u* tc0,
                  const std::uint8_t* strengths, int bit_depth) {
  const MoxiDeblockParams_16u params = {lines, step, &limits.alpha, &limits.beta, tc0, strengths, bit_depth};
  (luma ? moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR
        : moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR)(&params);
}

/// Every other line, or one half, of the left edge of a plane, which has `height` lines in a macroblock. 4:2:2 chroma
/// has 8 of them, which make two parts.
template <class Sample>
void filter_half_edge(int plane, int height, Sample* lines, Mox32s step, const Limits<Sample>& limits,
                      const EdgeStrengths& strengths, int bit_depth) {
  const int parts = plane > 0 && height == 16 ? 2 : 1;
  for (int part = 0; part < parts; ++part) {
    EdgeStrengths of_part;
    std::array<Sample, 4> tc0;
    for (int i = 0; i < 4; ++i) {
      of_part[i] = strengths[parts == 2 ? 2 * part + i / 2 : i];
      tc0[i] = limits.tc0(of_part[i]);
    }
    filter_lines(plane == 0, lines + 4 * part * std::ptrdiff_t{step}, step, limits, tc0.data(), of_part.data(),
                 bit_depth);
  }
}

/// One macroblock in work.
template <class Sample>
class MacroblockFilter {
 public:
  MacroblockFilter(const Picture& picture, int x, int y)
      : picture_(picture),
        mb_(picture.at(x, y)),
        slice_(picture.slices[static_cast<std::size_t>(mb_.slice)]),
        x_(x),
        y_(y),
        bit_depth_(slice_.header.sps->bit_depth_luma) {}

  void filter() const {
    if (slice_.header.deblocking == Deblocking::kOff) return;
    filter_vertical();
    filter_horizontal();
  }

 private:
  /// Which lines an edge's filter takes for the macroblock's.
  struct Lines {
    int first = 0;
    int stride = 1;
  };

  void filter_vertical() const;
  void filter_horizontal() const;
  void filter_left_of_mixed_pairs() const;
  void filter_top_below_fields(const MbInfo& upper, const MbInfo& lower) const;
  void filter_edges(const MbInfo* outer, EdgeDirection direction) const;
  void filter_planes(EdgeDirection direction, Strengths strengths, int outer_qp, bool has_inner, Lines lines) const;
  /// Null if the edge to this macroblock stays as it is.
  const MbInfo* filtered(const MbInfo* outer) const {
    const bool inside_slice = slice_.header.deblocking == Deblocking::kInsideSlice;
    return outer && inside_slice && outer->slice != mb_.slice ? nullptr : outer;
  }

  const Picture& picture_;
  const MbInfo& mb_;
  const Slice& slice_;
  int x_, y_;
  int bit_depth_;
};

template <class Sample>
void MacroblockFilter<Sample>::filter_vertical() const {
  const MbInfo* left = filtered(x_ > 0 ? &picture_.at(x_ - 1, y_) : nullptr);
  if (left && left->field != mb_.field) {
    filter_left_of_mixed_pairs();
    left = nullptr;
  }
  filter_edges(left, EdgeDirection::kVertical);
}

template <class Sample>
void MacroblockFilter<Sample>::filter_horizontal() const {
  const bool in_pairs = picture_.mbaff && (mb_.field || y_ % 2 == 0);  // the neighbour is another pair
  const int above = in_pairs ? (y_ & ~1) - 1 : y_ - 1;
  const MbInfo* top = filtered(above >= 0 ? &picture_.at(x_, above) : nullptr);
  if (top && in_pairs && top->field) {
    const MbInfo& upper = picture_.at(x_, above - 1);
    if (!mb_.field) {
      filter_top_below_fields(upper, *top);
      top = nullptr;
    } else if (y_ % 2 == 0) {
      top = &upper;
    }
  }
  filter_edges(top, EdgeDirection::kHorizontal);
}

/// The outer and the inner edges of one direction in all planes. `outer` is null if the outer edge stays as it is.
template <class Sample>
void MacroblockFilter<Sample>::filter_edges(const MbInfo* outer, EdgeDirection direction) const {
  Strengths strengths;
  if (!find_strengths(picture_, mb_, outer, direction, strengths)) return;
  filter_planes(direction, strengths, outer ? outer->qp : mb_.qp, true, {});
}

template <class Sample>
void MacroblockFilter<Sample>::filter_planes(EdgeDirection direction, Strengths strengths, int outer_qp, bool has_inner,
                                             Lines lines) const {
  const Filters& filters = direction == EdgeDirection::kVertical ? kVertical : kHorizontal;
  const auto filter = [&](int plane, PlaneKind kind, const Thresholds<Sample>& thresholds) {
    if (thresholds.all_zero()) return;
    const int step = picture_.step<Sample>(plane, mb_.field);
    filter_plane(filters, kind, picture_.samples<Sample>(plane, x_, y_, mb_.field) + lines.first * step,
                 step * lines.stride, thresholds, strengths, bit_depth_);
  };
  filter(0, PlaneKind::kLuma, find_thresholds<Sample>(slice_.header, mean(outer_qp, mb_.qp), mb_.qp, strengths, 1));
  const int height = picture_.chroma_mb_height;
  if (height == 0) return;
  const PlaneKind kind = height == 16 ? PlaneKind::kChroma422 : PlaneKind::kChroma;
  const bool all_rows = kind == PlaneKind::kChroma422 && direction == EdgeDirection::kHorizontal;
  if (all_rows && has_inner) strengths = strengths_of_422_rows(mb_, strengths);
  for (int plane = 1; plane < 3; ++plane) {
    const int outer = slice_.chroma_qp(plane, outer_qp), inner = slice_.chroma_qp(plane, mb_.qp);
    filter(plane, kind, find_thresholds<Sample>(slice_.header, mean(outer, inner), inner, strengths, all_rows ? 1 : 2));
  }
}

/// Two field macroblocks above a frame macroblock: each has an edge to every other line of it.
template <class Sample>
void MacroblockFilter<Sample>::filter_top_below_fields(const MbInfo& upper, const MbInfo& lower) const {
  for (int parity = 0; parity < 2; ++parity) {
    const MbInfo& above = parity == kTop ? upper : lower;
    Strengths strengths{};
    std::ranges::copy(mixed_top_strengths(mb_, above), strengths.begin());
    filter_planes(EdgeDirection::kHorizontal, strengths, above.qp, false, {parity, 2});
  }
}

/// The left edge between a frame and a field macroblock has two parts: the lines of either macroblock at the left.
template <class Sample>
void MacroblockFilter<Sample>::filter_left_of_mixed_pairs() const {
  const int bottom = y_ & 1;
  for (int part = 0; part < 2; ++part) {
    const MbInfo& left = picture_.at(x_ - 1, (y_ & ~1) + part);
    std::array<BlockRows, 4> rows;
    for (int i = 0; i < 4; ++i) {
      rows[i] = mb_.field ? BlockRows{2 * part + i / 2, i} : BlockRows{i, 2 * bottom + i / 2};
    }
    const EdgeStrengths strengths = mixed_left_strengths(mb_, left, rows);
    for (int plane = 0; plane < (picture_.chroma_mb_height == 0 ? 1 : 3); ++plane) {
      const int qp =
          plane == 0 ? mean(left.qp, mb_.qp) : mean(slice_.chroma_qp(plane, left.qp), slice_.chroma_qp(plane, mb_.qp));
      const Limits<Sample> limits(slice_.header, qp);
      const int height = plane == 0 ? 16 : picture_.chroma_mb_height, step = picture_.step<Sample>(plane, mb_.field);
      Sample* lines =
          picture_.samples<Sample>(plane, x_, y_, mb_.field) + (mb_.field ? part * height / 2 : part) * step;
      filter_half_edge(plane, height, lines, mb_.field ? step : 2 * step, limits, strengths, bit_depth_);
    }
  }
}

}  // namespace

void deblock_rows(Picture& picture, int row) {
  const auto filter_rows = [&]<class Sample>(Sample) {
    for (int x = 0; x < picture.mb_width; ++x) {
      for (int y = row; y <= row + (picture.mbaff ? 1 : 0); ++y) MacroblockFilter<Sample>(picture, x, y).filter();
    }
  };
  picture.frame->format().sample_bytes() == 1 ? filter_rows(Mox8u{}) : filter_rows(Mox16u{});
}

}  // namespace moxdec::h264
