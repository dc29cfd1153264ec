#include "support/bench.hpp"

namespace mox::bench {
namespace {

using Rec = MoxiReconstructHighRec;

constexpr Mox32u kLumaAll = 0x1FFFF, kChroma420 = 0x1F, kChroma422 = 0x1FF;
constexpr Mox32u kNoneDenied = 0, kPlane = 3, kDc = 0, kBypass = 1;
constexpr Mox32s kQp = 36, kQp8 = 28, kDcScale = 240, kStep = 32;
constexpr std::size_t kCorner = 4 * kStep + 8;  // of a block within its plane

const Mox16s* const kScales = buffer<Mox16s>(64, 160, 320);
const Mox32u* const kModes = buffer<Mox32u>(16, 0, 8);

/// What calls of one width work on: the planes of luma, or of U and V with one stream.
template <class Coeff, class Sample>
struct Work {
  Fresh<Coeff> coeffs{16 + 256 + 16, -40, 40};
  Fresh<Sample> first{20 * kStep, 60, 190}, second{20 * kStep, 60, 190};

  void restore_luma() const { coeffs.restore(), first.restore(); }
  void restore_chroma() const { restore_luma(), second.restore(); }
  Rec plane(const Fresh<Sample>& samples, Coeff** stream, Mox32u cbp, Mox32s qp, Mox32u bypass = 0) const {
    return {stream, samples.data() + kCorner, kStep, cbp, qp, kScales, bypass, 10};
  }
};
const Work<Mox32s, Mox16u> kWide;
const Work<Mox16s, Mox8u> kNarrow;

template <class Function, class... Arguments>
Row luma(Symbol<Function> symbol, std::string_view variant, Mox32u cbp, Mox32s qp, Mox32u bypass, Arguments... rest) {
  return loop(symbol, variant, [=](Function* function) {
    kWide.restore_luma();
    Mox32s* stream = kWide.coeffs.data();
    const Rec rec = kWide.plane(kWide.first, &stream, cbp, qp, bypass);
    return function(&rec, rest...);
  });
}
template <class Coeff, class Sample, class Function, class... Arguments>
Row chroma(const Work<Coeff, Sample>& work, Symbol<Function> symbol, std::string_view variant, Mox32u cbp, Mox32s qp,
           Arguments... rest) {
  return loop(symbol, variant, [=, &work](Function* function) {
    work.restore_chroma();
    Coeff* stream = work.coeffs.data();
    Rec u = work.plane(work.first, &stream, cbp, qp), v = work.plane(work.second, &stream, cbp, qp);
    Rec* const planes[] = {&u, &v};
    return function(planes, rest...);
  });
}

const Row kRows[] = {
    restoring("copy of 32s luma coefficients and samples alone", [] { kWide.restore_luma(); }),
    restoring("copy of 32s chroma coefficients and samples alone", [] { kWide.restore_chroma(); }),
    restoring("copy of 16s chroma coefficients and samples alone", [] { kNarrow.restore_chroma(); }),
    luma(MOX_FN(moxiReconstructLumaInter4x4_H264High_32s16u_IP1R), "all blocks", kLumaAll, kQp, 0),
    luma(MOX_FN(moxiReconstructLumaInter4x4_H264High_32s16u_IP1R), "lossless", kLumaAll, 0, kBypass),
    luma(MOX_FN(moxiReconstructLumaInter8x8_H264High_32s16u_IP1R), "all blocks", 0xF, kQp, 0),
    luma(MOX_FN(moxiReconstructLumaIntra4x4_H264High_32s16u_IP1R), "all blocks", kLumaAll, kQp, 0, kModes, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntra8x8_H264High_32s16u_IP1R), "all blocks", 0xF, kQp, 0, kModes, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntraHalf4x4_H264High_32s16u_IP1R), "all blocks", 0xFF, kQp, 0, kModes, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntraHalf8x8_H264High_32s16u_IP1R), "all blocks", 3, kQp, 0, kModes, kNoneDenied),
    luma(MOX_FN(moxiReconstructLumaIntra16x16_H264High_32s16u_IP1R), "plane, all blocks", kLumaAll, kQp, 0, kPlane,
         kNoneDenied),
    chroma(kWide, MOX_FN(moxiReconstructChromaInter4x4_H264High_32s16u_IP2R), "all blocks", kChroma420, kQp),
    chroma(kWide, MOX_FN(moxiReconstructChromaIntra4x4_H264High_32s16u_IP2R), "plane, all blocks", kChroma420, kQp,
           kPlane, kNoneDenied),
    chroma(kWide, MOX_FN(moxiReconstructChromaIntraHalf4x4_H264High_32s16u_IP2R), "DC, all blocks", kChroma420, kQp,
           kDc, kNoneDenied, kNoneDenied),
    chroma(kNarrow, MOX_FN(moxiReconstructChroma422Inter4x4_H264High_16s8u_IP2R), "all blocks", kChroma422, kQp8,
           kDcScale, kDcScale),
    chroma(kWide, MOX_FN(moxiReconstructChroma422Inter4x4_H264High_32s16u_IP2R), "all blocks", kChroma422, kQp,
           kDcScale, kDcScale),
    chroma(kNarrow, MOX_FN(moxiReconstructChroma422Intra4x4_H264High_16s8u_IP2R), "plane, all blocks", kChroma422, kQp8,
           kPlane, kNoneDenied, kDcScale, kDcScale),
    chroma(kWide, MOX_FN(moxiReconstructChroma422Intra4x4_H264High_32s16u_IP2R), "plane, all blocks", kChroma422, kQp,
           kPlane, kNoneDenied, kDcScale, kDcScale),
    chroma(kNarrow, MOX_FN(moxiReconstructChroma422IntraHalf4x4_H264High_16s8u_IP2R), "DC, all blocks", kChroma422,
           kQp8, kDc, kNoneDenied, kNoneDenied, kDcScale, kDcScale),
    chroma(kWide, MOX_FN(moxiReconstructChroma422IntraHalf4x4_H264High_32s16u_IP2R), "DC, all blocks", kChroma422, kQp,
           kDc, kNoneDenied, kNoneDenied, kDcScale, kDcScale),
};
const Family kReconstructHigh("h264_reconstruct_high", kRows);

}  // namespace
}  // namespace mox::bench
