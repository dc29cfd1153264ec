#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A macroblock and the two rows and columns around it, smooth enough for the ramp not to end.
constexpr Mox32u kStep = 48;
const Fresh<Mox8u> kSamples(20 * kStep, 100, 112);
Mox8u* const kEdge = kSamples.data() + 2 * kStep + 16;

template <class Function, class... Arguments>
Row edge(Symbol<Function> symbol, Arguments... arguments) {
  return loop(symbol, "", [=](Function* function) {
    kSamples.restore();
    return function(kEdge, kStep, arguments...);
  });
}

const Row kRows[] = {
    restoring("copy of the samples alone", [] { kSamples.restore(); }),
    edge(MOX_FN(moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR), 20),
    edge(MOX_FN(moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR), 20),
    edge(MOX_FN(moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR)),
    edge(MOX_FN(moxiFilterDeblocking16x16VerEdge_H263_8u_C1IR)),
    edge(MOX_FN(moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR)),
    edge(MOX_FN(moxiFilterBlockBoundaryVerEdge_H263_8u_C1IR)),
};
const Family kFilter("h263_filter", kRows);

}  // namespace
}  // namespace mox::bench
