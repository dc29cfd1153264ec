#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/expansion_vec.hpp"
#include "moxvc/h264_expansion.h"

using namespace mox;

MoxStatus moxiExpandPlane_H264_8u_C1R(Mox8u* pSrcDst, Mox32s width, Mox32s height, Mox32s step, Mox32s expandSize,
                                      Mox32u mode) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (height < 2 || height % 2 != 0 || width == 0) return moxStsBadSize;
  if (expandSize == 0) return moxStsOk;
  if (mode > 2) return moxStsBadArg;
  return active::expand_plane(expanded_rows(pSrcDst, width, height, step, expandSize, static_cast<ExpandMode>(mode)));
}

MoxStatus moxiInterpolateBlock_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s width,
                                             Mox32s height, Mox32s step) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  if (outside(width, 2, 16) || outside(height, 2, 16)) return moxStsBadSize;
  return active::interpolate_block_h264_mmp<0, 0>({pSrc1, step, pSrc2, step, pDst, step}, {width, height});
}

MoxStatus moxiInterpolateBlock_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s width,
                                             Mox32s height, Mox32s step1, Mox32s step2, Mox32s dstStep) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  if (outside(width, 2, 16) || outside(height, 2, 16)) return moxStsBadSize;
  const BlockPair<Mox8u> at = {pSrc1, step1, pSrc2, step2, pDst, dstStep};
  if ((width | height) % 2 != 0) return active::interpolate_block_h264_mmp<0, 0>(at, {width, height});
  return active::interpolate_block_h264_function_table[average_index(width, height)](at, {width, height});
}
