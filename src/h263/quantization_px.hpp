/// Portable kernels of H.263 quantisation.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "frame/levels.hpp"
#include "moxvc/types.h"

namespace mox::px {

inline constexpr Mox32s kMostQp = 31;

/// What is added to a magnitude other than 0 in front of the quantisation, and the limits behind both steps.
struct QuantRule {
  Mox32s offset, mostMagnitude, mostLevel;
};

/// Levels are limited to 8 bits without modified quantisation, where a small quantiser could give more.
constexpr Mox32s most_level(Mox32s qp, bool isModified) { return qp < 8 && !isModified ? 127 : 32767; }

constexpr QuantRule inter_rule(Mox32s qp, bool isModified) { return {-(qp >> 1), 32768, most_level(qp, isModified)}; }
constexpr QuantRule intra_rule(Mox32s qp, bool isModified) { return {0, 32768, most_level(qp, isModified)}; }
/// Of advanced intra coding: the sum with the offset saturates, which qp 1 does not have.
constexpr QuantRule advanced_rule(Mox32s qp, bool isModified) {
  return {3 * qp >> 2, qp == 1 ? 32768 : 32767, isModified ? 32767 : 127};
}

/// All coefficients. The number of levels other than 0.
inline Mox32s quantize(Mox16s* block, Mox32s qp, const QuantRule& rule) {
  const Mox32s reciprocal = _p_QuantInv[qp - 1];
  Mox32s count = 0;
  for (int i = 0; i < 64; ++i) {
    const Mox32s x = block[i];
    const Mox32s magnitude = x == 0 ? 0 : clip(std::abs(x) + rule.offset, 0, rule.mostMagnitude);
    const Mox32s level = std::min(magnitude * reciprocal >> 16, rule.mostLevel);
    block[i] = static_cast<Mox16s>(x < 0 ? -level : level);
    count += level != 0;
  }
  return count;
}

/// 8 bits that are neither 0 nor 255 for a DC in the range of the transform.
constexpr Mox16s quantize_dc(Mox16s dc) {
  const Mox32s level = (dc + 4) >> 3;
  return static_cast<Mox16s>(level == 0 ? 1 : level == 255 ? 254 : level);
}

/// The offset of inverse quantisation: results are odd.
constexpr Mox32s odd_offset(Mox32s qp) { return qp & 1 ? qp : qp - 1; }

/// What becomes of levels in inverse quantisation: a multiple, an offset away from 0, and limits.
struct DequantRule {
  Mox32s step, offset, low, high;
};
constexpr DequantRule dequant_rule(Mox32s qp, bool isModified) {
  if (isModified) return {2 * qp, odd_offset(qp), -32768, 32767};
  return {2 * qp, odd_offset(qp), -2048, 2047};
}
/// Of advanced intra coding.
constexpr DequantRule advanced_dequant_rule(Mox32s qp) { return {2 * qp, 0, -32768, 32767}; }

/// All groups of eight up to the one that holds indexLast.
inline void dequantize(Mox16s* block, Mox32s indexLast, const DequantRule& rule) {
  const int end = std::min(indexLast, 63) / 8 * 8 + 8;
  for (int i = 0; i < end; ++i) {
    const Mox32s sign = (block[i] > 0) - (block[i] < 0);
    const Mox32s value = sat16(wrap16(block[i] * rule.step) + sign * rule.offset);
    block[i] = static_cast<Mox16s>(clip(value, rule.low, rule.high));
  }
}

}  // namespace mox::px
