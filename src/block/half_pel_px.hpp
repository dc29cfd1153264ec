/// Half-pel prediction: positions between samples, and the portable predictor.
///
/// A predicted sample P(x, y) is the reference sample r(x, y) or the mean of two or four neighbours. `rc` is the
/// rounding bit: 0 rounds to nearest with halves up, 1 towards zero.
#pragma once

#include <cstddef>

#include "frame/access.hpp"
#include "moxvc/types.h"

namespace mox {

/// Where a predicted block lies between the samples, 2 * (half in x) + (half in y). The names give x first: HF lies
/// halfway between two columns, on a row.
enum class HalfPel { kFull, kFH, kHF, kHH };

constexpr bool half_in_x(HalfPel position) { return static_cast<int>(position) & 2; }
constexpr bool half_in_y(HalfPel position) { return static_cast<int>(position) & 1; }
/// Position of the low two bits of a number.
constexpr HalfPel half_pel(std::size_t bits) { return static_cast<HalfPel>(bits & 3); }

/// Index of an mcType's position, 0 to 3: bit 3 asks for a half in x, bit 2 in y, other bits do not count.
constexpr std::size_t half_pel_index(Mox32s mcType) { return static_cast<std::size_t>(mcType >> 2 & 3); }
static_assert(half_pel(half_pel_index(0)) == HalfPel::kFull && half_pel(half_pel_index(4)) == HalfPel::kFH);
static_assert(half_pel(half_pel_index(8)) == HalfPel::kHF && half_pel(half_pel_index(-1)) == HalfPel::kHH);

/// Position of an `acc` selector, whose bits are the other way round: bit 0 asks for a half in x, bit 1 in y.
constexpr HalfPel half_pel_of_acc(std::size_t acc) { return half_pel((acc & 1) << 1 | (acc >> 1 & 1)); }
static_assert(half_pel_of_acc(1) == HalfPel::kHF && half_pel_of_acc(2) == HalfPel::kFH);

}  // namespace mox

namespace mox::px {

/// P at r. Samples of a row lie kDistance bytes apart: 1, or 2 where two channels are interleaved. Reads one more
/// sample to the right for a half in x, one more row for a half in y.
template <HalfPel P, int kDistance = 1>
Mox32s predict(const Mox8u* r, std::ptrdiff_t step, Mox32s rc) {
  switch (P) {
    case HalfPel::kFull: return r[0];
    case HalfPel::kFH: return (r[0] + r[step] + 1 - rc) >> 1;
    case HalfPel::kHF: return (r[0] + r[kDistance] + 1 - rc) >> 1;
    case HalfPel::kHH: break;
  }
  return (r[0] + r[kDistance] + r[step] + r[step + kDistance] + 2 - rc) >> 2;
}

}  // namespace mox::px
