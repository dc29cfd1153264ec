/// Vector kernels of VC-1 interpolation: the portable kernels' names, as far as there is a vector form.
///
/// Each block of a vector walks down a strip of the picture block. Sums of taps over bytes stay in -1785..18105 and fit
/// words.
#pragma once

#include <cstddef>

#include "block/half_pel_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"
#include "vc1/interpolation_px.hpp"

namespace mox::vec {

/// Rows whose right neighbours are kDistance bytes away.
template <int W, int B, int kDistance>
struct VC1Rows : Rows<W, B> {
  using Rows<W, B>::Rows;
  simd::u8<B> at(int dx) const { return Rows<W, B>::at(dx * kDistance); }
};

/// The destination of such rows, of H in all.
template <int W, int H, int B>
class VC1Destination {
 public:
  VC1Destination(Mox8u* block, std::ptrdiff_t step) : p_(block), step_(step), strip_(step * kSteps) {}
  MOX_INLINE void put(simd::u8<B> v) {
    if constexpr (W == 16) store16(v, p_, simd::strips<B>(strip_));
    if constexpr (W == 8) store8x2(v, p_, strip_, simd::strips<B>(2 * strip_));
    if constexpr (W == 4) simd::store_rows<4, 4>(v, p_, strip_);
    p_ += step_;
  }
  static constexpr int kSteps = H * W / (16 * B);

 private:
  Mox8u* p_;
  std::ptrdiff_t step_, strip_;
};

template <int W>
inline constexpr int kVC1Blocks = W == 4 ? 1 : simd::kBlocks;

template <int W, int H, int kDistance, HalfPel P, int kRc>
MoxStatus vc1_copy(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep) {
  constexpr int B = kVC1Blocks<W>;
  VC1Rows<W, B, kDistance> rows(src, srcStep, H);
  VC1Destination<W, H, B> to(dst, dstStep);
  Sampler<decltype(rows), P, kRc> sample(rows);
  for (int y = 0; y < to.kSteps; ++y) to.put(sample(rows));
  return moxStsOk;
}

/// Two weights, for the even and the odd bytes.
template <int B>
MOX_INLINE simd::u8<B> vc1_weights(int even, int odd) {
  return simd::as<simd::u8>(simd::splat<simd::u16, B>((even & 0xFF) | (odd & 0xFF) << 8));
}

/// The words of two vectors of bytes interleaved.
template <int B>
struct VC1Sums {
  simd::s16<B> lo, hi;
};
/// (4 - kPart) a + kPart b, 0..1020
template <int kPart, int B>
MOX_INLINE VC1Sums<B> vc1_mix(simd::u8<B> a, simd::u8<B> b) {
  const auto weights = vc1_weights<B>(4 - kPart, kPart);
  return {maddubs(lo8(a, b), weights), maddubs(hi8(a, b), weights)};
}
/// The same of two sums, 0..4080.
template <int kPart, int B>
MOX_INLINE VC1Sums<B> vc1_mix(const VC1Sums<B>& a, const VC1Sums<B>& b) {
  const auto first = simd::splat<simd::s16, B>(4 - kPart), second = simd::splat<simd::s16, B>(kPart);
  return {a.lo * first + b.lo * second, a.hi * first + b.hi * second};
}
template <int kShift, int B>
MOX_INLINE simd::u8<B> vc1_rounded(const VC1Sums<B>& sums, simd::s16<B> rounding) {
  return packus(simd::shr<kShift>(sums.lo + rounding), simd::shr<kShift>(sums.hi + rounding));
}

/// With a neighbour on one side only, a common factor of 4 is left out.
template <int W, int H, int kDistance, int kDx, int kDy>
MoxStatus vc1_mixed(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep, Mox32s roundControl) {
  constexpr int B = kVC1Blocks<W>;
  constexpr int kShift = kDx != 0 && kDy != 0 ? 4 : 2;
  const auto rounding = simd::splat<simd::s16, B>((1 << (kShift - 1)) - roundControl);
  VC1Rows<W, B, kDistance> rows(src, srcStep, H);
  VC1Destination<W, H, B> to(dst, dstStep);
  const auto next = [&rows] {
    const auto a = rows.at(0);
    if constexpr (kDx == 0) {
      rows.down();
      return a;
    } else {
      const auto sums = vc1_mix<kDx>(a, rows.at(1));
      rows.down();
      return sums;
    }
  };
  if constexpr (kDy == 0) {
    for (int y = 0; y < to.kSteps; ++y) to.put(vc1_rounded<kShift>(next(), rounding));
  } else {
    auto above = next();
    for (int y = 0; y < to.kSteps; ++y) {
      const auto below = next();
      to.put(vc1_rounded<kShift>(vc1_mix<kDy>(above, below), rounding));
      above = below;
    }
  }
  return moxStsOk;
}

template <int W, int H, int kDistance, int kDx, int kDy>
MoxStatus vc1_interpolate_bilinear(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                   Mox32s roundControl) {
  if constexpr (kDx % 2 != 0 || kDy % 2 != 0) {
    return vc1_mixed<W, H, kDistance, kDx, kDy>(src, srcStep, dst, dstStep, roundControl);
  } else {
    constexpr HalfPel kPosition = half_pel(kDx | kDy / 2);
    return roundControl == 0 ? vc1_copy<W, H, kDistance, kPosition, 0>(src, srcStep, dst, dstStep)
                             : vc1_copy<W, H, kDistance, kPosition, 1>(src, srcStep, dst, dstStep);
  }
}

/// One row of W bytes a block.
template <int W, int B>
MOX_INLINE simd::u8<B> vc1_load(const Mox8u* p, const simd::Strips<B>& strips) {
  if constexpr (W == 16) return simd::load16<simd::u8, B>(p, strips);
  if constexpr (W == 8) return simd::load8<simd::u8, B>(p, strips);
}
/// W words a block, of which each gives a byte.
template <int W, int B>
MOX_INLINE void vc1_store(const simd::s16<B>* words, Mox8u* p, const simd::Strips<B>& strips) {
  if constexpr (W == 16) store16(packus(words[0], words[1]), p, strips);
  if constexpr (W == 8) store8(packus(words[0], words[0]), p, strips);
}

/// The taps of a position on bytes: pairs of the first two and of the last two samples.
template <int kPosition, int B>
MOX_INLINE simd::s16<B> vc1_sum(simd::u8<B> first, simd::u8<B> last) {
  constexpr auto& kTaps = kVC1Taps[kPosition];
  return maddubs(first, vc1_weights<B>(kTaps[0], kTaps[1])) + maddubs(last, vc1_weights<B>(kTaps[2], kTaps[3]));
}

/// One row of a block: W bytes, or with kWide those of the columns -1 to W + 1, followed by zeros.
template <int W, bool kWide, int B>
struct VC1Row {
  static constexpr int kGroups = W / 8 + kWide;  ///< of 8 columns
  simd::u8<B> v[(kGroups + 1) / 2];

  MOX_INLINE VC1Row(const Mox8u* p, const simd::Strips<B>& strips) {
    if constexpr (!kWide) {
      v[0] = vc1_load<W>(p, strips);
    } else {
      // The last three columns end a load of eight, for nothing may be read behind them.
      const auto last = simd::align<5>(simd::zero<simd::u8, B>(), vc1_load<8>(p + W - 6, strips));
      const auto first = vc1_load<W>(p - 1, strips);
      if constexpr (W == 8) v[0] = lo64(first, last);
      if constexpr (W == 16) v[0] = first, v[1] = last;
    }
  }
};

/// Sums of a vertical position, for one row of each strip after the other.
template <int W, bool kWide, int kDy, int B>
class VC1ColumnSums {
 public:
  using Row = VC1Row<W, kWide, B>;
  struct Sums {
    simd::s16<B> v[Row::kGroups];
  };

  MOX_INLINE VC1ColumnSums(const Mox8u* block, std::ptrdiff_t step, const simd::Strips<B>& strips)
      : p_(block - step), step_(step), strips_(strips), last_(next()) {
    above_ = pairs(next());
    here_ = pairs(next());
  }
  MOX_INLINE Sums operator()() {
    const Pairs below = pairs(next());
    Sums sums;
    for (int g = 0; g < Row::kGroups; ++g) sums.v[g] = vc1_sum<kDy>(above_.v[g], below.v[g]);
    above_ = here_, here_ = below;
    return sums;
  }

 private:
  /// Bytes of a row and the row below it.
  struct Pairs {
    simd::u8<B> v[Row::kGroups];
  };
  MOX_INLINE Row next() {
    const Row row(p_, strips_);
    p_ += step_;
    return row;
  }
  MOX_INLINE Pairs pairs(const Row& below) {
    Pairs result;
    for (int g = 0; g < Row::kGroups; ++g) {
      const auto a = last_.v[g / 2], b = below.v[g / 2];
      result.v[g] = g % 2 == 0 ? lo8(a, b) : hi8(a, b);
    }
    last_ = below;
    return result;
  }

  const Mox8u* p_;
  std::ptrdiff_t step_;
  simd::Strips<B> strips_;
  Row last_;
  Pairs above_, here_;
};

/// (sum of the row + 64 - R) >> 7, of 8 words from `t` on and the three behind them, which start `next`.
template <int kDx, int B>
MOX_INLINE simd::s16<B> vc1_row_of_sums(simd::s16<B> t, simd::s16<B> next, simd::s16<B> rounding) {
  using simd::align, simd::as, simd::s16, simd::shl, simd::shr, simd::u8;
  const auto shifted = [&]<int kWords>() { return as<s16>(align<2 * kWords>(as<u8>(next), as<u8>(t))); };
  const auto a = t, b = shifted.template operator()<1>(), c = shifted.template operator()<2>(),
             d = shifted.template operator()<3>();
  if constexpr (kDx == 2) {
    // t in -255..2296: 9 inner - outer needs 17 bits, 8 inner are added after the first 3 bits have gone.
    const auto inner = b + c, outer = a + d;
    return shr<4>(inner + shr<3>(inner - outer + rounding));
  } else {
    // t in -64..574: what is added first lies in -5170..10844; only sums that become 255 anyway saturate.
    const auto weighted = [](s16<B> v, int tap) { return v * simd::splat<s16, B>(tap); };
    const auto near = kDx == 1 ? b : c, far = kDx == 1 ? c : b, side = kDx == 1 ? a : d, end = kDx == 1 ? d : a;
    const auto rest = weighted(far, 18) + rounding - shl<2>(side) - weighted(end, 3);
    return shr<7>(adds(rest, weighted(near, 53)));
  }
}

template <int W, int H, int kDx, int kDy>
MoxStatus vc1_interpolate_bicubic(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                  Mox32s roundControl) {
  constexpr int B = simd::kBlocks, kGroups = W / 8;
  const auto from = simd::strips<B>(H / B * srcStep), to = simd::strips<B>(H / B * dstStep);
  simd::s16<B> out[kGroups];
  if constexpr (kDx == 0 && kDy == 0) {
    return vc1_copy<W, H, 1, HalfPel::kFull, 0>(src, srcStep, dst, dstStep);
  } else if constexpr (kDy == 0) {
    constexpr int kShift = vc1_gain_bits(kDx);
    const auto rounding = simd::splat<simd::s16, B>((1 << (kShift - 1)) - roundControl);
    for (int y = 0; y < H / B; ++y, src += srcStep, dst += dstStep) {
      const auto a = vc1_load<W>(src - 1, from), b = vc1_load<W>(src, from), c = vc1_load<W>(src + 1, from),
                 d = vc1_load<W>(src + 2, from);
      out[0] = simd::shr<kShift>(vc1_sum<kDx>(lo8(a, b), lo8(c, d)) + rounding);
      if constexpr (W == 16) out[1] = simd::shr<kShift>(vc1_sum<kDx>(hi8(a, b), hi8(c, d)) + rounding);
      vc1_store<W>(out, dst, to);
    }
  } else {
    constexpr int kShift = kDx == 0 ? vc1_gain_bits(kDy) : vc1_first_shift(kDx, kDy);
    const auto rounding = simd::splat<simd::s16, B>((1 << (kShift - 1)) - 1 + roundControl);
    const auto last_rounding = simd::splat<simd::s16, B>(64 - roundControl);
    VC1ColumnSums<W, kDx != 0, kDy, B> sums(src, srcStep, from);
    for (int y = 0; y < H / B; ++y, dst += dstStep) {
      auto t = sums();
      for (auto& words : t.v) words = simd::shr<kShift>(words + rounding);
      for (int g = 0; g < kGroups; ++g) {
        if constexpr (kDx == 0) out[g] = t.v[g];
        if constexpr (kDx != 0) out[g] = vc1_row_of_sums<kDx>(t.v[g], t.v[g + 1], last_rounding);
      }
      vc1_store<W>(out, dst, to);
    }
  }
  return moxStsOk;
}

}  // namespace mox::vec
