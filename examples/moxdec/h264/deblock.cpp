#include "moxdec/h264/deblock.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "common/h264_tables.hpp"
#include "moxdec/h264/strengths.hpp"

namespace moxdec::h264 {
namespace {

/// What goes by the first of the two quantiser indices: alpha, then tc0 of the strengths 1 to 3; 0 and 4 need none.
constexpr auto kAlphaAndTc0 = [] {
  std::array<std::array<std::uint8_t, 4>, 52> table{};
  for (int i = 0; i < 52; ++i) {
    table[i][0] = example::kDeblockAlpha[i];
    for (int strength = 1; strength <= 3; ++strength) table[i][strength] = example::kDeblockTc0[strength - 1][i];
  }
  return table;
}();

/// Thresholds of an edge, by its mean quantiser.
template <class Sample>
class Limits {
 public:
  Limits() = default;
  Limits(const SliceHeader& slice, int qp)
      : alpha_and_tc0_(kAlphaAndTc0[std::clamp(qp + slice.alpha_offset, 0, 51)]),
        beta_(example::kDeblockBeta[std::clamp(qp + slice.beta_offset, 0, 51)]),
        shift_(sizeof(Sample) == 1 ? 0 : slice.sps->bit_depth_luma - 8) {}

  Sample alpha() const { return scaled(alpha_and_tc0_[0]); }
  Sample beta() const { return scaled(beta_); }
  /// No sample can change: the steps across and beside the edge must be below these.
  bool all_zero() const { return alpha_and_tc0_[0] == 0 || beta_ == 0; }
  /// tc0 of each strength, of which a word has four or eight.
  template <class Word>
  Word tc0(Word strengths) const {
    const Word each = static_cast<Word>(-1) / 255, low = strengths & each, high = strengths >> 1 & each;
    const unsigned t1 = alpha_and_tc0_[1], t2 = alpha_and_tc0_[2], t3 = alpha_and_tc0_[3];
    return low * t1 + high * t2 + (low & high) * (Word{t3} - t1 - t2);
  }
  /// The first values of such a word.
  template <class Word>
  void store_tc0(Word tc0, int count, Sample* out) const {
    if constexpr (sizeof(Sample) == 1) {
      std::memcpy(out, &tc0, static_cast<std::size_t>(count));
    } else {
      for (int i = 0; i < count; ++i) out[i] = scaled(tc0 >> 8 * i & 255);
    }
  }

 private:
  Sample scaled(std::uint64_t value) const { return static_cast<Sample>(value << shift_); }

  std::array<std::uint8_t, 4> alpha_and_tc0_ = {};
  std::uint8_t beta_ = 0;
  int shift_ = 0;
};

/// What the library takes for the edges of one direction of one plane: [0] outer edge, [1] inner edges, and tc0 for
/// each strength in use.
template <class Sample>
struct Thresholds {
  /// `edge_stride` is how many of the four luma edges lie between two edges of the plane: 1 for luma, 2 for 4:2:0
  /// chroma.
  Thresholds(const Limits<Sample>& outer, const Limits<Sample>& inner, const Strengths& strengths, int edge_stride)
      : alpha{outer.alpha(), inner.alpha()}, beta{outer.beta(), inner.beta()} {
    constexpr std::uint64_t kOuterEdge = 0xFFFFFFFF;
    const std::uint64_t first = edge_stride == 1 ? strengths.pair(0) : strengths.even_pair();
    inner.store_tc0((outer.tc0(first) & kOuterEdge) | (inner.tc0(first) & ~kOuterEdge), 8, tc0.data());
    if (edge_stride == 1) inner.store_tc0(inner.tc0(strengths.pair(1)), 8, &tc0[8]);
  }

  std::array<Sample, 2> alpha;
  std::array<Sample, 2> beta;
  std::array<Sample, 16> tc0;
};

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
    const MoxiDeblockParams params = {samples, step, alpha.data(), beta.data(), tc0.data(), strengths.bytes()};
    f.chroma_422_8(&params);
    return;
  }
  (kind == PlaneKind::kLuma ? f.luma_8 : f.chroma_8)(samples, step, alpha.data(), beta.data(), tc0.data(),
                                                     strengths.bytes());
}
void filter_plane(const Filters& f, PlaneKind kind, Mox16u* samples, Mox32s step, const Thresholds<Mox16u>& thresholds,
                  const Strengths& strengths, int bit_depth) {
  const auto& [alpha, beta, tc0] = thresholds;
  const MoxiDeblockParams_16u params = {samples,           step,     alpha.data(), beta.data(), tc0.data(),
                                        strengths.bytes(), bit_depth};
  (kind == PlaneKind::kLuma ? f.luma_16 : kind == PlaneKind::kChroma ? f.chroma_16 : f.chroma_422_16)(&params);
}

/// 8 lines of luma or 4 of chroma beside a left edge.
void filter_lines(bool luma, Mox8u* lines, Mox32s step, const Limits<Mox8u>& limits, const Mox8u* tc0,
                  const EdgeStrengths& strengths, int) {
  (luma ? moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR : moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR)(
      lines, step, limits.alpha(), limits.beta(), tc0, bytes_of(strengths));
}
void filter_lines(bool luma, Mox16u* lines, Mox32s step, const Limits<Mox16u>& limits, const Mox16u* tc0,
                  const EdgeStrengths& strengths, int bit_depth) {
  const Mox16u alpha = limits.alpha(), beta = limits.beta();
  const MoxiDeblockParams_16u params = {lines, step, &alpha, &beta, tc0, bytes_of(strengths), bit_depth};
  (luma ? moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR
        : moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR)(&params);
}

/// Every other line, or one half, of the left edge of a plane, which has `height` lines in a macroblock. 4:2:2 chroma
/// has 8 of them, which make two parts.
template <class Sample>
void filter_half_edge(int plane, int height, Sample* lines, Mox32s step, const Limits<Sample>& limits,
                      EdgeStrengths strengths, int bit_depth) {
  const int parts = plane > 0 && height == 16 ? 2 : 1;
  for (int part = 0; part < parts; ++part) {
    // Each strength is that of half as many lines.
    const int first = strength_of(strengths, 2 * part), second = strength_of(strengths, 2 * part + 1);
    const EdgeStrengths of_part = parts == 1 ? strengths : first * 0x0101u | second * 0x01010000u;
    std::array<Sample, 4> tc0;
    limits.store_tc0(limits.tc0(of_part), 4, tc0.data());
    filter_lines(plane == 0, lines + 4 * part * std::ptrdiff_t{step}, step, limits, tc0.data(), of_part, bit_depth);
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

  void filter() {
    if (slice_.header.deblocking == Deblocking::kOff) return;
    inner_ = find_limits(mb_.qp);
    filter_vertical();
    filter_horizontal();
  }

 private:
  using PlaneLimits = std::array<Limits<Sample>, 3>;
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
  /// For an edge to a macroblock of that luma quantiser.
  PlaneLimits find_limits(int outer_qp) const;
  void filter_planes(EdgeDirection direction, Strengths strengths, const PlaneLimits& outer, bool has_inner,
                     Lines lines) const;
  void filter_plane_edges(EdgeDirection direction, int plane, Strengths strengths, const Limits<Sample>& outer,
                          Lines lines) const;
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
  PlaneLimits inner_;
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

/// Those of planes that are not there are 0.
template <class Sample>
auto MacroblockFilter<Sample>::find_limits(int outer_qp) const -> PlaneLimits {
  PlaneLimits limits;
  limits[0] = {slice_.header, mean(outer_qp, mb_.qp)};
  if (picture_.chroma_mb_height == 0) return limits;
  const auto chroma_qp = [&](int plane) {
    return mean(slice_.chroma_qp(plane, outer_qp), slice_.chroma_qp(plane, mb_.qp));
  };
  const int u = chroma_qp(1), v = chroma_qp(2);
  limits[1] = {slice_.header, u};
  limits[2] = u == v ? limits[1] : Limits<Sample>(slice_.header, v);
  return limits;
}

/// The outer and the inner edges of one direction in all planes. `outer` is null if the outer edge stays as it is.
template <class Sample>
void MacroblockFilter<Sample>::filter_edges(const MbInfo* outer, EdgeDirection direction) const {
  const PlaneLimits limits = outer && outer->qp != mb_.qp ? find_limits(outer->qp) : inner_;
  const auto all_zero = [](const PlaneLimits& of_planes) {
    return std::ranges::all_of(of_planes, &Limits<Sample>::all_zero);
  };
  if (all_zero(limits) && all_zero(inner_)) return;
  const Strengths strengths = find_strengths(picture_, mb_, outer, direction);
  if (strengths.any()) filter_planes(direction, strengths, limits, true, {});
}

template <class Sample>
void MacroblockFilter<Sample>::filter_planes(EdgeDirection direction, Strengths strengths, const PlaneLimits& outer,
                                             bool has_inner, Lines lines) const {
  filter_plane_edges(direction, 0, strengths, outer[0], lines);
  const bool all_rows = picture_.chroma_mb_height == 16 && direction == EdgeDirection::kHorizontal;
  if (!all_rows) {
    strengths = strengths.even();
  } else if (has_inner) {
    strengths = with_422_rows(mb_, strengths);
  }
  for (int plane = 1; plane < 3; ++plane) filter_plane_edges(direction, plane, strengths, outer[plane], lines);
}

/// Strengths of edges that the plane does not have are 0.
template <class Sample>
void MacroblockFilter<Sample>::filter_plane_edges(EdgeDirection direction, int plane, Strengths strengths,
                                                  const Limits<Sample>& outer, Lines lines) const {
  if (outer.all_zero()) strengths = strengths.without_outer();
  if (inner_[plane].all_zero()) strengths = strengths.without_inner();
  if (!strengths.any()) return;
  const bool vertical = direction == EdgeDirection::kVertical, is_422 = picture_.chroma_mb_height == 16;
  const PlaneKind kind = plane == 0 ? PlaneKind::kLuma : is_422 ? PlaneKind::kChroma422 : PlaneKind::kChroma;
  const int edge_stride = plane == 0 || (is_422 && !vertical) ? 1 : 2;
  const int step = picture_.step<Sample>(plane, mb_.field);
  filter_plane(vertical ? kVertical : kHorizontal, kind,
               picture_.samples<Sample>(plane, x_, y_, mb_.field) + lines.first * step, step * lines.stride,
               {outer, inner_[plane], strengths, edge_stride}, strengths, bit_depth_);
}

/// Two field macroblocks above a frame macroblock: each has an edge to every other line of it.
template <class Sample>
void MacroblockFilter<Sample>::filter_top_below_fields(const MbInfo& upper, const MbInfo& lower) const {
  for (int parity = 0; parity < 2; ++parity) {
    const MbInfo& above = parity == kTop ? upper : lower;
    const Strengths strengths(mixed_top_strengths(mb_, above), 0, 0, 0);
    filter_planes(EdgeDirection::kHorizontal, strengths, find_limits(above.qp), false, {parity, 2});
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
    const PlaneLimits limits = find_limits(left.qp);
    for (int plane = 0; plane < (picture_.chroma_mb_height == 0 ? 1 : 3); ++plane) {
      const int height = plane == 0 ? 16 : picture_.chroma_mb_height, step = picture_.step<Sample>(plane, mb_.field);
      Sample* lines =
          picture_.samples<Sample>(plane, x_, y_, mb_.field) + (mb_.field ? part * height / 2 : part) * step;
      filter_half_edge(plane, height, lines, mb_.field ? step : 2 * step, limits[plane], strengths, bit_depth_);
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
