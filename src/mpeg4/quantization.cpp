#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/state_record.hpp"
#include "mpeg4/quantization_px.hpp"
#include "mpeg4/quantization_vec.hpp"

using namespace mox;

namespace {

static_assert(kRecordSize<MoxiQuantFwdState> == 412 && kRecordSize<MoxiQuantInvState> == 156);

template <class State>
MoxStatus get_size(Mox32s* pSize) {
  if (any_null(pSize)) return moxStsNullPointer;
  *pSize = kRecordSize<State>;
  return moxStsOk;
}

void set_weight(MoxiQuantFwdState& state, int i, Mox32s weight) {
  if (state.bitsPerPixel > active::kMostIntegerDepth) {
    state.weights[i] = static_cast<Mox16u>(weight);
    state.quotients[i] = 1.0f / static_cast<float>(weight);
  } else {
    state.weights[i] = static_cast<Mox16u>(weight >> 1);
    state.reciprocals[i] = static_cast<Mox16u>(std::min(0x10000 / weight + 1, 65535));
  }
}
void set_weight(MoxiQuantInvState& state, int i, Mox32s weight) { state.weights[i] = static_cast<Mox16u>(weight); }

/// The flag of the matrix is set last: a record whose matrix is refused is one without a matrix.
template <class State>
MoxStatus init(const Mox8u* pMatrix, State* pSpec, Mox32s bitsPerPixel, Mox32u tag) {
  State& state = *record_in(pSpec);
  state.tag = tag;
  state.bitsPerPixel = bitsPerPixel;
  state.hasMatrix = 0;
  if (!pMatrix) return moxStsOk;
  for (int i = 0; i < 64; ++i) {
    if (pMatrix[i] == 0) return moxStsBadQp;
    set_weight(state, i, pMatrix[i]);
  }
  state.hasMatrix = 1;
  return moxStsOk;
}

/// All but the DC of an intra block; returns the number of levels other than 0.
template <bool kIntra>
Mox32s quantize(Mox16s* pCoeffs, const MoxiQuantFwdState& state, Mox32s qp) {
  if (state.bitsPerPixel > active::kMostIntegerDepth) {
    return state.hasMatrix ? active::quantize_weighted_deep<kIntra>(pCoeffs, state, qp)
                           : active::quantize_uniform_deep<kIntra>(pCoeffs, state, qp);
  }
  return state.hasMatrix ? active::quantize_weighted<kIntra>(pCoeffs, state, qp)
                         : active::quantize_uniform<kIntra>(pCoeffs, state, qp);
}

/// Indices run to 63 at most, whatever the caller says.
Mox32s last_in_block(Mox32s indexLast) { return std::min(indexLast, 63); }

}  // namespace

MoxStatus moxiQuantIntraGetSize_MPEG4(Mox32s* pSize) { return get_size<MoxiQuantFwdState>(pSize); }
MoxStatus moxiQuantInterGetSize_MPEG4(Mox32s* pSize) { return get_size<MoxiQuantFwdState>(pSize); }
MoxStatus moxiQuantInvIntraGetSize_MPEG4(Mox32s* pSize) { return get_size<MoxiQuantInvState>(pSize); }
MoxStatus moxiQuantInvInterGetSize_MPEG4(Mox32s* pSize) { return get_size<MoxiQuantInvState>(pSize); }

MoxStatus moxiQuantIntraInit_MPEG4(const Mox8u* pMatrix, MoxiQuantFwdState* pSpec, Mox32s bitsPerPixel) {
  if (any_null(pSpec)) return moxStsNullPointer;
  return init(pMatrix, pSpec, bitsPerPixel, active::kIntraTag);
}
MoxStatus moxiQuantInterInit_MPEG4(const Mox8u* pMatrix, MoxiQuantFwdState* pSpec, Mox32s bitsPerPixel) {
  if (any_null(pSpec)) return moxStsNullPointer;
  return init(pMatrix, pSpec, bitsPerPixel, active::kInterTag);
}
MoxStatus moxiQuantInvIntraInit_MPEG4(const Mox8u* pMatrix, MoxiQuantInvState* pSpec, Mox32s bitsPerPixel) {
  if (any_null(pSpec)) return moxStsNullPointer;
  if (outside(bitsPerPixel, active::kLeastDepth, active::kMostDepth)) return moxStsOutOfRange;
  return init(pMatrix, pSpec, bitsPerPixel, active::kInvIntraTag);
}
MoxStatus moxiQuantInvInterInit_MPEG4(const Mox8u* pMatrix, MoxiQuantInvState* pSpec, Mox32s bitsPerPixel) {
  if (any_null(pSpec)) return moxStsNullPointer;
  if (outside(bitsPerPixel, active::kLeastDepth, active::kMostDepth)) return moxStsOutOfRange;
  return init(pMatrix, pSpec, bitsPerPixel, active::kInvInterTag);
}

MoxStatus moxiQuantIntra_MPEG4_16s_C1I(Mox16s* pCoeffs, const MoxiQuantFwdState* pSpec, Mox32s qp,
                                       Mox32s* pCountNonZero, Mox32s blockType) {
  if (any_null(pCoeffs, pSpec, pCountNonZero)) return moxStsNullPointer;
  const MoxiQuantFwdState& state = *record_in(pSpec);
  if (const MoxStatus status = active::check_state(state, active::kIntraTag, qp)) return status;
  const Mox16s dc = active::quantize_dc(pCoeffs[0], active::dc_scaler(qp, blockType != 0));
  *pCountNonZero = quantize<true>(pCoeffs, state, qp) + (dc != 0);
  pCoeffs[0] = dc;  // last: vector loads would wait for it, and vector kernels write here
  return moxStsOk;
}

MoxStatus moxiQuantInter_MPEG4_16s_C1I(Mox16s* pCoeffs, const MoxiQuantFwdState* pSpec, Mox32s qp,
                                       Mox32s* pCountNonZero) {
  if (any_null(pCoeffs, pSpec, pCountNonZero)) return moxStsNullPointer;
  const MoxiQuantFwdState& state = *record_in(pSpec);
  if (const MoxStatus status = active::check_state(state, active::kInterTag, qp)) return status;
  *pCountNonZero = quantize<false>(pCoeffs, state, qp);
  return moxStsOk;
}

MoxStatus moxiQuantInvIntra_MPEG4_16s_C1I(Mox16s* pCoeffs, Mox32s indexLast, const MoxiQuantInvState* pSpec, Mox32s qp,
                                          Mox32s blockType) {
  if (any_null(pCoeffs, pSpec)) return moxStsNullPointer;
  const MoxiQuantInvState& state = *record_in(pSpec);
  if (const MoxStatus status = active::check_state(state, active::kInvIntraTag, qp)) return status;
  const auto limits = active::limits_of(state);
  const Mox32s dc = clip(active::dc_scaler(qp, blockType != 0) * pCoeffs[0], limits.low, limits.high);
  if (indexLast < 1) {
    if (state.hasMatrix && dc % 2 == 0) pCoeffs[63] = 1;
  } else if (state.hasMatrix) {
    const Mox32s sum = active::dequantize_weighted<true>(pCoeffs, last_in_block(indexLast), state.weights, qp, limits);
    active::make_sum_odd(pCoeffs, dc + sum);
  } else {
    active::dequantize_uniform(pCoeffs, last_in_block(indexLast), qp, limits);
  }
  pCoeffs[0] = static_cast<Mox16s>(dc);
  return moxStsOk;
}

MoxStatus moxiQuantInvInter_MPEG4_16s_C1I(Mox16s* pCoeffs, Mox32s indexLast, const MoxiQuantInvState* pSpec,
                                          Mox32s qp) {
  if (any_null(pCoeffs, pSpec)) return moxStsNullPointer;
  const MoxiQuantInvState& state = *record_in(pSpec);
  if (const MoxStatus status = active::check_state(state, active::kInvInterTag, qp)) return status;
  const auto limits = active::limits_of(state);
  if (!state.hasMatrix) {
    active::dequantize_uniform(pCoeffs, last_in_block(indexLast), qp, limits);
    return moxStsOk;
  }
  active::make_sum_odd(
      pCoeffs, active::dequantize_weighted<false>(pCoeffs, last_in_block(indexLast), state.weights, qp, limits));
  return moxStsOk;
}
