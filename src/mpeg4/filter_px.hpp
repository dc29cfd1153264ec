/// Portable kernels of the MPEG-4 deblocking post filter.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// v0 to v9 across an edge, which lies before v5.
using PostSamples = std::array<Mox32s, 10>;

/// A quotient of 8 rounded to the nearest, halves away from zero.
inline Mox32s eighth(Mox32s value) { return sign_of(value) * ((std::abs(value) + 4) >> 3); }

/// Steps of up to kFlatStep are no structure; kFlatSteps of them make a position flat.
inline constexpr Mox32s kFlatStep = 2, kFlatSteps = 6;

inline bool is_flat(const PostSamples& v) {
  Mox32s steps = 0;
  for (std::size_t n = 0; n < 9; ++n) steps += std::abs(v[n] - v[n + 1]) <= kFlatStep;
  return steps >= kFlatSteps;
}

/// The wide filter over v1 to v8.
inline PostSamples smoothed_flat(const PostSamples& v, Mox32s qp) {
  constexpr Mox32s kWeights[9] = {1, 1, 2, 2, 4, 2, 2, 1, 1};
  const auto [least, greatest] = std::minmax_element(v.begin() + 1, v.end() - 1);
  PostSamples out = v;
  if (*greatest - *least >= 2 * qp) return out;
  const Mox32s before = std::abs(v[1] - v[0]) < qp ? v[0] : v[1], behind = std::abs(v[8] - v[9]) < qp ? v[9] : v[8];
  for (int n = 1; n <= 8; ++n) {
    Mox32s sum = 8;
    for (int k = -4; k <= 4; ++k) {
      const int m = n + k;
      sum += kWeights[k + 4] * (m < 1 ? before : m > 8 ? behind : v[static_cast<std::size_t>(m)]);
    }
    out[static_cast<std::size_t>(n)] = sum >> 4;
  }
  return out;
}

/// Takes from the step at the edge what the steps on both sides of it do not have too.
inline PostSamples smoothed_step(const PostSamples& v, Mox32s qp) {
  const auto component = [&](std::size_t n) { return eighth(2 * (v[n] - v[n + 3]) + 5 * (v[n + 2] - v[n + 1])); };
  const Mox32s middle = component(3), size = std::abs(middle);
  PostSamples out = v;
  if (size >= qp) return out;
  const Mox32s least = std::min({size, std::abs(component(1)), std::abs(component(5))});
  const Mox32s limit = (v[4] - v[5]) / 2;
  const Mox32s change = clip(eighth(5 * sign_of(middle) * (least - size)), std::min(0, limit), std::max(0, limit));
  out[4] -= change;
  out[5] += change;
  return out;
}

inline MoxStatus post_deblock(Mox8u* edge, std::ptrdiff_t across, std::ptrdiff_t along, Mox32s qp) {
  for (int i = 0; i < 8; ++i, edge += along) {
    Mox8u* const first = edge - 5 * across;
    PostSamples v;
    for (std::size_t n = 0; n < 10; ++n) v[n] = first[static_cast<std::ptrdiff_t>(n) * across];
    const PostSamples out = is_flat(v) ? smoothed_flat(v, qp) : smoothed_step(v, qp);
    for (std::size_t n = 1; n < 9; ++n) first[static_cast<std::ptrdiff_t>(n) * across] = static_cast<Mox8u>(out[n]);
  }
  return moxStsOk;
}

inline MoxStatus ownFilterDeblocking8x8_MPEG4_H(Mox8u* edge, Mox32s step, Mox32s qp) {
  return post_deblock(edge, step, 1, qp);
}
inline MoxStatus ownFilterDeblocking8x8_MPEG4_V(Mox8u* edge, Mox32s step, Mox32s qp) {
  return post_deblock(edge, 1, step, qp);
}

}  // namespace mox::px
