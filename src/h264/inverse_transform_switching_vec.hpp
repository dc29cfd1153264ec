/// Vector kernel of H.264 SP and SI blocks: prediction and residual are added in the transform domain and quantised
/// again.
#pragma once

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/inverse_transform_px.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

inline MoxStatus dequant_transform_residual_sisp(Mox16s* pSrcDst, const Mox16s* pPredictCoef, const Mox16s* pDC,
                                                 Mox32s ac, Mox32s qp, Mox32s qs, Mox32s switchFlag) {
  static constexpr auto kWeights = make_table<16>([]<std::size_t I>() { return Mox16s{MATR[I]}; });
  const Mox16s *const dequant = InvQuantTable_16s[switchFlag ? qs : qp].data(), *const inverse =
                                                                                    InvQuantTable_16s[qs].data();
  const Mox32s* const forward = QuantCoef[h264_qp_rem[qs]].data();
  const int shift = h264_qp6[qs] + 15;
  const auto half = simd::splat<simd::s32, 1>(1 << (shift - 1)), mask = simd::splat<simd::s32, 1>(0xFFFF);
  const auto row = [=](int i) {
    auto x = simd::zero<simd::s32, 1>();
    if (ac) {
      x = simd::load_row_wide<1>(pSrcDst + i);
    } else if (i == 0) {
      x = simd::with_first_doubleword(x, pSrcDst[0]);
    }
    const auto product = x * simd::load_row_wide<1>(dequant + i) * simd::load_row_wide<1>(&kWeights[i]);
    const auto t = simd::shr<6>(product) + simd::load_row_wide<1>(pPredictCoef + i);
    const auto level = shr(abs(t) * simd::load_row<simd::s32, 1>(forward + i) + half, shift);
    return signed_by(level * simd::load_row_wide<1>(inverse + i), t) & mask;
  };
  WordBlock4x4 block{simd::as<simd::s16>(packus(row(0), row(4))), simd::as<simd::s16>(packus(row(8), row(12)))};
  if (pDC) block.upper = simd::with_first_word(block.upper, *pDC);
  block = inverse_transform<Wrap16>(block);
  const auto samples = packus(block.upper, block.lower);
  store_block_4x4({wide_lo(samples), wide_hi(samples)}, pSrcDst);
  return moxStsOk;
}

}  // namespace mox::vec
