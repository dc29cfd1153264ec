/// Portable kernels of H.264 forward quantisation, with and without the transform before it. Blocks are dense.
///
/// The policy Keep (Wrap16, Sat16, Wrap32) rules what becomes of a level that its element does not hold; transforms
/// have a policy of their own where theirs differs.
#pragma once

#include <algorithm>
#include <array>
#include <type_traits>

#include "frame/arithmetic.hpp"
#include "h264/forward_transform_px.hpp"
#include "h264/quant_tables.hpp"
#include "h264/transform_core.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// level = sign(x) * ((|x| * scale + rounding) >> shift).
struct Quantiser {
  Mox32s rounding;
  int shift;
};

/// Rounds by a third or a sixth of the unit. (A sixth is half a third, rounded downwards too.)
constexpr Quantiser exact_quantiser(int shift, bool intra) { return {(1 << shift) / 3 >> !intra, shift}; }
/// Rounds by a third or a sixth in units of 1/2048: near the exact ones and not a substitute for them.
constexpr Quantiser rough_quantiser(int shift, bool intra) { return {(intra ? 682 : 342) << (shift - 11), shift}; }
static_assert(exact_quantiser(17, true).rounding == 43690 && exact_quantiser(17, false).rounding == 21845);
static_assert(rough_quantiser(16, true).rounding == 21824 && rough_quantiser(16, false).rounding == 10944);

/// Shift at qp / 6 = 0: with the default multipliers, and with a caller's, which are those over 16. DC values and 8x8
/// blocks take one bit more.
inline constexpr int kTableBits = 15, kScaleBits = 11;

/// (|x| * scale + rounding) >> shift as wide as Product; what does not fit wraps.
template <class Product>
constexpr Product scaled_magnitude(Mox32s x, Mox32s scale, Quantiser q) {
  using Bits = std::make_unsigned_t<Product>;
  const Bits magnitude = x < 0 ? Bits{0} - static_cast<Bits>(x) : static_cast<Bits>(x);
  return static_cast<Product>(magnitude * static_cast<Bits>(scale) + static_cast<Bits>(q.rounding)) >> q.shift;
}

/// The level of x as Keep stores it: the magnitude is cut, then it gets its sign.
template <class Keep, class Product = Mox32s>
constexpr typename Keep::Value quantise(Mox32s x, Mox32s scale, Quantiser q) {
  const typename Keep::Value magnitude = keep<Keep>(wrap32(scaled_magnitude<Product>(x, scale, q)));
  return wrap_to<typename Keep::Value>(x < 0 ? sub32(0, magnitude) : magnitude);
}
static_assert(quantise<Sat16>(-32768, 32767, {0, 11}) == -32767 && quantise<Wrap16>(-32768, 32767, {0, 11}) == 16);
static_assert(quantise<Wrap32>(1 << 30, 4, {0, 4}) == 0 && quantise<Wrap32, long long>(1 << 30, 4, {0, 4}) == 1 << 28);

/// N values with a scale each. source and levels are distinct or the same.
template <int N, class Keep, class Source, class Scale>
void quantise_block(const Source* source, typename Keep::Value* levels, const Scale* scales, Quantiser q) {
  typename Keep::Value result[N];
  for (int i = 0; i < N; ++i) result[i] = quantise<Keep>(source[i], static_cast<Mox32s>(scales[i]), q);
  std::copy_n(result, N, levels);
}

/// N values with one scale; products of 32-bit values have 64 bits.
template <int N, class Keep>
void quantise_dc(const typename Keep::Value* source, typename Keep::Value* levels, Mox32s scale, Quantiser q) {
  using Product = std::conditional_t<sizeof(typename Keep::Value) == 4, long long, Mox32s>;
  typename Keep::Value result[N];
  for (int i = 0; i < N; ++i) result[i] = quantise<Keep, Product>(source[i], scale, q);
  std::copy_n(result, N, levels);
}

// ---- What the entropy coder needs to know of the levels. ----

template <int N, class Level>
Mox32s count_levels(const Level* levels) {
  Mox32s count = 0;
  for (int i = 0; i < N; ++i) count += levels[i] != 0;
  return count;
}

/// The count, negative if there is a DC.
constexpr Mox32s signed_count(Mox32s count, Mox32s dc) { return dc ? -count : count; }

/// The largest place of a level, 0 if there is none.
template <int N, class Level>
Mox16s last_place(const Level* levels, const Mox16s* pScanMatrix) {
  Mox16s last = 0;
  for (int i = 0; i < N; ++i) last = std::max(last, levels[i] ? pScanMatrix[i] : Mox16s{0});
  return last;
}

// ---- 8-bit blocks without scaling lists, whose levels have a limit. ----

/// Whether one of 8 levels, none of them -32768, is one that the entropy coder cannot write.
inline bool over_limit(const Mox16s* levels) {
  Mox16s most = 0;
  for (int i = 0; i < 8; ++i) most = std::max(most, wrap16(levels[i] < 0 ? -levels[i] : levels[i]));
  return most > MoxH264LevelLimit;
}

/// Stores 16 levels half by half, then what is to be known of them. From the first half over the limit on, nothing is
/// written.
inline MoxStatus store_within_limit(const Mox16s* levels, Mox16s* pDst, int8_t* pNumLevels, const Mox16s* pScanMatrix,
                                    Mox8u* pLastCoeff) {
  for (int half = 0; half < 16; half += 8) {
    if (over_limit(levels + half)) return moxStsLevelOverflow;
    std::copy_n(levels + half, 8, pDst + half);
  }
  const Mox16s last = last_place<16>(levels, pScanMatrix);
  *pNumLevels = static_cast<int8_t>(signed_count(count_levels<16>(levels), levels[0]));
  *pLastCoeff = last & 127;
  return moxStsOk;
}

inline MoxStatus transform_quant_residual(Mox16s* pSrcDst, Mox32s qp, int8_t* pNumLevels, bool intra,
                                          const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  Mox16s block[16];
  std::copy_n(pSrcDst, 16, block);
  forward_4x4<Wrap16>(block);
  quantise_block<16, Sat16>(block, block, FwdQuantTable_16s[h264_qp_rem[qp]].data(),
                            exact_quantiser(h264_qp6[qp] + kTableBits, intra));
  return store_within_limit(block, pSrcDst, pNumLevels, pScanMatrix, pLastCoeff);
}

inline MoxStatus transform_quant_luma_dc(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, int8_t* pNumLevels,
                                         bool needTransform, const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  const int per = h264_qp6[qp];
  Mox16s levels[16];
  if (needTransform) luma_dc_forward<Wrap16>(pDCLevels, pTBlock);
  quantise_dc<16, Sat16>(pTBlock, levels, FwdQuantTable[h264_qp_rem[qp]][0],
                         {dc_rounds[9 + per], per + kTableBits + 1});
  return store_within_limit(levels, pDCLevels, pNumLevels, pScanMatrix, pLastCoeff);
}

/// Values over the limit are stored like all others.
inline MoxStatus transform_quant_chroma_dc(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, int8_t* pNumLevels,
                                           bool intra, bool needTransform) {
  const int per = h264_qp6[qp];
  if (needTransform) {
    std::copy_n(pDCLevels, 4, pTBlock);
    hadamard_2x2<Wrap16>(pTBlock);
  }
  Mox16s levels[8] = {};
  quantise_dc<4, Sat16>(pTBlock, levels, FwdQuantTable[h264_qp_rem[qp]][0],
                        {dc_rounds[9 * intra + per], per + kTableBits + 1});
  std::copy_n(levels, 4, pDCLevels);
  *pNumLevels = static_cast<int8_t>(signed_count(count_levels<4>(levels), levels[0]));
  return over_limit(levels) ? moxStsLevelOverflow : moxStsOk;
}

// ---- Blocks with scaling lists, and blocks of more than 8 bits. ----

/// P rules the transform and the levels.
template <class P>
MoxStatus transform_quant_4x4(const Mox16s* pSrc, typename P::Value* pDst, Mox32s qp, Mox32s* pNumLevels, bool intra,
                              const Mox16s* pScanMatrix, Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  const Mox16s* const scales = pLevelScale ? pLevelScale : FwdQuantTable_16s[h264_qp_rem[qp]].data();
  typename P::Value block[16];
  std::copy_n(pSrc, 16, block);
  forward_4x4<P>(block);
  quantise_block<16, P>(block, block, scales,
                        exact_quantiser(h264_qp6[qp] + (pLevelScale ? kScaleBits : kTableBits), intra));
  std::copy_n(block, 16, pDst);
  *pLastCoeff = last_place<16>(block, pScanMatrix);
  *pNumLevels = signed_count(count_levels<16>(block), block[0]);
  return moxStsOk;
}

/// The shift of DC values, and their scale: the caller's or that of a flat list.
constexpr int dc_shift(int per, const Mox16s* pLevelScale) { return per + 1 + (pLevelScale ? kScaleBits : kTableBits); }
constexpr Mox32s dc_multiplier(int rem, const Mox16s* pLevelScale) {
  return pLevelScale ? *pLevelScale : FwdQuantTable[rem][0];
}

/// P, Sat16 or Wrap32, rules the transform and the levels.
template <class P>
MoxStatus transform_quant_chroma_dc_2x2(typename P::Value* pDCLevels, typename P::Value* pTBlock, Mox32s qp,
                                        Mox32s* pNumLevels, bool intra, bool needTransform, const Mox16s* pLevelScale) {
  if (needTransform) {
    std::copy_n(pDCLevels, 4, pTBlock);
    hadamard_2x2<P>(pTBlock);
  }
  quantise_dc<4, P>(pTBlock, pDCLevels, dc_multiplier(h264_qp_rem[qp], pLevelScale),
                    exact_quantiser(dc_shift(h264_qp6[qp], pLevelScale), intra));
  *pNumLevels = signed_count(count_levels<4>(pDCLevels), pDCLevels[0]);
  return moxStsOk;
}

/// P, Sat16 or Wrap32, rules the first sums of the columns and the levels, Sum the other sums. The QP is 3 above that
/// of the AC coefficients.
template <class P, class Sum>
MoxStatus transform_quant_chroma_dc_2x4(typename P::Value* pDCLevels, typename P::Value* pTBlock, Mox32s qp,
                                        Mox32s* pNumLevels, bool intra, bool needTransform, const Mox16s* pLevelScale) {
  if (needTransform) {
    std::copy_n(pDCLevels, 8, pTBlock);
    hadamard_2x4<P, Sum>(pTBlock);
  }
  quantise_dc<8, P>(pTBlock, pDCLevels, dc_multiplier(h264_qp_rem[qp + 3], pLevelScale),
                    rough_quantiser(dc_shift(h264_qp6[qp + 3], pLevelScale), intra));
  *pNumLevels = signed_count(count_levels<8>(pDCLevels), pDCLevels[0]);
  return moxStsOk;
}

/// P, Wrap16 or Wrap32, rules the transform and the levels. The sign of the count is that of a transformed DC: one
/// whose level is 0 counts as well.
template <class P>
MoxStatus transform_quant_luma_dc_4x4(typename P::Value* pDCLevels, typename P::Value* pTBlock, Mox32s qp,
                                      Mox32s* pNumLevels, bool needTransform, const Mox16s* pScanMatrix,
                                      Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  const int shift = dc_shift(h264_qp6[qp], pLevelScale);
  if (needTransform) luma_dc_forward<P>(pDCLevels, pTBlock);
  const Mox32s dc = pTBlock[0];
  quantise_dc<16, P>(pTBlock, pDCLevels, dc_multiplier(h264_qp_rem[qp], pLevelScale),
                     pLevelScale ? rough_quantiser(shift, true) : exact_quantiser(shift, true));
  *pLastCoeff = last_place<16>(pDCLevels, pScanMatrix);
  *pNumLevels = signed_count(count_levels<16>(pDCLevels), dc);
  return moxStsOk;
}

/// pQuantTable or, if that is null, fallback: [qp % 6], the default multipliers.
template <class Keep, class Source, class Scale>
MoxStatus quantise_residual_4x4(const Source* pSrc, typename Keep::Value* pDst, Mox32s* pNumLevels, Mox32s* pLastCoeff,
                                const Scale* pQuantTable, const Mox16s* pScanMatrix, Mox32u qp, bool intra,
                                const std::array<Raster4x4<Scale>, 6>& fallback) {
  const int per = h264_qp6[qp];
  const auto& rounding = pQuantTable ? moxH264QuantResid_RoundValDef_32s : moxH264QuantResid_RoundValGiven_32s;
  typename Keep::Value levels[16];
  quantise_block<16, Keep>(pSrc, levels, pQuantTable ? pQuantTable : fallback[h264_qp_rem[qp]].data(),
                           {rounding[per + intra], per + (pQuantTable ? kScaleBits : kTableBits)});
  std::copy_n(levels, 16, pDst);
  *pNumLevels = count_levels<16>(levels);
  *pLastCoeff = last_place<16>(levels, pScanMatrix);
  return moxStsOk;
}

/// Keep, Sat16 or Wrap32, rules the levels.
template <class Keep, class Scale>
MoxStatus quantise_luma_8x8(const typename Keep::Value* pSrc, typename Keep::Value* pDst, Mox32s qpPer, bool intra,
                            const Mox16s* pScanMatrix, const Scale* pScaleLevels, Mox32s* pNumLevels,
                            Mox32s* pLastCoeff) {
  typename Keep::Value block[64];
  std::copy_n(pSrc, 64, block);
  // A 16-bit magnitude saturates before it is multiplied: the one value concerned counts as its neighbour.
  if constexpr (std::is_same_v<Keep, Sat16>) {
    for (Mox16s& x : block) x = std::max(x, Mox16s{-32767});
  }
  quantise_block<64, Keep>(block, block, pScaleLevels, rough_quantiser(qpPer + kScaleBits + 1, intra));
  std::copy_n(block, 64, pDst);
  *pNumLevels = signed_count(count_levels<64>(block), block[0]);
  *pLastCoeff = last_place<64>(block, pScanMatrix);
  return moxStsOk;
}

}  // namespace mox::px
