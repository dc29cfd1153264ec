#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// The block lies within, away from the edges. Prediction leaves its neighbours alone.
constexpr Mox32s kStep = 48;
Mox8u* const kBlock = buffer<Mox8u>(20 * kStep, 60, 190) + 4 * kStep + 16;
constexpr Mox32s kAllEdges = 1 | 2 | 32 | 64;

using Predict = MoxStatus(Mox8u*, Mox32s, Mox32s, Mox32s);

/// One row for each mode of each function.
std::vector<Row> rows() {
  const struct {
    Symbol<Predict> symbol;
    std::vector<const char*> modes;
  } functions[] = {
      {MOX_FN(moxiPredictIntra_4x4_H264_8u_C1IR),
       {"vertical", "horizontal", "DC", "down left", "down right", "vertical right", "horizontal down", "vertical left",
        "horizontal up"}},
      {MOX_FN(moxiPredictIntra_16x16_H264_8u_C1IR), {"vertical", "horizontal", "DC", "plane"}},
      {MOX_FN(moxiPredictIntraChroma8x8_H264_8u_C1IR), {"DC", "horizontal", "vertical", "plane"}},
  };
  std::vector<Row> all;
  for (const auto& [symbol, modes] : functions) {
    for (std::size_t mode = 0; mode < modes.size(); ++mode) {
      all.push_back(call(symbol, modes[mode], kBlock, kStep, static_cast<Mox32s>(mode), kAllEdges));
    }
  }
  return all;
}
const Family kIntra("h264_intra", rows());

}  // namespace
}  // namespace mox::bench
