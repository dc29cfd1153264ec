/// Vector kernels of MPEG-2 quantisation, 8 coefficients a block of the vector.
#pragma once

#include <bit>

#include "frame/generation.hpp"
#include "frame/levels_vec.hpp"
#include "mpeg2/quantization_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

inline Mox32s zeros(const Mox16s* block) {
  auto count = splat(0);  // 8 a lane at most
  for (int i = 0; i < 64; i += kCoefficients) count = count - equal(load_coefficients(block + i), splat(0));
  return total(madd(count, splat(1)));
}

inline MoxStatus quantize_by_matrix(Mox16s* block, int first, Mox32s quantScale, const float* reciprocals,
                                    Mox32s* pCount) {
  using Floats = simd::f32<simd::kBlocks>;
  const auto factor = simd::as<simd::f32>(
      simd::splat<simd::s32, simd::kBlocks>(std::bit_cast<Mox32s>(16.0f / static_cast<float>(quantScale))));
  const auto strips = simd::strips<simd::kBlocks>(8 * sizeof(float));
  const auto quantize = [=](simd::s32<simd::kBlocks> v, const float* m) {
    const Floats scaled = to_float(v) * factor;
    return truncate(scaled * simd::load16<simd::f32, simd::kBlocks>(m, strips));
  };
  const Mox16s dc = *block;
  Mox32s count =
      64 - replace_and_count_zeros(block, [=](Coefficients v, int i) {
        const float* const m = reciprocals + i;
        return clip(packs(quantize(wide_lo(v), m), quantize(wide_hi(v), m + 4)), -px::kMostLevel, px::kMostLevel);
      });
  if (first == 1) {
    count -= *block != 0;
    *block = dc;
  }
  *pCount = count;
  return moxStsOk;
}

inline MoxStatus quantize_flat(Mox16s* block, Mox32s quantScale, Mox32s* pCount) {
  const auto reciprocal = simd::as<simd::u16>(splat(px::flat_reciprocal(quantScale)));
  const auto limit = simd::as<simd::u16>(splat(32767)), most = simd::as<simd::u16>(splat(px::kMostLevel));
  *pCount = 64 - replace_and_count_zeros(block, [=](Coefficients v, int) {
              const auto magnitude = min(simd::as<simd::u16>(abs(v)), limit);
              return signed_by(simd::as<simd::s16>(min(mulhi(magnitude, reciprocal), most)), v);
            });
  return moxStsOk;
}

/// Replaces each vector v of a block by one(v, index of its first coefficient), and makes the sum odd.
template <class One>
MOX_INLINE MoxStatus replace_and_control_mismatch(Mox16s* block, One one) {
  auto lanes = simd::zero<simd::s16, 1>();
  auto v = splat(0);
  for (int i = 0; i < 64; i += kCoefficients) {
    v = one(load_coefficients(block + i), i);
    lanes = adds(lanes, simd::part<0>(v));
    if constexpr (simd::kBlocks == 2) lanes = adds(lanes, simd::part<1>(v));
    store_row(v, block + i);
  }
  // Folds the lanes until bit 0 of the last one is the parity of them all.
  auto parity = simd::as<simd::s32>(lanes);
  parity = parity ^ simd::permute<0x4E>(parity);
  parity = parity ^ simd::permute<0xB1>(parity);
  parity = parity ^ simd::shl<16>(parity);
  alignas(16) static constexpr Mox16s kLast[8] = {0, 0, 0, 0, 0, 0, 0, 1};
  const auto change = andnot(simd::as<simd::s16>(parity), simd::load_row<simd::s16, 1>(kLast));
  store_row(simd::part<simd::kBlocks - 1>(v) ^ change, block + 56);
  return moxStsOk;
}

inline MoxStatus dequantize_intra(Mox16s* block, Mox32s quantScale, const Mox16u* weights) {
  const auto scale = splat(quantScale), fifteen = splat(15);
  alignas(32) static constexpr Mox16s kFirst[16] = {-1};
  const auto first = load_coefficients(kFirst);
  return replace_and_control_mismatch(block, [=](Coefficients v, int i) {
    const auto product = v * scale * simd::load_row<simd::s16, simd::kBlocks>(weights + i);
    const auto result = simd::shr<4>(adds(product, negative(v) & fifteen));
    return i == 0 ? (v & first) | andnot(first, result) : result;
  });
}

inline MoxStatus dequantize_by_matrix(Mox16s* block, Mox32s quantScale, const Mox16u* weights) {
  const auto scale = splat(quantScale), fifteen = splat(15);
  return replace_and_control_mismatch(block, [=](Coefficients v, int i) {
    const auto weight = simd::load_row<simd::s16, simd::kBlocks>(weights + i) * scale;
    const auto product = v * weight;
    const auto sign = negative(product);
    const auto half = andnot(equal(v, splat(0)), simd::as<simd::s16>(simd::shr<1>(simd::as<simd::u16>(weight))));
    return simd::shr<4>(adds(adds(product, (half ^ sign) - sign), sign & fifteen));
  });
}

inline MoxStatus dequantize_flat(Mox16s* block, Mox32s quantScale) {
  const auto scale = splat(quantScale), one = splat(1);
  return replace_and_control_mismatch(block, [=](Coefficients v, int) {
    const auto product = adds(adds(v, v), signed_by(one, v)) * scale;
    return clip(simd::shr<1>(subs(product, negative(v))), -2048, 2047);
  });
}

}  // namespace mox::vec
