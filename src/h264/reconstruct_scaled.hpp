/// 8-bit blocks with scaling tables, as the ways through a macroblock want them.
#pragma once

#include "frame/generation.hpp"
#include "h264/reconstruct_scaled_px.hpp"
#include "h264/reconstruct_scaled_vec.hpp"

namespace mox {

/// Scaling tables, or lossless: what the blocks of one plane are dequantised with.
class ScaledResidual {
 public:
  using Coeff = Mox16s;
  static constexpr Mox32s depth = 8;
  static constexpr bool kQuadrants = true, kPairs = true;

  /// `bypass` asks for lossless blocks, which QP 0 alone has.
  ScaledResidual(Mox32s qp, const Mox16s* pQuantTable, bool bypass)
      : per_(h264_qp6[qp]), lossless_(bypass && qp == 0), scale_(pQuantTable) {}
  bool lossless() const { return lossless_; }

  void add_4x4(Mox8u* block, Mox32s step, Mox16s* coeffs) const {
    if (lossless_) return active::dequant_add_residual_h264_high_lossless_sse2(block, coeffs, block, step, step);
    add_scaled(block, step, nullptr, coeffs);
  }
  void add_4x4(Mox8u* block, Mox32s step, const Mox16s* dc, Mox16s* coeffs) const {
    if (lossless_) {
      return active::dequant_transform_residual_and_add_h264_high_lossless_sse2(block, coeffs, dc, block, step, step,
                                                                                coeffs != nullptr);
    }
    add_scaled(block, step, dc, coeffs);
  }
  void add_quadrant(Mox8u* block, Mox32s step, const Mox16s* dc, int dcStep, Mox16s* coeffs) const {
    active::dequant_transform_residual_and_add_h264_high_quadrant(block, step, dc, dcStep, coeffs, scale_,
                                                                  px::rescale_4x4(per_));
  }
  void add_8x8(Mox8u* block, Mox32s step, Mox16s* coeffs) const {
    if (lossless_) return active::lossless_transform_residual_and_add_8x8_h264_sse2(block, coeffs, step);
    const px::Rescale by = px::rescale_8x8(per_);
    active::dequant_transform_residual_and_add_8x8_h264_sse2(block, coeffs, scale_, step, by.rounding, by.right,
                                                             by.left);
  }
  void add_pair(Mox8u* block, Mox32s step, Mox16s* coeffs) const {
    active::dequant_transform_residual_and_add_8x8_pair(block, coeffs, scale_, step, px::rescale_8x8(per_));
  }
  void luma_dc(Mox16s* dc) const {
    if (lossless_) return;
    const px::Rescale by = px::rescale_8x8(per_);
    active::dequant_transform_luma_dc_h264_high_sse2(dc, scale_[0], by.rounding, by.right, by.left);
  }
  void chroma_dc(Mox16s* dc) const {
    if (lossless_) return;
    const px::Rescale by = px::rescale_2x2(per_);
    active::dequant_transform_chroma_dc_h264_high_sse2(dc, scale_[0], by.right, by.left);
  }

 private:
  void add_scaled(Mox8u* block, Mox32s step, const Mox16s* dc, Mox16s* coeffs) const {
    const px::Rescale by = px::rescale_4x4(per_);
    active::dequant_transform_residual_and_add_h264_high_sse2(block, coeffs, scale_, dc, block, step, step, by.rounding,
                                                              by.right, by.left, coeffs != nullptr);
  }

  int per_;
  bool lossless_;
  const Mox16s* scale_;
};

}  // namespace mox
