#include "support/bench.hpp"

namespace mox::bench {
namespace {

const Mox16s* const kCoefficients = buffer<Mox16s>(64, -60, 60);
const Mox16s* const kDifferences = picture<Mox16s>(-255, 255);
const Mox8u* const kSamples = picture<Mox8u>(0, 255);
Mox16s* const kResult = picture<Mox16s>(0, 0);
Mox16s* const kBlock = buffer<Mox16s>(64, -60, 60);

constexpr Mox32s kWordStep = 2 * kPictureStep;

template <class Function>
Row inverse(Symbol<Function> symbol, const char* name, MoxiSize size) {
  return call(symbol, name, kCoefficients, 16, kResult, kWordStep, size);
}
template <class Function>
Row forward(Symbol<Function> symbol) {
  return call(symbol, "", kDifferences, kWordStep, kResult, kWordStep);
}

Mox32s g_sum;
const Row kTransformRows[] = {
    inverse(MOX_FN(moxiTransform8x8Inv_VC1_16s_C1R), "all", {8, 8}),
    inverse(MOX_FN(moxiTransform8x8Inv_VC1_16s_C1R), "4x4", {4, 4}),
    inverse(MOX_FN(moxiTransform8x8Inv_VC1_16s_C1R), "2x2", {2, 2}),
    inverse(MOX_FN(moxiTransform8x8Inv_VC1_16s_C1R), "DC", {1, 1}),
    inverse(MOX_FN(moxiTransform8x4Inv_VC1_16s_C1R), "all", {8, 4}),
    inverse(MOX_FN(moxiTransform8x4Inv_VC1_16s_C1R), "4x4", {4, 4}),
    inverse(MOX_FN(moxiTransform8x4Inv_VC1_16s_C1R), "DC", {1, 1}),
    inverse(MOX_FN(moxiTransform4x8Inv_VC1_16s_C1R), "all", {4, 8}),
    inverse(MOX_FN(moxiTransform4x8Inv_VC1_16s_C1R), "4x4", {4, 4}),
    inverse(MOX_FN(moxiTransform4x8Inv_VC1_16s_C1R), "DC", {1, 1}),
    inverse(MOX_FN(moxiTransform4x4Inv_VC1_16s_C1R), "all", {4, 4}),
    inverse(MOX_FN(moxiTransform4x4Inv_VC1_16s_C1R), "2x2", {2, 2}),
    inverse(MOX_FN(moxiTransform4x4Inv_VC1_16s_C1R), "DC", {1, 1}),
    forward(MOX_FN(moxiTransform8x8Fwd_VC1_16s_C1R)),
    forward(MOX_FN(moxiTransform8x4Fwd_VC1_16s_C1R)),
    forward(MOX_FN(moxiTransform4x8Fwd_VC1_16s_C1R)),
    forward(MOX_FN(moxiTransform4x4Fwd_VC1_16s_C1R)),
    call(MOX_FN(moxiHadamard8x8Sum_VC1_16s), "", kDifferences, kWordStep, kResult, &g_sum),
    call(MOX_FN(moxiHadamard8x8Sum_VC1_8u16s), "", kSamples, kPictureStep, kResult, &g_sum),
};
const Family kTransforms("vc1_transform", kTransformRows);

// The kernels do the same work for all values, so that blocks quantised in place may run down to 0.
MoxiSize g_corner;
const Row kQuantizationRows[] = {
    call(MOX_FN(moxiQuantIntraUniform_VC1_16s_C1IR), "a0", kBlock, 16, 20),
    call(MOX_FN(moxiQuantIntraNonuniform_VC1_16s_C1IR), "a1", kBlock, 16, 51),
    call(MOX_FN(moxiQuantInterUniform_VC1_16s_C1IR), "8x8 a2", kBlock, 16, 16, MoxiSize{8, 8}),
    call(MOX_FN(moxiQuantInterNonuniform_VC1_16s_C1IR), "8x8 a0", kBlock, 16, 20, MoxiSize{8, 8}),
    call(MOX_FN(moxiQuantInterNonuniform_VC1_16s_C1IR), "4x4 a0", kBlock, 16, 20, MoxiSize{4, 4}),
    call(MOX_FN(moxiQuantInvIntraUniform_VC1_16s_C1R), "", kCoefficients, 16, kResult, kWordStep, 20, &g_corner),
    call(MOX_FN(moxiQuantInvIntraNonuniform_VC1_16s_C1R), "", kCoefficients, 16, kResult, kWordStep, 20, &g_corner),
    call(MOX_FN(moxiQuantInvInterUniform_VC1_16s_C1R), "8x8", kCoefficients, 16, kResult, kWordStep, 20, MoxiSize{8, 8},
         &g_corner),
    call(MOX_FN(moxiQuantInvInterNonuniform_VC1_16s_C1R), "8x4", kCoefficients, 16, kResult, kWordStep, 20,
         MoxiSize{8, 4}, &g_corner),
    call(MOX_FN(moxiQuantInvInterNonuniform_VC1_16s_C1R), "4x8", kCoefficients, 8, kResult, kWordStep, 20,
         MoxiSize{4, 8}, &g_corner),
    call(MOX_FN(moxiQuantInvInterNonuniform_VC1_16s_C1R), "4x4", kCoefficients, 8, kResult, kWordStep, 20,
         MoxiSize{4, 4}, &g_corner),
};
const Family kQuantization("vc1_quantization", kQuantizationRows);

}  // namespace
}  // namespace mox::bench
