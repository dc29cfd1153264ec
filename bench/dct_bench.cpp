#include "support/bench.hpp"

namespace mox::bench {
namespace {

const Fresh<Mox16s> kFresh(64, -60, 60);
Mox16s* const kBlock = kFresh.data();
const Mox16s* const kCoefficients = buffer<Mox16s>(64, -60, 60);
const Mox16s* const kOther = buffer<Mox16s>(64, -60, 60);
Mox16s* const kResult = buffer<Mox16s>(64, 0, 0);
Mox16s* const kResultV = buffer<Mox16s>(64, 0, 0);
const Mox8u* const kPair = picture<Mox8u>(0, 255);
Mox8u* const kSamples = picture<Mox8u>(0, 255);
const Mox16s* const kDifferences = picture<Mox16s>(-255, 255);
Mox16s* const kWords = picture<Mox16s>(0, 0);

constexpr Mox32s kWordStep = 2 * kPictureStep;

void restore() { kFresh.restore(); }
template <class Function>
Row in_place(Symbol<Function> symbol) {
  return loop(symbol, "with copy", [](Function* function) {
    restore();
    return function(kBlock);
  });
}

const Row kRows[] = {
    restoring("copy of the block alone", restore),
    call(MOX_FN(moxiDCT8x8Fwd_16s_C1), "", kCoefficients, kResult),
    in_place(MOX_FN(moxiDCT8x8Fwd_16s_C1I)),
    call(MOX_FN(moxiDCT8x8Fwd_16s_C1R), "", kDifferences, kWordStep, kResult),
    call(MOX_FN(moxiDCT8x8Fwd_8u16s_C2P2), "", kPair, kPictureStep, kResult, kResultV),
    call(MOX_FN(moxiDCT8x8Inv_16s_C1), "", kCoefficients, kResult),
    in_place(MOX_FN(moxiDCT8x8Inv_16s_C1I)),
    call(MOX_FN(moxiDCT8x8Inv_16s_C1R), "", kCoefficients, kWords, kWordStep),
    call(MOX_FN(moxiDCT8x8InvOrSet_16s8u_C1R), "", kCoefficients, kSamples, kPictureStep, 0),
    call(MOX_FN(moxiDCT8x8InvOrSet_16s8u_C1R), "DC alone", kCoefficients, kSamples, kPictureStep, 1),
    call(MOX_FN(moxiDCT8x8InvOrSet_16s8u_P2C2), "", kCoefficients, kOther, kSamples, kPictureStep, 0),
    call(MOX_FN(moxiDCT8x8InvOrSet_16s8u_P2C2), "DC alone", kCoefficients, kOther, kSamples, kPictureStep, 3),
    call(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_C1), "", kCoefficients, kResult),
    call(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_C1R), "", kCoefficients, kWords, kWordStep),
    call(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_P2C2R), "", kCoefficients, kOther, kWords, kWordStep),
    call(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s8u_C1R), "", kCoefficients, kSamples, kPictureStep),
    call(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s8u_P2C2R), "", kCoefficients, kOther, kSamples, kPictureStep),
};
const Family kDct("dct", kRows);

}  // namespace
}  // namespace mox::bench
