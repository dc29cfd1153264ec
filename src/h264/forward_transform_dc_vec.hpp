/// Vector kernels of H.264 forward transforms and quantisation of DC values.
#pragma once

#include "frame/generation.hpp"
#include "h264/forward_transform_quant_vec.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

// ---- Luma: 16 values. ----

/// (H4 * M * H4) >> 1.
template <class P>
MOX_INLINE Values16<typename P::Value> luma_dc_forward(const typename P::Value* p) {
  if constexpr (std::is_same_v<P, Wrap32>) {
    auto rows = load_rows_4x4(p);
    halve_hadamard(rows.x);
    return joined_values<Mox32s>(rows.x);
  } else {
    const auto block = halved_hadamard(load_block_4x4(p));
    const simd::s16<1> halves[2] = {block.upper, block.lower};
    return joined_values<Mox16s>(halves);
  }
}

/// The transformed values: those of pDCLevels, which pTBlock receives, or those that it holds.
template <class P>
MOX_INLINE Values16<typename P::Value> transformed_luma_dc(const typename P::Value* pDCLevels,
                                                           typename P::Value* pTBlock, bool needTransform) {
  if (!needTransform) return load_values<typename P::Value>(pTBlock);
  const auto values = luma_dc_forward<P>(pDCLevels);
  store_values(values, pTBlock);
  return values;
}

template <class Keep, class Element>
MOX_INLINE Values16<Element> quantised_dc(Values16<Element> values, Mox32s scale, px::Quantiser q) {
  for (auto& part : values.part) part = quantised_dc<Keep>(part, scale, q);
  return values;
}

inline MoxStatus transform_quant_luma_dc(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, int8_t* pNumLevels,
                                         bool needTransform, const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  const int per = h264_qp6[qp];
  const auto values = transformed_luma_dc<Wrap16>(pDCLevels, pTBlock, needTransform);
  const auto levels =
      quantised_dc<Sat16>(values, FwdQuantTable[h264_qp_rem[qp]][0], {dc_rounds[9 + per], per + px::kTableBits + 1});
  return store_within_limit(levels, pDCLevels, pNumLevels, pScanMatrix, pLastCoeff);
}

template <class P>
MoxStatus transform_quant_luma_dc_4x4(typename P::Value* pDCLevels, typename P::Value* pTBlock, Mox32s qp,
                                      Mox32s* pNumLevels, bool needTransform, const Mox16s* pScanMatrix,
                                      Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  const int shift = px::dc_shift(h264_qp6[qp], pLevelScale);
  const Mox32s scale = px::dc_multiplier(h264_qp_rem[qp], pLevelScale);
  const auto values = transformed_luma_dc<P>(pDCLevels, pTBlock, needTransform);
  const auto levels =
      quantised_dc<P>(values, scale, pLevelScale ? px::rough_quantiser(shift, true) : px::exact_quantiser(shift, true));
  store_values(levels, pDCLevels);
  LevelTally tally;
  tally.add(levels, pScanMatrix);
  *pLastCoeff = tally.last();
  *pNumLevels = px::signed_count(tally.count(), first_value(values));
  return moxStsOk;
}

// ---- Chroma: 4 or 8 values. ----

/// 4 or 8 values in one vector, or 8 doublewords in two of one block; of 4 words the rest of the vector is 0.
template <class Element, int N>
struct ChromaDc {
  static constexpr int kParts = N * int{sizeof(Element)} / 16 + (N * sizeof(Element) < 16);
  std::conditional_t<sizeof(Element) == 2, simd::s16<1>, simd::s32<1>> part[kParts];

  MOX_INLINE static ChromaDc load(const Element* p) {
    if constexpr (N * sizeof(Element) < 16) {
      return {{simd::load8<simd::s16, 1>(p, {})}};
    } else if constexpr (sizeof(Element) == 2) {
      return {{simd::load_row<simd::s16, 1>(p)}};
    } else {
      ChromaDc values;
      for (int i = 0; i < kParts; ++i) values.part[i] = simd::load_row<simd::s32, 1>(p + 4 * i);
      return values;
    }
  }
  MOX_INLINE void store(Element* p) const {
    if constexpr (N * sizeof(Element) < 16) {
      store8(part[0], p, simd::Strips<1>{});
    } else {
      for (int i = 0; i < kParts; ++i) store_row(part[i], p + 4 * i);
    }
  }
  /// P as in the portable transforms, Sum wraps.
  template <class P>
  MOX_INLINE void transform() {
    if constexpr (N == 4 && sizeof(Element) == 2) {
      part[0] = hadamard_2x2<P>(part[0]);
    } else if constexpr (N == 4) {
      part[0] = hadamard_2x2(part[0]);
    } else if constexpr (sizeof(Element) == 2) {
      part[0] = hadamard_2x4<P>(part[0]);
    } else {
      hadamard_2x4(part);
    }
  }
  /// How many values are not 0, negative if the first is one of them.
  MOX_INLINE Mox32s signed_count() const {
    auto words = part[0];
    Mox32s count;
    if constexpr (sizeof(Element) == 2) {
      count = count_words(words);
    } else {
      count = count_words(packs(words, kParts == 2 ? part[kParts - 1] : simd::zero<simd::s32, 1>()));
    }
    return px::signed_count(count, wrap_to<Element>(simd::element<0>(simd::as<simd::s32>(words))));
  }
};

/// Transforms by the rule P if asked to, and quantises by the rule Keep. Gives the levels, which pDCLevels receives.
template <int N, class P, class Keep>
MOX_INLINE ChromaDc<typename P::Value, N> transform_quant_chroma(typename P::Value* pDCLevels,
                                                                 typename P::Value* pTBlock, bool needTransform,
                                                                 Mox32s scale, px::Quantiser q) {
  using Block = ChromaDc<typename P::Value, N>;
  Block block = Block::load(needTransform ? pDCLevels : pTBlock);
  if (needTransform) {
    block.template transform<P>();
    block.store(pTBlock);
  }
  for (auto& part : block.part) part = quantised_dc<Keep>(part, scale, q);
  block.store(pDCLevels);
  return block;
}

inline MoxStatus transform_quant_chroma_dc(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, int8_t* pNumLevels,
                                           bool intra, bool needTransform) {
  const int per = h264_qp6[qp];
  const auto levels =
      transform_quant_chroma<4, Wrap16, Sat16>(pDCLevels, pTBlock, needTransform, FwdQuantTable[h264_qp_rem[qp]][0],
                                               {dc_rounds[9 * intra + per], per + px::kTableBits + 1});
  *pNumLevels = static_cast<int8_t>(levels.signed_count());
  const auto over = greater(abs(levels.part[0]), simd::splat<simd::s16, 1>(MoxH264LevelLimit));
  return is_zero(simd::as<simd::u16>(over)) ? moxStsOk : moxStsLevelOverflow;
}

template <class P>
MoxStatus transform_quant_chroma_dc_2x2(typename P::Value* pDCLevels, typename P::Value* pTBlock, Mox32s qp,
                                        Mox32s* pNumLevels, bool intra, bool needTransform, const Mox16s* pLevelScale) {
  const auto q = px::exact_quantiser(px::dc_shift(h264_qp6[qp], pLevelScale), intra);
  const Mox32s scale = px::dc_multiplier(h264_qp_rem[qp], pLevelScale);
  *pNumLevels = transform_quant_chroma<4, P, P>(pDCLevels, pTBlock, needTransform, scale, q).signed_count();
  return moxStsOk;
}

template <class P, class Sum>
MoxStatus transform_quant_chroma_dc_2x4(typename P::Value* pDCLevels, typename P::Value* pTBlock, Mox32s qp,
                                        Mox32s* pNumLevels, bool intra, bool needTransform, const Mox16s* pLevelScale) {
  const auto q = px::rough_quantiser(px::dc_shift(h264_qp6[qp + 3], pLevelScale), intra);
  const Mox32s scale = px::dc_multiplier(h264_qp_rem[qp + 3], pLevelScale);
  *pNumLevels = transform_quant_chroma<8, P, P>(pDCLevels, pTBlock, needTransform, scale, q).signed_count();
  return moxStsOk;
}

}  // namespace mox::vec
