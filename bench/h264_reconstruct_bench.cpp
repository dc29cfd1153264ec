#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr Mox32u kLumaAll = 0x1FFFF, kLumaHalf = 0x0A5D3, kChromaAll = 0x7FE0000, kChromaHalf = 0x2A60000;
constexpr Mox32u kLumaDc = 1, kChromaDc = 0x60000;
constexpr Mox32u kDc = 2, kPlane = 3, kNoneDenied = 0;
constexpr Mox32s kQp = 28, kScaled = 0;

constexpr Mox32s kStep = 32;
constexpr std::size_t kCorner = 4 * kStep + 8;  // of a block within its plane

const Fresh<Mox16s> kLumaCoeffs(16 + 256, -12, 12), kChromaCoeffs(2 * (4 + 64), -12, 12);
const Fresh<Mox8u> kLuma(20 * kStep, 60, 190), kU(12 * kStep, 60, 190), kV(12 * kStep, 60, 190);
const Mox16s* const kScales = buffer<Mox16s>(64, 160, 320);
const Mox32u* const kModes = buffer<Mox32u>(16, 0, 8);

void restore_luma() { kLumaCoeffs.restore(), kLuma.restore(); }
void restore_chroma() { kChromaCoeffs.restore(), kU.restore(), kV.restore(); }

template <class Function, class... Arguments>
Row luma(Symbol<Function> symbol, std::string_view variant, Arguments... arguments) {
  return loop(symbol, variant, [=](Function* function) {
    restore_luma();
    Mox16s* coeffs = kLumaCoeffs.data();
    return function(&coeffs, kLuma.data() + kCorner, kStep, arguments...);
  });
}
template <class Function, class... Arguments>
Row chroma(Symbol<Function> symbol, std::string_view variant, Arguments... arguments) {
  return loop(symbol, variant, [=](Function* function) {
    restore_chroma();
    Mox16s* coeffs = kChromaCoeffs.data();
    return function(&coeffs, kU.data() + kCorner, kV.data() + kCorner, kStep, arguments...);
  });
}

const Row kRows[] = {
    restoring("copy of luma coefficients and samples alone", restore_luma),
    restoring("copy of chroma coefficients and samples alone", restore_chroma),
    luma(MOX_FN(moxiReconstructLumaInterMB_H264_16s8u_C1R), "all blocks", kLumaAll, kQp),
    luma(MOX_FN(moxiReconstructLumaInterMB_H264_16s8u_C1R), "half of them", kLumaHalf, kQp),
    luma(MOX_FN(moxiReconstructLumaIntraMB_H264_16s8u_C1R), "all blocks", kModes, kLumaAll, kQp, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntraMB_H264_16s8u_C1R), "half of them", kModes, kLumaHalf, kQp, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R), "plane, all blocks", kPlane, kLumaAll, kQp,
         kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R), "DC, half of them", kDc, kLumaHalf, kQp, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R), "DC, DC values alone", kDc, kLumaDc, kQp, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntraHalfMB_H264_16s8u_C1R), "all blocks", kModes, kLumaAll, kQp, kNoneDenied),
    chroma(MOX_FN(moxiReconstructChromaInterMB_H264_16s8u_P2R), "all blocks", kChromaAll, kQp),
    chroma(MOX_FN(moxiReconstructChromaInterMB_H264_16s8u_P2R), "half of them", kChromaHalf, kQp),
    chroma(MOX_FN(moxiReconstructChromaInterMB_H264_16s8u_P2R), "DC values alone", kChromaDc, kQp),
    chroma(MOX_FN(moxiReconstructChromaIntraMB_H264_16s8u_P2R), "plane, all blocks", kPlane, kChromaAll, kQp,
           kNoneDenied),
    chroma(MOX_FN(moxiReconstructChromaIntraHalfsMB_H264_16s8u_P2R), "DC, all blocks", 0u, kChromaAll, kQp, kNoneDenied,
           kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaInter4x4MB_H264_16s8u_C1R), "all blocks", kLumaAll, kQp, kScales, kScaled),
    luma(MOX_FN(moxiReconstructLumaInter8x8MB_H264_16s8u_C1R), "all blocks", 0xFu, kQp, kScales, kScaled),
    luma(MOX_FN(moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R), "all blocks", kModes, kLumaAll, kQp, kNoneDenied,
         kScales, kScaled),
    luma(MOX_FN(moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R), "all blocks", kModes, 0xFu, kQp, kNoneDenied, kScales,
         kScaled),
    luma(MOX_FN(moxiReconstructLumaIntraHalf4x4MB_H264_16s8u_C1R), "all blocks", kModes, 0xFFu, kQp, kNoneDenied,
         kScales, kScaled),
    luma(MOX_FN(moxiReconstructLumaIntraHalf8x8MB_H264_16s8u_C1R), "all blocks", kModes, 3u, kQp, kNoneDenied, kScales,
         kScaled),
    luma(MOX_FN(moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R), "plane, all blocks", kPlane, kLumaAll, kQp,
         kNoneDenied, kScales, kScaled),
    chroma(MOX_FN(moxiReconstructChromaInter4x4MB_H264_16s8u_P2R), "all blocks", kChromaAll, kQp, kQp, kScales, kScales,
           kScaled),
    chroma(MOX_FN(moxiReconstructChromaIntra4x4MB_H264_16s8u_P2R), "plane, all blocks", kPlane, kChromaAll, kQp, kQp,
           kNoneDenied, kScales, kScales, kScaled),
    chroma(MOX_FN(moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R), "DC, all blocks", 0u, kChromaAll, kQp, kQp,
           kNoneDenied, kNoneDenied, kScales, kScales, kScaled),
};
const Family kReconstruct("h264_reconstruct", kRows);

}  // namespace
}  // namespace mox::bench
