/// Blocks of high profiles as the ways through a macroblock want them: 16-bit samples, and 4:2:2 chroma of both widths.
#pragma once

#include "frame/generation.hpp"
#include "h264/reconstruct_high_px.hpp"
#include "h264/reconstruct_high_vec.hpp"
#include "h264/reconstruct_scaled.hpp"

namespace mox {

/// 32-bit coefficients and samples of 8 to 14 bits.
class HighResidual {
 public:
  using Coeff = Mox32s;
  static constexpr bool kQuadrants = true, kPairs = false;
  Mox32s depth;

  HighResidual(Mox32s bitDepth, Mox32s qp, const Mox16s* pQuantTable, bool bypass)
      : depth(bitDepth), limit_(sample_max(bitDepth)), qp_(qp), lossless_(bypass && qp <= 0), scale_(pQuantTable) {}
  bool lossless() const { return lossless_; }

  void add_4x4(Mox16u* block, Mox32s step, Mox32s* coeffs) const {
    if (lossless_) return active::high_add_lossless<4>(block, step, coeffs, limit_);
    active::high_add_4x4(block, step, coeffs, nullptr, qp_, scale_, limit_);
  }
  void add_4x4(Mox16u* block, Mox32s step, const Mox32s* dc, Mox32s* coeffs) const {
    if (lossless_) return active::high_add_lossless_dc_4x4(block, step, coeffs, *dc, limit_);
    if (!coeffs) return active::high_add_dc_4x4(block, step, *dc, limit_);
    active::high_add_4x4(block, step, coeffs, dc, qp_, scale_, limit_);
  }
  void add_quadrant(Mox16u* block, Mox32s step, const Mox32s* dc, int dcStep, Mox32s* coeffs) const {
    active::high_add_quadrant(block, step, coeffs, dc, dcStep, qp_, scale_, limit_);
  }
  void add_8x8(Mox16u* block, Mox32s step, Mox32s* coeffs) const {
    if (lossless_) return active::high_add_lossless<8>(block, step, coeffs, limit_);
    active::high_add_8x8(block, step, coeffs, qp_, scale_, limit_);
  }
  void luma_dc(Mox32s* dc) const {
    if (!lossless_) active::luma_dc_4x4<Wrap32, Wrap32>(dc, qp_, scale_);
  }
  void chroma_dc(Mox32s* dc) const {
    if (!lossless_) active::chroma_dc_2x2<Wrap32>(dc, qp_, scale_);
  }

 private:
  Mox32s limit_, qp_;
  bool lossless_;
  const Mox16s* scale_;
};

/// Blocks like Base's, but the DC values of a plane are the eight of 4:2:2, with a scale of their own. Pair rules the
/// sums of two of them, Sum those of four.
template <class Base, class Pair, class Sum>
class Residual422 : public Base {
 public:
  Residual422(const Base& base, Mox32s qp, Mox32s levelScaleDC) : Base(base), qp_(qp), level_scale_dc_(levelScaleDC) {}

  void chroma_dc(typename Base::Coeff* dc) const {
    if (!this->lossless()) active::scaled_chroma_dc_2x4<Pair, Sum>(dc, qp_, level_scale_dc_);
  }

 private:
  Mox32s qp_, level_scale_dc_;
};
using ScaledResidual422 = Residual422<ScaledResidual, Sat16, Wrap16>;
using HighResidual422 = Residual422<HighResidual, Wrap32, Wrap32>;

}  // namespace mox
