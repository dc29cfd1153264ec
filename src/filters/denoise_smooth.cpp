#include <algorithm>

#include "filters/denoise_smooth_px.hpp"
#include "filters/denoise_smooth_vec.hpp"
#include "filters/lowpass.hpp"
#include "filters/rectangle.hpp"
#include "frame/arguments.hpp"
#include "frame/arithmetic.hpp"
#include "frame/bytes.hpp"
#include "frame/generation.hpp"
#include "moxvc/denoise.h"

using namespace mox;

namespace {

/// Positions are those of the source region. The low-passed plane reaches from one column left of the destination
/// rectangle to two right of it, and from one row above it to two below; the mask to one on the right and below.
class Smoothing {
 public:
  Smoothing(const Mox8u* src, Mox32s srcStep, MoxiSize region, MoxiPoint offset, MoxiSize size, Mox8u* buffer)
      : src_(src),
        srcStep_(srcStep),
        region_(region),
        left_(offset.x),
        top_(offset.y),
        right_(offset.x + size.width),
        bottom_(offset.y + size.height),
        step_(size.width + std::ptrdiff_t{3}),
        mask_(buffer),
        plane_(buffer + step_ * (size.height + 3)) {}

  void run(Mox8u* dst, std::ptrdiff_t dstStep, Mox32s threshold) const {
    if (region_.width > 2) {
      lowpass();
      create_mask(threshold);
    }
    for (Mox32s y = top_; y < bottom_; ++y) average_row(y, dst + (y - top_) * dstStep);
  }

 private:
  const Mox8u* source(Mox32s x, Mox32s y) const { return src_ + y * srcStep_ + x; }
  std::ptrdiff_t place(Mox32s x, Mox32s y) const { return (y - top_ + 1) * step_ + (x - left_ + 1); }
  Mox8u* plane(Mox32s x, Mox32s y) const { return plane_ + place(x, y); }
  Mox8u* mask(Mox32s x, Mox32s y) const { return mask_ + place(x, y); }

  /// Filters what has neighbours all around, and repeats its outermost rows and columns.
  void lowpass() const {
    const Mox32s x0 = std::max(left_ - 1, 1), x1 = std::min(right_ + 1, region_.width - 2);
    const Mox32s y0 = std::max(top_ - 1, 1), y1 = std::min(bottom_ + 1, region_.height - 2);
    moxiFilterLowpass_8u_C1R(source(x0, y0), wrap32(srcStep_), plane(x0, y0), wrap32(step_), {x1 - x0 + 1, y1 - y0 + 1},
                             kLowpass3x3);
    for (Mox32s y = y0; y <= y1; ++y) {
      for (Mox32s x = left_ - 1; x < x0; ++x) *plane(x, y) = *plane(x0, y);
      for (Mox32s x = x1 + 1; x <= right_ + 1; ++x) *plane(x, y) = *plane(x1, y);
    }
    const auto repeat = [this](Mox32s from, Mox32s to) {
      moxsCopy_8u(plane(left_ - 1, from), plane(left_ - 1, to), wrap32(step_));
    };
    for (Mox32s y = top_ - 1; y < y0; ++y) repeat(y0, y);
    for (Mox32s y = y1 + 1; y <= bottom_ + 1; ++y) repeat(y1, y);
  }

  void create_mask(Mox32s threshold) const {
    const Mox32s width = wrap32(step_ - 1);
    for (Mox32s y = top_ - 1; y <= bottom_; ++y) {
      active::ownDenoiseSmoothCreateMask_8u(plane(left_ - 1, y), step_, mask(left_ - 1, y), width, threshold);
      if (right_ == region_.width) *mask(right_ - 1, y) = active::kOnEdge;
    }
    if (bottom_ == region_.height) moxsSet_8u(active::kOnEdge, mask(left_ - 1, bottom_ - 1), width);
  }

  /// The first and the last row and column of the region are copied.
  void average_row(Mox32s y, Mox8u* dst) const {
    const Mox32s x0 = std::max(left_, 1), x1 = std::min(right_, region_.width - 1);
    if (y == 0 || y == region_.height - 1 || x0 >= x1) return moxsCopy_8u(source(left_, y), dst, right_ - left_);
    if (x0 > left_) dst[0] = *source(left_, y);
    active::ownDenoiseAverageMask(source(x0, y), srcStep_, mask(x0, y), step_, dst + (x0 - left_), x1 - x0);
    if (x1 < right_) dst[x1 - left_] = *source(x1, y);
  }

  const Mox8u* src_;
  std::ptrdiff_t srcStep_;
  MoxiSize region_;
  Mox32s left_, top_, right_, bottom_;  ///< the destination rectangle
  std::ptrdiff_t step_;                 ///< of mask and plane
  Mox8u *mask_, *plane_;
};

}  // namespace

MoxStatus moxiFilterDenoiseSmooth_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                         MoxiSize srcRoiSize, Mox32s threshold, MoxiPoint dstOffset,
                                         MoxiSize dstRoiSize, Mox8u* pBuffer) {
  if (any_null(pSrc, pDst, pBuffer)) return moxStsNullPointer;
  if (is_empty(srcRoiSize) || is_empty(dstRoiSize)) return moxStsBadSize;
  if (dstRoiSize.height < 3) return moxStsRegionTooSmall;
  if (!lies_inside(dstOffset, dstRoiSize, srcRoiSize)) return moxStsBadSize;
  if (srcStep < 1) return moxStsBadStep;
  Smoothing(pSrc, srcStep, srcRoiSize, dstOffset, dstRoiSize, pBuffer).run(pDst, dstStep, threshold);
  return moxStsOk;
}
