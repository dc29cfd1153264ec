/// Interleaved chroma in two stages, for the plain form and for the block form.
#pragma once

#include <algorithm>

#include "frame/generation.hpp"
#include "h264/interpolation_chroma_px.hpp"

namespace mox {

/// Splits the samples that the block needs into a U and a V block, then runs the planar kernel on each. typeIndex is
/// chroma_index_8u. Blocks higher than the local ones are done in parts.
inline MoxStatus launch_h264_interpolate_chroma_nv12touv(const MoxiInterpKernelArgs<Mox8u>& block) {
  constexpr int kStep = 16;
  alignas(16) Mox8u u[(kLocalHeight + 1) * kStep], v[(kLocalHeight + 1) * kStep];
  for (int y = 0; y < block.height; y += kLocalHeight) {
    MoxiInterpKernelArgs<Mox8u> part = block;
    part.height = std::min(block.height - y, kLocalHeight);
    part.pSrc += y * block.srcStep;
    part.pDst = u, part.pDst2 = v, part.dstStep = kStep;
    active::h264_interpolate_chroma_type_table_nv12touv_8u_v8u8[block.typeIndex](part);

    const InterpKernel<Mox8u> planar = active::h264_interpolate_chroma_type_table_8u_v8u8[block.typeIndex];
    part.srcStep = kStep, part.dstStep = block.dstStep;
    part.pSrc = u, part.pDst = block.pDst + y * block.dstStep;
    planar(part);
    part.pSrc = v, part.pDst = block.pDst2 + y * block.dstStep;
    planar(part);
  }
  return moxStsOk;
}

}  // namespace mox
