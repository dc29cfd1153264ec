/// What the AVS macroblock functions share: the tests on modes, and the neighbours of each block.
#pragma once

#include <cstddef>

#include "avs/intra_vec.hpp"
#include "avs/inverse_transform_px.hpp"
#include "avs/inverse_transform_vec.hpp"
#include "frame/arguments.hpp"

namespace mox {

/// Bits of edgeType: neighbouring macroblocks that cannot be used.
enum AvsDenied : Mox32u { kNoLeft = 1, kNoAbove = 4, kNoCorner = 16, kNoAboveRight = 32 };

/// Neighbours of the one block of a chroma plane.
constexpr Mox32u avs_chroma_neighbours(Mox32u edgeType) {
  return (edgeType & kNoAbove ? 0u : kAvsAbove) | (edgeType & kNoLeft ? 0u : kAvsLeft) |
         (edgeType & kNoCorner ? 0u : kAvsCorner) | (edgeType & kNoAboveRight ? 0u : kAvsAboveRight);
}

/// Neighbours of luma block b.
constexpr Mox32u avs_luma_neighbours(int b, Mox32u edgeType) {
  const Mox32u above = edgeType & kNoAbove ? 0u : kAvsAbove, left = edgeType & kNoLeft ? 0u : kAvsLeft;
  const Mox32u corner = edgeType & kNoCorner ? 0u : kAvsCorner;
  const Mox32u beyond = edgeType & kNoAboveRight ? 0u : kAvsAboveRight;
  switch (b) {
    case 0: return above | left | corner | (above ? kAvsAboveRight : 0u) | (left ? kAvsBelowLeft : 0u);
    case 1: return above | kAvsLeft | (above ? kAvsCorner : 0u) | beyond;
    case 2: return kAvsAbove | left | (left ? kAvsCorner : 0u) | kAvsAboveRight;
    default: return kAvsAbove | kAvsLeft | kAvsCorner;
  }
}

constexpr bool avs_modes_exist(const Mox32u* modes) {
  return modes[0] < kAvsLumaModes && modes[1] < kAvsLumaModes && modes[2] < kAvsLumaModes && modes[3] < kAvsLumaModes;
}

/// True if no luma block's mode needs a neighbour that it does not have.
constexpr bool avs_edges_suffice(const Mox32u* modes, Mox32u edgeType) {
  Mox32u missing = 0;
  for (int b = 0; b < 4; ++b) missing |= kAvsNeeds[modes[b]] & ~avs_luma_neighbours(b, edgeType);
  return missing == 0;
}

}  // namespace mox
