/// Half-pel prediction with vectors, in two forms that give the same samples.
///
/// Sampler works on bytes and suits what stays 8-bit or is summed: copies, averages, distances. WordSampler works on
/// words and suits what is widened anyway: residuals and differences. Both walk a block downwards and carry what the
/// next row needs again, so each reference row is read once.
#pragma once

#include <cstddef>

#include "block/half_pel_px.hpp"
#include "block/rows_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The rows of a block of W bytes, a vector of them at a time. A vector holds kRows rows, one from each of as many
/// strips of the block, which lie below each other: 16 B / W strips of equal height. So only kernels that do not write
/// may use more than one strip; with one the order of rows is kept.
template <int W, int Blocks>
class Rows {
 public:
  static constexpr int B = Blocks, kRows = 16 * B / W;
  static_assert(W == 16 || W == 8 || W == 4);

  /// height: rows of the block, a multiple of kRows.
  Rows(const Mox8u* block, std::ptrdiff_t step, int height)
      : p_(block), step_(step), strip_(step_ * (height / kRows)), strips_(simd::strips<B>(strip_ * (16 / W))) {}
  /// The samples dx bytes to the right.
  simd::u8<B> at(int dx) const {
    if constexpr (W == 16) return simd::load16<simd::u8, B>(p_ + dx, strips_);
    if constexpr (W == 8) return simd::load8x2<simd::u8, B>(p_ + dx, strip_, strips_);
    if constexpr (W == 4) return simd::load4x4<simd::u8, B>(p_ + dx, strip_, strips_);
  }
  void down() { p_ += step_; }

 private:
  const Mox8u* p_;
  std::ptrdiff_t step_, strip_;
  simd::Strips<B> strips_;
};

/// P of one vector of rows after the other:
///
///   Rows<16, 1> rows(pRef, refStep, 16);
///   Sampler<decltype(rows), HalfPel::kHH> sample(rows);
///   for (int y = 0; y < 16; ++y) use(sample(rows));
///
/// Each call moves rows down by one; a half in y is one row ahead from the start. The rounding up of `avg` is taken
/// back by 1 where it was wrong, which shows in the lowest bits of what was averaged.
template <class R, HalfPel P, int kRc = 0>
class Sampler {
 public:
  explicit Sampler(R& rows) {
    if constexpr (half_in_y(P)) above_ = pair(rows);
  }
  MOX_INLINE simd::u8<R::B> operator()(R& rows) {
    const Pair low = pair(rows);
    if constexpr (half_in_y(P)) {
      const Pair up = above_;
      above_ = low;
      const auto mean = avg(up.mean, low.mean), odd = up.mean ^ low.mean;
      if constexpr (P == HalfPel::kFH) return kRc ? mean - lowest(odd) : mean;
      return mean - lowest(kRc ? odd | (up.odd & low.odd) : odd & (up.odd | low.odd));
    } else {
      return half_in_x(P) && kRc ? low.mean - lowest(low.odd) : low.mean;
    }
  }

 private:
  /// A row and its right neighbours: the mean, rounded up, and in bit 0 whether it was rounded.
  struct Pair {
    simd::u8<R::B> mean, odd;
  };
  MOX_INLINE static Pair pair(R& rows) {
    const auto a = rows.at(0);
    if constexpr (half_in_x(P)) {
      const auto b = rows.at(1);
      rows.down();
      return {avg(a, b), a ^ b};
    } else {
      rows.down();
      return {a, a};
    }
  }
  MOX_INLINE static simd::u8<R::B> lowest(simd::u8<R::B> v) { return v & simd::splat<simd::u8, R::B>(1); }

  Pair above_;
};

/// Rounding known where the kernel is chosen.
template <int kRc>
struct FixedRounding {
  explicit FixedRounding(Mox32u = kRc) {}
  template <int B>
  MOX_INLINE simd::u16<B> mean(simd::u16<B> a, simd::u16<B> b) const {
    return kRc ? simd::shr<1>(a + b) : avg(a, b);
  }
  /// (a + b + 2 - rc) >> 2 of two sums of pairs, 0 to 510.
  template <int B>
  MOX_INLINE simd::u16<B> mean_of_sums(simd::u16<B> a, simd::u16<B> b) const {
    return simd::shr<1>(avg(kRc ? a : a + simd::splat<simd::u16, B>(1), b));
  }
};

/// Rounding by bit 0 of an argument.
struct RoundingByArgument {
  int up;  ///< 1 - rc
  explicit RoundingByArgument(Mox32u roundControl) : up(1 - static_cast<int>(roundControl & 1)) {}
  template <int B>
  MOX_INLINE simd::u16<B> mean(simd::u16<B> a, simd::u16<B> b) const {
    return simd::shr<1>(a + b + simd::splat<simd::u16, B>(up));
  }
  template <int B>
  MOX_INLINE simd::u16<B> mean_of_sums(simd::u16<B> a, simd::u16<B> b) const {
    return simd::shr<1>(avg(a + simd::splat<simd::u16, B>(up), b));
  }
};

/// P as words, for one vector of rows after the other. R is one of the row forms of rows_vec.hpp.
template <class R, HalfPel P, class Rounding>
class WordSampler {
 public:
  using Words = typename R::Words;
  WordSampler(const Mox8u* block, Mox32s step, Rounding rounding) : p_(block), step_(step), rounding_(rounding) {
    if constexpr (kCarries) above_ = pair(p_), p_ += step_;
  }
  MOX_INLINE Words operator()() {
    if constexpr (half_in_y(P)) {
      const Words a = kCarries ? above_ : pair(p_), b = pair(kCarries ? p_ : p_ + step_);
      if constexpr (kCarries) above_ = b;
      p_ += R::kRows * step_;
      if constexpr (half_in_x(P)) return combine(a, b, [this](auto c, auto d) { return rounding_.mean_of_sums(c, d); });
      return mean(a, b);
    } else {
      const Words a = R::load(p_, step_), b = half_in_x(P) ? R::load(p_ + R::kDistance, step_) : a;
      p_ += R::kRows * step_;
      return half_in_x(P) ? mean(a, b) : a;
    }
  }

 private:
  /// With several rows in a vector the row below is read again, not carried.
  static constexpr bool kCarries = half_in_y(P) && R::kRows == 1;
  MOX_INLINE Words mean(Words a, Words b) const {
    return combine(a, b, [this](auto c, auto d) { return rounding_.mean(c, d); });
  }
  /// A row, or for a half in x the sums of neighbours, 0 to 510.
  MOX_INLINE Words pair(const Mox8u* p) const {
    const Words a = R::load(p, step_);
    if constexpr (half_in_x(P))
      return combine(a, R::load(p + R::kDistance, step_), [](auto c, auto d) { return c + d; });
    return a;
  }

  const Mox8u* p_;
  std::ptrdiff_t step_;
  Rounding rounding_;
  Words above_;
};

}  // namespace mox::vec
