/// What the portable distance kernels share: samples of both widths at all positions, and the sum over a block.
#pragma once

#include <algorithm>
#include <cstddef>

#include "block/half_pel_px.hpp"
#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Source block, reference block and one result. Steps are bytes.
template <class T>
using DistanceKernel = MoxStatus (*)(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Mox32s* result);

/// P at r, rounded up; samples of a row lie kDistance samples apart.
template <HalfPel P, int kDistance>
Mox32s reference_sample(const Mox8u* r, std::ptrdiff_t step) {
  return predict<P, kDistance>(r, step, 0);
}

/// P of 16-bit samples: the sum before the shift, rounding included, saturates at 65535.
template <HalfPel P, int kDistance>
Mox32s reference_sample(const Mox16u* r, std::ptrdiff_t step) {
  const auto at = [=](int right, int down) -> Mox32s {
    return load<Mox16u>(step_bytes(r, down * step) + right * kDistance);
  };
  switch (P) {
    case HalfPel::kFull: return at(0, 0);
    case HalfPel::kFH: return std::min(at(0, 0) + at(0, 1) + 1, 0xFFFF) >> 1;
    case HalfPel::kHF: return std::min(at(0, 0) + at(1, 0) + 1, 0xFFFF) >> 1;
    case HalfPel::kHH: break;
  }
  return std::min(at(0, 0) + at(1, 0) + at(0, 1) + at(1, 1) + 2, 0xFFFF) >> 2;
}

/// The magnitude of a difference that is kept in 16 bits with a sign; -32768 counts 32768.
constexpr Mox32s magnitude16(Mox32s a, Mox32s b) {
  const Mox32s difference = wrap16(a - b);
  return difference < 0 ? -difference : difference;
}
static_assert(magnitude16(0, 40000) == 25536 && magnitude16(32768, 0) == 32768);

/// The sum of term(source sample, reference sample) over a block of W x H.
template <int W, int H, HalfPel P, int kDistance = 1, class T, class Term>
Mox32s sum_over(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Term term) {
  Mox32s sum = 0;
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) {
      sum += term(load<T>(src + x * kDistance), reference_sample<P, kDistance>(ref + x * kDistance, refStep));
    }
    src = step_bytes(src, srcStep), ref = step_bytes(ref, refStep);
  }
  return sum;
}

}  // namespace mox::px
