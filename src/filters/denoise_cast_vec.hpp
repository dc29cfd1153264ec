/// Vector kernel of the CAST noise filter: strips of 16 or 32 columns from the first row to the last.
#pragma once

#include <algorithm>

#include "filters/denoise_cast_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

template <int B>
using CastSamples = simd::u8<B>;
/// Words of the samples in the lower and in the upper half of each block.
template <int B>
struct CastWords {
  simd::s16<B> low, high;
};

template <int B>
MOX_INLINE CastSamples<B> cast_difference(CastSamples<B> a, CastSamples<B> b) {
  return subs(a, b) | subs(b, a);
}
/// weight * (a + b), and the sums so far.
template <int B>
MOX_INLINE CastWords<B> cast_add(CastWords<B> sums, CastSamples<B> a, CastSamples<B> b, int weight) {
  const auto weights = simd::splat<simd::u8, B>(weight);
  return {sums.low + maddubs(lo8(a, b), weights), sums.high + maddubs(hi8(a, b), weights)};
}

/// Neighbours of 16 samples where the row begins or ends with them.
alignas(16) inline constexpr Mox8u kCastLeft[16] = {0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
alignas(16) inline constexpr Mox8u kCastRight[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 15};

/// A row of the frame and how it differs from the previous result, each with its neighbours.
template <int B>
struct CastRow {
  CastSamples<B> left, middle, right, least, greatest, prev;
  CastWords<B> motion;

  MOX_INLINE CastRow(const Mox8u* src, const Mox8u* previous, bool isFirst, bool isLast) {
    const auto load = [](const Mox8u* p) { return simd::load_row<simd::u8, B>(p); };
    const auto left_of = [=](const Mox8u* p) {
      return isFirst ? lookup(load(p), simd::table<simd::u8, B>(kCastLeft)) : load(p - 1);
    };
    const auto right_of = [=](const Mox8u* p) {
      return isLast ? lookup(load(p), simd::table<simd::u8, B>(kCastRight)) : load(p + 1);
    };
    left = left_of(src), middle = load(src), right = right_of(src), prev = load(previous);
    least = min(left, min(middle, right)), greatest = max(left, max(middle, right));
    const auto zero = simd::zero<simd::s16, B>();
    motion = cast_add({zero, zero}, cast_difference(middle, prev), simd::zero<simd::u8, B>(), 1);
    motion = cast_add(motion, cast_difference(left, left_of(previous)), cast_difference(right, right_of(previous)), 1);
  }
};

/// As px::cast_weight; value in 0..2295, products of 8448 at most.
template <int B>
MOX_INLINE simd::s16<B> cast_weight(simd::s16<B> value, Mox32s end, Mox32s scale, Mox32s greatest) {
  const auto splat = [](Mox32s number) { return simd::splat<simd::s16, B>(number); };
  const auto below = max(splat(end) - value, splat(0)) * splat(scale);
  return simd::shr<4>(splat(greatest) * min(splat(16), simd::shr<8>(below)));
}
/// As px::cast_blend; products in -4080..4080.
template <int B>
MOX_INLINE simd::s16<B> cast_blend(simd::s16<B> weight, simd::s16<B> a, simd::s16<B> b) {
  return b + simd::shr<4>(weight * (a - b) + simd::splat<simd::s16, B>(8));
}

template <int B>
MOX_INLINE CastSamples<B> cast_samples(const CastRow<B>& above, const CastRow<B>& here, const CastRow<B>& below,
                                       const MoxiDenoiseCASTState& state) {
  const auto samples = here.middle, nearest = simd::splat<simd::u8, B>(state.nearest);
  const auto near = [=](CastSamples<B> neighbour) {
    const auto distance = cast_difference(neighbour, samples);
    return samples + ((neighbour - samples) & equal(min(distance, nearest), distance));
  };
  const auto eight = simd::splat<simd::s16, B>(8);
  auto sums = cast_add({eight, eight}, samples, samples, 2);  // 4088 at most
  sums = cast_add(sums, near(above.left), near(above.right), 1);
  sums = cast_add(sums, near(below.left), near(below.right), 1);
  sums = cast_add(sums, near(here.left), near(here.right), 2);
  sums = cast_add(sums, near(above.middle), near(below.middle), 2);
  const auto edge =
      max(here.greatest, max(above.greatest, below.greatest)) - min(here.least, min(above.least, below.least));
  const auto result = [&](auto sum, auto range, auto motion, auto sample, auto previous) {
    const auto inSpace = cast_weight<B>(range, state.edgeEnd, state.edgeScale, state.spatial);
    const auto inTime = cast_weight<B>(motion, state.motionEnd, state.motionScale, state.temporal);
    return cast_blend<B>(inTime, previous, cast_blend<B>(inSpace, simd::shr<4>(sum), sample));
  };
  return packus(result(sums.low, wide_lo(edge), above.motion.low + here.motion.low + below.motion.low, wide_lo(samples),
                       wide_lo(here.prev)),
                result(sums.high, wide_hi(edge), above.motion.high + here.motion.high + below.motion.high,
                       wide_hi(samples), wide_hi(here.prev)));
}

/// Columns x to x + 16 B - 1; only a strip of one block may begin or end the row.
template <int B, bool kFirst = false, bool kLast = false>
void cast_strip(const CastFrame& frame, int x, const MoxiDenoiseCASTState& state) {
  static_assert(B == 1 || !(kFirst || kLast));
  const auto row = [&](int y) {
    return CastRow<B>(frame.src + y * frame.srcStep + x, frame.prev + y * frame.prevStep + x, kFirst, kLast);
  };
  auto here = row(0), above = here;
  for (int y = 0; y < frame.size.height; ++y) {
    const auto below = row(std::min(y + 1, frame.size.height - 1));
    store_row(cast_samples(above, here, below, state), frame.dst + y * frame.dstStep + x);
    above = here, here = below;
  }
}

/// Columns 16 to width - 17, and some more: the last strip begins where it has room.
template <int B>
void cast_middle(const CastFrame& frame, const MoxiDenoiseCASTState& state) {
  const int width = frame.size.width;
  for (int x = 16; x < width - 16; x += 16 * B) cast_strip<B>(frame, std::min(x, width - 1 - 16 * B), state);
}

inline MoxStatus ownFilterDenoiseCAST_8u(const CastFrame& frame, const MoxiDenoiseCASTState& state) {
  const int width = frame.size.width;
  if (width < 16) return px::ownFilterDenoiseCAST_8u(frame, state);
  if (width == 16) {
    cast_strip<1, true, true>(frame, 0, state);
    return moxStsOk;
  }
  cast_strip<1, true, false>(frame, 0, state);
  if (width < 16 * simd::kBlocks + 2) {
    cast_middle<1>(frame, state);
  } else {
    cast_middle<simd::kBlocks>(frame, state);
  }
  cast_strip<1, false, true>(frame, width - 16, state);
  return moxStsOk;
}

}  // namespace mox::vec
