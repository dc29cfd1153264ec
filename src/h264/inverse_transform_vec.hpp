/// Vector kernels of H.264 dequantisation and inverse transforms of 8-bit video.
///
/// Blocks of 4x4 go alone, or in couples: words of the left and of the right block alternate, so that a row of both is
/// a row of doublewords. A vector of two blocks takes two couples, which lie one below the other: a quadrant.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "h264/inverse_transform_px.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The sum of samples and residuals of two rows, limited.
template <int B>
MOX_INLINE simd::u8<B> limited_sum(simd::s16<B> first, simd::s16<B> residual, simd::s16<B> second, simd::s16<B> more) {
  return packus(adds(first, residual), adds(second, more));
}

MOX_INLINE void add_to_prediction_4x4(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                      WordBlock4x4 residual) {
  const auto samples = simd::load_rows<4, 4>(pred, predStep);
  const auto sum = limited_sum(wide_lo(samples), residual.upper, wide_hi(samples), residual.lower);
  simd::store_rows<4, 4>(sum, dst, dstStep);
}

/// B blocks of 8x8 side by side.
template <int B>
MOX_INLINE void add_to_prediction_8x8(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                      const simd::s16<B> (&residual)[8]) {
  const auto samples = [](const Mox8u* p) { return simd::as<simd::s16>(simd::load_row_wide<B>(p)); };
  for (int y = 0; y < 8; y += 2) {
    const auto sum = limited_sum(samples(pred), residual[y], samples(pred + predStep), residual[y + 1]);
    if constexpr (B == 1) {
      store8x2(sum, dst, dstStep, simd::strips<B>(0));
    } else {
      store16(regroup(sum), dst, simd::strips<B>(dstStep));
    }
    pred += 2 * predStep, dst += 2 * dstStep;
  }
}

/// Coefficients by their multipliers: call(v, i) is for rows 2 i and 2 i + 1 of a 4x4 block.
struct FlatScale {
  const Mox16s* multipliers;
  explicit FlatScale(Mox32s qp) : multipliers(InvQuantTable_16s[qp].data()) {}
  template <int B>
  MOX_INLINE simd::s16<B> operator()(simd::s16<B> v, int i) const {
    return v * simd::table<simd::s16, B>(multipliers + 8 * i);
  }
};

/// [qp]
inline constexpr auto kRescale4x4 = make_table<90>([]<std::size_t Qp>() { return px::rescale_4x4(h264_qp6[Qp]); });
inline constexpr auto kRescale8x8 = make_table<90>([]<std::size_t Qp>() { return px::rescale_8x8(h264_qp6[Qp]); });

/// Products of coefficients and scales after their shift. Values that were shifted to the right are kept as Right says
/// (Wrap16 or Sat16), others wrap.
template <class Right, int B>
MOX_INLINE simd::s16<B> rescaled(simd::s16<B> v, simd::s16<B> scale, const px::Rescale& by) {
  if (by.right == 0) return shl(v * scale, by.left);
  const auto one = simd::splat<simd::s16, B>(1), rounding = simd::splat<simd::s16, B>(by.rounding);
  const auto low = madd(lo16(v, one), lo16(scale, rounding)), high = madd(hi16(v, one), hi16(scale, rounding));
  if constexpr (std::is_same_v<Right, Sat16>) {
    return packs(shr(low, by.right), shr(high, by.right));
  } else {
    return packs(simd::shr<16>(shl(low, 16 - by.right)), simd::shr<16>(shl(high, 16 - by.right)));
  }
}

struct ListScale {
  const Mox16s* scales;
  px::Rescale by;
  template <int B>
  MOX_INLINE simd::s16<B> operator()(simd::s16<B> v, int i) const {
    return rescaled<Wrap16>(v, simd::table<simd::s16, B>(scales + 8 * i), by);
  }
};

/// One 4x4 block. pDC or null: it takes the place of coefficient 0. The residual goes to `residual` unless that is
/// null.
template <class P, class Scale>
MOX_INLINE void add_block(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep,
                          const Mox16s* pDC, const Mox16s* coeff, Mox16s* residual, const Scale& scale) {
  auto block = load_block_4x4(coeff);
  block = {scale(block.upper, 0), scale(block.lower, 1)};
  if (pDC) block.upper = simd::with_first_word(block.upper, *pDC);
  block = inverse_transform<P>(block);
  if (residual) store_block_4x4(block, residual);
  add_to_prediction_4x4(pred, predStep, dst, dstStep, block);
}

// Samples of a row of a couple as words of both blocks in turns, and bytes of two such rows back in their order.
alignas(16) inline constexpr Mox8u kAlternating[16] = {0, 128, 4, 128, 1, 128, 5, 128, 2, 128, 6, 128, 3, 128, 7, 128};
alignas(16) inline constexpr Mox8u kRowsOfTwo[16] = {0, 2, 4, 6, 1, 3, 5, 7, 8, 10, 12, 14, 9, 11, 13, 15};
/// Words of both blocks in turns to those of the left block, then those of the right one.
alignas(16) inline constexpr Mox8u kLeftThenRight[16] = {0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15};

template <int B>
MOX_INLINE void add_to_prediction_couples(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst,
                                          std::ptrdiff_t dstStep, const simd::s16<B> (&x)[4]) {
  const auto spread = simd::table<simd::u8, B>(kAlternating), restore = simd::table<simd::u8, B>(kRowsOfTwo);
  const auto from = simd::strips<B>(4 * predStep), to = simd::strips<B>(4 * dstStep);
  const auto samples = [&](int y) {
    return simd::as<simd::s16>(lookup(simd::load8<simd::u8, B>(pred + y * predStep, from), spread));
  };
  const auto upper = limited_sum(samples(0), x[0], samples(1), x[1]);
  const auto lower = limited_sum(samples(2), x[2], samples(3), x[3]);
  store8x2(lookup(upper, restore), dst, dstStep, to);
  store8x2(lookup(lower, restore), dst + 2 * dstStep, dstStep, to);
}

/// B couples of 4x4 blocks, one below the other, and the saturating transform. pDC or null: values in place of
/// coefficients 0, those of the couples dcStep apart. With kStore the residual replaces the coefficients.
template <int B, bool kStore, class Scale>
MOX_INLINE void add_couples(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep,
                            const Mox16s* pDC, std::ptrdiff_t dcStep, Mox16s* coeff, const Scale& scale) {
  const auto strips = simd::strips<B>(32 * sizeof(Mox16s));
  const auto rows = [&](int i) { return scale(simd::load16<simd::s16, B>(coeff + 8 * i, strips), i % 2); };
  const auto left = rows(0), left_lower = rows(1), right = rows(2), right_lower = rows(3);
  simd::s16<B> x[4] = {lo16(left, right), hi16(left, right), lo16(left_lower, right_lower),
                       hi16(left_lower, right_lower)};
  if (pDC) {
    const auto dc = simd::strips<B>(dcStep * std::ptrdiff_t{sizeof(Mox16s)});
    x[0] = simd::blend<3>(x[0], simd::gather<simd::s16, B>(pDC, dc, simd::raw4));
  }
  inverse_transform<Sat16>(x);
  if constexpr (kStore) {
    const auto order = simd::table<simd::u8, B>(kLeftThenRight);
    const auto apart = [&](int y) { return simd::as<simd::s16>(lookup(simd::as<simd::u8>(x[y]), order)); };
    const auto r0 = apart(0), r1 = apart(1), r2 = apart(2), r3 = apart(3);
    store16(lo64(r0, r1), coeff, strips), store16(lo64(r2, r3), coeff + 8, strips);
    store16(hi64(r0, r1), coeff + 16, strips), store16(hi64(r2, r3), coeff + 24, strips);
  }
  add_to_prediction_couples(pred, predStep, dst, dstStep, x);
}

/// A quadrant: two couples, 8 x 8 samples, in place.
template <bool kStore, class Scale>
MOX_INLINE void add_quadrant(Mox8u* block, std::ptrdiff_t step, const Mox16s* pDC, std::ptrdiff_t dcStep, Mox16s* coeff,
                             const Scale& scale) {
  constexpr int B = simd::kBlocks;
  for (int i = 0; i < 2; i += B) {
    Mox8u* const rows = block + 4 * i * step;
    add_couples<B, kStore>(rows, step, rows, step, pDC ? pDC + i * dcStep : nullptr, dcStep, coeff + 32 * i, scale);
  }
}

/// Every sample of 8 x 4, or of two such, plus (dc + 32) >> 6 of its block.
template <int B>
MOX_INLINE void add_dc_couples(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep,
                               const Mox16s* pDC, std::ptrdiff_t dcStep) {
  alignas(16) static constexpr Mox8u kSpread[16] = {0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3};
  const auto dcs =
      simd::gather<simd::s16, B>(pDC, simd::strips<B>(dcStep * std::ptrdiff_t{sizeof(Mox16s)}), simd::raw4);
  const auto rounded = mulhrs(dcs, simd::splat<simd::s16, B>(512));
  const auto r = simd::as<simd::s16>(lookup(simd::as<simd::u8>(rounded), simd::table<simd::u8, B>(kSpread)));
  const auto from = simd::strips<B>(4 * predStep), to = simd::strips<B>(4 * dstStep);
  const auto samples = [&](int y) { return simd::load8_wide(pred + y * predStep, from); };
  const auto upper = limited_sum(samples(0), r, samples(1), r), lower = limited_sum(samples(2), r, samples(3), r);
  store8x2(upper, dst, dstStep, to);
  store8x2(lower, dst + 2 * dstStep, dstStep, to);
}

MOX_INLINE void add_dc(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep, Mox32s dc) {
  const auto r = simd::splat<simd::s16, 1>(px::round6<Wrap32>(dc));
  add_to_prediction_4x4(pred, predStep, dst, dstStep, {r, r});
}

// ---- Flat quantisation: what the macroblock functions call. ----

inline void dequant_transform_residual_and_add_no_dc_h264_mmp(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                              Mox32s dstStep, Mox16s* pCoeff, Mox32s qp) {
  add_block<Sat16>(pPred, predStep, pDst, dstStep, nullptr, pCoeff, nullptr, FlatScale(qp));
}

inline void dequant_transform_residual_and_add_no_dc_couple_h264_sse2(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                                      Mox32s dstStep, Mox16s* pCoeff, Mox32s qp) {
  add_couples<1, false>(pPred, predStep, pDst, dstStep, nullptr, 0, pCoeff, FlatScale(qp));
}

inline void dequant_transform_residual_and_add_no_dc_quadrant(Mox8u* pSrcDst, Mox32s step, Mox16s* pCoeff, Mox32s qp) {
  add_quadrant<false>(pSrcDst, step, nullptr, 0, pCoeff, FlatScale(qp));
}

inline void dequant_transform_residual_and_add_dc_ac_h264_mmp(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                              Mox32s dstStep, const Mox16s* pDC, Mox16s* pCoeff,
                                                              Mox32s qp) {
  add_block<Sat16>(pPred, predStep, pDst, dstStep, pDC, pCoeff, nullptr, FlatScale(qp));
}

inline void dequant_transform_residual_and_add_dc_ac_couple_h264_sse2(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                                      Mox32s dstStep, const Mox16s* pDC, Mox16s* pCoeff,
                                                                      Mox32s qp) {
  add_couples<1, false>(pPred, predStep, pDst, dstStep, pDC, 0, pCoeff, FlatScale(qp));
}

inline void dequant_transform_residual_and_add_dc_ac_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC,
                                                              Mox16s* pCoeff, Mox32s qp) {
  add_quadrant<false>(pSrcDst, step, pDC, 4, pCoeff, FlatScale(qp));
}

inline void dequant_transform_residual_and_add_no_ac_h264_mmp(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                              Mox32s dstStep, const Mox16s* pDC) {
  add_dc(pPred, predStep, pDst, dstStep, *pDC);
}

inline void dequant_transform_residual_and_add_no_ac_couple_h264_sse2(const Mox8u* pPred, Mox32s predStep, Mox8u* pDst,
                                                                      Mox32s dstStep, const Mox16s* pDC) {
  add_dc_couples<1>(pPred, predStep, pDst, dstStep, pDC, 0);
}

inline void dequant_transform_residual_and_add_h264_sse2(const Mox8u* pPred, Mox16s* pSrcDst, const Mox16s* pDC,
                                                         Mox8u* pDst, Mox32s predStep, Mox32s dstStep, Mox32s qp,
                                                         Mox32s ac) {
  if (ac) {
    add_block<Sat16>(pPred, predStep, pDst, dstStep, pDC, pSrcDst, pSrcDst, FlatScale(qp));
  } else {
    add_dc(pPred, predStep, pDst, dstStep, px::dc_of(pDC, pSrcDst, qp));
  }
}

/// The residual replaces the coefficients. The DC values of the couples are dcStep apart.
inline void dequant_transform_residual_and_add_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC, int dcStep,
                                                        Mox16s* pCoeff, Mox32s qp) {
  add_quadrant<true>(pSrcDst, step, pDC, dcStep, pCoeff, FlatScale(qp));
}

inline void add_dc_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC, int dcStep) {
  constexpr int B = simd::kBlocks;
  for (int i = 0; i < 2; i += B) {
    Mox8u* const rows = pSrcDst + 4 * i * std::ptrdiff_t{step};
    add_dc_couples<B>(rows, step, rows, step, pDC + i * dcStep, dcStep);
  }
}

inline MoxStatus dequant_transform_residual(Mox16s* pSrcDst, Mox32s step, const Mox16s* pDC, Mox32s ac, Mox32s qp) {
  const auto dc = px::dc_of(pDC, pSrcDst, qp);
  const auto flat = simd::splat<simd::s16, 1>(px::round6<Wrap32>(dc));
  WordBlock4x4 block = {flat, flat};
  Mox16s* const lower = pSrcDst + step / 2 * std::ptrdiff_t{2};
  const std::ptrdiff_t bytes = step / 2 * std::ptrdiff_t{sizeof(Mox16s)};
  constexpr simd::Strips<1> kHere = {};
  if (ac) {
    const FlatScale scale(qp);
    block = {scale(simd::load8x2<simd::s16, 1>(pSrcDst, bytes, kHere), 0),
             scale(simd::load8x2<simd::s16, 1>(lower, bytes, kHere), 1)};
    block.upper = simd::with_first_word(block.upper, wrap16(dc));
    block = inverse_transform<Wrap16>(block);
  }
  store8x2(block.upper, pSrcDst, bytes, kHere);
  store8x2(block.lower, lower, bytes, kHere);
  return moxStsOk;
}

// ---- Scaling lists, and transforms alone. ----

inline MoxStatus scaled_residual_add_16s(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst, const Mox16s* pDC,
                                         Mox8u* pDst, Mox32s dstStep, Mox32s qp, Mox32s ac, const Mox16s* pLevelScale) {
  if (!ac) {
    add_dc(pPred, predStep, pDst, dstStep, px::scaled_dc<Wrap16>(pSrcDst, pDC, qp, pLevelScale));
    return moxStsOk;
  }
  const Mox16s* const scales = pLevelScale ? pLevelScale : InvLevelScale_4x4_default[h264_qp_rem[qp]].data();
  const ListScale scale{scales, kRescale4x4[qp]};
  add_block<Wrap16>(pPred, predStep, pDst, dstStep, pDC, pSrcDst, pSrcDst, scale);
  return moxStsOk;
}

/// Luma DC values. P rules the transform and the values that were shifted to the right.
template <class P>
MOX_INLINE void scale_luma_dc(Mox16s* pDC, int scale, const px::Rescale& by) {
  const auto block = hadamard<P>(load_block_4x4(pDC));
  const auto factor = simd::splat<simd::s16, 1>(scale);
  store_block_4x4({rescaled<P>(block.upper, factor, by), rescaled<P>(block.lower, factor, by)}, pDC);
}

inline void dequant_transform_luma_dc_h264_sse2(Mox16s* pDC, Mox32s multiplier, Mox32s rightShift) {
  scale_luma_dc<Wrap16>(pDC, multiplier, {(1 << rightShift) >> 1, rightShift, 0});
}

/// 8 rows of 8 words, of B blocks one behind the other.
template <int B>
MOX_INLINE void load_blocks_8x8(const Mox16s* p, simd::s16<B> (&x)[8]) {
  for (int y = 0; y < 8; ++y) x[y] = simd::load16<simd::s16, B>(p + 8 * y, simd::strips<B>(64 * sizeof(Mox16s)));
}

/// Dequantised coefficients of B blocks to their residuals, which are stored, and added to samples side by side.
template <int B>
MOX_INLINE void add_residual_8x8(const Mox8u* pred, std::ptrdiff_t predStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                 simd::s16<B> (&x)[8], Mox16s* residual) {
  inverse_transform<Sat16>(x);
  for (int y = 0; y < 8; ++y) store16(x[y], residual + 8 * y, simd::strips<B>(64 * sizeof(Mox16s)));
  add_to_prediction_8x8(pred, predStep, dst, dstStep, x);
}

inline MoxStatus residual_8x8_add_16s(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst, Mox8u* pDst,
                                      Mox32s dstStep) {
  simd::s16<1> x[8];
  load_blocks_8x8(pSrcDst, x);
  add_residual_8x8(pPred, predStep, pDst, dstStep, x, pSrcDst);
  return moxStsOk;
}

}  // namespace mox::vec
