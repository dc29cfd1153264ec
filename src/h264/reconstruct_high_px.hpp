/// Portable kernels of reconstruction with 32-bit coefficients and 16-bit samples.
///
/// Every value wraps at 32 bits, sums with the prediction too, and every sample is limited to 0..limit. Steps count
/// samples; blocks are in place. The residual replaces the coefficients, those of lossless blocks stay as they are.
#pragma once

#include "h264/inverse_transform_px.hpp"
#include "h264/transform_core.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// pDC or null: it takes the place of coefficient 0. pQuantTable has 16 scales.
inline void high_add_4x4(Mox16u* pSrcDst, Mox32s step, Mox32s* pCoeff, const Mox32s* pDC, Mox32s qp,
                         const Mox16s* pQuantTable, Mox32s limit) {
  scaled_add_block<Wrap32>(pSrcDst, step, pCoeff, pDC, pSrcDst, step, qp, pQuantTable, limit);
}

/// A quadrant of four blocks. pDC or null: the values of the lower blocks are dcStep behind those of the upper ones.
inline void high_add_quadrant(Mox16u* pSrcDst, Mox32s step, Mox32s* pCoeff, const Mox32s* pDC, int dcStep, Mox32s qp,
                              const Mox16s* pQuantTable, Mox32s limit) {
  for (int i = 0; i < 4; ++i) {
    high_add_4x4(pSrcDst + i / 2 * 4 * std::ptrdiff_t{step} + i % 2 * 4, step, pCoeff + 16 * i,
                 pDC ? pDC + i / 2 * dcStep + i % 2 : nullptr, qp, pQuantTable, limit);
  }
}

/// A block with nothing but its DC. A negative sum becomes 0, unlike add_dc_high's.
inline void high_add_dc_4x4(Mox16u* pSrcDst, Mox32s step, Mox32s dc, Mox32s limit) {
  const Mox32s r = round6<Wrap32>(dc);
  add_to_prediction<4>(pSrcDst, step, pSrcDst, step, limit, [r](int, int) { return r; });
}

/// pQuantTable has 64 scales. Unlike dequant_8x8 it takes coefficients of more than 16 bits as they are.
inline void high_add_8x8(Mox16u* pSrcDst, Mox32s step, Mox32s* pCoeff, Mox32s qp, const Mox16s* pQuantTable,
                         Mox32s limit) {
  const Rescale rescale = rescale_8x8(h264_qp6[qp]);
  for (int i = 0; i < 64; ++i) pCoeff[i] = rescale(mul32(pCoeff[i], pQuantTable[i]));
  inverse_8x8<Wrap32>(pCoeff);
  for (int i = 0; i < 64; ++i) pCoeff[i] = round6<Wrap32>(pCoeff[i]);
  add_to_prediction<8>(pSrcDst, step, pSrcDst, step, limit, [pCoeff](int x, int y) { return pCoeff[8 * y + x]; });
}

/// A lossless block of N x N differences.
template <int N>
void high_add_lossless(Mox16u* pSrcDst, Mox32s step, const Mox32s* pCoeff, Mox32s limit) {
  add_to_prediction<N>(pSrcDst, step, pSrcDst, step, limit, [pCoeff](int x, int y) { return pCoeff[N * y + x]; });
}

/// The same for 4x4 with dc in place of coefficient 0; pCoeff null: the first sample alone changes.
inline void high_add_lossless_dc_4x4(Mox16u* pSrcDst, Mox32s step, const Mox32s* pCoeff, Mox32s dc, Mox32s limit) {
  add_to_prediction<4>(pSrcDst, step, pSrcDst, step, limit, [=](int x, int y) {
    if (x == 0 && y == 0) return dc;
    return pCoeff ? pCoeff[4 * y + x] : 0;
  });
}

}  // namespace mox::px
