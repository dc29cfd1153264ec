#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// Samples smooth enough for the deblocking filter.
constexpr Mox32s kStep = 64;
const Fresh<Mox8u> kSamples(24 * kStep, 100, 104);
/// Away from the seams of the copy, which would hold up the loads of a kernel.
Mox8u* const kVerEdge = kSamples.data() + 4 * kStep + 22;
Mox8u* const kHorEdge = kSamples.data() + 4 * kStep + 16;
/// Smoothing takes its own results without harm.
Mox16s* const kResidual = picture<Mox16s>(-300, 300) + 6;
Mox16s* const kResidualV = picture<Mox16s>(-300, 300) + 6;
Mox8u* const kPicture = picture<Mox8u>(0, 255) + 6;

template <class Function>
Row deblock(Symbol<Function> symbol, Mox8u* edge, Mox32u mask) {
  return loop(symbol, "", [=](Function* function) {
    kSamples.restore();
    return function(edge, kStep, 20, mask);
  });
}

const Row kRows[] = {
    restoring("copy of the samples alone", [] { kSamples.restore(); }),
    deblock(MOX_FN(moxiFilterDeblockingLuma_VerEdge_VC1_8u_C1IR), kVerEdge, 15),
    deblock(MOX_FN(moxiFilterDeblockingLuma_HorEdge_VC1_8u_C1IR), kHorEdge, 15),
    deblock(MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR), kVerEdge, 3),
    deblock(MOX_FN(moxiFilterDeblockingChroma_HorEdge_VC1_8u_C1IR), kHorEdge, 3),
    deblock(MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C2IR), kVerEdge, 15),
    deblock(MOX_FN(moxiFilterDeblockingChroma_HorEdge_VC1_8u_C2IR), kHorEdge, 15),
    call(MOX_FN(moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R), "", kResidual, 128, kPicture, 64, 3u),
    call(MOX_FN(moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R), "one block", kResidual, 128, kPicture, 64, 2u),
    call(MOX_FN(moxiSmoothingLuma_HorEdge_VC1_16s8u_C1R), "", kResidual, 128, kPicture, 64, 3u),
    call(MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R), "", kResidual, 128, kPicture, 64),
    call(MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_C1R), "", kResidual, 128, kPicture, 64),
    call(MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R), "", kResidual, kResidualV, 128, kPicture, 64),
    call(MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_P2C2R), "", kResidual, kResidualV, 128, kPicture, 64),
    call(MOX_FN(moxiRangeMapping_VC1_8u_C1R), "32x32", kPicture, 64, kPicture, 64, MoxiSize{32, 32}, 3),
};
const Family kFilter("vc1_filter", kRows);

}  // namespace
}  // namespace mox::bench
