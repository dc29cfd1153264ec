/// Vector kernel of the bidirectional prediction of H.263 PB frames: a macroblock row is loaded whole and shifted into
/// place; what lies outside of the macroblock is masked.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "h263/motion_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// (a + b) >> 1
MOX_INLINE simd::u8<1> pb_mean(simd::u8<1> a, simd::u8<1> b) {
  return avg(a, b) - ((a ^ b) & simd::splat<simd::u8, 1>(1));
}

/// Two samples of a row side by side: their mean with halves up, and bit 0 set where it was a half.
struct PbNeighbours {
  simd::u8<1> mean, half;
  MOX_INLINE PbNeighbours(simd::u8<1> row, simd::u8<1> left, simd::u8<1> right) {
    const auto a = lookup(row, left), b = lookup(row, right);
    mean = avg(a, b), half = a ^ b;
  }
};

/// A full or half position gives the same sample twice, and so needs no case of its own.
template <class LoadRow>
MoxStatus add_backward_rows(const Mox8u* forward, std::ptrdiff_t forwardStep, const Mox8u* macroblock,
                            std::ptrdiff_t macroblockStep, Mox8u* dst, std::ptrdiff_t dstStep,
                            const BackwardBlock& block, LoadRow load_row) {
  using simd::splat, simd::u8;
  alignas(16) static constexpr Mox8u kCount[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  // Columns lie in -32..48, as bytes 224..255 and 0..48: those before the macroblock count as far behind it.
  const auto left = simd::table<u8, 1>(kCount) + splat<u8, 1>(block.x), right = left + splat<u8, 1>(block.halfX);
  const auto last = splat<u8, 1>(block.size - 1 - block.halfX);
  const auto columns = equal(min(left, last), left);
  for (Mox32s row = 0; row < 8; ++row, forward += forwardStep, dst += dstStep) {
    const u8<1> f{simd::raw8(forward)};
    const Mox32s y = block.y + row;
    if (!block.inside(y, block.halfY)) {
      simd::raw_store8(dst, f.r);
      continue;
    }
    const Mox8u* const above = macroblock + y * macroblockStep;
    const PbNeighbours upper(load_row(above), left, right),
        lower(load_row(above + block.halfY * macroblockStep), left, right);
    // Too much by one where a half went up twice.
    const auto excess = (upper.half | lower.half) & (upper.mean ^ lower.mean) & splat<u8, 1>(1);
    const auto backward = avg(upper.mean, lower.mean) - excess;
    simd::raw_store8(dst, ((columns & pb_mean(f, backward)) | andnot(columns, f)).r);
  }
  return moxStsOk;
}

inline MoxStatus add_backward_prediction(const Mox8u* forward, std::ptrdiff_t forwardStep, const Mox8u* macroblock,
                                         std::ptrdiff_t macroblockStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                         const BackwardBlock& block) {
  const auto add = [&](auto load_row) {
    return add_backward_rows(forward, forwardStep, macroblock, macroblockStep, dst, dstStep, block, load_row);
  };
  if (block.size == 16) return add([](const Mox8u* row) { return simd::u8<1>{simd::raw16(row)}; });
  return add([](const Mox8u* row) { return simd::u8<1>{simd::raw8(row)}; });
}

}  // namespace mox::vec
