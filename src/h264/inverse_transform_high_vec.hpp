/// Vector kernels of H.264 dequantisation and inverse transforms with 32-bit coefficients, and those kernels that serve
/// both widths. Sums and products wrap.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/generation.hpp"
#include "h264/inverse_transform_px.hpp"
#include "h264/inverse_transform_vec.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// One of the shifts is by 0 and what is shifted to the left is not rounded, so the scale can take that shift.
template <int B>
MOX_INLINE simd::s32<B> rescaled(simd::s32<B> v, simd::s32<B> scale, const px::Rescale& by) {
  return shr(v * shl(scale, by.left) + simd::splat<simd::s32, B>(by.rounding), by.right);
}

/// Two vectors as samples, limited.
template <int B>
MOX_INLINE simd::u16<B> limited_samples(simd::s32<B> first, simd::s32<B> second, Mox32s limit) {
  return min(packus(first, second), simd::splat<simd::u16, B>(limit));
}

/// The four rows of a 4x4 block, or of B such blocks that follow each other in memory.
template <int B>
struct LongRows4x4 {
  MOX_INLINE static simd::Strips<B> blocks() { return simd::strips<B>(16 * sizeof(Mox32s)); }
  simd::s32<B> x[4];
};
template <int B = 1>
MOX_INLINE LongRows4x4<B> load_rows_4x4(const Mox32s* p) {
  LongRows4x4<B> rows;
  for (int y = 0; y < 4; ++y) rows.x[y] = simd::load16<simd::s32, B>(p + 4 * y, rows.blocks());
  return rows;
}
template <int B>
MOX_INLINE void store_rows_4x4(const LongRows4x4<B>& rows, Mox32s* p) {
  for (int y = 0; y < 4; ++y) store16(rows.x[y], p + 4 * y, rows.blocks());
}

/// B blocks side by side.
template <int B>
MOX_INLINE void add_to_prediction_4x4(const Mox16u* pred, std::ptrdiff_t predStep, Mox16u* dst, std::ptrdiff_t dstStep,
                                      const LongRows4x4<B>& residual, Mox32s limit) {
  const auto row = [&](int y) { return simd::load_row_wide<B>(pred + y * predStep) + residual.x[y]; };
  const std::ptrdiff_t bytes = dstStep * std::ptrdiff_t{sizeof(Mox16u)};
  for (int y = 0; y < 4; y += 2, dst += 2 * dstStep) {
    const auto two = limited_samples(row(y), row(y + 1), limit);
    if constexpr (B == 1) {
      store8x2(two, dst, bytes, simd::strips<B>(0));
    } else {
      store16(regroup(two), dst, simd::strips<B>(bytes));
    }
  }
}

/// B blocks side by side whose residuals replace their coefficients. pDC or null.
template <int B = 1>
MOX_INLINE void add_scaled_4x4(const Mox16u* pred, std::ptrdiff_t predStep, Mox32s* coeff, const Mox32s* pDC,
                               Mox16u* dst, std::ptrdiff_t dstStep, Mox32s qp, const Mox16s* scales, Mox32s limit) {
  auto rows = load_rows_4x4<B>(coeff);
  const px::Rescale by = kRescale4x4[qp];
  for (int y = 0; y < 4; ++y) {
    rows.x[y] = rescaled(rows.x[y], simd::load8_doublewords<B>(scales + 4 * y, simd::strips<B>(0)), by);
  }
  if (pDC) {
    const auto dc = simd::gather<simd::s16, B>(pDC, simd::strips<B>(sizeof(Mox32s)), simd::raw4);
    rows.x[0] = simd::as<simd::s32>(simd::blend<3>(simd::as<simd::s16>(rows.x[0]), dc));
  }
  inverse_transform<Wrap32>(rows.x);
  store_rows_4x4(rows, coeff);
  add_to_prediction_4x4(pred, predStep, dst, dstStep, rows, limit);
}

inline MoxStatus scaled_residual_add_32s(const Mox16u* pPred, Mox32s predStep, Mox32s* pSrcDst, const Mox32s* pDC,
                                         Mox16u* pDst, Mox32s dstStep, Mox32s qp, Mox32s ac, Mox32s bitDepth,
                                         const Mox16s* pLevelScale) {
  const Mox32s limit = sample_max(bitDepth);
  if (ac & 1) {
    const Mox16s* const scales = pLevelScale ? pLevelScale : InvLevelScale_4x4_default[h264_qp_rem[qp]].data();
    add_scaled_4x4(pPred, predStep, pSrcDst, pDC, pDst, dstStep, qp, scales, limit);
    return moxStsOk;
  }
  // Signed sums, then an unsigned limit, as in the portable add_dc_high.
  const auto r = simd::splat<simd::s16, 1>(px::round6<Wrap32>(px::scaled_dc<Wrap32>(pSrcDst, pDC, qp, pLevelScale)));
  const auto most = simd::splat<simd::u16, 1>(limit);
  constexpr std::ptrdiff_t kSize = sizeof(Mox16u);
  for (int y = 0; y < 4; y += 2) {
    const auto samples = simd::load8x2<simd::s16, 1>(pPred + y * std::ptrdiff_t{predStep}, predStep * kSize, {});
    store8x2(min(simd::as<simd::u16>(adds(samples, r)), most), pDst + y * std::ptrdiff_t{dstStep}, dstStep * kSize,
             simd::Strips<1>{});
  }
  return moxStsOk;
}

template <class P>
MoxStatus residual_4x4(const typename P::Value* pSrc, typename P::Value* pDst) {
  if constexpr (std::is_same_v<P, Wrap32>) {
    auto rows = load_rows_4x4(pSrc);
    inverse_transform<P>(rows.x);
    store_rows_4x4(rows, pDst);
  } else {
    store_block_4x4(inverse_transform<P>(load_block_4x4(pSrc)), pDst);
  }
  return moxStsOk;
}

template <class S, class P>
MoxStatus luma_dc_4x4(typename P::Value* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  const px::Rescale by = kRescale8x8[qp];
  const Mox32s scale = px::dc_scale(pLevelScale, h264_qp_rem[qp]);
  if constexpr (std::is_same_v<P, Wrap32>) {
    auto rows = load_rows_4x4(pSrcDst);
    hadamard_pass<P, 1>(rows.x);
    transpose(rows.x);
    hadamard_pass<P, 1>(rows.x);
    transpose(rows.x);
    for (auto& row : rows.x) row = rescaled(row, simd::splat<simd::s32, 1>(scale), by);
    store_rows_4x4(rows, pSrcDst);
  } else {
    scale_luma_dc<S>(pSrcDst, scale, by);
  }
  return moxStsOk;
}

/// The scale has up to 32 bits, and products wrap.
template <class S, class P>
void scaled_chroma_dc_2x4(typename P::Value* pSrcDst, Mox32s qp, Mox32s scale) {
  const px::Rescale by = px::rescale_8x8(h264_qp6[qp + 3]);
  const auto factor = simd::splat<simd::s32, 1>(scale);
  if constexpr (std::is_same_v<P, Wrap32>) {
    simd::s32<1> rows[2] = {simd::load_row<simd::s32, 1>(pSrcDst), simd::load_row<simd::s32, 1>(pSrcDst + 4)};
    hadamard_2x4(rows);
    for (int i = 0; i < 2; ++i) store_row(rescaled(rows[i], factor, by), pSrcDst + 4 * i);
  } else {
    const auto rows = hadamard_2x4<S>(simd::load_row<simd::s16, 1>(pSrcDst));
    const auto low = rescaled(wide_lo(rows), factor, by), high = rescaled(wide_hi(rows), factor, by);
    const auto wrapped = shl(rows * simd::splat<simd::s16, 1>(scale), by.left);
    store_row(by.right > 0 ? packs(low, high) : wrapped, pSrcDst);
  }
}

template <class S, class P>
MoxStatus chroma_dc_2x4(typename P::Value* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  scaled_chroma_dc_2x4<S, P>(pSrcDst, qp, px::dc_scale(pLevelScale, h264_qp_rem[qp + 3]));
  return moxStsOk;
}

template <class S, class P>
MoxStatus dequant_8x8(typename P::Value* pSrcDst, Mox32s qpPer, const Mox16s* pInvLevelScale) {
  constexpr int B = simd::kBlocks;
  const px::Rescale by = px::rescale_8x8(qpPer);
  if constexpr (std::is_same_v<P, Wrap32>) {
    for (int i = 0; i < 64; i += 4 * B) {
      const auto v = min(max(simd::load_row<simd::s32, B>(pSrcDst + i), simd::splat<simd::s32, B>(-32768)),
                         simd::splat<simd::s32, B>(32767));
      store_row(rescaled(v, simd::load_row_wide<B>(pInvLevelScale + i), by), pSrcDst + i);
    }
  } else {
    for (int i = 0; i < 64; i += 8 * B) {
      const auto v = simd::load_row<simd::s16, B>(pSrcDst + i),
                 scale = simd::load_row<simd::s16, B>(pInvLevelScale + i);
      store_row(rescaled<S>(v, scale, by), pSrcDst + i);
    }
  }
  return moxStsOk;
}

/// An 8x8 block: its rows in one vector each, or in two, of the left and of the right half.
struct LongBlock8x8 {
  static constexpr int B = simd::kBlocks, kParts = 2 / B;
  simd::s32<B> part[kParts][8];
};

/// Makes row y what row(y, first column of the part) gives.
template <class Row>
MOX_INLINE LongBlock8x8 make_rows(Row row) {
  LongBlock8x8 block;
  for (int y = 0; y < 8; ++y) {
    for (int i = 0; i < LongBlock8x8::kParts; ++i) block.part[i][y] = row(y, 4 * i);
  }
  return block;
}

template <int B, int kParts>
MOX_INLINE void transpose(simd::s32<B> (&part)[kParts][8]) {
  for (auto& x : part) {
    simd::s32<B> upper[4], lower[4];
    std::copy_n(x, 4, upper), std::copy_n(x + 4, 4, lower);
    transpose(upper), transpose(lower);
    if constexpr (B == 1) {
      std::copy_n(upper, 4, x), std::copy_n(lower, 4, x + 4);
    } else {
      for (int i = 0; i < 4; ++i) {
        x[i] = first_blocks(upper[i], lower[i]), x[4 + i] = second_blocks(upper[i], lower[i]);
      }
    }
  }
  if constexpr (B == 1) {
    for (int i = 0; i < 4; ++i) std::swap(part[0][4 + i], part[1][i]);
  }
}

/// Both passes, without the final rounding.
MOX_INLINE void inverse_passes(LongBlock8x8& block) {
  for (int pass = 0; pass < 2; ++pass) {
    transpose(block.part);
    for (auto& x : block.part) inverse_pass<Wrap32, LongBlock8x8::B>(x);
  }
}

/// Samples are what sample(v, y, first column of the part) makes of the vectors, limited.
template <class Sample>
MOX_INLINE void store_samples(const LongBlock8x8& block, Mox16u* dst, std::ptrdiff_t dstStep, Mox32s limit,
                              Sample sample) {
  constexpr int B = LongBlock8x8::B;
  const auto at = [&](int y, int part) { return sample(block.part[part][y], y, 4 * part); };
  for (int y = 0; y < 8; y += B) {
    const auto second = B == 1 ? at(y, LongBlock8x8::kParts - 1) : at(y + B - 1, 0);
    store16(regroup(limited_samples(at(y, 0), second, limit)), dst + y * dstStep,
            simd::strips<B>(dstStep * std::ptrdiff_t{sizeof(Mox16u)}));
  }
}

inline MoxStatus residual_8x8_add_32s(const Mox16u* pPred, Mox32s predStep, const Mox32s* pSrcDst, Mox16u* pDst,
                                      Mox32s dstStep, Mox32s bitDepth) {
  constexpr int B = LongBlock8x8::B;
  auto block = make_rows([=](int y, int x) { return simd::load_row<simd::s32, B>(pSrcDst + 8 * y + x); });
  inverse_passes(block);
  const auto half = simd::splat<simd::s32, B>(32);
  store_samples(block, pDst, dstStep, sample_max(bitDepth), [=](auto v, int y, int x) {
    const auto samples = simd::load_row_wide<B>(pPred + y * std::ptrdiff_t{predStep} + x);
    return simd::shr<6>(v + half + simd::shl<6>(samples));
  });
  return moxStsOk;
}

}  // namespace mox::vec
