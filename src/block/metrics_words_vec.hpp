/// Vector SADs of 16-bit samples. A vector holds 8 samples of a row in each block, or 4 samples of two rows.
#pragma once

#include <cstddef>

#include "block/half_pel_px.hpp"
#include "frame/access.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The rows of a block of W 16-bit samples, of which a vector takes 8 B columns: W = 16 and B = 1 leave the right half
/// to a second pass. Blocks of 4 or 8 columns are halved into strips, which lie below each other.
template <int W, int Blocks>
class WordRows {
 public:
  static constexpr int B = Blocks, kPasses = W == 16 ? 2 / B : 1, kRows = W == 16 ? 1 : 8 * B / W;
  static_assert(W == 16 || W == 8 || (W == 4 && B == 1));

  WordRows(const Mox16u* block, Mox32s step, int height) : p_(block), step_(step), strip_(step_ * (height / kRows)) {}
  MOX_INLINE simd::u16<B> at(int dx) const {
    if constexpr (W == 4) return simd::load8x2<simd::u16, 1>(p_ + dx, strip_, simd::strips<1>(0));
    if constexpr (W == 8) return simd::load16<simd::u16, B>(p_ + dx, simd::strips<B>(strip_));
    return simd::load_row<simd::u16, B>(p_ + dx);
  }
  void down() { p_ = step_bytes(p_, step_); }

 private:
  const Mox16u* p_;
  std::ptrdiff_t step_, strip_;
};

/// P of one vector of rows after the other. Each call moves rows down by one; a half in y is one row ahead from the
/// start. The sum of two neighbours saturates at 65535 before the shift, so their mean is 32767 at most.
template <class R, HalfPel P>
class SaturatingSampler {
 public:
  using Words = simd::u16<R::B>;
  explicit SaturatingSampler(R& rows) {
    if constexpr (half_in_y(P)) above_ = row(rows);
  }
  MOX_INLINE Words operator()(R& rows) {
    const Words low = row(rows);
    if constexpr (half_in_y(P)) {
      const Words up = above_;
      above_ = low;
      if constexpr (P == HalfPel::kFH) return mean(up, low);
      return simd::shr<2>(adds(adds(up, low), simd::splat<simd::u16, R::B>(2)));
    } else {
      return low;
    }
  }

 private:
  MOX_INLINE static Words mean(Words a, Words b) { return min(avg(a, b), simd::splat<simd::u16, R::B>(0x7FFF)); }
  /// A row; for HF its half samples, for HH the sums of neighbours.
  MOX_INLINE static Words row(R& rows) {
    Words a = rows.at(0);
    if constexpr (P == HalfPel::kHF) a = mean(a, rows.at(1));
    if constexpr (P == HalfPel::kHH) a = adds(a, rows.at(1));
    rows.down();
    return a;
  }
  Words above_;
};

/// Sums of pairs of magnitudes of the differences a - b, which wrap; -32768 counts 32768.
template <int B>
MOX_INLINE simd::s32<B> magnitudes(simd::u16<B> a, simd::u16<B> b) {
  const auto d = as<simd::s16>(a - b);
  return madd(d, signed_by(simd::splat<simd::s16, B>(1), d));
}

/// Calls add(i, source, prediction) for all vectors of a block; i is the pass of two that B = 1 makes of 16 columns.
template <class R, HalfPel P, int H, class Add>
MOX_INLINE void each_difference(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep, Add add) {
  for (int pass = 0; pass < R::kPasses; ++pass) {
    R s(src + 8 * pass, srcStep, H), r(ref + 8 * pass, refStep, H);
    SaturatingSampler<R, P> sample(r);
    for (int i = 0; i < H / R::kRows; ++i, s.down()) add(pass, s.at(0), sample(r));
  }
}

/// The SAD, exact for all differences.
template <int W, int H, HalfPel P>
MOX_INLINE MoxStatus sad_of_any_words(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep,
                                      Mox32s* result) {
  using R = WordRows<W, W == 4 ? 1 : simd::kBlocks>;
  auto sum = simd::zero<simd::s32, R::B>();
  each_difference<R, P, H>(src, srcStep, ref, refStep, [&](int, auto a, auto b) { sum = sum + magnitudes(a, b); });
  *result = total(sum);
  return moxStsOk;
}
template <int W, int H, HalfPel P>
[[gnu::noinline]] MoxStatus sad_of_far_words(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep,
                                             Mox32s* result) {
  return sad_of_any_words<W, H, P>(src, srcStep, ref, refStep, result);
}

/// The SAD by saturating sums of words, exact if none has reached 32768: that takes a mean difference of more than 2047
/// in a column of 16. Deeper samples that are so far apart are summed again. Pays for many vectors.
template <int W, int H, HalfPel P>
MOX_INLINE MoxStatus sad_of_words(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep,
                                  Mox32s* result) {
  using R = WordRows<W, simd::kBlocks>;
  constexpr int B = R::B;
  simd::u16<B> sums[R::kPasses];
  for (auto& sum : sums) sum = simd::zero<simd::u16, B>();
  each_difference<R, P, H>(src, srcStep, ref, refStep, [&](int i, auto a, auto b) {
    sums[i] = adds(sums[i], as<simd::u16>(abs(as<simd::s16>(a - b))));
  });
  auto all = sums[0];
  auto sum = madd(as<simd::s16>(sums[0]), simd::splat<simd::s16, B>(1));
  for (int i = 1; i < R::kPasses; ++i) {
    all = all | sums[i], sum = sum + madd(as<simd::s16>(sums[i]), simd::splat<simd::s16, B>(1));
  }
  if (!is_zero(all & simd::splat<simd::u16, B>(0x8000))) {
    return sad_of_far_words<W, H, P>(src, srcStep, ref, refStep, result);
  }
  *result = total(sum);
  return moxStsOk;
}

/// H rows of 16 samples: sums of columns 0 to 3, 4 to 7, 8 to 11, 12 to 15.
template <int H>
MOX_INLINE simd::s32<1> quarter_sums(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep) {
  auto left = simd::zero<simd::s32, 1>(), right = left;
  for (int y = 0; y < H; ++y, src = step_bytes(src, srcStep), ref = step_bytes(ref, refStep)) {
    const auto row = [](const Mox16u* p) { return simd::load_row<simd::u16, 1>(p); };
    left = left + magnitudes(row(src), row(ref)), right = right + magnitudes(row(src + 8), row(ref + 8));
  }
  return even32(left, right) + odd32(left, right);
}

}  // namespace mox::vec
