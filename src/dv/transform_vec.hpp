/// Vector dequantisation and inverse transforms of DV blocks.
#pragma once

#include "dct/dct_vec.hpp"
#include "dv/transform_px.hpp"
#include "frame/generation.hpp"
#include "frame/levels_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Replaces the coefficients but the DC by one(v, index of the first).
template <class One>
MOX_INLINE MoxStatus dv_replace(Mox16s* block, One one) {
  const Mox16s dc = px::dv_dc(*block);
  for (int i = 0; i < 64; i += kCoefficients) store_row(one(load_coefficients(block + i), i), block + i);
  *block = dc;
  return moxStsOk;
}

template <int Shift>
MOX_INLINE MoxStatus dv_dequantize_by(Mox16s* block, const Mox16s* steps, const Mox16s* reciprocals) {
  return dv_replace(block, [=](Coefficients v, int i) {
    return mulhrs(simd::shr<Shift>(v) * load_coefficients(steps + i), load_coefficients(reciprocals + i));
  });
}

inline MoxStatus dv_dequantize(Mox16s* block, DvBlockParameter parameter) {
  const Mox16s* const reciprocals = kDvReciprocals[parameter.mode()].data();
  const Mox16s* const steps = kDvSteps[parameter.mode()][dv_quantisation_level(parameter)].data();
  if (parameter.block_class() == 3) return dv_dequantize_by<3>(block, steps, reciprocals);
  return dv_dequantize_by<4>(block, steps, reciprocals);
}

inline MoxStatus dv100_dequantize(Mox16s* block, DvBlockParameter parameter, Mox32s kind) {
  const Mox16s* const weights = kDv100Weights[kind].data();
  const auto step = splat(kDv100Steps[parameter.qno()]), factor = splat(1 << parameter.block_class());
  const auto half = simd::splat<simd::s32, simd::kBlocks>(16);
  return dv_replace(block, [=](Coefficients v, int i) {
    // The first factor is at most 512 * 52, the second one 492 * 8.
    const auto scaled = simd::shr<6>(v) * step, weight = load_coefficients(weights + i) * factor;
    const auto low = scaled * weight, high = mulhi(scaled, weight);
    return packs(simd::shr<5>(simd::as<simd::s32>(lo16(low, high)) + half),
                 simd::shr<5>(simd::as<simd::s32>(hi16(low, high)) + half));
  });
}

/// The four values of lines of four frequencies, as sums of products: the pairs are (0, 2) and (1, 3).
template <int B>
struct FourSums {
  simd::s32<B> v[4];

  MOX_INLINE FourSums(simd::s16<B> even, simd::s16<B> odd) {
    const auto k = [](int u, int w, int x) { return factors<B>(kDctBasis[u][x], kDctBasis[w][x]); };
    const auto sum = madd(even, k(0, 4, 0)), difference = madd(even, k(0, 4, 1));
    const auto outer = madd(odd, k(2, 6, 0)), inner = madd(odd, k(2, 6, 1));
    v[0] = sum + outer, v[1] = difference + inner, v[2] = difference - inner, v[3] = sum - outer;
  }
};

template <int Shift, int B>
MOX_INLINE simd::s32<B> rounded(simd::s32<B> v) {
  return simd::shr<Shift>(v + simd::splat<simd::s32, B>(1 << (Shift - 1)));
}

inline constexpr auto kTwoFieldsOrder = word_order({0, 2, 1, 3, 4, 6, 5, 7});

inline MoxStatus dct_inverse_248(Mox16s* block) {
  constexpr int B = kDctBlocks;
  const auto row_order = simd::table<simd::u8, B>(kInverseOrder.data());
  const auto column_order = simd::table<simd::u8, B>(kTwoFieldsOrder.data());
  Results<B> lines, result;
  for (int h = 0; h < 2 / B; ++h) {
    inverse_pass<kInverseRowShift>(pairs_of<B>(rows_16s<B>(block, 16), h, row_order), lines.v[h]);
  }
  for (int h = 0; h < 2 / B; ++h) {
    const auto p = pairs_of<B>(lines, h, column_order);
    const FourSums<B> sums(p.v[0], p.v[1]), differences(p.v[2], p.v[3]);
    for (int y = 0; y < 4; ++y) {
      result.v[h][2 * y] = rounded<kInverseColumnShift>(sums.v[y] + differences.v[y]);
      result.v[h][2 * y + 1] = rounded<kInverseColumnShift>(sums.v[y] - differences.v[y]);
    }
  }
  store_rows_16s(result, block, 16);
  return moxStsOk;
}

inline constexpr auto kTwoLinesOrder = word_order({0, 2, 4, 6, 1, 3, 5, 7});

/// One pass over four lines of four words, of which each vector has two. Results are the lines' transposition, again
/// two a vector.
template <int Shift>
MOX_INLINE void four_lines(simd::s16<1> (&lines)[2]) {
  const auto order = simd::table<simd::u8, 1>(kTwoLinesOrder.data());
  for (auto& v : lines) v = simd::as<simd::s16>(lookup(simd::as<simd::u8>(v), order));
  const FourSums<1> sums(lo64(lines[0], lines[1]), hi64(lines[0], lines[1]));
  for (int i = 0; i < 2; ++i) lines[i] = packs(rounded<Shift>(sums.v[2 * i]), rounded<Shift>(sums.v[2 * i + 1]));
}

template <int N>
MoxStatus dct_inverse_reduced(Mox16s* block) {
  if constexpr (N == 4) {
    simd::s16<1> lines[2];
    for (int i = 0; i < 2; ++i) lines[i] = simd::load8x2<simd::s16, 1>(block + 16 * i, 16, simd::strips<1>(0));
    four_lines<kInverseRowShift>(lines);
    four_lines<kInverseColumnShift>(lines);
    for (int i = 0; i < 2; ++i) store_row(lines[i], block + 8 * i);
    return moxStsOk;
  } else {
    return px::dct_inverse_reduced<N>(block);
  }
}

}  // namespace mox::vec
