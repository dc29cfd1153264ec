/// Vector kernels of H.263 quantisation.
#pragma once

#include "frame/generation.hpp"
#include "h263/quantization_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

inline Mox32s quantize(Mox16s* block, Mox32s qp, const px::QuantRule& rule) {
  constexpr int kBlocks = simd::kBlocks;
  const auto unsigned_splat = [](int value) { return simd::as<simd::u16>(simd::splat<simd::s16, kBlocks>(value)); };
  const auto more = unsigned_splat(std::max(rule.offset, 0)), less = unsigned_splat(std::max(-rule.offset, 0));
  const auto mostMagnitude = unsigned_splat(rule.mostMagnitude), mostLevel = unsigned_splat(rule.mostLevel);
  const auto reciprocal = unsigned_splat(px::_p_QuantInv[qp - 1]);
  auto zeros = simd::splat<simd::s16, kBlocks>(0);  // 8 a lane at most
  for (int i = 0; i < 64; i += 8 * kBlocks) {
    const auto x = simd::load_row<simd::s16, kBlocks>(block + i);
    const auto offset = subs(adds(simd::as<simd::u16>(abs(x)), more), less);  // 0 to 65535
    const auto level = min(mulhi(min(offset, mostMagnitude), reciprocal), mostLevel);
    const auto result = signed_by(simd::as<simd::s16>(level), x);  // 0 for x = 0
    zeros = zeros - equal(result, simd::splat<simd::s16, kBlocks>(0));
    store_row(result, block + i);
  }
  return 64 - total(madd(zeros, simd::splat<simd::s16, kBlocks>(1)));
}

template <int B>
MOX_INLINE void dequantize_vector(Mox16s* levels, const px::DequantRule& rule) {
  const auto splat = [](int value) { return simd::splat<simd::s16, B>(value); };
  const auto x = simd::load_row<simd::s16, B>(levels);
  const auto value = adds(x * splat(rule.step), signed_by(splat(rule.offset), x));
  store_row(min(max(value, splat(rule.low)), splat(rule.high)), levels);
}

inline void dequantize(Mox16s* block, Mox32s indexLast, const px::DequantRule& rule) {
  const int end = std::min(indexLast, 63) / 8 * 8 + 8;
  int i = 0;
  for (; i + 8 * simd::kBlocks <= end; i += 8 * simd::kBlocks) dequantize_vector<simd::kBlocks>(block + i, rule);
  if (i < end) dequantize_vector<1>(block + i, rule);
}

}  // namespace mox::vec
