#include "support/bench.hpp"

namespace mox::bench {
namespace {

// Random bytes: codes come as often as their lengths tell, an end of block among 16.
const Mox8u* const kSegment = buffer<Mox8u>(408, 0, 255);
Mox16s* const kCoefficients = buffer<Mox16s>(40 * 64, 0, 0);
Mox32u* const kParameters = buffer<Mox32u>(40, 0, 0);

const Row kSegmentRows[] = {
    call(MOX_FN(moxiHuffmanDecodeSegment_DV_8u16s), "", kSegment, nullptr, nullptr, kCoefficients, kParameters),
    call(MOX_FN(moxiHuffmanDecodeSegmentOnePass_DV_8u16s), "all", kSegment, nullptr, nullptr, kCoefficients,
         kParameters, 64),
    call(MOX_FN(moxiHuffmanDecodeSegmentOnePass_DV_8u16s), "for 4x4", kSegment, nullptr, nullptr, kCoefficients,
         kParameters, 25),
    call(MOX_FN(moxiHuffmanDecodeSegment_DV100_8u16s), "", kSegment, nullptr, nullptr, kCoefficients, kParameters),
};
const Family kDvSegment("dv_segment", kSegmentRows);

const Fresh<Mox16s> kFresh(64, -60, 60);
Mox16s* const kBlock = kFresh.data();
constexpr Mox32u kParameter = 9 << 16;

void restore() { kFresh.restore(); }
template <class Function, class... Arguments>
Row in_place(Symbol<Function> symbol, Arguments... arguments) {
  return loop(symbol, "with copy", [=](Function* function) {
    restore();
    return function(kBlock, arguments...);
  });
}

const Row kTransformRows[] = {
    restoring("copy of the block alone", restore),
    in_place(MOX_FN(moxiQuantInv_DV_16s_C1I), kParameter),
    in_place(MOX_FN(moxiQuantInv_DV100_16s_C1I), kParameter, 1),
    in_place(MOX_FN(moxiDCT2x4x8Inv_16s_C1I)),
    in_place(MOX_FN(moxiDCT8x4x2To4x4Inv_DV_16s_C1I)),
    in_place(MOX_FN(moxiDCT8x4x2To2x2Inv_DV_16s_C1I)),
};
const Family kDvTransform("dv_transform", kTransformRows);

const Mox16s* const kSamples = buffer<Mox16s>(40 * 64, -140, 140);
constexpr Mox32s kStep = 2 * 720;
Mox8u* const kPicture = buffer<Mox8u>(5 * 16 * kStep, 0, 0);
Mox8u* const kMacroblocks[5] = {kPicture, kPicture + 16 * kStep, kPicture + 32 * kStep, kPicture + 48 * kStep,
                                kPicture + 64 * kStep};

/// The five macroblocks of a segment.
template <class Function>
Row conversion(Symbol<Function> symbol, int blocks = 6) {
  return call(symbol, "", kSamples, kSamples + 256, kSamples + (blocks == 6 ? 320 : 384), 128 * blocks, kMacroblocks,
              kStep);
}

const Row kConversionRows[] = {
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut2_EdgeDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut4_EdgeDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb411ToYCbCr422_ZoomOut8_EdgeDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb420ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb420ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb420ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb422ToYCbCr422_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb422ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R)),
    conversion(MOX_FN(moxiYCrCb422ToYCbCr422_5MBDV100_16s8u_P3C2R), 8),
};
const Family kDvConversion("dv_conversion", kConversionRows);

}  // namespace
}  // namespace mox::bench
