/// Vector VC-1 transforms: the integers of the portable ones by products of pairs of words.
///
/// The row pass works on one row, or on two: each pair of its coefficients is spread over four lanes of doublewords and
/// multiplied by the weights of four columns. Weights of mirrored columns differ in sign only, so that the other four
/// columns come in reverse order. The results of two rows, packed to words, interleave to the pairs of the column pass,
/// a lane for each column.
#pragma once

#include "frame/generation.hpp"
#include "simd/vec.hpp"
#include "vc1/transform_px.hpp"

namespace mox::vec {

/// Blocks of a vector: a row 8 wide takes one, two rows 4 wide share one.
template <int W>
inline constexpr int kVc1Blocks = W == 8 ? simd::kBlocks : 1;

/// The two factors of a pair of terms.
template <int B>
MOX_INLINE simd::s16<B> vc1_factors(int first, int second) {
  return simd::as<simd::s16>(simd::splat<simd::s32, B>(second * 65536 + static_cast<Mox16u>(first)));
}

/// Lanes of doublewords, in all blocks alike: pairs of words.
using Vc1Lanes = std::array<Mox16s, 8>;
template <int B>
MOX_INLINE simd::s16<B> vc1_lanes(const Vc1Lanes& lanes) {
  return simd::table<simd::s16, B>(lanes.data());
}

/// The weights of coefficients a and b in samples 0 to W / 2 - 1, once or, for two rows, twice.
template <int W>
constexpr Vc1Lanes vc1_inverse_weights(int a, int b) {
  Vc1Lanes lanes{};
  for (int i = 0; i < 4; ++i) {
    lanes[2 * i] = px::kVc1Inverse<W>[a][i % (W / 2)];
    lanes[2 * i + 1] = px::kVc1Inverse<W>[b][i % (W / 2)];
  }
  return lanes;
}
/// The weights of samples x and x + 1 in coefficients 0 to W / 2 - 1, or in the others from the last one down.
template <int W>
constexpr Vc1Lanes vc1_forward_weights(int x, bool others) {
  Vc1Lanes lanes{};
  for (int i = 0; i < 8; ++i) {
    const int k = i / 2 % (W / 2);
    lanes[i] = px::kVc1Forward<W>[others ? W - 1 - k : k][x + i % 2];
  }
  return lanes;
}

/// The shuffle of bytes that brings eight words into an order.
constexpr std::array<Mox8u, 16> vc1_order(std::array<int, 8> words) {
  std::array<Mox8u, 16> bytes{};
  for (int i = 0; i < 16; ++i) bytes[i] = static_cast<Mox8u>(2 * words[i / 2] + i % 2);
  return bytes;
}
/// The shuffle that spreads coefficients a and b of a row, or of either of two.
template <int W>
constexpr std::array<Mox8u, 16> vc1_spread(int a, int b) {
  const int second = W == 4 ? 4 : 0;
  return vc1_order({a, b, a, b, a + second, b + second, a + second, b + second});
}

/// One row of an inverse transform 8 wide, or two of one 4 wide, of C coefficients each, the others 0. Words: columns 0
/// to 3, then 7 to 4; or columns 0, 1 of the first row, of the second row, then columns 3, 2 of either.
/// |sum| <= 90 * 32768.
template <int W, int C, int B>
MOX_INLINE simd::s16<B> vc1_inverse_row(simd::s16<B> row) {
  const auto products = [row]<int K>(std::integral_constant<int, K>) {  // coefficients K and K + 2
    static constexpr auto kSpread = vc1_spread<W>(K, K + 2);
    static constexpr auto kWeights = vc1_inverse_weights<W>(K, K + 2);
    const auto spread = lookup(simd::as<simd::u8>(row), simd::table<simd::u8, B>(kSpread.data()));
    return madd(simd::as<simd::s16>(spread), vc1_lanes<B>(kWeights));
  };
  auto even = products(std::integral_constant<int, 0>()) + simd::splat<simd::s32, B>(4);
  auto odd = products(std::integral_constant<int, 1>());
  if constexpr (C == 8) {
    even = even + products(std::integral_constant<int, 4>());
    odd = odd + products(std::integral_constant<int, 5>());
  }
  return packs(simd::shr<px::kVc1InverseRowShift>(even + odd), simd::shr<px::kVc1InverseRowShift>(even - odd));
}

/// The same of a forward transform. Sums wrap.
template <int W, int B>
MOX_INLINE simd::s16<B> vc1_forward_row(simd::s16<B> row) {
  constexpr int kShift = px::kVc1ForwardRowShift<W>;
  auto sum = simd::splat<simd::s32, B>(1 << (kShift - 1)), others = sum;
  const auto add_products = [&]<int X>(std::integral_constant<int, X>) {  // of samples X and X + 1
    static constexpr auto kWeights = vc1_forward_weights<W>(X, false), kOthers = vc1_forward_weights<W>(X, true);
    constexpr int kSpread = W == 8 ? X / 2 * 0x55 : X == 0 ? 0xA0 : 0xF5;
    const auto spread = simd::as<simd::s16>(simd::permute<kSpread>(simd::as<simd::s32>(row)));
    sum = sum + madd(spread, vc1_lanes<B>(kWeights)), others = others + madd(spread, vc1_lanes<B>(kOthers));
  };
  add_products(std::integral_constant<int, 0>());
  add_products(std::integral_constant<int, 2>());
  if constexpr (W == 8) {
    add_products(std::integral_constant<int, 4>());
    add_products(std::integral_constant<int, 6>());
  }
  return packs(simd::shr<kShift>(sum), simd::shr<kShift>(others));
}

/// Pairs of words of two rows, a lane for each column: with W = 8 and B = 1, the second vector has columns 4 to 7.
template <int W, int B = kVc1Blocks<W>>
struct Vc1Pairs {
  static constexpr int kVectors = W / (4 * B);
  simd::s16<B> v[kVectors];
};

/// Rows a and b through the row pass, as pairs. load(y) gives row y, of which there are kRows, the others being 0.
template <int W, int kRows, class Load, class Row>
MOX_INLINE Vc1Pairs<W> vc1_pairs(int a, int b, Load load, Row row) {
  using simd::as, simd::s16, simd::u8;
  const auto zero = simd::zero<s16, 1>();
  if constexpr (W == 4) {
    static constexpr auto kOrder = vc1_order({0, 2, 1, 3, 5, 7, 4, 6});
    const auto both = row(lo64(load(a), b < kRows ? load(b) : zero));
    return {{as<s16>(lookup(as<u8>(both), simd::table<u8, 1>(kOrder.data())))}};
  } else if constexpr (simd::kBlocks == 1) {
    const auto upper = row(load(a)), lower = b < kRows ? row(load(b)) : zero;
    return {{lo16(upper, lower), as<s16>(simd::permute<0x1B>(as<simd::s32>(hi16(upper, lower))))}};
  } else {
    static constexpr std::array kOrder = {vc1_order({0, 4, 1, 5, 2, 6, 3, 7}), vc1_order({3, 7, 2, 6, 1, 5, 0, 4})};
    constexpr int B = simd::kBlocks;
    const decltype(zero.r) blocks[] = {load(a).r, b < kRows ? load(b).r : zero.r};
    const auto both = regroup(row(s16<B>{simd::join<B>(blocks)}));
    return {{as<s16>(lookup(as<u8>(both), simd::load_row<u8, B>(kOrder.data())))}};
  }
}

/// Columns of an inverse transform H high, of R coefficients each, the others 0. Pairs: (0, 2) and (1, 3), or (0, 4),
/// (1, 3), (2, 6), (5, 7) of eight.
template <int H, int R, int B>
MOX_INLINE void vc1_inverse_columns(const simd::s16<B> (&p)[std::max(R, 4) / 2], simd::s32<B> (&out)[H]) {
  constexpr auto& kMatrix = px::kVc1Inverse<H>;
  const auto weighted = [&p](int i, int a, int b, int j) {
    return madd(p[i], vc1_factors<B>(kMatrix[a][j], kMatrix[b][j]));
  };
  const auto rounding = simd::splat<simd::s32, B>(px::vc1_column_rounding<H>(0));
  simd::s32<B> even[H / 2];
  if constexpr (R == H) {  // coefficients 0 and H / 2 are added, or subtracted, as words that wrap
    const auto flat = vc1_factors<B>(kMatrix[0][0], 0);
    const auto sum = madd(simd::as<simd::s16>(madd(p[0], vc1_factors<B>(1, 1))), flat) + rounding;
    const auto difference = madd(simd::as<simd::s16>(madd(p[0], vc1_factors<B>(1, -1))), flat) + rounding;
    if constexpr (H == 8) {
      const auto outer = weighted(2, 2, 6, 0), inner = weighted(2, 2, 6, 1);
      even[0] = sum + outer, even[1] = difference + inner, even[2] = difference - inner, even[3] = sum - outer;
    } else {
      even[0] = sum, even[1] = difference;
    }
  } else {
    for (int j = 0; j < H / 2; ++j) even[j] = weighted(0, 0, 2, j) + rounding;
  }
  const auto more = simd::splat<simd::s32, B>(px::vc1_column_rounding<H>(H - 1) - px::vc1_column_rounding<H>(0));
  for (int j = 0; j < H / 2; ++j) {
    auto odd = weighted(1, 1, 3, j);
    if constexpr (R == 8) odd = odd + weighted(3, 5, 7, j);
    out[j] = simd::shr<px::kVc1InverseColumnShift>(even[j] + odd);
    if constexpr (H == 8) even[j] = even[j] + more;
    out[H - 1 - j] = simd::shr<px::kVc1InverseColumnShift>(even[j] - odd);
  }
}

/// Columns of a forward transform H high, of pairs (0, 1), (2, 3) and so on. Sums wrap.
template <int H, int B>
MOX_INLINE void vc1_forward_columns(const simd::s16<B> (&p)[H / 2], simd::s32<B> (&out)[H]) {
  constexpr int kShift = px::kVc1ForwardColumnShift<H>;
  for (int k = 0; k < H; ++k) {
    auto sum = simd::splat<simd::s32, B>(1 << (kShift - 1));
    for (int i = 0; i < H / 2; ++i) {
      sum = sum + madd(p[i], vc1_factors<B>(px::kVc1Forward<H>[k][2 * i], px::kVc1Forward<H>[k][2 * i + 1]));
    }
    out[k] = simd::shr<kShift>(sum);
  }
}

/// Takes N pairs of rows through the column pass and stores a block.
template <int W, int H, int N, class Columns>
MOX_INLINE void vc1_finish(const Vc1Pairs<W> (&pairs)[N], Mox16s* dst, std::ptrdiff_t step, Columns columns) {
  constexpr int B = kVc1Blocks<W>, kVectors = Vc1Pairs<W>::kVectors;
  simd::s32<B> out[kVectors][H];
  for (int h = 0; h < kVectors; ++h) {
    simd::s16<B> p[N];
    for (int i = 0; i < N; ++i) p[i] = pairs[i].v[h];
    columns(p, out[h]);
  }
  for (int y = 0; y < H; ++y) {
    Mox16s* const row = step_bytes(dst, y * step);
    if constexpr (kVectors == 2) {
      store_row(packs(out[0][y], out[1][y]), row);
    } else if constexpr (W == 4) {
      store8x2(packs(out[0][y], out[0][y + 1]), row, step, simd::strips<1>(0)), ++y;
    } else {
      store16(regroup(packs(out[0][y], out[0][y + 1])), row, simd::strips<B>(step)), ++y;
    }
  }
}

template <int W, int H, int kSide>
MoxStatus vc1_inverse(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep) {
  constexpr int kColumns = std::min(W, kSide), kRows = std::min(H, kSide), kPairs = std::max(kRows, 4) / 2;
  const auto load = [=](int y) -> simd::s16<1> {
    const Mox16s* const row = step_bytes(src, y * std::ptrdiff_t{srcStep});
    return {kColumns == 8 ? simd::raw16(row) : kColumns == 4 ? simd::raw8(row) : simd::raw4(row)};
  };
  const auto pass = [](auto row) { return vc1_inverse_row<W, kColumns>(row); };
  Vc1Pairs<W> pairs[kPairs];
  pairs[0] = vc1_pairs<W, kRows>(0, kRows == 8 ? 4 : 2, load, pass);
  pairs[1] = vc1_pairs<W, kRows>(1, 3, load, pass);
  if constexpr (kRows == 8) {
    pairs[2] = vc1_pairs<W, kRows>(2, 6, load, pass);
    pairs[3] = vc1_pairs<W, kRows>(5, 7, load, pass);
  }
  vc1_finish<W, H>(pairs, dst, dstStep, [](const auto& p, auto& out) { vc1_inverse_columns<H, kRows>(p, out); });
  return moxStsOk;
}

template <int W, int H>
MoxStatus vc1_inverse_dc(const Mox16s* src, Mox32s, Mox16s* dst, Mox32s dstStep) {
  const auto sample = simd::splat<simd::s16, 1>(px::vc1_dc_sample<W, H>(load<Mox16s>(src)));
  for (int y = 0; y < H; ++y) {
    Mox16s* const row = step_bytes(dst, y * std::ptrdiff_t{dstStep});
    if constexpr (W == 8)
      store_row(sample, row);
    else
      simd::store8(sample, row, simd::strips<1>(0));
  }
  return moxStsOk;
}

/// [vc1_read_index]
template <int W, int H>
inline constexpr auto kVc1InverseTable =
    make_table<px::kVc1ReadIndices<W, H>>([]<std::size_t I>() -> px::Vc1TransformKernel {
      if constexpr (I == 0) {
        return &vc1_inverse_dc<W, H>;
      } else {
        return &vc1_inverse<W, H, 1 << I>;
      }
    });

template <int W, int H>
MoxStatus vc1_forward(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep) {
  const auto load = [=](int y) -> simd::s16<1> {
    const Mox16s* const row = step_bytes(src, y * std::ptrdiff_t{srcStep});
    return {W == 8 ? simd::raw16(row) : simd::raw8(row)};
  };
  Vc1Pairs<W> pairs[H / 2];
  for (int i = 0; i < H / 2; ++i) {
    pairs[i] = vc1_pairs<W, H>(2 * i, 2 * i + 1, load, [](auto row) { return vc1_forward_row<W>(row); });
  }
  vc1_finish<W, H>(pairs, dst, dstStep, [](const auto& p, auto& out) { vc1_forward_columns<H>(p, out); });
  return moxStsOk;
}

}  // namespace mox::vec
