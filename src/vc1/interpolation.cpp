#include "frame/arguments.hpp"
#include "moxvc/vc1_interpolation.h"
#include "vc1/interpolation_tables.hpp"
#include "vc1/interpolation_window.hpp"

using namespace mox;

namespace {

/// The kernels of a size, index vc1_position.
struct Bicubic {
  static constexpr int kChannels = 1;
  static const VC1InterpolationKernel* kernels(MoxiSize size) {
    switch ((size.width >> 4) + (size.height >> 4)) {
      case 0: return ownvc_Interpolate8x8QPBicubic_VC1_8u_C1R.data();
      case 1: return ownvc_Interpolate16x8QPBicubic_VC1_8u_C1R.data();
      default: return ownvc_Interpolate16x16QPBicubic_VC1_8u_C1R.data();
    }
  }
};
struct Bilinear {
  static constexpr int kChannels = 1;
  static const VC1InterpolationKernel* kernels(MoxiSize size) {
    if (size.width == 16) return ownvc_Interpolate16x16QPBilinear_VC1_8u_C1R.data();
    if (size.width != 8) return ownvc_Interpolate4x4QPBilinear_VC1_8u_C1R.data();
    return size.height == 8 ? ownvc_Interpolate8x8QPBilinear_VC1_8u_C1R.data()
                            : ownvc_Interpolate8x4QPBilinear_VC1_8u_C1R.data();
  }
};
struct BilinearPairs {
  static constexpr int kChannels = 2;
  static const VC1InterpolationKernel* kernels(MoxiSize size) {
    if (size.width != 8) return ownvc_Interpolate4x4QPBilinear_VC1_8u_C2R.data();
    return size.height == 8 ? ownvc_Interpolate8x8QPBilinear_VC1_8u_C2R.data()
                            : ownvc_Interpolate8x4QPBilinear_VC1_8u_C2R.data();
  }
};

template <class Filter>
MoxStatus interpolate(const MoxiVC1InterpolationParams& a) {
  return Filter::kernels(a.roiSize)[vc1_position(a.dx, a.dy)](a.pSrc, a.srcStep, a.pDst, a.dstStep, a.roundControl & 1);
}

template <class Filter>
MoxStatus interpolate_block(const MoxiVC1ICInterpolationParams& a) {
  constexpr int kChannels = Filter::kChannels;
  const auto kernel = Filter::kernels(a.blockSize)[vc1_position(a.dx, a.dy)];
  const VC1Reference reference(a);
  const VC1WindowArea<kChannels> area(a);
  const std::ptrdiff_t width = std::ptrdiff_t{a.frameSize.width} * kChannels;
  if (a.pLUTTop == nullptr && a.pLUTBottom == nullptr && area.left >= 0 && area.top >= 0 &&
      area.left + area.columns <= width && area.top + area.rows <= reference.rows) {
    return kernel(a.pSrc + a.blockPos.y * reference.step + a.blockPos.x, reference.step, a.pDst, a.dstStep,
                  a.roundControl & 1);
  }
  const VC1Window<kChannels> window(a, reference, area);
  return kernel(window.block(), window.kStep, a.pDst, a.dstStep, a.roundControl & 1);
}

}  // namespace

MoxStatus moxiInterpolateQPBicubic_VC1_8u_C1R(const MoxiVC1InterpolationParams* interpolation) {
  if (any_null(interpolation->pSrc, interpolation->pDst)) return moxStsNullPointer;
  return interpolate<Bicubic>(*interpolation);
}

MoxStatus moxiInterpolateQPBilinear_VC1_8u_C1R(const MoxiVC1InterpolationParams* interpolation) {
  if (any_null(interpolation) || any_null(interpolation->pSrc, interpolation->pDst)) return moxStsNullPointer;
  return interpolate<Bilinear>(*interpolation);
}

MoxStatus moxiInterpolateQPBilinear_VC1_8u_C2R(const MoxiVC1InterpolationParams* interpolation) {
  if (any_null(interpolation) || any_null(interpolation->pSrc, interpolation->pDst)) return moxStsNullPointer;
  return interpolate<BilinearPairs>(*interpolation);
}

MoxStatus moxiInterpolateICBicubicBlock_VC1_8u_C1R(const MoxiVC1ICInterpolationParams* interpolation) {
  if (any_null(interpolation) || any_null(interpolation->pSrc, interpolation->pDst)) return moxStsNullPointer;
  return interpolate_block<Bicubic>(*interpolation);
}

MoxStatus moxiInterpolateICBilinearBlock_VC1_8u_C1R(const MoxiVC1ICInterpolationParams* interpolation) {
  if (any_null(interpolation) || any_null(interpolation->pSrc, interpolation->pDst)) return moxStsNullPointer;
  return interpolate_block<Bilinear>(*interpolation);
}

MoxStatus moxiInterpolateICBilinearBlock_VC1_8u_C2R(const MoxiVC1ICInterpolationParams* interpolation) {
  if (any_null(interpolation) || any_null(interpolation->pSrc, interpolation->pDst)) return moxStsNullPointer;
  return interpolate_block<BilinearPairs>(*interpolation);
}
