#include "avs/interpolation_vec.hpp"
#include "avs/prediction_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/placed_block.hpp"
#include "moxvc/avs_interpolation.h"

using namespace mox;

namespace {

/// The kernel on the block of one plane: in the plane, or on a copy of its footprint if that crosses an edge.
MoxStatus run_on_plane(InterpKernel<Mox8u> kernel, unsigned flags, MoxiInterpBoundaryArgs<Mox8u> args, Reach reach) {
  if (flags != 0) return run_on_copy(&moxiReadDataBlockThroughBoundary_8u, flags, kernel, args, reach);
  args.pSrc += offset_of(args, reach);
  return kernel(args);
}

}  // namespace

MoxStatus moxiInterpolateLumaBlock_AVS_8u_P1R(const MoxiInterpBlock_8u* pBlock) {
  if (any_null(pBlock) || any_null(pBlock->pSrcPlane[0], pBlock->pDstPlane[0])) return moxStsNullPointer;
  if ((pBlock->blockSize.height & 7) != 0 || (pBlock->blockSize.width & ~24) != 0) return moxStsBadSize;
  const Mox32s width = pBlock->blockSize.width;
  const auto [args, flags] = place_block<Mox8u>(*pBlock, kLumaVectors, avs_luma_width(width));
  return run_on_plane(active::avs_interpolate_luma_type_table_8u_ssse3[avs_luma_index(width, args.dx, args.dy)], flags,
                      args, kLumaReach);
}

MoxStatus moxiInterpolateChromaBlock_AVS_8u_P2R(const MoxiInterpBlock_8u* pBlock) {
  if (any_null(pBlock)) return moxStsNullPointer;
  if (any_null(pBlock->pSrcPlane[0], pBlock->pSrcPlane[1], pBlock->pDstPlane[0], pBlock->pDstPlane[1]))
    return moxStsNullPointer;
  const Mox32s width = pBlock->blockSize.width;
  if ((pBlock->blockSize.height & 3) != 0 || (width != 4 && width != 8)) return moxStsBadSize;
  const auto [args, flags] = place_block<Mox8u>(*pBlock, kChromaVectors, width);
  const auto kernel = active::avs_interpolate_chroma_table[avs_chroma_index(width, args.dx, args.dy)];
  run_on_plane(kernel, flags, args, kChromaReach);
  return run_on_plane(kernel, flags, second_plane(args), kChromaReach);
}

MoxStatus moxiWeightPrediction_AVS_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32u scale,
                                          Mox32u shift, MoxiSize roiSize) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if ((roiSize.width & ~28) != 0 || (roiSize.height & 3) != 0) return moxStsBadSize;
  const auto kernel = roiSize.width > 15 ? &active::weight_avs_prediction<16> : &active::weight_avs_prediction<8>;
  return kernel(pSrc, srcStep, pDst, dstStep, scale, shift, roiSize.height);
}
