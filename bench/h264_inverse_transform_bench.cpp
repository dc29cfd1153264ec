#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr Mox32s kStep = 32, kStepBytes = 2 * 4, kQp = 28, kQs = 30, kPer = 4, kBitDepth = 10;
constexpr Mox32s kDcAlone = 0, kAc = 1;

// Predictions, and where the results go.
const Mox8u* const kPred = buffer<Mox8u>(8 * kStep, 60, 190);
const Mox16u* const kPred10 = buffer<Mox16u>(8 * kStep, 240, 760);
Mox8u* const kDst = buffer<Mox8u>(8 * kStep, 0, 0);
Mox16u* const kDst10 = buffer<Mox16u>(8 * kStep, 0, 0);

// Coefficients of 4x4 and of 8x8, in both widths; a second block, a DC value, scales.
const Fresh<Mox16s> kBlock(16, -12, 12), kBlock8x8(64, -12, 12);
const Fresh<Mox32s> kBlock32(16, -12, 12), kBlock8x8_32(64, -12, 12);
const Mox16s* const kOther = buffer<Mox16s>(16, -500, 500);
const Mox16s* const kDc = buffer<Mox16s>(1, 700, 700);
const Mox32s* const kDc32 = buffer<Mox32s>(1, 700, 700);
const Mox16s* const kScales = buffer<Mox16s>(64, 160, 320);

/// Coefficients among the arguments are put back before a call.
template <class T>
void restore(const T& argument) {
  if constexpr (requires { argument.restore(); }) argument.restore();
}
template <class T>
auto plain(const T& argument) {
  if constexpr (requires { argument.restore(); }) {
    return argument.data();
  } else {
    return argument;
  }
}

template <class Function, class... Arguments>
Row block(Symbol<Function> symbol, std::string_view variant, Arguments... arguments) {
  return loop(symbol, variant, [=](Function* function) {
    (restore(arguments), ...);
    return function(plain(arguments)...);
  });
}

const Row kRows[] = {
    restoring("copy of 16s 4x4 coefficients alone", [] { kBlock.restore(); }),
    restoring("copy of 32s 8x8 coefficients alone", [] { kBlock8x8_32.restore(); }),
    block(MOX_FN(moxiDequantTransformResidual_H264_16s_C1I), "", kBlock, kStepBytes, nullptr, kAc, kQp),
    block(MOX_FN(moxiDequantTransformResidualAndAdd_H264_16s_C1I), "", kPred, kBlock, nullptr, kDst, kStep, kStep, kQp,
          kAc),
    block(MOX_FN(moxiDequantTransformResidualAndAdd_H264_16s_C1I), "DC given", kPred, kBlock, kDc, kDst, kStep, kStep,
          kQp, kAc),
    block(MOX_FN(moxiDequantTransformResidualAndAdd_H264_16s_C1I), "DC alone", kPred, kBlock, kDc, kDst, kStep, kStep,
          kQp, kDcAlone),
    block(MOX_FN(moxiDequantTransformResidual_SISP_H264_16s_C1I), "", kBlock, kOther, nullptr, kAc, kQp, kQs, 0),
    block(MOX_FN(moxiTransformDequantLumaDC_H264_16s_C1I), "", kBlock, kQp),
    block(MOX_FN(moxiTransformDequantChromaDC_H264_16s_C1I), "", kBlock, kQp),
    block(MOX_FN(moxiTransformDequantChromaDC_SISP_H264_16s_C1I), "", kBlock, kOther, kQp, kQs, 0),
    block(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_16s_C1IR), "", kPred, kStep, kBlock, nullptr, kDst, kStep, kQp,
          kAc, kScales),
    block(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_16s_C1IR), "DC alone", kPred, kStep, kBlock, kDc, kDst, kStep,
          kQp, kDcAlone, kScales),
    block(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_32s_C1IR), "", kPred10, kStep, kBlock32, nullptr, kDst10, kStep,
          kQp, kAc, kBitDepth, kScales),
    block(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_32s_C1IR), "DC alone", kPred10, kStep, kBlock32, kDc32, kDst10,
          kStep, kQp, kDcAlone, kBitDepth, kScales),
    block(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_16s_C1I), "", kBlock, kQp, kScales),
    block(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_32s_C1I), "", kBlock32, kQp, kScales),
    block(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_16s_C1I), "", kBlock, kQp, kScales),
    block(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_32s_C1I), "", kBlock32, kQp, kScales),
    block(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_16s_C1I), "", kBlock, kQp, kScales),
    block(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_32s_C1I), "", kBlock32, kQp, kScales),
    block(MOX_FN(moxiTransformResidual4x4Inv_H264_16s_C1), "", kOther, kBlock),
    block(MOX_FN(moxiTransformResidual4x4Inv_H264_32s_C1), "", kBlock32, kBlock32),
    block(MOX_FN(moxiQuantLuma8x8Inv_H264_16s_C1I), "", kBlock8x8, kPer, kScales),
    block(MOX_FN(moxiQuantInvLuma8x8_H264_32s_C1I), "", kBlock8x8_32, kPer, kScales),
    block(MOX_FN(moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R), "", kPred, kStep, kBlock8x8, kDst, kStep),
    block(MOX_FN(moxiTransformInvAddPredLuma8x8_H264_32s16u_C1R), "", kPred10, kStep, kBlock8x8_32, kDst10, kStep,
          kBitDepth),
};
const Family kInverseTransform("h264_inverse_transform", kRows);

}  // namespace
}  // namespace mox::bench
