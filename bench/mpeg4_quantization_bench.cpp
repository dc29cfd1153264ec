#include "moxvc/mpeg4_quantization.h"

#include "support/bench.hpp"

namespace mox::bench {
namespace {

const Fresh<Mox16s> kDct(64, -300, 300);
const Fresh<Mox16s> kLevels(64, -4, 4);
Mox32s g_count;
const auto* const kWeights = buffer<Mox8u>(64, 16, 40);

/// A record of the portable generation, which all generations read alike.
template <class State>
const State* record(Symbol<MoxStatus(const Mox8u*, State*, Mox32s)> init, const Mox8u* matrix, Mox32s bitsPerPixel) {
  auto* const memory = reinterpret_cast<State*>(buffer<Mox8u>(412, 0, 0));
  if (Library::portable()[init](matrix, memory, bitsPerPixel) != moxStsOk) std::abort();
  return memory;
}

template <class Function, class... Arguments>
Row quantizer(Symbol<Function> symbol, const char* name, const Fresh<Mox16s>& block, Arguments... arguments) {
  return loop(symbol, name, [=](Function* function) {
    block.restore();
    return function(block.data(), arguments...);
  });
}
Row intra(const char* name, const Mox8u* matrix, Mox32s depth) {
  return quantizer(MOX_FN(moxiQuantIntra_MPEG4_16s_C1I), name, kDct,
                   record(MOX_FN(moxiQuantIntraInit_MPEG4), matrix, depth), 8, &g_count, 0);
}
Row inter(const char* name, const Mox8u* matrix, Mox32s depth) {
  return quantizer(MOX_FN(moxiQuantInter_MPEG4_16s_C1I), name, kDct,
                   record(MOX_FN(moxiQuantInterInit_MPEG4), matrix, depth), 8, &g_count);
}
Row inverse_intra(const char* name, const Mox8u* matrix, Mox32s last) {
  return quantizer(MOX_FN(moxiQuantInvIntra_MPEG4_16s_C1I), name, kLevels, last,
                   record(MOX_FN(moxiQuantInvIntraInit_MPEG4), matrix, 8), 8, 0);
}
Row inverse_inter(const char* name, const Mox8u* matrix, Mox32s last) {
  return quantizer(MOX_FN(moxiQuantInvInter_MPEG4_16s_C1I), name, kLevels, last,
                   record(MOX_FN(moxiQuantInvInterInit_MPEG4), matrix, 8), 8);
}

const Row kRows[] = {
    restoring("copy of the block alone", [] { kDct.restore(); }),
    intra("matrix", kWeights, 8),
    intra("flat", nullptr, 8),
    intra("matrix, 12 bits", kWeights, 12),
    inter("matrix", kWeights, 8),
    inter("flat", nullptr, 8),
    inter("flat, 12 bits", nullptr, 12),
    inverse_intra("matrix", kWeights, 63),
    inverse_intra("flat", nullptr, 63),
    inverse_inter("matrix", kWeights, 63),
    inverse_inter("matrix, to 10", kWeights, 10),
    inverse_inter("flat", nullptr, 63),
    inverse_inter("flat, to 10", nullptr, 10),
};
const Family kFamily("mpeg4_quantization", kRows);

}  // namespace
}  // namespace mox::bench
