/// Portable kernel of the AVS forward transform and quantiser of an 8x8 block.
#pragma once

#include "avs/transform_tables.hpp"
#include "frame/arithmetic.hpp"

namespace mox::px {

/// The quantiser of a qp: levels are (|y| * factor + rounding) >> shift.
constexpr int avs_quant_shift(Mox32s qp) { return 19 + (qp >> 3); }

/// 2^shift / (8 * step) * (512 / norm(i)) * (512 / norm(j)), rounded, for the coefficient of two frequencies.
constexpr Mox32u avs_quant_factor(Mox32s qp, int i, int j) {
  // In whole numbers: step is scale / 2^dequantShift.
  const AvsDequant step = avs_dequant(qp);
  const auto dividend = static_cast<unsigned long long>(512 * 512) << (avs_quant_shift(qp) + step.shift - 3);
  const auto divisor = static_cast<unsigned long long>(step.scale) * static_cast<unsigned>(avs_norm(i) * avs_norm(j));
  return static_cast<Mox32u>((dividend + divisor / 2) / divisor);
}

/// Factors by [frequency modulo 4][frequency modulo 4]: rows i and i + 4 have one norm. All fit into 16 bits.
struct AvsQuantFactors {
  Mox16u factor[4][4];
};
/// [qp]
inline constexpr auto kAvsQuant = make_table<kAvsMostQp + 1>([]<std::size_t QP>() {
  AvsQuantFactors factors{};
  for (int i = 0; i < 16; ++i)
    factors.factor[i / 4][i % 4] = static_cast<Mox16u>(avs_quant_factor(static_cast<Mox32s>(QP), i / 4, i % 4));
  return factors;
});
static_assert(avs_quant_factor(0, 0, 0) == 32768 && avs_quant_factor(0, 1, 1) == 43969);
static_assert(avs_norm(4) == avs_norm(0) && avs_norm(5) == avs_norm(1) && avs_norm(6) == avs_norm(2) &&
              avs_norm(7) == avs_norm(3));

/// What is added before the shift, of `rounding` in 1/256 of a level.
constexpr Mox32s avs_rounding(Mox32s qp, Mox32s rounding) {
  return static_cast<Mox32s>((static_cast<long long>(rounding) << avs_quant_shift(qp)) >> 8);
}

/// Quantises the coefficient of frequencies i and j. |y| is 32640 at most and factors are below 2^16: the product and
/// the rounding are below 2^31.
constexpr Mox16s quantise_avs(Mox16s y, Mox32s qp, int i, int j, Mox32s rounding) {
  const Mox32s magnitude = y < 0 ? -y : y;
  const Mox32s level =
      (magnitude * kAvsQuant[static_cast<std::size_t>(qp)].factor[i & 3][j & 3] + rounding) >> avs_quant_shift(qp);
  return static_cast<Mox16s>(y < 0 ? -level : level);
}

/// Largest magnitude of a residual: the difference of two samples.
inline constexpr Mox32s kAvsMostResidual = 255;

/// Transforms and quantises 64 values; returns how many levels are not 0. `residual` and `levels` may be one array.
inline Mox32s transform_quant_avs(const Mox16s* residual, Mox16s* levels, Mox32s qp, Mox32s rounding) {
  Mox32s rows[64];  // 16320 at most
  for (int i = 0; i < 64; ++i) {
    rows[i] = 0;
    for (int x = 0; x < 8; ++x)
      rows[i] += clip(residual[(i & ~7) + x], -kAvsMostResidual, kAvsMostResidual) * kAvsTransform[i & 7][x];
  }
  Mox32s count = 0;
  for (int i = 0; i < 64; ++i) {
    Mox32s sum = 0;
    for (int y = 0; y < 8; ++y) sum += rows[8 * y + (i & 7)] * kAvsTransform[i >> 3][y];
    levels[i] = quantise_avs(static_cast<Mox16s>((sum + 16) >> 5), qp, i >> 3, i & 7, avs_rounding(qp, rounding));
    count += levels[i] != 0;
  }
  return count;
}

}  // namespace mox::px
