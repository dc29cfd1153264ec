#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A QCIF picture: what a larger or smaller picture is made of.
constexpr MoxiSize kOld = {176, 144}, kDouble = {352, 288};
constexpr Mox32s kOldSteps[3] = {176, 88, 88}, kDoubleSteps[3] = {352, 176, 176};
const Mox8u* const kSource[3] = {buffer<Mox8u>(176 * 144, 0, 255), buffer<Mox8u>(88 * 72, 0, 255),
                                 buffer<Mox8u>(88 * 72, 0, 255)};
Mox8u* const kLarge[3] = {buffer<Mox8u>(352 * 288, 0, 0), buffer<Mox8u>(176 * 144, 0, 0),
                          buffer<Mox8u>(176 * 144, 0, 0)};
/// Corners on each other, and turned and shrunk a little.
constexpr MoxiPoint kDoubled[4] = {{0, 0}, {-352, 0}, {0, -288}, {-352, -288}};
constexpr MoxiPoint kTurned[4] = {{20, 3}, {-350, 21}, {2, -300}, {-371, -284}};

template <class Function, class... Arguments>
Row by_two(Symbol<Function> symbol, const char* variant, MoxiSize size, Arguments... arguments) {
  return call(symbol, variant, kSource[0], 176, kLarge[0], 352, size, arguments...);
}
Row resample(const char* variant, const MoxiPoint* corner, Mox32s fillMode) {
  return call(MOX_FN(moxiResample_H263_8u_P3R), variant, kSource, kOldSteps, kLarge, kDoubleSteps, kOld, kDouble, corner,
              2, fillMode, nullptr, 0);
}

const Row kRows[] = {
    by_two(MOX_FN(moxiUpsampleFour_H263_8u_C1R), "QCIF luma", kOld, 0),
    by_two(MOX_FN(moxiUpsampleFour_H263_8u_C1R), "QCIF chroma", MoxiSize{88, 72}, 0),
    by_two(MOX_FN(moxiDownsampleFour_H263_8u_C1R), "QCIF luma", kOld, 0),
    by_two(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), "QCIF luma, rows", kOld, 1),
    by_two(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), "QCIF luma, columns", kOld, 2),
    by_two(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), "QCIF luma, both", kOld, 3),
    resample("QCIF to CIF", kDoubled, 3),
    resample("QCIF to CIF, turned", kTurned, 1),
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
