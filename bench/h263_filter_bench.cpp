#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A macroblock and the two rows and columns around it, smooth enough for the ramp not to end.
constexpr Mox32u kStep = 48;
const Fresh<Mox8u> kSamples(20 * kStep, 100, 112);
/// Away from the seams of the copy, which would hold up the loads of a kernel.
Mox8u* const kHorEdge = kSamples.data() + 2 * kStep + 16;
Mox8u* const kVerEdge = kSamples.data() + 2 * kStep + 20;

template <class Function, class... Arguments>
Row filter(Symbol<Function> symbol, Mox8u* edge, Arguments... arguments) {
  return loop(symbol, "", [=](Function* function) {
    kSamples.restore();
    return function(edge, kStep, arguments...);
  });
}

const Row kRows[] = {
    restoring("copy of the samples alone", [] { kSamples.restore(); }),
    filter(MOX_FN(moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR), kHorEdge, 20),
    filter(MOX_FN(moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR), kVerEdge, 20),
    filter(MOX_FN(moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR), kHorEdge),
    filter(MOX_FN(moxiFilterDeblocking16x16VerEdge_H263_8u_C1IR), kVerEdge),
    filter(MOX_FN(moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR), kHorEdge),
    filter(MOX_FN(moxiFilterBlockBoundaryVerEdge_H263_8u_C1IR), kVerEdge),
};
const Family kFilter("h263_filter", kRows);

}  // namespace
}  // namespace mox::bench
