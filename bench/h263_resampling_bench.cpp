#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A small picture, which stays in the first-level cache with the larger one that is made of it.
constexpr MoxiSize kOld = {64, 32}, kDouble = {128, 64};
constexpr Mox32s kOldSteps[3] = {64, 32, 32}, kDoubleSteps[3] = {128, 64, 64};
const Mox8u* const kSource[3] = {buffer<Mox8u>(64 * 32, 0, 255), buffer<Mox8u>(32 * 16, 0, 255),
                                 buffer<Mox8u>(32 * 16, 0, 255)};
Mox8u* const kLarge[3] = {buffer<Mox8u>(128 * 64, 0, 0), buffer<Mox8u>(64 * 32, 0, 0), buffer<Mox8u>(64 * 32, 0, 0)};
/// Corners on each other, and turned and shrunk a little.
constexpr MoxiPoint kDoubled[4] = {{0, 0}, {-128, 0}, {0, -64}, {-128, -64}};
constexpr MoxiPoint kTurned[4] = {{6, 2}, {-127, 5}, {1, -68}, {-133, -62}};

template <class Function, class... Arguments>
Row by_two(Symbol<Function> symbol, const char* variant, MoxiSize size, Arguments... arguments) {
  return call(symbol, variant, kSource[0], 64, kLarge[0], 128, size, arguments...);
}
Row resample(const char* variant, const MoxiPoint* corner, Mox32s fillMode) {
  return call(MOX_FN(moxiResample_H263_8u_P3R), variant, kSource, kOldSteps, kLarge, kDoubleSteps, kOld, kDouble,
              corner, 2, fillMode, nullptr, 0);
}

const Row kRows[] = {
    by_two(MOX_FN(moxiUpsampleFour_H263_8u_C1R), "64x32", kOld, 0),
    by_two(MOX_FN(moxiUpsampleFour_H263_8u_C1R), "32x16", MoxiSize{32, 16}, 0),
    by_two(MOX_FN(moxiDownsampleFour_H263_8u_C1R), "64x32", kOld, 0),
    by_two(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), "64x32, rows", kOld, 1),
    by_two(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), "64x32, columns", kOld, 2),
    by_two(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), "64x32, both", kOld, 3),
    resample("64x32 to 128x64", kDoubled, 3),
    resample("64x32 to 128x64, turned", kTurned, 1),
};
const Family kResampling("h263_resampling", kRows);

const Mox8u* const kForward = buffer<Mox8u>(64, 0, 255);
const Mox8u* const kMacroblock = buffer<Mox8u>(256, 0, 255);
Mox8u* const kPrediction = buffer<Mox8u>(64, 0, 0);
Row back(const char* variant, Mox32s block, MoxiPoint vector) {
  return call(MOX_FN(moxiAddBackPredPB_H263_8u_C1R), variant, kForward, 8, kMacroblock, block < 4 ? 16 : 8, kPrediction,
              8, block, vector);
}
const Row kMotionRows[] = {
    back("full samples, all inside", 0, {4, 8}),
    back("half samples, all inside", 0, {3, 5}),
    back("half samples, a part inside", 3, {5, 3}),
    back("chroma", 4, {-3, 2}),
};
const Family kMotion("h263_motion", kMotionRows);

}  // namespace
}  // namespace mox::bench
