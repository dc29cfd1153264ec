/// Choice of the predictor of a mode, for the intra functions and the macroblock functions alike.
///
/// Not a kernel: the kernels are those of the generation, so that a vector kernel of one mode is picked up here.
#pragma once

#include "frame/generation.hpp"
#include "h264/intra_modes.hpp"
#include "h264/intra_px.hpp"
#include "h264/intra_vec.hpp"

namespace mox {

/// moxStsOutOfRange for a mode above 3, then moxStsEdgeUnavailable for an edge that is denied to the mode; else the
/// block is predicted.
template <class Pixel>
MoxStatus predict_luma_16x16_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u available, Mox32s depth = 8) {
  if (mode > kPlane16x16) return moxStsOutOfRange;
  if (kEdgesOfMode16x16[mode] & ~available) return moxStsEdgeUnavailable;
  switch (mode) {
    case kVertical16x16: active::predict_luma_16x16_vertical_h264_sse2(pSrcDst, step); break;
    case kHorizontal16x16: active::predict_luma_16x16_horizontal_h264_ssse3(pSrcDst, step); break;
    case kDC16x16:
      active::predict_luma_16x16_dc_h264_sse2(pSrcDst, step, !(available & kTop), !(available & kLeft), depth);
      break;
    default: active::predict_luma_16x16_plane_h264_sse2(pSrcDst, step, depth); break;
  }
  return moxStsOk;
}

/// The same for a chroma plane of 8 x H samples.
template <int H, class Pixel>
MoxStatus predict_chroma_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u available, Mox32s depth = 8) {
  if (mode > kPlaneChroma) return moxStsOutOfRange;
  if (kEdgesOfModeChroma[mode] & ~available) return moxStsEdgeUnavailable;
  const bool top = available & kTop, left = available & kLeft;
  switch (mode) {
    case kDCChroma: active::predict_chroma_dc_h264<H>(pSrcDst, step, top, left, left, depth); break;
    case kHorizontalChroma: active::predict_chroma_horizontal_h264<H>(pSrcDst, step); break;
    case kVerticalChroma: active::predict_chroma_vertical_h264<H>(pSrcDst, step); break;
    default: active::predict_chroma_plane_h264<H>(pSrcDst, step, depth); break;
  }
  return moxStsOk;
}

/// Chroma whose left neighbours differ for the upper and the lower half: `upper` and `lower` are the neighbours of
/// each, the row above is in `upper`. moxStsEdgeUnavailable for all modes but DC and vertical too.
template <int H, class Pixel>
MoxStatus predict_chroma_halves_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u upper, Mox32u lower,
                                     Mox32s depth = 8) {
  if (mode == kDCChroma) {
    active::predict_chroma_dc_h264<H>(pSrcDst, step, upper & kTop, upper & kLeft, lower & kLeft, depth);
    return moxStsOk;
  }
  if (mode != kVerticalChroma || !(upper & kTop)) return moxStsEdgeUnavailable;
  active::predict_chroma_vertical_h264<H>(pSrcDst, step);
  return moxStsOk;
}

}  // namespace mox
