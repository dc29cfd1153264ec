/// Vector kernels of H.264 forward quantisation, with and without the transform before it.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>

#include "frame/generation.hpp"
#include "h264/forward_transform_quant_px.hpp"
#include "h264/forward_transform_vec.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

// ---- Quantisers. ----

/// Products of magnitudes and multipliers of either sign, of the lower and the upper words of each block. Magnitudes
/// are 0 to 32768, or 32767 if kSmall is set, which is quicker.
template <bool kSmall, int B>
MOX_INLINE void multiply(simd::s16<B> magnitude, simd::s16<B> scale, simd::s32<B>& lower, simd::s32<B>& upper) {
  if constexpr (kSmall) {
    const auto low = magnitude * scale, high = mulhi(magnitude, scale);
    lower = simd::as<simd::s32>(lo16(low, high)), upper = simd::as<simd::s32>(hi16(low, high));
  } else {
    const auto wide = simd::as<simd::u16>(magnitude);
    lower = wide_lo(wide) * wide_lo(scale), upper = wide_hi(wide) * wide_hi(scale);
  }
}

/// Levels of words, which are not -32768 if kSmall is set. A product, and its sum with a rounding below 2^24, have 31
/// bits and a sign.
template <class Keep, bool kSmall = false, int B>
MOX_INLINE simd::s16<B> quantised(simd::s16<B> x, simd::s16<B> scale, px::Quantiser q) {
  simd::s32<B> a, b;
  multiply<kSmall>(abs(x), scale, a, b);
  const auto rounding = simd::splat<simd::s32, B>(q.rounding), mask = simd::splat<simd::s32, B>(0xFFFF);
  a = shr(a + rounding, q.shift), b = shr(b + rounding, q.shift);
  if constexpr (std::is_same_v<Keep, Sat16>) {
    return signed_by(packs(a, b), x);
  } else {
    return signed_by(simd::as<simd::s16>(packus(a & mask, b & mask)), x);
  }
}

/// The same by a shift of 16 or more, in words alone: the upper halves of the products and what their sums with the
/// rounding, whose lower half is not 0, carry. Levels are below 2^14 + 2^7. Unless kSmall is set, scales are not below
/// 0.
template <bool kSmall, int B>
MOX_INLINE simd::s16<B> quantised_high(simd::s16<B> x, simd::s16<B> scale, px::Quantiser q) {
  const auto magnitude = abs(x);
  simd::s16<B> high;
  if constexpr (kSmall) {
    high = mulhi(magnitude, scale);
  } else {
    high = simd::as<simd::s16>(mulhi(simd::as<simd::u16>(magnitude), simd::as<simd::u16>(scale)));
  }
  // A half of the sum of the lower halves has 16 bits.
  const auto half = avg(simd::as<simd::u16>(magnitude * scale), simd::splat<simd::u16, B>(q.rounding - 1));
  const auto carry = simd::as<simd::s16>(simd::shr<15>(half));
  return signed_by(shr(high + simd::splat<simd::s16, B>(q.rounding >> 16) + carry, q.shift - 16), x);
}

/// Levels of doublewords; products wrap.
template <class Keep, bool kSmall = false, int B>
MOX_INLINE simd::s32<B> quantised(simd::s32<B> x, simd::s32<B> scale, px::Quantiser q) {
  return signed_by(shr(abs(x) * scale + simd::splat<simd::s32, B>(q.rounding), q.shift), x);
}

/// Levels of DC values, which share a multiplier. Only those of 4x4 luma wrap; for the others, measured, doublewords
/// are as quick.
template <class Keep, int B>
MOX_INLINE simd::s16<B> quantised_dc(simd::s16<B> x, Mox32s scale, px::Quantiser q) {
  const auto scales = simd::splat<simd::s16, B>(scale);
  const bool high = std::is_same_v<Keep, Wrap16> && q.shift >= 16 && scale >= 0;
  return high ? quantised_high<false>(x, scales, q) : quantised<Keep>(x, scales, q);
}
/// The low 32 bits of (x * scale + rounding) >> shift, 12 to 30; the products have 64 bits. What is below 0 rounds the
/// other way, by 2^shift - 1 - rounding.
template <class Keep, int B>
MOX_INLINE simd::s32<B> quantised_dc(simd::s32<B> x, Mox32s scale, px::Quantiser q) {
  const auto factor = simd::splat<simd::s32, B>(scale), unit = simd::splat<simd::s32, B>((1 << q.shift) - 1);
  const auto rounding = (simd::shr<31>(x) & unit) ^ simd::splat<simd::s32, B>(q.rounding);
  const auto halves_of = [](simd::s32<B> lower, simd::s32<B> upper) {
    return simd::as<simd::s32>(simd::blend<0xCC>(simd::as<simd::s16>(lower), simd::as<simd::s16>(upper)));
  };
  const auto even = add64(mul_even(x, factor), halves_of(rounding, simd::zero<simd::s32, B>()));
  const auto odd = add64(mul_even(simd::shru64<32>(x), factor), simd::shru64<32>(rounding));
  return halves_of(shru64(even, q.shift), shl64(odd, 32 - q.shift));
}

// ---- 16 values: a 4x4 block, or a quarter of an 8x8 one. ----

/// In as few vectors of words or doublewords as the generation has.
template <class Element>
struct Values16 {
  static constexpr int B = simd::kBlocks, kEach = 16 * B / int{sizeof(Element)}, kParts = 16 / kEach;
  std::conditional_t<sizeof(Element) == 2, simd::s16<B>, simd::s32<B>> part[kParts];
};

template <class Element, template <int> class V>
MOX_INLINE Values16<Element> joined_values(const V<1>* rows) {
  Values16<Element> values;
  for (int i = 0; i < values.kParts; ++i) values.part[i] = simd::joined<V, values.B>(rows + values.B * i);
  return values;
}

/// Values of 16 or 32 bits; those of 16 may become doublewords.
template <class Element, class Source>
MOX_INLINE Values16<Element> load_values(const Source* p) {
  constexpr int B = Values16<Element>::B;
  Values16<Element> values;
  for (int i = 0; i < values.kParts; ++i) {
    const Source* const from = p + values.kEach * i;
    if constexpr (sizeof(Source) < sizeof(Element)) {
      values.part[i] = simd::load_row_wide<B>(from);
    } else if constexpr (sizeof(Element) == 2) {
      values.part[i] = simd::load_row<simd::s16, B>(from);
    } else {
      values.part[i] = simd::load_row<simd::s32, B>(from);
    }
  }
  return values;
}
template <class Element>
MOX_INLINE void store_values(const Values16<Element>& values, Element* p) {
  for (int i = 0; i < values.kParts; ++i) store_row(values.part[i], p + values.kEach * i);
}

template <class Keep, bool kSmall = false, class Element>
MOX_INLINE Values16<Element> quantised(Values16<Element> values, const Values16<Element>& scales, px::Quantiser q) {
  for (int i = 0; i < values.kParts; ++i) values.part[i] = quantised<Keep, kSmall>(values.part[i], scales.part[i], q);
  return values;
}

// ---- What the entropy coder needs to know of the levels. ----

/// How many words are not 0.
template <int B>
MOX_INLINE Mox32s count_words(simd::s16<B> levels) {
  return 8 * B - std::popcount(top_bits(simd::as<simd::u8>(equal(levels, simd::zero<simd::s16, B>())))) / 2;
}

/// Of the levels that it is shown: how many are not 0, and the largest place of such a level.
class LevelTally {
 public:
  template <class Element>
  MOX_INLINE void add(const Values16<Element>& levels, const Mox16s* places) {
    for (int i = 0; i < 16; i += 8 * B) {
      const auto* const part = levels.part + i / levels.kEach;
      if constexpr (sizeof(Element) == 2) {
        add_words(part[0], places + i);
      } else {
        add_words(regroup(packs(part[0], part[1])), places + i);
      }
    }
  }
  MOX_INLINE Mox32s count() const { return count_; }
  MOX_INLINE Mox32s last() const {
    const auto last = max(simd::part<0>(last_), simd::part<B - 1>(last_));
    return 32767 - simd::smallest(simd::as<simd::u16>(simd::splat<simd::s16, 1>(32767) - last)).value;
  }

 private:
  static constexpr int B = simd::kBlocks;
  MOX_INLINE void add_words(simd::s16<B> levels, const Mox16s* places) {
    const auto none = equal(levels, simd::zero<simd::s16, B>());
    last_ = max(last_, andnot(none, simd::load_row<simd::s16, B>(places)));
    count_ += count_words(levels);
  }
  simd::s16<B> last_ = simd::zero<simd::s16, B>();
  Mox32s count_ = 0;
};

/// The value of element 0.
template <class Element>
MOX_INLINE Element first_value(const Values16<Element>& values) {
  return wrap_to<Element>(simd::element<0>(simd::as<simd::s32>(simd::part<0>(values.part[0]))));
}

// ---- 4x4 blocks. ----

/// Levels within the limit go to pDst at once; others are left to the portable kernel.
MOX_INLINE MoxStatus store_within_limit(const Values16<Mox16s>& levels, Mox16s* pDst, int8_t* pNumLevels,
                                        const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  constexpr int B = Values16<Mox16s>::B;
  auto over = simd::zero<simd::s16, B>();
  for (const auto& part : levels.part) over = over | greater(abs(part), simd::splat<simd::s16, B>(MoxH264LevelLimit));
  if (!is_zero(simd::as<simd::u16>(over))) [[unlikely]] {
    Mox16s values[16];
    store_values(levels, values);
    return px::store_within_limit(values, pDst, pNumLevels, pScanMatrix, pLastCoeff);
  }
  store_values(levels, pDst);
  LevelTally tally;
  tally.add(levels, pScanMatrix);
  *pNumLevels = static_cast<int8_t>(px::signed_count(tally.count(), first_value(levels)));
  *pLastCoeff = tally.last() & 127;
  return moxStsOk;
}

/// Transforms 16 words by the rule P.
template <class P>
MOX_INLINE Values16<typename P::Value> forward_transform_4x4(const Mox16s* pSrc) {
  if constexpr (std::is_same_v<P, Wrap32>) {
    simd::s32<1> rows[4];
    for (int y = 0; y < 4; ++y) rows[y] = simd::load_row_wide<1>(pSrc + 4 * y);
    for (int pass = 0; pass < 2; ++pass) {
      transpose(rows);
      forward_pass<P, 1>(rows);
    }
    return joined_values<Mox32s>(rows);
  } else {
    const auto block = forward_transform<P>(load_block_4x4(pSrc));
    const simd::s16<1> halves[2] = {block.upper, block.lower};
    return joined_values<Mox16s>(halves);
  }
}

inline MoxStatus transform_quant_residual(Mox16s* pSrcDst, Mox32s qp, int8_t* pNumLevels, bool intra,
                                          const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  const auto scales = load_values<Mox16s>(FwdQuantTable_16s[h264_qp_rem[qp]].data());
  const auto q = px::exact_quantiser(h264_qp6[qp] + px::kTableBits, intra);
  return store_within_limit(quantised<Sat16>(forward_transform_4x4<Wrap16>(pSrcDst), scales, q), pSrcDst, pNumLevels,
                            pScanMatrix, pLastCoeff);
}

template <class P>
MoxStatus transform_quant_4x4(const Mox16s* pSrc, typename P::Value* pDst, Mox32s qp, Mox32s* pNumLevels, bool intra,
                              const Mox16s* pScanMatrix, Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  using Value = typename P::Value;
  const auto scales = load_values<Value>(pLevelScale ? pLevelScale : FwdQuantTable_16s[h264_qp_rem[qp]].data());
  const auto q = px::exact_quantiser(h264_qp6[qp] + (pLevelScale ? px::kScaleBits : px::kTableBits), intra);
  const auto levels = quantised<P>(forward_transform_4x4<P>(pSrc), scales, q);
  store_values(levels, pDst);
  LevelTally tally;
  tally.add(levels, pScanMatrix);
  *pLastCoeff = tally.last();
  *pNumLevels = px::signed_count(tally.count(), first_value(levels));
  return moxStsOk;
}

template <class Keep, class Source, class Scale>
MoxStatus quantise_residual_4x4(const Source* pSrc, typename Keep::Value* pDst, Mox32s* pNumLevels, Mox32s* pLastCoeff,
                                const Scale* pQuantTable, const Mox16s* pScanMatrix, Mox32u qp, bool intra,
                                const std::array<Raster4x4<Scale>, 6>& fallback) {
  using Value = typename Keep::Value;
  const int per = h264_qp6[qp];
  const auto& rounding = pQuantTable ? moxH264QuantResid_RoundValDef_32s : moxH264QuantResid_RoundValGiven_32s;
  const px::Quantiser q{rounding[per + intra], per + (pQuantTable ? px::kScaleBits : px::kTableBits)};
  const auto scales = load_values<Value>(pQuantTable ? pQuantTable : fallback[h264_qp_rem[qp]].data());
  const auto levels = quantised<Keep>(load_values<Value>(pSrc), scales, q);
  store_values(levels, pDst);
  LevelTally tally;
  tally.add(levels, pScanMatrix);
  *pNumLevels = tally.count();
  *pLastCoeff = tally.last();
  return moxStsOk;
}

// ---- 8x8 blocks. ----

/// The levels of values, which are not -32768 if they are words.
template <class Keep, class Scale, class Quantise>
MOX_INLINE MoxStatus quantise_8x8(const typename Keep::Value* pSrc, typename Keep::Value* pDst,
                                  const Mox16s* pScanMatrix, const Scale* pScaleLevels, Mox32s* pNumLevels,
                                  Mox32s* pLastCoeff, Quantise quantise) {
  using Value = typename Keep::Value;
  LevelTally tally;
  for (int i = 0; i < 64; i += 16) {
    auto values = load_values<Value>(pSrc + i);
    const auto scales = load_values<Value>(pScaleLevels + i);
    for (int k = 0; k < values.kParts; ++k) {
      auto& x = values.part[k];
      if constexpr (sizeof(Value) == 2) x = max(x, simd::splat<simd::s16, values.B>(-32767));
      x = quantise(x, scales.part[k]);
    }
    store_values(values, pDst + i);
    tally.add(values, pScanMatrix + i);
  }
  *pNumLevels = px::signed_count(tally.count(), pDst[0]);
  *pLastCoeff = tally.last();
  return moxStsOk;
}

template <class Keep, class Scale>
MoxStatus quantise_luma_8x8(const typename Keep::Value* pSrc, typename Keep::Value* pDst, Mox32s qpPer, bool intra,
                            const Mox16s* pScanMatrix, const Scale* pScaleLevels, Mox32s* pNumLevels,
                            Mox32s* pLastCoeff) {
  const auto q = px::rough_quantiser(qpPer + px::kScaleBits + 1, intra);
  if constexpr (std::is_same_v<Keep, Sat16>) {
    if (q.shift >= 16) {
      return quantise_8x8<Keep>(pSrc, pDst, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff,
                                [q](auto x, auto scale) { return quantised_high<true>(x, scale, q); });
    }
  }
  return quantise_8x8<Keep>(pSrc, pDst, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff,
                            [q](auto x, auto scale) { return quantised<Keep, true>(x, scale, q); });
}

}  // namespace mox::vec
