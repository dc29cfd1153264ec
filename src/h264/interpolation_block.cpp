#include <algorithm>
#include <cstddef>

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/boundary_px.hpp"
#include "h264/interpolation_chroma.hpp"
#include "h264/interpolation_luma_px.hpp"
#include "moxvc/h264_interpolation.h"

using namespace mox;

namespace {

/// What luma and chroma differ in: bits of a vector's fraction, and what their filters read.
struct Rule {
  int fractionBits;
  Reach reach;
};
constexpr Rule kLuma = {2, kLumaReach}, kChroma = {3, kChromaReach};

/// A block of a picture as its kernels take it, pSrc still the origin of the plane.
template <class T>
struct PlacedBlock {
  MoxiInterpKernelArgs<T> args;
  unsigned flags;  ///< edges that the footprint crosses
};

/// Splits the vector and finds the footprint of a block `width` columns wide. Positions are 64 bits wide: no vector
/// and no position overflows. A block with a vector of zero counts as one inside the picture.
template <class T, class Record>
PlacedBlock<T> place(const Record& r, const Rule& rule, Mox32s width) {
  const Mox32s fraction = (1 << rule.fractionBits) - 1;
  const Mox32s dx = r.vector.x & fraction, dy = r.vector.y & fraction, height = r.blockSize.height;
  const auto moved = [&](Mox32s position, Mox32s by) { return std::ptrdiff_t{position} + (by >> rule.fractionBits); };
  const Span columns = footprint(rule.reach, moved(r.blockPos.x, r.vector.x), width, dx != 0);
  const Span rows = footprint(rule.reach, moved(r.blockPos.y, r.vector.y), height, dy != 0);
  const bool moves = (r.vector.x | r.vector.y) != 0;
  return {.args = {.pSrc = r.pSrcPlane[0],
                   .srcStep = r.srcStep,
                   .pDst = r.pDstPlane[0],
                   .dstStep = r.dstStep,
                   .dx = dx,
                   .dy = dy,
                   .width = width,
                   .height = height,
                   .x = columns.start,
                   .y = rows.start,
                   .extWidth = static_cast<Mox32s>(columns.size),
                   .extHeight = footprint_size(rule.reach, std::min(height, kLocalHeight), dy != 0),
                   .frameWidth = r.frameSize.width,
                   .frameHeight = r.frameSize.height,
                   .pSrc2 = r.pSrcPlane[1],
                   .pDst2 = r.pDstPlane[1]},
          .flags = moves ? edge_flags(columns, rows, r.frameSize) : 0};
}

/// Samples from the origin of a plane to the block.
template <class T>
std::ptrdiff_t offset_of(const MoxiInterpKernelArgs<T>& a, Reach reach, int channels = 1) {
  return (a.y + margin(reach, a.dy != 0)) * a.srcStep + (a.x + margin(reach, a.dx != 0)) * channels;
}

/// Runs the kernel on a copy of the footprint. The read step is one of those that take edge flags.
template <class T>
MoxStatus run_on_copy(MoxStatus (*read)(unsigned, const MoxiInterpKernelArgs<T>&), unsigned flags,
                      InterpKernel<T> kernel, MoxiInterpKernelArgs<T> a, Reach reach, int channels = 1) {
  constexpr int kWidest = 48;  // samples: 28 columns of luma and their margins, rounded up
  alignas(64) T local[kLocalRows * kWidest];
  const std::ptrdiff_t localStep = (a.extWidth * channels + 15) & ~15;
  MoxiInterpKernelArgs<T> copy = a;
  copy.pDst = local, copy.dstStep = localStep;
  read(flags, copy);
  a.pSrc = local + margin(reach, a.dy != 0) * localStep + margin(reach, a.dx != 0);
  a.srcStep = localStep;
  a.height = std::min(a.height, kLocalHeight);
  return kernel(a);
}

/// The arguments for the second plane.
template <class T>
MoxiInterpKernelArgs<T> second_plane(MoxiInterpKernelArgs<T> a) {
  a.pSrc = a.pSrc2, a.pDst = a.pDst2;
  return a;
}

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

MoxStatus moxiInterpolateBoundaryLumaBlock_H264_8u(unsigned flags, const MoxiInterpKernelArgs<Mox8u>& args) {
  return run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, luma_kernel(args), args, kLumaReach);
}
MoxStatus moxiInterpolateBoundaryLumaBlock_H264_16u(unsigned flags, const MoxiInterpKernelArgs<Mox16u>& args) {
  return run_on_copy(&moxiReadDataBlockThroughBoundary_16u, flags, luma_kernel(args), args, kLumaReach);
}
MoxStatus moxiInterpolateBoundaryChromaBlock_H264_8u(unsigned flags, const MoxiInterpKernelArgs<Mox8u>& args) {
  run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, chroma_kernel(args), args, kChromaReach);
  return run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, chroma_kernel(args), second_plane(args),
                     kChromaReach);
}
MoxStatus moxiInterpolateBoundaryChromaBlock_H264_16u(unsigned flags, const MoxiInterpKernelArgs<Mox16u>& args) {
  run_on_copy(&moxiReadDataBlockThroughBoundary_16u, flags, chroma_kernel(args), args, kChromaReach);
  return run_on_copy(&moxiReadDataBlockThroughBoundary_16u, flags, chroma_kernel(args), second_plane(args),
                     kChromaReach);
}
MoxStatus moxiInterpolateBoundaryChromaBlock_NV12_H264_C2P2_8u(unsigned flags,
                                                               const MoxiInterpKernelArgs<Mox8u>& args) {
  return run_on_copy(&moxiReadDataBlockThroughBoundary_NV12_8u, flags, &launch_h264_interpolate_chroma_nv12touv, args,
                     kChromaReach, 2);
}

/// The kernel on both planes of a block inside the picture.
template <class T>
MoxStatus run_on_planes(MoxiInterpKernelArgs<T> a) {
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
  auto [args, flags] = place<Mox8u>(*pBlock, kLuma, luma_width_8u(width));
  args.typeIndex = luma_index_8u(width, args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryLumaBlock_H264_8u(flags, args);
  args.pSrc += offset_of(args, kLumaReach);
  return luma_kernel(args)(args);
}

MoxStatus moxiInterpolateLumaBlock_H264_16u_P1R(const MoxiInterpBlock_16u* pBlock) {
  if (any_null(pBlock) || any_null(pBlock->pSrcPlane[0], pBlock->pDstPlane[0])) return moxStsNullPointer;
  if (!is_luma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  auto [args, flags] = place<Mox16u>(*pBlock, kLuma, pBlock->blockSize.width);
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
  auto [args, flags] = place<Mox8u>(*pBlock, kChroma, chroma_width_8u(width));
  args.typeIndex = chroma_index_8u(width, args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryChromaBlock_H264_8u(flags, args);
  return run_on_planes(args);
}

MoxStatus moxiInterpolateChromaBlock_H264_8u_C2P2R(const MoxiInterpBlock_8u* pBlock) {
  if (any_null(pBlock) || any_null(pBlock->pSrcPlane[0], pBlock->pDstPlane[0])) return moxStsNullPointer;
  if (!is_chroma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  const Mox32s width = pBlock->blockSize.width;
  auto [args, flags] = place<Mox8u>(*pBlock, kChroma, chroma_width_8u(width));
  args.typeIndex = chroma_index_8u(width, args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryChromaBlock_NV12_H264_C2P2_8u(flags, args);
  args.pSrc += offset_of(args, kChromaReach, 2);
  return launch_h264_interpolate_chroma_nv12touv(args);
}

MoxStatus moxiInterpolateChromaBlock_H264_16u_P2R(const MoxiInterpBlock_16u* pBlock) {
  if (any_null(pBlock)) return moxStsNullPointer;
  if (any_null(pBlock->pSrcPlane[0], pBlock->pSrcPlane[1], pBlock->pDstPlane[0], pBlock->pDstPlane[1]))
    return moxStsNullPointer;
  if (!is_chroma_size_8u(pBlock->blockSize)) return moxStsBadSize;
  auto [args, flags] = place<Mox16u>(*pBlock, kChroma, pBlock->blockSize.width);
  args.typeIndex = chroma_type(args.dx, args.dy);
  if (flags != 0) return moxiInterpolateBoundaryChromaBlock_H264_16u(flags, args);
  return run_on_planes(args);
}
