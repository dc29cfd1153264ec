#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// The block lies within, away from the edges. Prediction leaves its neighbours alone.
constexpr Mox32s kStep = 48;
Mox8u* const kBlock = buffer<Mox8u>(20 * kStep, 60, 190) + 4 * kStep + 16;
Mox16u* const kWideBlock = buffer<Mox16u>(20 * kStep, 200, 900) + 4 * kStep + 8;
constexpr Mox32s kAllEdges = 1 | 2 | 32 | 64;

using Predict = MoxStatus(Mox8u*, Mox32s, Mox32s, Mox32s);

constexpr Mox32u kNoneDenied = 0, kNothingCoded = 0;
const Mox16s* const kScales = buffer<Mox16s>(64, 160, 320);

/// What only macroblock functions predict, without any residual: all luma blocks of 8-bit samples in one mode.
Row luma_8x8(Mox32u mode, const char* name) {
  return loop(MOX_FN(moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R), std::string("4 x ") + name, [=](auto* function) {
    Mox16s none[1], *stream = none;
    const Mox32u modes[] = {mode, mode, mode, mode};
    return function(&stream, kBlock, kStep, modes, kNothingCoded, 28, kNoneDenied, kScales, 0);
  });
}
/// The same, or both chroma planes, of 10-bit samples: call(function, records).
template <class Function, class Call>
Row wide(Symbol<Function> symbol, const char* name, Call call) {
  return loop(symbol, name, [=](Function* function) {
    Mox32s none[1], *stream = none;
    const auto plane = [&](Mox16u* first) {
      return MoxiReconstructHighRec{&stream, first, kStep, kNothingCoded, 36, kScales, 0, 10};
    };
    MoxiReconstructHighRec u = plane(kWideBlock), v = plane(kWideBlock + 24), *const planes[] = {&u, &v};
    return call(function, planes);
  });
}

/// One row for each mode of each function.
std::vector<Row> rows() {
  const std::vector<const char*> directions = {"vertical",        "horizontal",    "DC",
                                               "down left",       "down right",    "vertical right",
                                               "horizontal down", "vertical left", "horizontal up"};
  const std::vector<const char*> luma = {"vertical", "horizontal", "DC", "plane"};
  const std::vector<const char*> chroma = {"DC", "horizontal", "vertical", "plane"};
  const struct {
    Symbol<Predict> symbol;
    const std::vector<const char*>& modes;
  } functions[] = {{MOX_FN(moxiPredictIntra_4x4_H264_8u_C1IR), directions},
                   {MOX_FN(moxiPredictIntra_16x16_H264_8u_C1IR), luma},
                   {MOX_FN(moxiPredictIntraChroma8x8_H264_8u_C1IR), chroma}};
  std::vector<Row> all;
  for (const auto& [symbol, modes] : functions) {
    for (std::size_t mode = 0; mode < modes.size(); ++mode) {
      all.push_back(call(symbol, modes[mode], kBlock, kStep, static_cast<Mox32s>(mode), kAllEdges));
    }
  }
  for (Mox32u mode = 0; mode < 9; ++mode) all.push_back(luma_8x8(mode, directions[mode]));
  for (Mox32u mode = 0; mode < 9; ++mode) {
    const auto call = [=](auto* function, auto planes) {
      Mox32u modes[16];
      std::fill_n(modes, 16, mode);
      return function(planes[0], modes, kNoneDenied);
    };
    all.push_back(wide(MOX_FN(moxiReconstructLumaIntra4x4_H264High_32s16u_IP1R), directions[mode], call));
    all.push_back(wide(MOX_FN(moxiReconstructLumaIntra8x8_H264High_32s16u_IP1R), directions[mode], call));
  }
  for (Mox32u mode = 0; mode < 4; ++mode) {
    all.push_back(wide(MOX_FN(moxiReconstructLumaIntra16x16_H264High_32s16u_IP1R), luma[mode],
                       [=](auto* function, auto planes) { return function(planes[0], mode, kNoneDenied); }));
    all.push_back(wide(MOX_FN(moxiReconstructChroma422Intra4x4_H264High_32s16u_IP2R), chroma[mode],
                       [=](auto* function, auto planes) { return function(planes, mode, kNoneDenied, 240, 240); }));
  }
  return all;
}
const Family kIntra("h264_intra", rows());

}  // namespace
}  // namespace mox::bench
