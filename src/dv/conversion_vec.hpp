/// Vector conversion of decoded DV macroblocks to packed 4:2:2, by units of 16 luma samples.
#pragma once

#include <array>
#include <utility>

#include "dv/conversion_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// 16 luma samples, one row of them or two: where their values begin, four by four; where the 8 chroma values begin
/// that they need, and which of Cb, 0 to 7, and Cr, 8 to 15, go to which place; where the 32 bytes go, 16 by 16.
struct DvUnit {
  Mox16s luma[4];
  Mox16s chroma;
  Mox16s column[2], row[2];
  alignas(16) Mox8u order[16];
};

template <const px::DvShape& kShape, int N>
inline constexpr auto kDvUnits = [] {
  constexpr int kWidth = kShape.columns * N;
  std::array<DvUnit, kWidth * kShape.rows * N / 16> units{};
  for (int i = 0; i < static_cast<int>(units.size()); ++i) {
    const auto x = [=](int sample) { return (16 * i + sample) % kWidth; };
    const auto y = [=](int sample) { return (16 * i + sample) / kWidth; };
    const auto chroma = [=](int sample) { return kShape.chroma(x(sample), y(sample), N); };
    DvUnit& unit = units[i];
    unit.chroma = static_cast<Mox16s>(chroma(0) / 8 * 8);
    for (int k = 0; k < 4; ++k) unit.luma[k] = static_cast<Mox16s>(kShape.luma(x(4 * k), y(4 * k), N));
    for (int k = 0; k < 2; ++k) {
      unit.column[k] = static_cast<Mox16s>(2 * x(8 * k));
      unit.row[k] = static_cast<Mox16s>(y(8 * k));
    }
    for (int k = 0; k < 16; ++k) unit.order[k] = static_cast<Mox8u>(chroma(k) - unit.chroma + 8 * (k % 2));
  }
  return units;
}();

/// 8 values each as samples.
MOX_INLINE simd::u8<1> dv_samples(simd::s16<1> first, simd::s16<1> second) {
  const auto grey = simd::splat<simd::s16, 1>(128);
  return packus(adds(first, grey), adds(second, grey));
}

MOX_INLINE void dv_unit_to_packed(const DvUnit& unit, const Mox16s* luma, const Mox16s* cr, const Mox16s* cb,
                                  Mox8u* dst, std::ptrdiff_t dstStep) {
  const auto four_twice = [=](const Mox16s* at) {
    return simd::load8x2<simd::s16, 1>(luma + at[0], 2 * (at[1] - at[0]), simd::strips<1>(0));
  };
  const auto y = dv_samples(four_twice(unit.luma), four_twice(unit.luma + 2));
  const auto both =
      dv_samples(simd::load_row<simd::s16, 1>(cb + unit.chroma), simd::load_row<simd::s16, 1>(cr + unit.chroma));
  const auto chroma = lookup(both, simd::load_row<simd::u8, 1>(unit.order));
  store_row(lo8(y, chroma), dst + unit.row[0] * dstStep + unit.column[0]);
  store_row(hi8(y, chroma), dst + unit.row[1] * dstStep + unit.column[1]);
}

/// All units one by one, so that their places are constants.
template <const px::DvShape& kShape, int N, std::size_t... I>
MOX_INLINE void dv_units_to_packed(std::index_sequence<I...>, const Mox16s* luma, const Mox16s* cr, const Mox16s* cb,
                                   Mox8u* dst, std::ptrdiff_t dstStep) {
  (dv_unit_to_packed(kDvUnits<kShape, N>[I], luma, cr, cb, dst, dstStep), ...);
}

template <const px::DvShape& kShape, int N>
void dv_macroblock_to_packed(const Mox16s* luma, const Mox16s* cr, const Mox16s* cb, Mox8u* dst,
                             std::ptrdiff_t dstStep) {
  if constexpr (N < 4) {
    px::dv_macroblock_to_packed<kShape, N>(luma, cr, cb, dst, dstStep);
  } else {
    dv_units_to_packed<kShape, N>(std::make_index_sequence<kDvUnits<kShape, N>.size()>(), luma, cr, cb, dst, dstStep);
  }
}

}  // namespace mox::vec
