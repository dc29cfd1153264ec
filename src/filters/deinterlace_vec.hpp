/// Vector kernels of the deinterlacers: 16 columns a block, bytes throughout but where they are weighted.
#pragma once

#include <algorithm>
#include <cstddef>

#include "filters/deinterlace_blend_weights.hpp"
#include "filters/deinterlace_px.hpp"
#include "filters/row_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

template <int B>
MOX_INLINE simd::u8<B> edge_values(const Mox8u* a, const Mox8u* b) {
  const auto aboveLeft = load_columns<B>(a - 1), above = load_columns<B>(a), aboveRight = load_columns<B>(a + 1);
  const auto belowLeft = load_columns<B>(b - 1), below = load_columns<B>(b), belowRight = load_columns<B>(b + 1);
  const auto d1 = apart(aboveLeft, belowRight), d2 = apart(aboveRight, belowLeft), d0 = apart(above, below);
  const auto notFirst = at_most(min(d2, d0), d1), second = andnot(at_most(d0, d2), at_most(d2, d1));
  return choose(notFirst, choose(second, avg(aboveRight, belowLeft), avg(above, below)), avg(aboveLeft, belowRight));
}

struct EdgeRow {
  const Mox8u *a, *b;
  Mox8u* dst;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    store_row(edge_values<B>(a + x, b + x), dst + x);
  }
  void sample(std::ptrdiff_t x) const { dst[x] = px::edge_value(a + x, b + x); }
};
inline void edge_row(const Mox8u* a, const Mox8u* b, const Mox8u* ends, Mox8u* dst, Mox32s width) {
  dst[0] = ends[0];
  run_row(1, width - std::ptrdiff_t{1}, EdgeRow{a, b, dst});
  dst[width - 1] = ends[width - 1];
}

struct TriangleRow {
  const Mox8u* src;
  std::ptrdiff_t step;
  Mox8u* dst;
  TriangleWeights weights;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    using simd::as, simd::s16, simd::u16;
    const auto beside = simd::splat<u16, B>(weights.beside), here = simd::splat<u16, B>(weights.here);
    ColumnSums<B> outer, inner;
    outer.add(load_columns<B>(src + x - step), load_columns<B>(src + x + step));  // 0..510
    inner.add(load_columns<B>(src + x));
    // The weights are 256 at most in all: up to 65280.
    const auto lo = as<u16>(outer.lo) * beside + as<u16>(inner.lo) * here;
    const auto hi = as<u16>(outer.hi) * beside + as<u16>(inner.hi) * here;
    store_row(packus(as<s16>(simd::shr<8>(lo)), as<s16>(simd::shr<8>(hi))), dst + x);
  }
  void sample(std::ptrdiff_t x) const { px::triangle_row(src + x, step, dst + x, 1, weights); }
};
inline void triangle_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width, TriangleWeights weights) {
  run_row(0, width, TriangleRow{src, step, dst, weights});
}

struct MedianThresholdRow {
  const Mox8u* src;
  std::ptrdiff_t step;
  Mox8u* dst;
  Mox32s threshold;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    const auto here = load_columns<B>(src + x);
    const auto median = median3(load_columns<B>(src + x - step), here, load_columns<B>(src + x + step));
    store_row(choose(below_threshold(apart(median, here), threshold), here, median), dst + x);
  }
  void sample(std::ptrdiff_t x) const { dst[x] = px::median_unless_near(src + x, step, threshold); }
};
inline void median_threshold_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width, Mox32s threshold) {
  run_row(0, width, MedianThresholdRow{src, step, dst, threshold});
}

struct MedianRow {
  const Mox8u *a, *b, *c;
  Mox8u* dst;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    store_row(median3(load_columns<B>(a + x), load_columns<B>(b + x), load_columns<B>(c + x)), dst + x);
  }
  void sample(std::ptrdiff_t x) const { dst[x] = px::median3(a[x], b[x], c[x]); }
};
inline void median_row(const Mox8u* a, const Mox8u* b, const Mox8u* c, Mox8u* dst, Mox32s width) {
  run_row(0, width, MedianRow{a, b, c, dst});
}

/// The greatest difference of two of the frames, the outermost not compared with each other.
template <int B>
MOX_INLINE simd::u8<B> most_apart(const FourFrames& in, std::ptrdiff_t at) {
  const auto f0 = load_columns<B>(in.frame[0] + at), f1 = load_columns<B>(in.frame[1] + at);
  const auto f2 = load_columns<B>(in.frame[2] + at), f3 = load_columns<B>(in.frame[3] + at);
  const auto least = min(f0, f3), most = max(f0, f3);
  const auto from1 = max(subs(max(most, f2), f1), subs(f1, min(least, f2)));
  return max(from1, max(subs(most, f2), subs(f2, least)));
}

struct MotionAdaptiveRow {
  FourFrames in;
  Mox8u* dst;
  StillRule rule;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    const auto bytes = [](int value) { return simd::splat<simd::u8, B>(value); };
    const Mox8u* const newer = in.frame[in.older + 1] + x;
    const auto other = load_columns<B>(in.frame[in.older] + x);
    const auto up = load_columns<B>(newer - in.step), down = load_columns<B>(newer + in.step);
    const auto fields = max(most_apart<B>(in, x - in.step), most_apart<B>(in, x + in.step));
    const auto still = below_threshold(max(apart(load_columns<B>(newer), other), fields), rule.threshold);
    const auto margin = choose(still, bytes(kStillMargin), bytes(kMovingMargin));
    const auto low = subs(other, margin), high = min(adds(other, margin), bytes(kVideoWhite));
    auto smooth = at_most(low, max(up, down)) & at_most(min(up, down), high);
    if (!rule.protect) smooth = smooth | still;
    store_row(choose(smooth, other, avg(up, down)), dst + x);
  }
  void sample(std::ptrdiff_t x) const { dst[x] = px::motion_adaptive_sample(in.at(static_cast<Mox32s>(x)), rule); }
};
inline void motion_adaptive_row(const FourFrames& in, Mox8u* dst, Mox32s width, StillRule rule) {
  run_row(0, width, MotionAdaptiveRow{in, dst, rule});
}

template <int B>
MOX_INLINE simd::u8<B> frames_motion(const ThreeFrames& in, simd::u8<B> here, std::ptrdiff_t at) {
  return avg(apart(here, load_columns<B>(in.previous + at)), apart(here, load_columns<B>(in.next + at)));
}

/// Mixes edge value and median by motion; the weight between no edge value and nothing else follows from the line.
class WeightedMix {
 public:
  explicit WeightedMix(const MoxiDeinterlaceBlendState& state) : low_(state.motionLow), high_(state.motionHigh) {
    if (low_ > high_) return;  // a hard switch, which has no line
    const Mox32s slope = std::min(state.slope, kSteep);
    slopes_ = slope / 2 << 16 | (slope - slope / 2);
    offset_ = state.offset;
  }

  template <int B>
  MOX_INLINE simd::u8<B> operator()(simd::u8<B> motion, simd::u8<B> edge, simd::u8<B> median) const {
    const auto notHigh = at_most(motion, simd::splat<simd::u8, B>(high_));
    const auto between = notHigh & at_most(simd::splat<simd::u8, B>(low_), motion);
    if (is_zero(simd::as<simd::u16>(between))) return choose(notHigh, median, edge);
    return packus(mix(wide_lo(motion), wide_lo(edge), wide_lo(median)),
                  mix(wide_hi(motion), wide_hi(edge), wide_hi(median)));
  }

 private:
  /// From this slope on every motion but 0 has the full weight, the offset being -32767 at least.
  static constexpr Mox32s kSteep = kMostRise + kFullWeight + 1;

  template <int B>
  MOX_INLINE simd::s16<B> mix(simd::s16<B> motion, simd::s16<B> edge, simd::s16<B> median) const {
    using simd::as, simd::s16, simd::s32, simd::u16, simd::shl, simd::shr;
    const auto slopes = as<s16>(simd::splat<s32, B>(slopes_));
    const auto offset = simd::splat<s32, B>(offset_);
    const auto line = packs(madd(lo16(motion, motion), slopes) + offset, madd(hi16(motion, motion), slopes) + offset);
    const auto weight = min(max(line, simd::zero<s16, B>()), simd::splat<s16, B>(kFullWeight));
    return as<s16>(shr<8>(as<u16>(shl<8>(median) + (edge - median) * weight)));  // 0..65280 before the shift
  }

  Mox32s low_, high_;
  Mox32s slopes_ = 0, offset_ = 0;  ///< the slope in two halves, each a signed word
};

struct BlendRow {
  const ThreeFrames& in;
  Mox8u* dst;
  const Mox16u* weights;
  WeightedMix mix;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    const Mox8u *const a = in.current + x - in.step, *const b = in.current + x + in.step;
    const auto above = load_columns<B>(a), here = load_columns<B>(in.current + x), below = load_columns<B>(b);
    const auto fields = avg(frames_motion(in, above, x - in.step), frames_motion(in, below, x + in.step));
    const auto motion = max(apart(here, load_columns<B>(in.otherHere + x)), fields);
    store_row(mix(motion, edge_values<B>(a, b), median3(above, here, below)), dst + x);
  }
  void sample(std::ptrdiff_t x) const {
    const Mox8u* const here = in.current + x;
    blend(x, px::edge_value(here - in.step, here + in.step));
  }
  void blend(std::ptrdiff_t x, Mox8u edge) const {
    dst[x] = px::blend_sample(in.at(static_cast<Mox32s>(x)), edge, weights);
  }
};
inline void blend_row(const ThreeFrames& in, Mox8u* dst, Mox32s width, const MoxiDeinterlaceBlendState& state) {
  const Mox8u* const ends = in.current + (in.endsBelow ? in.step : -in.step);
  const BlendRow row{in, dst, state.pLUT, WeightedMix(state)};
  row.blend(0, ends[0]);
  run_row(1, width - std::ptrdiff_t{1}, row);
  row.blend(width - 1, ends[width - 1]);
}

}  // namespace mox::vec
