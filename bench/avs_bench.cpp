#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr Mox32s kStep = kPictureStep;
const Mox8u* const kReference = picture<Mox8u>(0, 255);
Mox8u* const kPrediction[2] = {buffer<Mox8u>(16 * 16, 0, 255), buffer<Mox8u>(16 * 16, 0, 255)};

/// A block inside the picture whose vector has a fraction.
const MoxiInterpBlock_8u* block(MoxiSize size, Mox32s dx, Mox32s dy, Mox32s unit) {
  return new MoxiInterpBlock_8u{{kReference - 16 * kStep - 16, kReference - 16 * kStep - 16},
                                kStep,
                                {kPrediction[0], kPrediction[1]},
                                16,
                                {64, 64},
                                size,
                                {16, 16},
                                {unit + dx, unit + dy}};
}
Row luma(const char* name, MoxiSize size, Mox32s dx, Mox32s dy) {
  return call(MOX_FN(moxiInterpolateLumaBlock_AVS_8u_P1R), name, block(size, dx, dy, 4));
}
Row chroma(const char* name, MoxiSize size, Mox32s dx, Mox32s dy) {
  return call(MOX_FN(moxiInterpolateChromaBlock_AVS_8u_P2R), name, block(size, dx, dy, 8));
}

const Row kInterpolation[] = {
    luma("16x16 (0,0)", {16, 16}, 0, 0),
    luma("16x16 (1,0)", {16, 16}, 1, 0),
    luma("16x16 (2,0)", {16, 16}, 2, 0),
    luma("16x16 (0,1)", {16, 16}, 0, 1),
    luma("16x16 (0,2)", {16, 16}, 0, 2),
    luma("16x16 (1,1)", {16, 16}, 1, 1),
    luma("16x16 (2,1)", {16, 16}, 2, 1),
    luma("16x16 (1,2)", {16, 16}, 1, 2),
    luma("16x16 (2,2)", {16, 16}, 2, 2),
    luma("8x8 (2,0)", {8, 8}, 2, 0),
    luma("8x8 (0,2)", {8, 8}, 0, 2),
    luma("8x8 (2,2)", {8, 8}, 2, 2),
    chroma("8x8 (3,0)", {8, 8}, 3, 0),
    chroma("8x8 (3,5)", {8, 8}, 3, 5),
    chroma("4x4 (3,5)", {4, 4}, 3, 5),
    call(MOX_FN(moxiWeightPrediction_AVS_8u_C1R), "16x16", kReference, kStep, kPrediction[0], 16, 40u, 3u,
         MoxiSize{16, 16}),
    call(MOX_FN(moxiWeightPrediction_AVS_8u_C1R), "8x8", kReference, kStep, kPrediction[0], 16, 40u, 3u,
         MoxiSize{8, 8}),
};
const Family kInterpolationFamily("avs_interpolation", kInterpolation);

/// A macroblock with its neighbours in the plane. Calls go on from what the one before left behind.
Mox8u* const kPlane = picture<Mox8u>(100, 140);
const Mox16s* const kLevels = buffer<Mox16s>(256, -3, 3);
const Mox16s* const kResidual = buffer<Mox16s>(64, -60, 60);
Mox16s* const kCoded = buffer<Mox16s>(256, 0, 0);
Mox32s* const kCount = buffer<Mox32s>(1, 0, 0);
Mox32u* const kPattern = buffer<Mox32u>(1, 0, 0);

/// Four blocks of one mode.
const Mox32u* modes(Mox32u mode) { return new Mox32u[4]{mode, mode, mode, mode}; }
Row luma_intra(const char* name, Mox32u mode, Mox32u cbp) {
  return call(MOX_FN(moxiReconstructLumaIntra_AVS_16s8u_C1R), name, kLevels, kPlane, kStep, modes(mode), cbp, 30, 0u);
}

const Row kReconstruction[] = {
    call(MOX_FN(moxiReconstructChromaInter_AVS_16s8u_C1R), "one block", kLevels, kPlane, kStep, 1u, 30),
    call(MOX_FN(moxiReconstructLumaInter_AVS_16s8u_C1R), "one block", kLevels, kPlane, kStep, 4u, 30),
    call(MOX_FN(moxiReconstructLumaInter_AVS_16s8u_C1R), "four blocks", kLevels, kPlane, kStep, 15u, 30),
    luma_intra("vertical alone", 0, 0),
    luma_intra("horizontal alone", 1, 0),
    luma_intra("DC alone", 2, 0),
    luma_intra("down left alone", 3, 0),
    luma_intra("down right alone", 4, 0),
    luma_intra("DC, four blocks", 2, 15),
    call(MOX_FN(moxiReconstructChromaIntra_AVS_16s8u_C1R), "plane alone", kLevels, kPlane, kStep, 3u, 0u, 30, 0u),
    call(MOX_FN(moxiTransformQuant8x8Fwd_AVS_16s_C1), "", kResidual, kCoded, kCount, 30, 85),
    call(MOX_FN(moxiDisassembleLumaIntra_AVS_16s8u_C1R), "DC", kReference, kStep, kPlane, kStep, kCoded, modes(2),
         kPattern, 30, 85, 0u),
};
const Family kReconstructionFamily("avs_reconstruction", kReconstruction);

/// Thresholds under which all lines of the samples change.
const Fresh<Mox8u> kSamples(24 * kStep, 100, 106);
const Mox8u kAlpha[] = {60, 60}, kBeta[] = {27, 27}, kLimit[] = {4, 4};
const Mox8u kNormal[] = {1, 1, 1, 1}, kStrong[] = {2, 2, 2, 2};

template <class Function>
Row filter(Symbol<Function> symbol, const char* name, const Mox8u* strengths) {
  return loop(symbol, name, [=](Function* function) {
    kSamples.restore();
    return function(kSamples.data() + 4 * kStep + 20, kStep, kAlpha, kBeta, kLimit, strengths);
  });
}
const Row kDeblocking[] = {
    restoring("copy of the samples alone", [] { kSamples.restore(); }),
    filter(MOX_FN(moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR), "strength 1", kNormal),
    filter(MOX_FN(moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR), "strength 2", kStrong),
    filter(MOX_FN(moxiFilterDeblockingLuma_HorEdge_AVS_8u_C1IR), "strength 1", kNormal),
    filter(MOX_FN(moxiFilterDeblockingLuma_HorEdge_AVS_8u_C1IR), "strength 2", kStrong),
    filter(MOX_FN(moxiFilterDeblockingChroma_VerEdge_AVS_8u_C1IR), "strength 2", kStrong),
    filter(MOX_FN(moxiFilterDeblockingChroma_HorEdge_AVS_8u_C1IR), "strength 2", kStrong),
};
const Family kDeblockingFamily("avs_deblocking", kDeblocking);

/// Random words: blocks of any length. The position is put back before each call.
const Mox32u* const kWords = buffer<Mox32u>(1024, 0, 0x7FFFFFFF);

template <class Function>
Row decode(Symbol<Function> symbol) {
  return loop(symbol, "16 blocks of random bits", [=](Function* function) {
    const Mox32u* word = kWords;
    Mox32s offset = 31, count;
    MoxStatus status = moxStsOk;
    for (int i = 0; i < 16; ++i) status = function(&word, &offset, &count, kCoded, 0);
    return status;
  });
}
const Row kCoefficients[] = {decode(MOX_FN(moxiDecodeLumaBlockIntra_AVS_1u16s)),
                             decode(MOX_FN(moxiDecodeLumaBlockInter_AVS_1u16s)),
                             decode(MOX_FN(moxiDecodeChromaBlock_AVS_1u16s))};
const Family kCoefficientFamily("avs_coefficients", kCoefficients);

}  // namespace
}  // namespace mox::bench
