#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr Mox32s kStep = 64;
constexpr std::size_t kSize = 17 * kStep + 32;

const Mox8u* const kSrc = buffer<Mox8u>(kSize, 0, 255);
// As a motion vector leaves it, one byte off any alignment.
const Mox8u* const kRef = buffer<Mox8u>(kSize, 0, 255) + 1;
const Mox16s* const kResidual = buffer<Mox16s>(kSize, -255, 255);
const Mox16u* const kSrc16 = buffer<Mox16u>(kSize, 0, 1023);
const Mox16u* const kRef16 = buffer<Mox16u>(kSize, 0, 1023) + 1;
const Mox32s* const kSrcSums = buffer<Mox32s>(4, 0, 16320);
Mox32s* const kResults = buffer<Mox32s>(16, 0, 0);
Mox32s* const kMeans = buffer<Mox32s>(4, 0, 0);
Mox16s* const kSums = buffer<Mox16s>(16, 0, 0);
Mox16s* const kDiff = buffer<Mox16s>(256, 0, 0);
Mox16s* const kNone = nullptr;
Mox8u* const kFlag = buffer<Mox8u>(1, 0, 0);
Mox32u* const kFlag32 = buffer<Mox32u>(1, 0, 0);

const Row kRows[] = {
    call(MOX_FN(moxiVariance16x16_8u32s), "", kSrc, kStep, kResults),
    call(MOX_FN(moxiVarSum8x8_8u32s_C1R), "", kSrc, kStep, kResults, kMeans),
    call(MOX_FN(moxiVarSum8x8_16s32s_C1R), "", kResidual, kStep, kResults, kMeans),
    call(MOX_FN(moxiMeanAbsDev8x8_8u32s_C1R), "", kSrc, kStep, kResults),
    call(MOX_FN(moxiMeanAbsDev16x16_8u32s_C1R), "", kSrc, kStep, kResults),
    call(MOX_FN(moxiVarMeanDiff16x8_8u32s_C1R), "full", kSrc, kStep, kRef, kStep, kSrcSums, kResults, kMeans, 0),
    call(MOX_FN(moxiVarMeanDiff16x8_8u32s_C1R), "HH", kSrc, kStep, kRef, kStep, kSrcSums, kResults, kMeans, 12),
    call(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R), "full", kSrc, kStep, kRef, kStep, kSrcSums, kResults, kMeans, 0),
    call(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R), "FH", kSrc, kStep, kRef, kStep, kSrcSums, kResults, kMeans, 4),
    call(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R), "HF", kSrc, kStep, kRef, kStep, kSrcSums, kResults, kMeans, 8),
    call(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R), "HH", kSrc, kStep, kRef, kStep, kSrcSums, kResults, kMeans, 12),
    call(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C1), "sums", kSrc, kStep, kRef, kStep, kSums, kNone),
    call(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C1), "differences", kSrc, kStep, kRef, kStep, kSums, kDiff),
    call(MOX_FN(moxiSumsDiff16x16Blocks4x4_8u16s_C1), "sums", kSrc, kStep, kRef, kStep, kSums, kNone),
    call(MOX_FN(moxiSumsDiff16x16Blocks4x4_8u16s_C1), "differences", kSrc, kStep, kRef, kStep, kSums, kDiff),
    call(MOX_FN(moxiSumsDiff8x8Blocks4x4_16u32s_C1R), "differences", kSrc16, kStep, kRef16, kStep, kResults, kDiff),
    call(MOX_FN(moxiSumsDiff16x16Blocks4x4_16u32s_C1R), "sums", kSrc16, kStep, kRef16, kStep, kResults, kNone),
    call(MOX_FN(moxiSumsDiff16x16Blocks4x4_16u32s_C1R), "differences", kSrc16, kStep, kRef16, kStep, kResults, kDiff),
    call(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C2P2), "differences", kSrc, kStep, kRef, kStep, kRef, kStep, kSums,
         kDiff, kSums + 4, kDiff + 64),
    call(MOX_FN(moxiEdgesDetect16x16_8u_C1R), "", kSrc, kStep, 40u, 200u, kFlag),
    call(MOX_FN(moxiEdgesDetect16x16_16u_C1R), "", kSrc16, kStep, 40u, 240u, kFlag32),
};
const Family kStatistics("block statistics", kRows);

}  // namespace
}  // namespace mox::bench
