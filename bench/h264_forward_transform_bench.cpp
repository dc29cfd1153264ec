#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr Mox32s kStep = 32, kQp = 28, kPer = 4, kRem = 4, kInter = 0, kTransform = 1;

// Residuals and coefficients of up to 8x8 in both widths, and where results go.
const Fresh<Mox16s> kFresh(64, -60, 60);
const Fresh<Mox32s> kFresh32(64, -240, 240);
Mox16s* const kBlock = kFresh.data();
Mox32s* const kBlock32 = kFresh32.data();
const Mox16s* const kResidual = buffer<Mox16s>(64, -60, 60);
const Mox32s* const kResidual32 = buffer<Mox32s>(64, -240, 240);
Mox16s* const kDst = buffer<Mox16s>(64, 0, 0);
Mox32s* const kDst32 = buffer<Mox32s>(64, 0, 0);
const Mox8u* const kSamples = buffer<Mox8u>(8 * kStep, 0, 255);

// Multipliers, a scan, what is counted; a scaling list.
const Mox16s* const kScales = buffer<Mox16s>(64, 350, 500);
const Mox16u* const kScales16u = buffer<Mox16u>(64, 350, 500);
const Mox32s* const kScales32 = buffer<Mox32s>(16, 350, 500);
const Mox16s* const kScan = buffer<Mox16s>(64, 0, 63);
int8_t* const kCount8 = buffer<int8_t>(1, 0, 0);
Mox8u* const kLast8 = buffer<Mox8u>(1, 0, 0);
Mox32s* const kCount = buffer<Mox32s>(1, 0, 0);
Mox32s* const kLast = buffer<Mox32s>(1, 0, 0);
const Mox8u* const kList = buffer<Mox8u>(64, 8, 40);
Mox16s* const kInverseScales = buffer<Mox16s>(64, 0, 0);

/// In place: the block is put back before each call.
template <class Function, class... Arguments>
Row block(Symbol<Function> symbol, Arguments... arguments) {
  return loop(symbol, "", [=](Function* function) {
    kFresh.restore(), kFresh32.restore();
    return function(arguments...);
  });
}

const Row kRows[] = {
    restoring("copy of the blocks alone", [] { kFresh.restore(), kFresh32.restore(); }),
    block(MOX_FN(moxiTransformQuantResidual_H264_16s_C1I), kBlock, kQp, kCount8, kInter, kScan, kLast8),
    block(MOX_FN(moxiTransformQuantLumaDC_H264_16s_C1I), kBlock, kDst, kQp, kCount8, kTransform, kScan, kLast8),
    block(MOX_FN(moxiTransformQuantChromaDC_H264_16s_C1I), kBlock, kDst, kQp, kCount8, kInter, kTransform),
    call(MOX_FN(moxiTransformQuantFwd4x4_H264_16s_C1), "", kResidual, kDst, kQp, kCount, kInter, kScan, kLast, nullptr),
    call(MOX_FN(moxiTransformQuantFwd4x4_H264_16s32s_C1), "", kResidual, kDst32, kQp, kCount, kInter, kScan, kLast,
         kScales),
    block(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I), kBlock, kDst, kQp, kCount, kInter, kTransform,
          kScales),
    block(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_32s_C1I), kBlock32, kDst32, kQp, kCount, kInter, kTransform,
          kScales),
    block(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I), kBlock, kDst, kQp, kCount, kInter, kTransform,
          kScales),
    block(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_32s_C1I), kBlock32, kDst32, kQp, kCount, kInter, kTransform,
          kScales),
    block(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I), kBlock, kDst, kQp, kCount, kTransform, kScan, kLast,
          kScales),
    block(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_32s_C1I), kBlock32, kDst32, kQp, kCount, kTransform, kScan, kLast,
          kScales),
    call(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s_C1), "", kResidual, kDst, kCount, kLast, nullptr, kScan, kQp,
         kInter),
    call(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s32s_C1), "", kResidual, kDst32, kCount, kLast, kScales32, kScan, kQp,
         kInter),
    call(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_32s_C1), "", kResidual32, kDst32, kCount, kLast, kScales32, kScan, kQp,
         kInter),
    call(MOX_FN(moxiQuantLuma8x8_H264_16s_C1), "", kResidual, kDst, kPer, kInter, kScan, kScales, kCount, kLast),
    call(MOX_FN(moxiQuantLuma8x8_H264_32s_C1), "", kResidual32, kDst32, kPer, kInter, kScan, kScales16u, kCount, kLast),
    call(MOX_FN(moxiTransformResidual4x4Fwd_H264_16s_C1), "", kResidual, kDst),
    call(MOX_FN(moxiTransformResidual4x4Fwd_H264_32s_C1), "", kResidual32, kDst32),
    call(MOX_FN(moxiTransformPrediction_H264_8u16s_C1), "", kSamples, kStep, kDst),
    block(MOX_FN(moxiTransformLuma8x8Fwd_H264_16s_C1I), kBlock),
    call(MOX_FN(moxiTransformFwdLuma8x8_H264_16s_C1), "", kResidual, kDst),
    call(MOX_FN(moxiTransformFwdLuma8x8_H264_16s32s_C1), "", kResidual, kDst32),
    call(MOX_FN(moxiGenScaleLevel4x4_H264_8u16s_C1), "", kList, kInverseScales, kDst, kRem),
    call(MOX_FN(moxiGenScaleLevel8x8_H264_8u16s_D2), "", kList, 8, kInverseScales, kDst, kRem),
};
const Family kForwardTransform("h264_forward_transform", kRows);

}  // namespace
}  // namespace mox::bench
