#include "moxvc/dv_conversion.h"

#include "dv/conversion_px.hpp"
#include "dv/conversion_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

namespace {

/// Four macroblocks of one shape and a last one of another.
template <const px::DvShape& kShape, const px::DvShape& kLast, int N>
MoxStatus to_packed(const Mox16s* pSrcY, const Mox16s* pSrcCr, const Mox16s* pSrcCb, Mox32s srcStep,
                    Mox8u* const* ppDst, Mox32s dstStep) {
  if (any_null(pSrcY, pSrcCr, pSrcCb, ppDst)) return moxStsNullPointer;
  if (any_null(ppDst[0], ppDst[1], ppDst[2], ppDst[3], ppDst[4])) return moxStsNullPointer;
  for (int m = 0; m < px::kDvConverted; ++m) {
    const std::ptrdiff_t at = std::ptrdiff_t{m} * srcStep;
    const auto convert = m + 1 < px::kDvConverted ? active::dv_macroblock_to_packed<kShape, N>
                                                  : active::dv_macroblock_to_packed<kLast, N>;
    convert(step_bytes(pSrcY, at), step_bytes(pSrcCr, at), step_bytes(pSrcCb, at), ppDst[m], dstStep);
  }
  return moxStsOk;
}

}  // namespace

MoxStatus moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr, const Mox16s* pSrcCb,
                                                   Mox32s srcStep, Mox8u* const* ppDst, Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411, 8>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411, 4>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411, 2>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411, 1>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr, const Mox16s* pSrcCb,
                                                    Mox32s srcStep, Mox8u* const* ppDst, Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411Edge, 8>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut2_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                             const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                             Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411Edge, 4>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut4_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                             const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                             Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411Edge, 2>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut8_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                             const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                             Mox32s dstStep) {
  return to_packed<px::kDv411, px::kDv411Edge, 1>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr, const Mox16s* pSrcCb,
                                                   Mox32s srcStep, Mox8u* const* ppDst, Mox32s dstStep) {
  return to_packed<px::kDv420, px::kDv420, 8>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb420ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv420, px::kDv420, 4>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb420ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv420, px::kDv420, 2>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb420ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv420, px::kDv420, 1>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb422ToYCbCr422_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr, const Mox16s* pSrcCb,
                                                   Mox32s srcStep, Mox8u* const* ppDst, Mox32s dstStep) {
  return to_packed<px::kDv422, px::kDv422, 8>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb422ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv422, px::kDv422, 4>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb422ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv422, px::kDv422, 2>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb422ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep) {
  return to_packed<px::kDv422, px::kDv422, 1>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}

MoxStatus moxiYCrCb422ToYCbCr422_5MBDV100_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr, const Mox16s* pSrcCb,
                                                      Mox32s srcStep, Mox8u* const* ppDst, Mox32s dstStep) {
  return to_packed<px::kDv422Eight, px::kDv422Eight, 8>(pSrcY, pSrcCr, pSrcCb, srcStep, ppDst, dstStep);
}
