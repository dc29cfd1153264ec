/// Vector kernels of the adaptive noise filter: 16 columns a block, for windows that no side edge of the region cuts.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "filters/denoise_adaptive_px.hpp"
#include "filters/row_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The samples near those of the centre, by a threshold of 1 or more.
template <int B>
struct Vicinity {
  simd::u8<B> low, high;

  Vicinity(simd::u8<B> centre, Mox32s threshold) {
    const auto most = simd::splat<simd::u8, B>(clip(threshold, 1, 256) - 1);
    low = subs(centre, most), high = adds(centre, most);
  }
  MOX_INLINE simd::u8<B> admits(simd::u8<B> v) const { return equal(min(max(v, low), high), v); }
};

/// A row of the destination rectangle, in positions of the region.
struct AdaptiveRow {
  const AdaptiveFilter& filter;
  std::ptrdiff_t first, y, top, bottom;
  Mox8u* dst;

  AdaptiveRow(const AdaptiveFilter& f, std::ptrdiff_t firstColumn, std::ptrdiff_t row, Mox8u* destination)
      : filter(f), first(firstColumn), y(row), dst(destination) {
    const Window window(f, first, y);
    top = window.top, bottom = window.bottom;
  }
  Mox8u* output(std::ptrdiff_t x) const { return dst + (x - first); }
  void sample(std::ptrdiff_t x) const { *output(x) = px::adaptive_sample(filter, x, y); }
  template <int B>
  MOX_INLINE simd::u8<B> centre(std::ptrdiff_t x) const {
    return load_columns<B>(filter.current + y * filter.step + x);
  }
};

/// Runs a kernel over the `width` columns of its row, and px over those whose window is cut.
template <class Kernel>
MOX_INLINE void run_uncut(const Kernel& kernel, Mox32s width) {
  const std::ptrdiff_t first = kernel.first, end = first + width;
  const std::ptrdiff_t left = std::clamp<std::ptrdiff_t>(kernel.filter.mask.width, first, end);
  const std::ptrdiff_t last = std::ptrdiff_t{kernel.filter.region.width} - kernel.filter.mask.width;
  const std::ptrdiff_t right = std::clamp(last, left, end);
  for (std::ptrdiff_t x = first; x < left; ++x) kernel.sample(x);
  run_row(left, right, kernel);
  for (std::ptrdiff_t x = right; x < end; ++x) kernel.sample(x);
}

/// The call with only those neighbours that can add samples.
inline AdaptiveFilter effective(AdaptiveFilter filter) {
  if (filter.threshold < 1) filter.previous = filter.next = nullptr;
  return filter;
}

/// Windows of 3x3: 27 samples at most, so that bytes count them and two look-ups give the reciprocal.
struct AdaptiveRow3x3 : AdaptiveRow {
  std::array<std::array<Mox8u, 32>, 2> recip{};  ///< low and high bytes

  AdaptiveRow3x3(const AdaptiveFilter& f, std::ptrdiff_t firstColumn, std::ptrdiff_t row, Mox8u* destination)
      : AdaptiveRow(f, firstColumn, row, destination) {
    for (std::size_t n = 0; n < 28; ++n) {
      recip[0][n] = static_cast<Mox8u>(f.recip[n]), recip[1][n] = static_cast<Mox8u>(f.recip[n] >> 8);
    }
  }

  /// Entries 0..31 of a table: an index with bit 7 set gives 0.
  template <int B>
  MOX_INLINE static simd::u8<B> entries(const std::array<Mox8u, 32>& bytes, simd::u8<B> index) {
    using simd::u8;
    return lookup(simd::table<u8, B>(bytes.data()), index + simd::splat<u8, B>(0x70)) |
           lookup(simd::table<u8, B>(bytes.data() + 16), index - simd::splat<u8, B>(16));
  }
  template <int B>
  MOX_INLINE void add_near(const Mox8u* frame, std::ptrdiff_t x, const Vicinity<B>& near, ColumnSums<B>& sums,
                           simd::u8<B>& count) const {
    for (std::ptrdiff_t row = top; row < bottom; ++row) {
      const auto take = [&](std::ptrdiff_t column) {
        const auto v = load_columns<B>(frame + row * filter.step + column), admitted = near.admits(v);
        count = count - admitted;
        return v & admitted;
      };
      sums.add(take(x - 1), take(x));
      sums.add(take(x + 1));
    }
  }
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    ColumnSums<B> sums;
    auto count = simd::splat<simd::u8, B>(static_cast<int>(3 * (bottom - top)));
    for (std::ptrdiff_t row = top; row < bottom; ++row) {
      const Mox8u* const p = filter.current + row * filter.step + x;
      sums.add(load_columns<B>(p - 1), load_columns<B>(p));
      sums.add(load_columns<B>(p + 1));
    }
    const Vicinity<B> near(centre<B>(x), filter.threshold);
    if (filter.previous) add_near(filter.previous, x, near, sums, count);
    if (filter.next) add_near(filter.next, x, near, sums, count);
    const auto low = entries(recip[0], count), high = entries(recip[1], count);
    store_row(sums.scaled(simd::as<simd::u16>(lo8(low, high)), simd::as<simd::u16>(hi8(low, high))), output(x));
  }
};
inline void ownFilterDenoiseAdaptive_8u_C1R_3x3(const AdaptiveFilter& filter, std::ptrdiff_t first, std::ptrdiff_t y,
                                                Mox8u* dst, Mox32s width) {
  const AdaptiveFilter call = effective(filter);
  run_uncut(AdaptiveRow3x3(call, first, y, dst), width);
}

/// Sums and counts of 16 B columns over a whole window, which has 65535 samples at most in all frames.
template <int B>
class WindowSums {
 public:
  /// Ends a row of the window: adds its sums and its counts, which are 255 at most.
  MOX_INLINE void add(const ColumnSums<B>& row, simd::u8<B> count) {
    using simd::as, simd::u16;
    sums_[0] = sums_[0] + wide_lo(as<u16>(row.lo)), sums_[1] = sums_[1] + wide_hi(as<u16>(row.lo));
    sums_[2] = sums_[2] + wide_lo(as<u16>(row.hi)), sums_[3] = sums_[3] + wide_hi(as<u16>(row.hi));
    counts_.add(count);
  }
  MOX_INLINE void store_means(const Mox16u* recip, Mox8u* dst) const {
    Mox32u sums[16 * B];
    Mox16u counts[16 * B];
    for (int i = 0; i < 4; ++i) store16(sums_[i], sums + 4 * i, simd::strips<B>(64));
    store16(counts_.lo, counts, simd::strips<B>(32));
    store16(counts_.hi, counts + 8, simd::strips<B>(32));
    for (int i = 0; i < 16 * B; ++i) dst[i] = static_cast<Mox8u>((sums[i] * recip[counts[i]]) >> 16);
  }

 private:
  simd::s32<B> sums_[4] = {simd::zero<simd::s32, B>(), simd::zero<simd::s32, B>(), simd::zero<simd::s32, B>(),
                           simd::zero<simd::s32, B>()};
  ColumnSums<B> counts_;
};

/// Windows of any size up to the limits of WindowSums.
struct AdaptiveRowAny : AdaptiveRow {
  using AdaptiveRow::AdaptiveRow;

  static bool serves(MoxiSize mask) {
    return mask.width <= 127 && mask.height <= 65535 && 3ll * (2 * mask.width + 1) * (2 * mask.height + 1) <= 65535;
  }
  /// Adds the samples v & admitted(v) of a frame's window.
  template <int B, class Admitted>
  MOX_INLINE void add_window(const Mox8u* frame, std::ptrdiff_t x, WindowSums<B>& total, Admitted admitted) const {
    for (std::ptrdiff_t row = top; row < bottom; ++row) {
      ColumnSums<B> sums;
      auto count = simd::zero<simd::u8, B>();
      const Mox8u* const p = frame + row * filter.step + x;
      const auto take = [&](std::ptrdiff_t column) {
        const auto v = load_columns<B>(p + column), mask = admitted(v);
        count = count - mask;
        return v & mask;
      };
      const std::ptrdiff_t reach = filter.mask.width;
      for (std::ptrdiff_t column = -reach; column < reach; column += 2) sums.add(take(column), take(column + 1));
      sums.add(take(reach));
      total.add(sums, count);
    }
  }
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    WindowSums<B> total;
    const Vicinity<B> near(centre<B>(x), filter.threshold);
    add_window(filter.current, x, total, [](simd::u8<B>) { return simd::splat<simd::u8, B>(255); });
    for (const Mox8u* frame : {filter.previous, filter.next}) {
      if (frame) add_window(frame, x, total, [&](simd::u8<B> v) { return near.admits(v); });
    }
    total.store_means(filter.recip, output(x));
  }
};
inline void adaptive_row(const AdaptiveFilter& filter, std::ptrdiff_t first, std::ptrdiff_t y, Mox8u* dst,
                         Mox32s width) {
  if (!AdaptiveRowAny::serves(filter.mask)) return px::adaptive_row(filter, first, y, dst, width);
  const AdaptiveFilter call = effective(filter);
  run_uncut(AdaptiveRowAny(call, first, y, dst), width);
}

}  // namespace mox::vec
