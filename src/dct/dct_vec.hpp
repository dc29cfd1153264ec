/// Vector 8x8 discrete cosine transforms: the integers of the portable ones by pairwise products.
///
/// A pass works on eight lanes of doublewords, one for each line, in 2 / B vectors. Its operands are pairs of words,
/// two terms of a line side by side. Rows of words become such pairs by one shuffle in each row, which brings the two
/// terms together, and a transposition of four rows of four doublewords. The results of the row pass, packed to words,
/// are the rows of the transposed block, so that the column pass begins in the same way and ends with rows of the
/// result.
#pragma once

#include "dct/dct_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The two factors of a pair of terms.
template <int B>
MOX_INLINE simd::s16<B> factors(Mox16s first, Mox16s second) {
  return simd::as<simd::s16>(simd::splat<simd::s32, B>(second * 65536 + static_cast<Mox16u>(first)));
}

/// Pair I of four lines in each block.
template <int B>
struct Pairs {
  simd::s16<B> v[4];
};

/// The eight results of each line: [half of the lanes][result]. With B = 1, lanes 0 to 3 are half 0; with B = 2 there
/// is one half, and lanes 4 to 7 are its second block.
template <int B>
struct Results {
  simd::s32<B> v[2 / B][8];

  /// Result 4 h + i of all lanes as words, saturated; with B = 2, result 4 + i in the second block.
  MOX_INLINE simd::s16<B> words(int h, int i) const {
    if constexpr (B == 1) {
      return packs(v[0][4 * h + i], v[1][4 * h + i]);
    } else {
      return regroup(packs(v[0][i], v[0][i + 4]));
    }
  }
};

/// The pairs of a half out of four rows of words, of which `order` is the shuffle.
template <int B, class Rows>
MOX_INLINE Pairs<B> pairs_of(const Rows& rows, int h, simd::u8<B> order) {
  simd::s32<B> r[4];
  for (int i = 0; i < 4; ++i) r[i] = simd::as<simd::s32>(lookup(simd::as<simd::u8>(rows.words(h, i)), order));
  const auto a = lo32(r[0], r[1]), b = lo32(r[2], r[3]), c = hi32(r[0], r[1]), d = hi32(r[2], r[3]);
  return {{simd::as<simd::s16>(lo64(a, b)), simd::as<simd::s16>(hi64(a, b)), simd::as<simd::s16>(lo64(c, d)),
           simd::as<simd::s16>(hi64(c, d))}};
}

/// The shuffle of bytes that brings eight words into an order.
constexpr std::array<Mox8u, 16> word_order(std::array<int, 8> words) {
  std::array<Mox8u, 16> bytes{};
  for (int i = 0; i < 16; ++i) bytes[i] = static_cast<Mox8u>(2 * words[i / 2] + i % 2);
  return bytes;
}
inline constexpr auto kInverseOrder = word_order({0, 4, 2, 6, 1, 7, 3, 5});
inline constexpr auto kForwardOrder = word_order({0, 1, 3, 2, 7, 6, 4, 5});

/// One pass of the inverse transform on the pairs (0, 4), (2, 6), (1, 7), (3, 5).
template <int Shift, int B>
MOX_INLINE void inverse_pass(const Pairs<B>& p, simd::s32<B> (&out)[8]) {
  const auto k = [](int u, int w, int x) { return factors<B>(kDctBasis[u][x], kDctBasis[w][x]); };
  const auto half = simd::splat<simd::s32, B>(1 << (Shift - 1));
  const auto sum = madd(p.v[0], k(0, 4, 0)) + half, difference = madd(p.v[0], k(0, 4, 1)) + half;
  const auto outer = madd(p.v[1], k(2, 6, 0)), inner = madd(p.v[1], k(2, 6, 1));
  const simd::s32<B> even[4] = {sum + outer, difference + inner, difference - inner, sum - outer};
  for (int x = 0; x < 4; ++x) {
    const auto odd = madd(p.v[2], k(1, 7, x)) + madd(p.v[3], k(3, 5, x));
    out[x] = simd::shr<Shift>(even[x] + odd);
    out[7 - x] = simd::shr<Shift>(even[x] - odd);
  }
}

/// One pass of the forward transform on the pairs (0, 1), (3, 2), (7, 6), (4, 5).
template <int Shift, int B>
MOX_INLINE void forward_pass(const Pairs<B>& p, simd::s32<B> (&out)[8]) {
  const auto k = [](int u, int x, int z) { return factors<B>(kDctBasis[u][x], kDctBasis[u][z]); };
  const auto half = simd::splat<simd::s32, B>(1 << (Shift - 1));
  const auto outer = adds(p.v[0], p.v[2]), inner = adds(p.v[1], p.v[3]);
  const auto odd_outer = subs(p.v[0], p.v[2]), odd_inner = subs(p.v[1], p.v[3]);
  const auto sums = adds(outer, inner), differences = subs(outer, inner);
  for (int u = 0; u < 8; u += 4) out[u] = simd::shr<Shift>(madd(sums, k(u, 0, 1)) + half);
  for (int u = 2; u < 8; u += 4) out[u] = simd::shr<Shift>(madd(differences, k(u, 0, 1)) + half);
  for (int u = 1; u < 8; u += 2) {
    out[u] = simd::shr<Shift>(madd(odd_outer, k(u, 0, 1)) + madd(odd_inner, k(u, 3, 2)) + half);
  }
}

/// Rows of a block: row 4 h + i; with B = 2, row 4 + i in the second block.
template <int B, class Load>
struct SourceRows {
  Load load;  ///< of row y and, where the vector has two blocks, of row y + 4
  MOX_INLINE simd::s16<B> words(int h, int i) const { return load(4 * h + i); }
};
template <int B, class Load>
MOX_INLINE SourceRows<B, Load> source_rows(Load load) {
  return {load};
}
template <int B>
MOX_INLINE auto rows_16s(const Mox16s* src, std::ptrdiff_t step) {
  return source_rows<B>(
      [=](int y) { return simd::load16<simd::s16, B>(step_bytes(src, y * step), simd::strips<B>(4 * step)); });
}

template <int B, class Rows>
MOX_INLINE Results<B> forward(const Rows& rows) {
  const auto order = simd::table<simd::u8, B>(kForwardOrder.data());
  Results<B> lines, result;
  for (int h = 0; h < 2 / B; ++h) forward_pass<kForwardRowShift>(pairs_of<B>(rows, h, order), lines.v[h]);
  for (int h = 0; h < 2 / B; ++h) forward_pass<kForwardColumnShift>(pairs_of<B>(lines, h, order), result.v[h]);
  return result;
}

template <bool kTransposed, int B>
MOX_INLINE Results<B> inverse(const Mox16s* src) {
  const auto order = simd::table<simd::u8, B>(kInverseOrder.data());
  Results<B> lines, result;
  for (int h = 0; h < 2 / B; ++h) {
    if constexpr (kTransposed) {  // row u holds term u of all lines
      const auto pair = [=](int u, int w) {
        const auto half = [=](int row) { return simd::load8<simd::s16, B>(src + 8 * row + 4 * h, simd::strips<B>(8)); };
        return lo16(half(u), half(w));
      };
      inverse_pass<kInverseRowShift, B>({{pair(0, 4), pair(2, 6), pair(1, 7), pair(3, 5)}}, lines.v[h]);
    } else {
      inverse_pass<kInverseRowShift>(pairs_of<B>(rows_16s<B>(src, 16), h, order), lines.v[h]);
    }
  }
  for (int h = 0; h < 2 / B; ++h) inverse_pass<kInverseColumnShift>(pairs_of<B>(lines, h, order), result.v[h]);
  return result;
}

template <int B>
MOX_INLINE void store_rows_16s(const Results<B>& result, Mox16s* dst, std::ptrdiff_t step) {
  for (int h = 0; h < 2 / B; ++h) {
    for (int i = 0; i < 4; ++i) {
      simd::store16(result.words(h, i), step_bytes(dst, (4 * h + i) * step), simd::strips<B>(4 * step));
    }
  }
}

inline constexpr int kDctBlocks = simd::kBlocks;

inline MoxStatus dct_forward_16s(const Mox16s* src, Mox32s srcStep, Mox16s* dst) {
  store_rows_16s(forward<kDctBlocks>(rows_16s<kDctBlocks>(src, srcStep)), dst, 16);
  return moxStsOk;
}

inline MoxStatus dct_forward_8u(const Mox8u* src, Mox32s srcStep, Mox16s* dst) {
  constexpr int B = kDctBlocks;
  const std::ptrdiff_t step = srcStep;
  const auto rows =
      source_rows<B>([=](int y) { return simd::load8_wide<B>(src + y * step, simd::strips<B>(4 * step)); });
  store_rows_16s(forward<B>(rows), dst, 16);
  return moxStsOk;
}

inline MoxStatus dct_forward_pair(const Mox8u* src, Mox32s srcStep, Mox16s* dstU, Mox16s* dstV) {
  constexpr int B = kDctBlocks;
  const std::ptrdiff_t step = srcStep;
  const auto row = [=](int y) { return simd::load16<simd::u16, B>(src + y * step, simd::strips<B>(4 * step)); };
  const auto low = simd::splat<simd::u16, B>(255);
  store_rows_16s(forward<B>(source_rows<B>([=](int y) { return simd::as<simd::s16>(row(y) & low); })), dstU, 16);
  store_rows_16s(forward<B>(source_rows<B>([=](int y) { return simd::as<simd::s16>(simd::shr<8>(row(y))); })), dstV,
                 16);
  return moxStsOk;
}

template <bool kTransposed>
MoxStatus dct_inverse_16s(const Mox16s* src, Mox16s* dst, Mox32s dstStep) {
  store_rows_16s(inverse<kTransposed, kDctBlocks>(src), dst, dstStep);
  return moxStsOk;
}

/// Rows y and y + 1 of a result as samples; with B = 2, rows y + 4 and y + 5 in the second block.
template <int B>
MOX_INLINE simd::u8<B> samples(const Results<B>& result, int h, int i) {
  return packus(result.words(h, i), result.words(h, i + 1));
}

template <bool kTransposed>
MoxStatus dct_inverse_8u(const Mox16s* src, Mox8u* dst, Mox32s dstStep) {
  constexpr int B = kDctBlocks;
  const std::ptrdiff_t step = dstStep;
  const auto result = inverse<kTransposed, B>(src);
  for (int h = 0; h < 2 / B; ++h) {
    for (int i = 0; i < 4; i += 2) {
      simd::store8x2(samples(result, h, i), dst + (4 * h + i) * step, step, simd::strips<B>(4 * step));
    }
  }
  return moxStsOk;
}

template <bool kTransposed>
MoxStatus dct_inverse_pair_8u(const Mox16s* srcU, const Mox16s* srcV, Mox8u* dst, Mox32s dstStep, Mox32s flat) {
  constexpr int B = kDctBlocks;
  const std::ptrdiff_t step = dstStep;
  simd::u8<B> planes[2][4 / B];
  const auto plane = [](const Mox16s* src, bool set, simd::u8<B>(&rows)[4 / B]) {
    if (set) {
      for (auto& row : rows) row = simd::splat<simd::u8, B>(dct_dc_sample(*src));
    } else {
      const auto result = inverse<kTransposed, B>(src);
      for (int i = 0; i < 4 / B; ++i) rows[i] = samples(result, i / 2, i % 2 * 2);
    }
  };
  plane(srcU, flat & 1, planes[0]);
  plane(srcV, flat & 2, planes[1]);
  for (int i = 0; i < 4 / B; ++i, dst += 2 * step) {
    simd::store16(lo8(planes[0][i], planes[1][i]), dst, simd::strips<B>(4 * step));
    simd::store16(hi8(planes[0][i], planes[1][i]), dst + step, simd::strips<B>(4 * step));
  }
  return moxStsOk;
}

inline MoxStatus dct_inverse_pair_16s(const Mox16s* srcU, const Mox16s* srcV, Mox16s* dst, Mox32s dstStep) {
  constexpr int B = kDctBlocks;
  const auto u = inverse<true, B>(srcU), v = inverse<true, B>(srcV);
  for (int h = 0; h < 2 / B; ++h) {
    for (int i = 0; i < 4; ++i) {
      Mox16s* const row = step_bytes(dst, (4 * h + i) * std::ptrdiff_t{dstStep});
      const auto strips = simd::strips<B>(4 * std::ptrdiff_t{dstStep});
      simd::store16(lo16(u.words(h, i), v.words(h, i)), row, strips);
      simd::store16(hi16(u.words(h, i), v.words(h, i)), row + 8, strips);
    }
  }
  return moxStsOk;
}

}  // namespace mox::vec
