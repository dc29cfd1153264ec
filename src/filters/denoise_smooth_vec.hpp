/// Vector kernels of the smoothing noise filter.
#pragma once

#include <cstddef>

#include "filters/denoise_smooth_px.hpp"
#include "filters/row_vec.hpp"
#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

struct CreateMask {
  const Mox8u* plane;
  std::ptrdiff_t step;
  Mox8u* mask;
  Mox32s threshold;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    const Mox8u *const row = plane + x, *const below = row + step;
    const auto falling = apart(load_columns<B>(row), load_columns<B>(below + 1));
    const auto rising = apart(load_columns<B>(row + 1), load_columns<B>(below));
    store_row(below_threshold(max(falling, rising), threshold) ^ simd::splat<simd::u8, B>(kOnEdge), mask + x);
  }
  void sample(std::ptrdiff_t x) const { px::ownDenoiseSmoothCreateMask_8u(plane + x, step, mask + x, 1, threshold); }
};
inline void ownDenoiseSmoothCreateMask_8u(const Mox8u* plane, std::ptrdiff_t step, Mox8u* mask, Mox32s width,
                                          Mox32s threshold) {
  run_row(0, width, CreateMask{plane, step, mask, threshold});
}

/// [count]: the low and the high bytes of DenomTable_16u.
template <int kShift>
inline constexpr auto kDenomBytes = make_table<16>([]<std::size_t I>() {
  return I < DenomTable_16u.size() ? static_cast<Mox8u>(DenomTable_16u[I] >> kShift) : Mox8u{0};
});

struct AverageMask {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  const Mox8u* mask;
  std::ptrdiff_t maskStep;
  Mox8u* dst;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    ColumnSums<B> sums;
    auto count = simd::splat<simd::u8, B>(9);
    const auto unmasked = [&](std::ptrdiff_t row, int column) {
      const auto onEdge = load_columns<B>(mask + row * maskStep + x + column);
      count = count + onEdge;  // 255 takes 1 off
      return andnot(onEdge, load_columns<B>(src + row * srcStep + x + column));
    };
    for (std::ptrdiff_t row = -1; row <= 1; ++row) sums.add(unmasked(row, -1), unmasked(row, 0));
    sums.add(unmasked(-1, 1), unmasked(0, 1));
    sums.add(unmasked(1, 1));
    const auto low = lookup(simd::table<simd::u8, B>(kDenomBytes<0>.data()), count);
    const auto high = lookup(simd::table<simd::u8, B>(kDenomBytes<8>.data()), count);
    const auto mean = sums.scaled(simd::as<simd::u16>(lo8(low, high)), simd::as<simd::u16>(hi8(low, high)));
    store_row(choose(load_columns<B>(mask + x), load_columns<B>(src + x), mean), dst + x);
  }
  void sample(std::ptrdiff_t x) const { dst[x] = px::average_unmasked(src + x, srcStep, mask + x, maskStep); }
};
inline void ownDenoiseAverageMask(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* mask, std::ptrdiff_t maskStep,
                                  Mox8u* dst, Mox32s width) {
  run_row(0, width, AverageMask{src, srcStep, mask, maskStep, dst});
}

}  // namespace mox::vec
