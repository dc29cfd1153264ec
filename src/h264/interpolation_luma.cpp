#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/interpolation_luma_high_vec.hpp"
#include "h264/interpolation_luma_vec.hpp"
#include "moxvc/h264_interpolation.h"

using namespace mox;

namespace {

/// The kernel of a block of 8-bit samples.
InterpKernel<Mox8u> kernel_8u(MoxiSize size, Mox32s dx, Mox32s dy) {
  return active::h264_interpolate_luma_type_table_8u_v8u8[luma_index_8u(size.width, dx, dy)];
}

InterpKernel<Mox16u> kernel_16u(const MoxiInterpRegion_16u& r) {
  return active::InterpolFnTbl_16u[luma_position_by_column(r.dx, r.dy)];
}

/// A block with the width that is written, which the ways across the picture edges copy.
MoxiInterpKernelArgs<Mox8u> block_of(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, Mox32s dx, Mox32s dy,
                                     MoxiSize size) {
  return block_8u(src, srcStep, dst, dstStep, dx, dy, luma_width_8u(size.width), size.height);
}

bool is_side(Mox32s size) { return size == 4 || size == 8 || size == 16; }

/// 4 x 16 and 16 x 4 are no blocks of these forms.
bool is_luma_size_16u(Mox32s width, Mox32s height) { return is_side(height) && is_side(width) && width + height != 20; }

}  // namespace

MoxStatus moxiInterpolateLuma_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s dx,
                                          Mox32s dy, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 3)) return moxStsBadArg;
  if (!is_luma_size_8u(roiSize)) return moxStsBadSize;
  // The kernel itself knows its width.
  return kernel_8u(roiSize, dx, dy)(block_8u(pSrc, srcStep, pDst, dstStep, dx, dy, roiSize.width, roiSize.height));
}

MoxStatus moxiInterpolateLumaTop_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s dx,
                                             Mox32s dy, Mox32s outPixels, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 3)) return moxStsBadArg;
  if (!is_luma_size_8u(roiSize)) return moxStsBadSize;
  return run_at_top(kernel_8u(roiSize, dx, dy), block_of(pSrc, srcStep, pDst, dstStep, dx, dy, roiSize), kLumaReach,
                    outPixels);
}

MoxStatus moxiInterpolateLumaBottom_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 3)) return moxStsBadArg;
  if (!is_luma_size_8u(roiSize)) return moxStsBadSize;
  return run_at_bottom(kernel_8u(roiSize, dx, dy), block_of(pSrc, srcStep, pDst, dstStep, dx, dy, roiSize), kLumaReach,
                       outPixels);
}

MoxStatus moxiInterpolateLuma_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion) {
  if (any_null(pRegion) || any_null(pRegion->pSrc, pRegion->pDst)) return moxStsNullPointer;
  const MoxiInterpRegion_16u& r = *pRegion;
  if (r.srcStep < r.width || r.dstStep < r.width) return moxStsBadStep;
  if (outside(r.dx, 0, 3) || outside(r.dy, 0, 3)) return moxStsBadArg;
  if (!is_luma_size_16u(r.width, r.height)) return moxStsBadSize;
  return kernel_16u(r)(block_16u(r));
}

MoxStatus moxiInterpolateLumaTop_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels) {
  if (any_null(pRegion) || any_null(pRegion->pSrc, pRegion->pDst)) return moxStsNullPointer;
  const MoxiInterpRegion_16u& r = *pRegion;
  if (r.srcStep < r.width || r.dstStep < r.width) return moxStsBadStep;
  if (outside(r.dx, 0, 3) || outside(r.dy, 0, 3)) return moxStsBadArg;
  if (!is_luma_size_16u(r.width, r.height)) return moxStsBadSize;
  return run_at_top(kernel_16u(r), block_16u(r), kLumaReach, outPixels);
}

MoxStatus moxiInterpolateLumaBottom_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels) {
  if (any_null(pRegion) || any_null(pRegion->pSrc, pRegion->pDst)) return moxStsNullPointer;
  const MoxiInterpRegion_16u& r = *pRegion;
  if (r.srcStep < r.width || r.dstStep < r.width) return moxStsBadStep;
  if (outside(r.dx, 0, 3) || outside(r.dy, 0, 3)) return moxStsBadArg;
  if (!is_luma_size_16u(r.width, r.height)) return moxStsBadSize;
  return run_at_bottom(kernel_16u(r), block_16u(r), kLumaReach, outPixels);
}
