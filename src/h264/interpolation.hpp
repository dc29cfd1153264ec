/// What the H.264 interpolation functions share: the record that their kernels take, the footprint of a block, and the
/// rows of a block that crosses the upper or the lower edge of a picture.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "moxvc/h264_interpolation.h"

namespace mox {

/// Sizes that the 8-bit forms and all block forms take.
constexpr bool is_luma_size_8u(MoxiSize size) { return (size.height & 3) == 0 && (size.width & ~28) == 0; }
constexpr bool is_chroma_size_8u(MoxiSize size) { return (size.height & 1) == 0 && (size.width & ~14) == 0; }

/// Arguments of a kernel. Steps count samples (bytes of interleaved planes).
template <class T>
struct MoxiInterpKernelArgs {
  const T* pSrc = nullptr;
  std::ptrdiff_t srcStep = 0;
  T* pDst = nullptr;
  std::ptrdiff_t dstStep = 0;
  Mox32s dx = 0, dy = 0;         ///< fraction of the vector
  Mox32s width = 0, height = 0;  ///< of the block
  Mox32s typeIndex = 0;          ///< index into the kernel table
  Mox32s bitDepth = 0;           ///< 16-bit kernels only
  T* pDst2 = nullptr;            ///< second chroma destination
};

/// What the way across the picture edges takes as well. For the read step pSrc is the origin of the plane, pDst the
/// local buffer.
template <class T>
struct MoxiInterpBoundaryArgs : MoxiInterpKernelArgs<T> {
  std::ptrdiff_t x = 0, y = 0;         ///< first sample of the footprint in the plane; no vector makes these overflow
  Mox32s extWidth = 0, extHeight = 0;  ///< of the footprint
  Mox32s frameWidth = 0, frameHeight = 0;  ///< of the plane
  const T* pSrc2 = nullptr;                ///< origin of the second chroma plane
};

template <class T>
using InterpKernel = MoxStatus (*)(const MoxiInterpKernelArgs<T>&);
template <class T>
using BoundaryRead = MoxStatus (*)(const MoxiInterpBoundaryArgs<T>&);

/// A kernel's arguments from those of the plain forms, for a block of `width` columns.
constexpr MoxiInterpKernelArgs<Mox8u> block_8u(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, Mox32s dx,
                                               Mox32s dy, Mox32s width, Mox32s height) {
  return {.pSrc = src,
          .srcStep = srcStep,
          .pDst = dst,
          .dstStep = dstStep,
          .dx = dx,
          .dy = dy,
          .width = width,
          .height = height};
}
constexpr MoxiInterpKernelArgs<Mox16u> block_16u(const MoxiInterpRegion_16u& r) {
  return {.pSrc = r.pSrc,
          .srcStep = r.srcStep,
          .pDst = r.pDst,
          .dstStep = r.dstStep,
          .dx = r.dx,
          .dy = r.dy,
          .width = r.width,
          .height = r.height,
          .bitDepth = r.bitDepth};
}

/// Samples that a filter reads in front of a block and behind it, along an axis on which the vector has a fraction.
struct Reach {
  int before, after;
};
inline constexpr Reach kLumaReach = {2, 3}, kChromaReach = {0, 1};

/// Samples from the start of a footprint to the block.
constexpr std::ptrdiff_t margin(Reach reach, bool fraction) { return fraction ? reach.before : 0; }

/// Columns or rows: the first one and their number.
struct Span {
  std::ptrdiff_t start, size;
};

/// What a filter reads for `size` columns or rows from `start` on.
constexpr Span footprint(Reach reach, std::ptrdiff_t start, std::ptrdiff_t size, bool fraction) {
  if (!fraction) return {start, size};
  return {start - reach.before, size + reach.before + reach.after};
}
constexpr int footprint_size(Reach reach, int size, bool fraction) {
  return static_cast<int>(footprint(reach, 0, size, fraction).size);
}

/// The local buffers hold the footprint of 16 rows. Rows below the 16th of a higher block are left out.
inline constexpr int kLocalHeight = 16, kLocalRows = 21;
/// Samples between the rows of a RowBuffer: room for the footprint of 16 columns.
inline constexpr int kLocalStep = 32;

/// The footprint of a block whose rows outside `first`..`last` (0 is the block's own first row) are those rows again.
template <class T>
class RowBuffer {
 public:
  RowBuffer(MoxiInterpKernelArgs<T>& block, Reach reach, std::ptrdiff_t first, std::ptrdiff_t last) {
    block.height = std::min(block.height, kLocalHeight);
    const Span columns = footprint(reach, 0, block.width, block.dx != 0);
    const Span rows = footprint(reach, 0, block.height, block.dy != 0);
    T* to = samples_;
    for (std::ptrdiff_t row = rows.start; row < rows.start + rows.size; ++row, to += kLocalStep) {
      const T* from = block.pSrc + std::clamp(row, first, last) * block.srcStep + columns.start;
      std::memcpy(to, from, static_cast<std::size_t>(columns.size) * sizeof(T));
    }
    block.pSrc = samples_ + margin(reach, block.dy != 0) * kLocalStep + margin(reach, block.dx != 0);
    block.srcStep = kLocalStep;
  }

 private:
  alignas(64) T samples_[kLocalRows * kLocalStep];
};

/// A block whose first `outPixels` rows lie above the picture: runs the kernel on the picture's first row, repeated,
/// and what is below it. Negative: the picture starts so many rows above the block.
template <class T>
MoxStatus run_at_top(InterpKernel<T> kernel, MoxiInterpKernelArgs<T> block, Reach reach, Mox32s outPixels) {
  const RowBuffer<T> local(block, reach, outPixels, std::numeric_limits<std::ptrdiff_t>::max());
  return kernel(block);
}

/// A block whose last `outPixels` rows lie below the picture: the same with the picture's last row.
template <class T>
MoxStatus run_at_bottom(InterpKernel<T> kernel, MoxiInterpKernelArgs<T> block, Reach reach, Mox32s outPixels) {
  const std::ptrdiff_t last = std::ptrdiff_t{block.height} - outPixels - 1;
  const RowBuffer<T> local(block, reach, std::numeric_limits<std::ptrdiff_t>::min(), last);
  return kernel(block);
}

}  // namespace mox
