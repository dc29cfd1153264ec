/// Blocks by their vectors: where in the reference they lie, and how kernels run on those that cross its edges.
#pragma once

#include <algorithm>
#include <cstddef>

#include "h264/boundary_vec.hpp"
#include "h264/interpolation.hpp"

namespace mox {

/// What luma and chroma differ in: bits of a vector's fraction, and what their filters read.
struct VectorRule {
  int fractionBits;
  Reach reach;
};
inline constexpr VectorRule kLumaVectors = {2, kLumaReach}, kChromaVectors = {3, kChromaReach};

/// A block of a picture as its kernels take it, pSrc still the origin of the plane.
template <class T>
struct PlacedBlock {
  MoxiInterpBoundaryArgs<T> args;
  unsigned flags;  ///< edges that the footprint crosses
};

/// Splits the vector and finds the footprint of a block `width` columns wide. Positions are 64 bits wide: no vector
/// and no position overflows. A block with a vector of zero counts as one inside the picture.
template <class T, class Record>
PlacedBlock<T> place_block(const Record& r, const VectorRule& rule, Mox32s width) {
  const Mox32s fraction = (1 << rule.fractionBits) - 1;
  const Mox32s dx = r.vector.x & fraction, dy = r.vector.y & fraction, height = r.blockSize.height;
  const auto moved = [&](Mox32s position, Mox32s by) { return std::ptrdiff_t{position} + (by >> rule.fractionBits); };
  const Span columns = footprint(rule.reach, moved(r.blockPos.x, r.vector.x), width, dx != 0);
  const Span rows = footprint(rule.reach, moved(r.blockPos.y, r.vector.y), height, dy != 0);
  const bool moves = (r.vector.x | r.vector.y) != 0;
  return {.args = {MoxiInterpKernelArgs<T>{.pSrc = r.pSrcPlane[0],
                                           .srcStep = r.srcStep,
                                           .pDst = r.pDstPlane[0],
                                           .dstStep = r.dstStep,
                                           .dx = dx,
                                           .dy = dy,
                                           .width = width,
                                           .height = height,
                                           .pDst2 = r.pDstPlane[1]},
                   columns.start, rows.start, static_cast<Mox32s>(columns.size),
                   footprint_size(rule.reach, std::min(height, kLocalHeight), dy != 0), r.frameSize.width,
                   r.frameSize.height, r.pSrcPlane[1]},
          .flags = moves ? edge_flags(columns, rows, r.frameSize) : 0};
}

/// Samples from the origin of a plane to the block.
template <class T>
std::ptrdiff_t offset_of(const MoxiInterpBoundaryArgs<T>& a, Reach reach, int channels = 1) {
  return (a.y + margin(reach, a.dy != 0)) * a.srcStep + (a.x + margin(reach, a.dx != 0)) * channels;
}

/// Runs the kernel on a copy of the footprint. The read step is one of those that take edge flags.
template <class T>
MoxStatus run_on_copy(MoxStatus (*read)(unsigned, const MoxiInterpBoundaryArgs<T>&), unsigned flags,
                      InterpKernel<T> kernel, MoxiInterpBoundaryArgs<T> a, Reach reach, int channels = 1) {
  constexpr int kWidest = 48;  // samples: 28 columns of luma and their margins, rounded up
  alignas(64) T local[kLocalRows * kWidest];
  const std::ptrdiff_t localStep = (a.extWidth * channels + 15) & ~15;
  T* const dst = a.pDst;
  const std::ptrdiff_t dstStep = a.dstStep;
  a.pDst = local, a.dstStep = localStep;
  read(flags, a);
  a.pDst = dst, a.dstStep = dstStep;
  a.pSrc = local + margin(reach, a.dy != 0) * localStep + margin(reach, a.dx != 0);
  a.srcStep = localStep;
  a.height = std::min(a.height, kLocalHeight);
  return kernel(a);
}

/// The arguments for the second plane.
template <class T>
MoxiInterpBoundaryArgs<T> second_plane(MoxiInterpBoundaryArgs<T> a) {
  a.pSrc = a.pSrc2, a.pDst = a.pDst2;
  return a;
}

}  // namespace mox
