#include "h264/interpolation_chroma_vec.hpp"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/h264_interpolation.h"

using namespace mox;

namespace {

/// The kernel of a planar block of 8-bit samples.
InterpKernel<Mox8u> kernel_8u(MoxiSize size, Mox32s dx, Mox32s dy) {
  return active::h264_interpolate_chroma_type_table_8u_v8u8[chroma_index_8u(size.width, dx, dy)];
}

InterpKernel<Mox16u> kernel_16u(const MoxiInterpRegion_16u& r) {
  return active::h264_interpolate_chroma_type_table_16u_pxmx[chroma_type(r.dx, r.dy)];
}

MoxiInterpKernelArgs<Mox8u> block_of(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, Mox32s dx, Mox32s dy,
                                     MoxiSize size) {
  return block_8u(src, srcStep, dst, dstStep, dx, dy, chroma_width_8u(size.width), size.height);
}

bool is_side(Mox32s size) { return size == 2 || size == 4 || size == 8 || size == 16; }

}  // namespace

MoxStatus moxiInterpolateChroma_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s dx,
                                            Mox32s dy, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 7)) return moxStsBadArg;
  if (!is_chroma_size_8u(roiSize)) return moxStsBadSize;
  // The kernel itself knows its width.
  return kernel_8u(roiSize, dx, dy)(block_8u(pSrc, srcStep, pDst, dstStep, dx, dy, roiSize.width, roiSize.height));
}

MoxStatus moxiInterpolateChromaTop_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 7)) return moxStsBadArg;
  if (!is_chroma_size_8u(roiSize)) return moxStsBadSize;
  // Alone among the Top forms, a negative outPixels moves the block up by so many rows.
  const Mox8u* src = pSrc + std::ptrdiff_t{std::min(outPixels, 0)} * srcStep;
  return run_at_top(kernel_8u(roiSize, dx, dy), block_of(src, srcStep, pDst, dstStep, dx, dy, roiSize), kChromaReach,
                    outPixels);
}

MoxStatus moxiInterpolateChromaBottom_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                  Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 7)) return moxStsBadArg;
  if (!is_chroma_size_8u(roiSize)) return moxStsBadSize;
  return run_at_bottom(kernel_8u(roiSize, dx, dy), block_of(pSrc, srcStep, pDst, dstStep, dx, dy, roiSize),
                       kChromaReach, outPixels);
}

MoxStatus moxiInterpolateChroma_H264_8u_C2P2R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDstU, Mox8u* pDstV,
                                              Mox32s dstStep, Mox32s dx, Mox32s dy, MoxiSize roiSize) {
  if (any_null(pSrc, pDstU, pDstV)) return moxStsNullPointer;
  if (outside(dx | dy, 0, 7)) return moxStsBadArg;
  if (!is_chroma_size_8u(roiSize)) return moxStsBadSize;
  auto block = block_8u(pSrc, srcStep, pDstU, dstStep, dx, dy, roiSize.width, roiSize.height);
  block.pDst2 = pDstV;
  block.typeIndex = chroma_index_8u(roiSize.width, dx, dy);
  return active::launch_h264_interpolate_chroma_nv12touv(block);
}

MoxStatus moxiInterpolateChroma_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion) {
  if (any_null(pRegion) || any_null(pRegion->pSrc, pRegion->pDst)) return moxStsNullPointer;
  const MoxiInterpRegion_16u& r = *pRegion;
  if (r.srcStep < 8 || r.dstStep < 8) return moxStsBadStep;
  if (outside(r.dx, 0, 7) || outside(r.dy, 0, 7)) return moxStsBadArg;
  if (!is_side(r.height) || !is_side(r.width)) return moxStsBadSize;
  return active::own_InterpolateChroma_H264_16u(block_16u(r));
}

MoxStatus moxiInterpolateChromaTop_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels) {
  if (any_null(pRegion) || any_null(pRegion->pSrc, pRegion->pDst)) return moxStsNullPointer;
  const MoxiInterpRegion_16u& r = *pRegion;
  if (r.srcStep < 8 || r.dstStep < 8) return moxStsBadStep;
  if (outside(r.dx, 0, 7) || outside(r.dy, 0, 7)) return moxStsBadArg;
  if (!is_side(r.height) || !is_side(r.width)) return moxStsBadSize;
  return run_at_top(kernel_16u(r), block_16u(r), kChromaReach, outPixels);
}

MoxStatus moxiInterpolateChromaBottom_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels) {
  if (any_null(pRegion) || any_null(pRegion->pSrc, pRegion->pDst)) return moxStsNullPointer;
  const MoxiInterpRegion_16u& r = *pRegion;
  if (r.srcStep < 8 || r.dstStep < 8) return moxStsBadStep;
  if (outside(r.dx, 0, 7) || outside(r.dy, 0, 7)) return moxStsBadArg;
  if (!is_side(r.height) || !is_side(r.width)) return moxStsBadSize;
  return run_at_bottom(kernel_16u(r), block_16u(r), kChromaReach, outPixels);
}
