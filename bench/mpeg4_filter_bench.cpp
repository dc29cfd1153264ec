#include "moxvc/mpeg4_filter.h"

#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// The samples about an edge: flat ones that the wide filter takes, and rough ones.
constexpr Mox32s kStep = 48;
struct Edges {
  Fresh<Mox8u> samples;
  /// Away from the seams of the copy, which would hold up the loads of a kernel.
  Mox8u* edge() const { return samples.data() + 6 * kStep + 22; }
};
const Edges kFlat{{16 * kStep, 100, 102}}, kRough{{16 * kStep, 90, 130}};

template <class Function>
Row deblock(Symbol<Function> symbol, const char* name, const Edges& edges) {
  return loop(symbol, name, [&edges](Function* function) {
    edges.samples.restore();
    return function(edges.edge(), kStep, 20);
  });
}

/// A picture of four macroblocks, smooth or rough.
const Mox8u *const kSmooth = buffer<Mox8u>(64 * 64, 100, 108), *const kNoise = buffer<Mox8u>(64 * 64, 0, 255);
const Mox8u* const kQuantisers = buffer<Mox8u>(4, 20, 20);
Mox8u* const g_planes = buffer<Mox8u>(3 * 32 * 64, 0, 0);

Row dering(const char* name, const Mox8u* samples) {
  return call(MOX_FN(moxiFilterDeringingThreshold_MPEG4_8u_P3R), name, samples, 64, samples + 32 * 64, 64,
              samples + 48 * 64, 64, g_planes, 64, g_planes + 32 * 64, 64, g_planes + 64 * 64, 64, MoxiSize{32, 32},
              kQuantisers, 2);
}

const Row kRows[] = {
    restoring("copy of the samples alone", [] { kFlat.samples.restore(); }),
    deblock(MOX_FN(moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR), "flat", kFlat),
    deblock(MOX_FN(moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR), "rough", kRough),
    deblock(MOX_FN(moxiFilterDeblocking8x8VerEdge_MPEG4_8u_C1IR), "flat", kFlat),
    deblock(MOX_FN(moxiFilterDeblocking8x8VerEdge_MPEG4_8u_C1IR), "rough", kRough),
    dering("smooth, four macroblocks", kSmooth),
    dering("noise, four macroblocks", kNoise),
};
const Family kFamily("mpeg4_filter", kRows);

}  // namespace
}  // namespace mox::bench
