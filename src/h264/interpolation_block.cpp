#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/interpolation_chroma_vec.hpp"
#include "h264/interpolation_luma_high_vec.hpp"
#include "h264/interpolation_luma_vec.hpp"
#include "h264/placed_block.hpp"
#include "moxvc/h264_interpolation.h"

using namespace mox;

namespace {

InterpKernel<Mox8u> luma_kernel(const MoxiInterpKernelArgs<Mox8u>& a) {
  return active::h264_interpolate_luma_type_table_8u_v8u8[a.typeIndex];
}
InterpKernel<Mox16u> luma_kernel(const MoxiInterpKernelArgs<Mox16u>& a) {
  return active::h264_interpolate_luma_type_table_16u_pxmx[a.typeIndex];
}
InterpKernel<Mox8u> chroma_kernel(const MoxiInterpKernelArgs<Mox8u>& a) {
  return active::h264_interpolate_chroma_type_table_8u_v8u8[a.typeIndex];
}
InterpKernel<Mox16u> chroma_kernel(const MoxiInterpKernelArgs<Mox16u>& a) {
  return active::h264_interpolate_chroma_type_table_16u_pxmx[a.typeIndex];
}

MoxStatus moxiInterpolateBoundaryLumaBlock_H264_8u(unsigned flags, const MoxiInterpBoundaryArgs<Mox8u>& args) {
  return run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, luma_kernel(args), args, kLumaReach);
}
MoxStatus moxiInterpolateBoundaryLumaBlock_H264_16u(unsigned flags, const MoxiInterpBoundaryArgs<Mox16u>& args) {
  return run_on_copy(&moxiReadDataBlockThroughBoundary_16u, flags, luma_kernel(args), args, kLumaReach);
}
MoxStatus moxiInterpolateBoundaryChromaBlock_H264_8u(unsigned flags, const MoxiInterpBoundaryArgs<Mox8u>& args) {
  run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, chroma_kernel(args), args, kChromaReach);
  return run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, chroma_kernel(args), second_plane(args),
                     kChromaReach);
}
MoxStatus moxiInterpolateBoundaryChromaBlock_H264_16u(unsigned flags, const MoxiInterpBoundaryArgs<Mox16u>& args) {
  run_on_copy(&moxiReadDataBlockThroughBoundary_16u, flags, chroma_kernel(args), args, kChromaReach);
  return run_on_copy(&moxiReadDataBlockThroughBoundary_16u, flags, chroma_kernel(args), second_plane(args),
                     kChromaReach);
}
MoxStatus moxiInterpolateBoundaryChromaBlock_NV12_H264_C2P2_8u(unsigned flags,
                                                               const MoxiInterpBoundaryArgs<Mox8u>& args) {
  return run_on_copy(&moxiReadDataBlockThroughBoundary_NV12_8u, flags, &active::launch_h264_interpolate_chroma_nv12touv,
                     args, kChromaReach, 2);
}

/// The kernel on both planes of a block inside the picture.
template <class T>
MoxStatus run_on_planes(MoxiInterpBoundaryArgs<T> a) {
  const std::ptrdiff_t offset = offset_of(a, kChromaReach);
  a.pSrc += offset, a.pSrc2 += offset;
  chroma_kernel(a)(a);
  return chroma_kernel(a)(second_plane(a));
}

}  // namespace

MoxStatus moxiInterpolateLumaBlock_H264_8u_P1R(const MoxiInterpBlock_8u* pBlock) {
  if (any_null(pBlock) || any_null(pBlock->pSrcPlane[0], pBlock->pDstPlane[0])) return moxStsNullPointer;
  if (!is_luma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  const Mox32s width = pBlock->blockSize.width;
  auto [args, flags] = place_block<Mox8u>(*pBlock, kLumaVectors, luma_width_8u(width));
  args.typeIndex = luma_index_8u(width, args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryLumaBlock_H264_8u(flags, args);
  args.pSrc += offset_of(args, kLumaReach);
  return luma_kernel(args)(args);
}

MoxStatus moxiInterpolateLumaBlock_H264_16u_P1R(const MoxiInterpBlock_16u* pBlock) {
  if (any_null(pBlock) || any_null(pBlock->pSrcPlane[0], pBlock->pDstPlane[0])) return moxStsNullPointer;
  if (!is_luma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  auto [args, flags] = place_block<Mox16u>(*pBlock, kLumaVectors, pBlock->blockSize.width);
  args.typeIndex = luma_position(args.dx, args.dy);
  args.bitDepth = pBlock->bitDepth;
  if (flags != 0) return moxiInterpolateBoundaryLumaBlock_H264_16u(flags, args);
  args.pSrc += offset_of(args, kLumaReach);
  return luma_kernel(args)(args);
}

MoxStatus moxiInterpolateChromaBlock_H264_8u_P2R(const MoxiInterpBlock_8u* pBlock) {
  if (any_null(pBlock)) return moxStsNullPointer;
  if (any_null(pBlock->pSrcPlane[0], pBlock->pSrcPlane[1], pBlock->pDstPlane[0], pBlock->pDstPlane[1]))
    return moxStsNullPointer;
  if (!is_chroma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  const Mox32s width = pBlock->blockSize.width;
  auto [args, flags] = place_block<Mox8u>(*pBlock, kChromaVectors, chroma_width_8u(width));
  args.typeIndex = chroma_index_8u(width, args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryChromaBlock_H264_8u(flags, args);
  return run_on_planes(args);
}

MoxStatus moxiInterpolateChromaBlock_H264_8u_C2P2R(const MoxiInterpBlock_8u* pBlock) {
  if (any_null(pBlock) || any_null(pBlock->pSrcPlane[0], pBlock->pDstPlane[0])) return moxStsNullPointer;
  if (!is_chroma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  const Mox32s width = pBlock->blockSize.width;
  auto [args, flags] = place_block<Mox8u>(*pBlock, kChromaVectors, chroma_width_8u(width));
  args.typeIndex = chroma_index_8u(width, args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryChromaBlock_NV12_H264_C2P2_8u(flags, args);
  args.pSrc += offset_of(args, kChromaReach, 2);
  return active::launch_h264_interpolate_chroma_nv12touv(args);
}

MoxStatus moxiInterpolateChromaBlock_H264_16u_P2R(const MoxiInterpBlock_16u* pBlock) {
  if (any_null(pBlock)) return moxStsNullPointer;
  if (any_null(pBlock->pSrcPlane[0], pBlock->pSrcPlane[1], pBlock->pDstPlane[0], pBlock->pDstPlane[1]))
    return moxStsNullPointer;
  if (!is_chroma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  auto [args, flags] = place_block<Mox16u>(*pBlock, kChromaVectors, pBlock->blockSize.width);
  args.typeIndex = chroma_type(args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryChromaBlock_H264_16u(flags, args);
  return run_on_planes(args);
}
