#include <bit>

#include "filters/camera_px.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

namespace {

/// Index of a format of kCameraFormats, 3 for none.
constexpr std::size_t format_index(Mox32s colorConversion) {
  return colorConversion == 565 ? 0 : colorConversion == 555 ? 1 : colorConversion == 444 ? 2 : 3;
}

bool is_odd_or_below(Mox32s size, Mox32s least) { return size < least || size % 2 != 0; }

}  // namespace

MoxStatus moxiResizeCCRotate_8u_C2R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, MoxiSize roiSize,
                                    Mox32s scaleFactor, Mox32s interpolation, Mox32s colorConversion, Mox32s rotation) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (is_odd_or_below(roiSize.width, 8) || roiSize.height < 8) return moxStsBadSize;
  if (scaleFactor != 2 && scaleFactor != 4 && scaleFactor != 8) return moxStsBadScaleFactor;
  if (outside(interpolation, moxInterpolateNearest, moxInterpolateBilinear)) return moxStsBadInterpolation;
  const std::size_t format = format_index(colorConversion);
  if (format == 3) return moxStsBadArg;
  if (outside(rotation, moxRotateNone, moxRotate180)) return moxStsBadArg;
  const MoxiSize scaled = {roiSize.width / scaleFactor, roiSize.height / scaleFactor};
  const auto scale = static_cast<std::size_t>(std::countr_zero(static_cast<Mox32u>(scaleFactor))) - 1;
  return active::ownResizeCCRotate_8u[camera_index(scale, interpolation == moxInterpolateBilinear, format)](
      {pSrc, srcStep}, turned_plane(pDst, dstStep, 2, scaled, rotation), scaled);
}

MoxStatus moxiCbYCr422ToYCbCr420_Rotate_8u_C2P3R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDstY, Mox32s dstYStep,
                                                 Mox8u* pDstCb, Mox32s dstCbStep, Mox8u* pDstCr, Mox32s dstCrStep,
                                                 MoxiSize roiSize, Mox32s rotation) {
  if (any_null(pSrc, pDstY, pDstCb, pDstCr)) return moxStsNullPointer;
  if (is_odd_or_below(roiSize.width, 2) || is_odd_or_below(roiSize.height, 2)) return moxStsBadSize;
  if (outside(rotation, moxRotateNone, moxRotate180)) return moxStsBadArg;
  const MoxiSize chroma = {roiSize.width / 2, roiSize.height / 2};
  return active::ownCbYCr422ToYCbCr420_Rotate_8u(
      {pSrc, srcStep},
      {turned_plane(pDstY, dstYStep, 1, roiSize, rotation), turned_plane(pDstCb, dstCbStep, 1, chroma, rotation),
       turned_plane(pDstCr, dstCrStep, 1, chroma, rotation)},
      roiSize);
}
