#include <cstddef>
#include <vector>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// The luma samples of a macroblock and the rows and columns around it, smooth enough to be filtered: neighbours differ
/// by less than beta, and alpha exceeds their largest difference.
template <class T>
struct Area {
  static constexpr int kDepth = sizeof(T) == 1 ? 8 : 10;
  static constexpr int kScale = 1 << (kDepth - 8);
  static constexpr Mox32s kStep = 48;
  static constexpr std::size_t kTurns = 8;
  std::vector<Fresh<T>> samples;
  mutable std::size_t turn = 0;
  const T* alpha = buffer<T>(2, 40 * kScale, 40 * kScale);
  const T* beta = buffer<T>(2, 13 * kScale, 13 * kScale);
  const T* thresholds = buffer<T>(16, 2 * kScale, 2 * kScale);

  Area() {
    for (std::size_t i = 0; i < kTurns; ++i) samples.emplace_back(20 * kStep, 100 * kScale, 112 * kScale);
  }
  /// The next macroblock to filter. Puts back the one four calls ahead: a sample that is read right behind the store of
  /// others beside it would have to wait for the store, which no decoder makes it do.
  T* take() const {
    samples[(turn + kTurns / 2) % kTurns].restore();
    return samples[turn++ % kTurns].data() + 4 * kStep + 16;
  }
};
const Area<Mox8u> k8u;
const Area<Mox16u> k16u;

/// Strengths of the 16 groups of lines.
struct Strengths {
  const char* name;
  Mox8u values[16];
};
constexpr Strengths kIntra = {"intra", {4, 4, 4, 4, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3}};
constexpr Strengths kInter = {"inter", {2, 2, 0, 1, 0, 0, 0, 0, 2, 0, 0, 2, 0, 0, 1, 0}};
constexpr Strengths kAll = {"all edges", {2, 1, 3, 2, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 1, 1}};
constexpr Strengths kNone = {"nothing to do", {}};

template <class Function>
Row plane(Symbol<Function> symbol, const Strengths& strengths) {
  return loop(symbol, strengths.name, [&strengths](Function* function) {
    return function(k8u.take(), k8u.kStep, k8u.alpha, k8u.beta, k8u.thresholds, strengths.values);
  });
}

template <class Function>
Row mbaff(Symbol<Function> symbol, const Strengths& strengths) {
  return loop(symbol, strengths.name, [&strengths](Function* function) {
    return function(k8u.take(), k8u.kStep, k8u.alpha[0], k8u.beta[0], k8u.thresholds, strengths.values);
  });
}

Row record(Symbol<MoxStatus(const MoxiDeblockParams*)> symbol, const Strengths& strengths) {
  MoxiDeblockParams params = {nullptr, k8u.kStep, k8u.alpha, k8u.beta, k8u.thresholds, strengths.values};
  return loop(symbol, strengths.name, [params](auto* function) mutable {
    params.pSrcDstPlane = k8u.take();
    return function(&params);
  });
}

Row record(Symbol<MoxStatus(const MoxiDeblockParams_16u*)> symbol, const Strengths& strengths) {
  MoxiDeblockParams_16u params = {nullptr,         k16u.kStep,       k16u.alpha, k16u.beta,
                                  k16u.thresholds, strengths.values, k16u.kDepth};
  return loop(symbol, strengths.name, [params](auto* function) mutable {
    params.pSrcDstPlane = k16u.take();
    return function(&params);
  });
}

std::vector<Row> deblock_rows() {
  std::vector<Row> rows = {
      restoring("copy of the 8-bit samples alone", [] { k8u.take(); }),
      restoring("copy of the 16-bit samples alone", [] { k16u.take(); }),
      plane(MOX_FN(moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR), kNone),
  };
  for (const Strengths* strengths : {&kIntra, &kInter, &kAll}) {
    for (auto symbol : {
             MOX_FN(moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR),
             MOX_FN(moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR),
             MOX_FN(moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR),
             MOX_FN(moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR),
             MOX_FN(moxiFilterDeblockingChroma_VerEdge_H264_8u_C2IR),
             MOX_FN(moxiFilterDeblockingChroma_HorEdge_H264_8u_C2IR),
         }) {
      rows.push_back(plane(symbol, *strengths));
    }
    for (auto symbol : {
             MOX_FN(moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR),
             MOX_FN(moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR),
         }) {
      rows.push_back(record(symbol, *strengths));
    }
    for (auto symbol : {
             MOX_FN(moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR),
             MOX_FN(moxiFilterDeblockingLumaHorEdge_H264_16u_C1IR),
             MOX_FN(moxiFilterDeblockingChromaVerEdge_H264_16u_C1IR),
             MOX_FN(moxiFilterDeblockingChromaHorEdge_H264_16u_C1IR),
             MOX_FN(moxiFilterDeblockingChroma422VerEdge_H264_16u_C1IR),
             MOX_FN(moxiFilterDeblockingChroma422HorEdge_H264_16u_C1IR),
         }) {
      rows.push_back(record(symbol, *strengths));
    }
  }
  rows.push_back(mbaff(MOX_FN(moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR), kIntra));
  rows.push_back(mbaff(MOX_FN(moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR), kIntra));
  rows.push_back(record(MOX_FN(moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR), kIntra));
  rows.push_back(record(MOX_FN(moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR), kIntra));
  return rows;
}
const std::vector<Row> kRows = deblock_rows();
const Family kDeblock("h264_deblock", kRows);

}  // namespace
}  // namespace mox::bench
