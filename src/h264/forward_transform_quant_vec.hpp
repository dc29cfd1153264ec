/// Vector kernels of H.264 forward quantisation of 16-bit blocks, with and without the transform before it.
#pragma once

#include <bit>
#include <cstddef>

#include "frame/generation.hpp"
#include "h264/forward_transform_quant_px.hpp"
#include "h264/forward_transform_vec.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

// ---- Quantisers. ----

/// Magnitudes of 32 bits as Keep stores them in 16.
template <class Keep, int B>
MOX_INLINE simd::s16<B> kept_words(simd::s32<B> low, simd::s32<B> high) {
  if constexpr (std::is_same_v<Keep, Sat16>) {
    return packs(low, high);
  } else {
    const auto mask = simd::splat<simd::s32, B>(0xFFFF);
    return simd::as<simd::s16>(packus(low & mask, high & mask));
  }
}

/// Upper halves of the products of magnitudes, 0 to 32768, and multipliers of either sign.
template <int B>
MOX_INLINE simd::s16<B> high_products(simd::s16<B> magnitude, simd::s16<B> scale) {
  const auto high = mulhi(simd::as<simd::u16>(magnitude), simd::as<simd::u16>(scale));
  return simd::as<simd::s16>(high) - (magnitude & simd::shr<15>(scale));
}

/// The levels of words, which are not -32768 if kSmall is set. A product, and its sum with a rounding below 2^24, have
/// 31 bits and a sign.
template <class Keep, bool kSmall = false, int B>
MOX_INLINE simd::s16<B> quantised_words(simd::s16<B> x, simd::s16<B> scale, px::Quantiser q) {
  const auto magnitude = abs(x);
  const auto low = magnitude * scale, high = kSmall ? mulhi(magnitude, scale) : high_products(magnitude, scale);
  const auto rounding = simd::splat<simd::s32, B>(q.rounding);
  const auto shifted = [=](simd::s16<B> products) { return shr(simd::as<simd::s32>(products) + rounding, q.shift); };
  return signed_by(kept_words<Keep>(shifted(lo16(low, high)), shifted(hi16(low, high))), x);
}

// ---- What the entropy coder needs to know of the levels. ----

/// Of the vectors of words that it is shown: how many words are not 0, and the largest place of such a word.
template <int B>
class LevelTally {
 public:
  MOX_INLINE void add(simd::s16<B> levels, const Mox16s* places) {
    const auto none = equal(levels, simd::zero<simd::s16, B>());
    last_ = max(last_, andnot(none, simd::load_row<simd::s16, B>(places)));
    count_ += 8 * B - std::popcount(top_bits(simd::as<simd::u8>(none))) / 2;
  }
  MOX_INLINE Mox32s count() const { return count_; }
  MOX_INLINE Mox32s last() const {
    auto last = simd::part<0>(last_);
    if constexpr (B == 2) last = max(last, simd::part<1>(last_));
    return 32767 - simd::smallest(simd::as<simd::u16>(simd::splat<simd::s16, 1>(32767) - last)).value;
  }

 private:
  simd::s16<B> last_ = simd::zero<simd::s16, B>();
  Mox32s count_ = 0;
};

/// The first word is not 0.
template <int B>
MOX_INLINE bool has_dc(simd::s16<B> levels) {
  return (simd::element<0>(simd::as<simd::s32>(simd::part<0>(levels))) & 0xFFFF) != 0;
}

// ---- 4x4 blocks. ----

/// 16 words in one vector or in two.
struct Words16 {
  static constexpr int B = simd::kBlocks, kParts = 2 / B;
  simd::s16<B> part[kParts];
};
MOX_INLINE Words16 words_of(WordBlock4x4 block) {
  const simd::s16<1> rows[2] = {block.upper, block.lower};
  Words16 words;
  for (int i = 0; i < Words16::kParts; ++i) words.part[i] = simd::joined<simd::s16, Words16::B>(rows + i);
  return words;
}
MOX_INLINE Words16 load_words(const Mox16s* p) {
  Words16 words;
  for (int i = 0; i < Words16::kParts; ++i) words.part[i] = simd::load_row<simd::s16, Words16::B>(p + 8 * i);
  return words;
}
MOX_INLINE void store_words(const Words16& words, Mox16s* p) {
  for (int i = 0; i < Words16::kParts; ++i) store_row(words.part[i], p + 8 * i);
}

template <class Keep>
MOX_INLINE Words16 quantised(Words16 words, const Mox16s* scales, px::Quantiser q) {
  const Words16 factors = load_words(scales);
  for (int i = 0; i < Words16::kParts; ++i) words.part[i] = quantised_words<Keep>(words.part[i], factors.part[i], q);
  return words;
}
MOX_INLINE LevelTally<Words16::B> tally(const Words16& levels, const Mox16s* places) {
  LevelTally<Words16::B> result;
  for (int i = 0; i < Words16::kParts; ++i) result.add(levels.part[i], places + 8 * i);
  return result;
}

/// Levels within the limit go to pDst at once; others are left to the portable kernel.
MOX_INLINE MoxStatus store_words_within_limit(const Words16& levels, Mox16s* pDst, int8_t* pNumLevels,
                                              const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  const auto limit = simd::splat<simd::s16, Words16::B>(MoxH264LevelLimit);
  auto over = simd::zero<simd::s16, Words16::B>();
  for (const auto& part : levels.part) over = over | greater(abs(part), limit);
  if (!is_zero(simd::as<simd::u16>(over))) [[unlikely]] {
    Mox16s values[16];
    store_words(levels, values);
    return px::store_within_limit(values, pDst, pNumLevels, pScanMatrix, pLastCoeff);
  }
  store_words(levels, pDst);
  const auto counted = tally(levels, pScanMatrix);
  *pNumLevels = static_cast<int8_t>(px::signed_count(counted.count(), has_dc(levels.part[0])));
  *pLastCoeff = counted.last() & 127;
  return moxStsOk;
}

inline MoxStatus transform_quant_residual(Mox16s* pSrcDst, Mox32s qp, int8_t* pNumLevels, bool intra,
                                          const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  const auto block = words_of(forward_transform<Wrap16>(load_block_4x4(pSrcDst)));
  const auto q = px::exact_quantiser(h264_qp6[qp] + px::kTableBits, intra);
  return store_words_within_limit(quantised<Sat16>(block, FwdQuantTable_16s[h264_qp_rem[qp]].data(), q), pSrcDst,
                                  pNumLevels, pScanMatrix, pLastCoeff);
}

template <class P>
MoxStatus transform_quant_4x4(const Mox16s* pSrc, typename P::Value* pDst, Mox32s qp, Mox32s* pNumLevels, bool intra,
                              const Mox16s* pScanMatrix, Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  const Mox16s* const scales = pLevelScale ? pLevelScale : FwdQuantTable_16s[h264_qp_rem[qp]].data();
  const auto q = px::exact_quantiser(h264_qp6[qp] + (pLevelScale ? px::kScaleBits : px::kTableBits), intra);
  if constexpr (std::is_same_v<P, Wrap32>) {
    return px::transform_quant_4x4<P>(pSrc, pDst, qp, pNumLevels, intra, pScanMatrix, pLastCoeff, pLevelScale);
  } else {
    const auto levels = quantised<P>(words_of(forward_transform<P>(load_block_4x4(pSrc))), scales, q);
    store_words(levels, pDst);
    const auto counted = tally(levels, pScanMatrix);
    *pLastCoeff = counted.last();
    *pNumLevels = px::signed_count(counted.count(), has_dc(levels.part[0]));
    return moxStsOk;
  }
}

template <class Keep, class Source, class Scale>
MoxStatus quantise_residual_4x4(const Source* pSrc, typename Keep::Value* pDst, Mox32s* pNumLevels, Mox32s* pLastCoeff,
                                const Scale* pQuantTable, const Mox16s* pScanMatrix, Mox32u qp, bool intra,
                                const std::array<Raster4x4<Scale>, 6>& fallback) {
  const int per = h264_qp6[qp];
  const auto& rounding = pQuantTable ? moxH264QuantResid_RoundValDef_32s : moxH264QuantResid_RoundValGiven_32s;
  const px::Quantiser q{rounding[per + intra], per + (pQuantTable ? px::kScaleBits : px::kTableBits)};
  const Scale* const scales = pQuantTable ? pQuantTable : fallback[h264_qp_rem[qp]].data();
  if constexpr (std::is_same_v<Keep, Wrap32>) {
    return px::quantise_residual_4x4<Keep>(pSrc, pDst, pNumLevels, pLastCoeff, pQuantTable, pScanMatrix, qp, intra,
                                           fallback);
  } else {
    const auto levels = quantised<Keep>(load_words(pSrc), scales, q);
    store_words(levels, pDst);
    const auto counted = tally(levels, pScanMatrix);
    *pLastCoeff = counted.last();
    *pNumLevels = counted.count();
    return moxStsOk;
  }
}

// ---- 8x8 blocks. ----

template <class Keep, class Scale>
MoxStatus quantise_luma_8x8(const typename Keep::Value* pSrc, typename Keep::Value* pDst, Mox32s qpPer, bool intra,
                            const Mox16s* pScanMatrix, const Scale* pScaleLevels, Mox32s* pNumLevels,
                            Mox32s* pLastCoeff) {
  constexpr int B = simd::kBlocks;
  const auto q = px::rough_quantiser(qpPer + px::kScaleBits + 1, intra);
  if constexpr (std::is_same_v<Keep, Wrap32>) {
    return px::quantise_luma_8x8<Keep>(pSrc, pDst, qpPer, intra, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff);
  } else {
    LevelTally<B> counted;
    for (int i = 0; i < 64; i += 8 * B) {
      const auto x = max(simd::load_row<simd::s16, B>(pSrc + i), simd::splat<simd::s16, B>(-32767));
      const auto levels = quantised_words<Keep, true>(x, simd::load_row<simd::s16, B>(pScaleLevels + i), q);
      store_row(levels, pDst + i);
      counted.add(levels, pScanMatrix + i);
    }
    *pNumLevels = px::signed_count(counted.count(), pDst[0]);
    *pLastCoeff = counted.last();
    return moxStsOk;
  }
}

}  // namespace mox::vec
