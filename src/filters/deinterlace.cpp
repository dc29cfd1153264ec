#include "moxvc/deinterlace.h"

#include "filters/deinterlace_px.hpp"
#include "filters/deinterlace_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/bytes.hpp"
#include "frame/generation.hpp"

using namespace mox;

namespace {

/// A plane that is read and one that is written, at the same rows.
struct Planes {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  Mox8u* dst;
  std::ptrdiff_t dstStep;

  const Mox8u* source(std::ptrdiff_t row) const { return src + row * srcStep; }
  Mox8u* destination(std::ptrdiff_t row) const { return dst + row * dstStep; }
  void copy_row(std::ptrdiff_t row, Mox32s length) const { moxsCopy_8u(source(row), destination(row), length); }
  /// Every second row from `first` on, `count` of them.
  void copy_field(std::ptrdiff_t first, Mox32s count, Mox32s width) const {
    for (std::ptrdiff_t i = 0; i < count; ++i) copy_row(first + 2 * i, width);
  }
};

MoxStatus edge_detect(const Planes& planes, MoxiSize size, Mox32s field, bool border) {
  if (border) planes.copy_row(field == 1 ? size.height - 1 : 0, size.width);
  const std::ptrdiff_t first = border && field == 0 ? 1 : 0;
  for (std::ptrdiff_t i = 0; i < size.height - border; ++i) {
    const Mox8u *const ends = planes.source(first + i), *const a = planes.source(first + i + field - 1);
    active::edge_row(a, a + planes.srcStep, ends, planes.destination(first + i), size.width);
  }
  return moxStsOk;
}

enum StripLayout : Mox32s { kUpperStrip = 1, kMiddleStrip = 4, kLowerStrip = 16 };

MoxStatus filter_triangle(const Planes& planes, MoxiSize size, Mox32u centerWeight, Mox32s layout) {
  const auto here = static_cast<Mox32s>(std::min(centerWeight, Mox32u{256}));
  const active::TriangleWeights weights{here, (256 - here) >> 1};
  const bool above = layout == kMiddleStrip || layout == kLowerStrip;
  const bool below = layout == kMiddleStrip || layout == kUpperStrip;
  if (!above) planes.copy_row(0, size.width);
  for (std::ptrdiff_t row = above ? -1 : 1; row < size.height - 1; ++row) {
    active::triangle_row(planes.source(row), planes.srcStep, planes.destination(row), size.width, weights);
  }
  if (!below) planes.copy_row(size.height - 1, size.width);
  return moxStsOk;
}

MoxStatus median_threshold(const Planes& planes, MoxiSize size, Mox32s threshold, Mox32s field, bool border) {
  planes.copy_field(field == 1 ? 0 : 1, size.height / 2, size.width);
  if (border) {
    planes.copy_row(0, wrap32(planes.srcStep));  // as long as a row's memory, not as its samples
    planes.copy_row(size.height - 1, wrap32(planes.srcStep));
  }
  const std::ptrdiff_t first = border ? std::ptrdiff_t{2} - field : field;
  for (std::ptrdiff_t row = first; row < size.height - border; row += 2) {
    active::median_threshold_row(planes.source(row), planes.srcStep, planes.destination(row), size.width, threshold);
  }
  return moxStsOk;
}

MoxStatus motion_adaptive(const active::FourFrames& frames, Mox8u* dst, Mox32s dstStep, MoxiSize size,
                          active::StillRule rule, Mox32s topField, bool copyField) {
  const Planes kept{frames.frame[frames.older + 1], frames.step, dst, dstStep};
  const bool odd = size.height % 2 != 0;
  if (copyField) kept.copy_field(topField, size.height / 2, size.width);
  if (topField == 1) kept.copy_row(0, size.width);
  if (odd == (topField == 1)) kept.copy_row(size.height - 1, size.width);
  for (std::ptrdiff_t row = topField == 1 ? 2 : 1; row < size.height - 1; row += 2) {
    active::FourFrames in = frames;
    for (const Mox8u*& frame : in.frame) frame += row * frames.step;
    active::motion_adaptive_row(in, kept.destination(row), size.width, rule);
  }
  return moxStsOk;
}

}  // namespace

MoxStatus moxiDeinterlaceEdgeDetect_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                           MoxiSize roiSize, Mox32s fieldNum, Mox32s bCopyBorder) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (roiSize.width < 1 || roiSize.height < 1) return moxStsBadSize;
  return edge_detect({pSrc, srcStep, pDst, dstStep}, roiSize, fieldNum, bCopyBorder != 0);
}

MoxStatus moxiDeinterlaceFilterTriangle_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               MoxiSize roiSize, Mox32u centerWeight, Mox32s layout) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (roiSize.height < 3 || roiSize.width < 1) return moxStsBadSize;
  return filter_triangle({pSrc, srcStep, pDst, dstStep}, roiSize, centerWeight, layout);
}

MoxStatus moxiDeinterlaceMedianThreshold_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                MoxiSize roiSize, Mox32s threshold, Mox32s fieldNum,
                                                Mox32s bCopyBorder) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (roiSize.width < 1 || roiSize.height < 2) return moxStsBadSize;
  return median_threshold({pSrc, srcStep, pDst, dstStep}, roiSize, threshold, fieldNum, bCopyBorder != 0);
}

MoxStatus moxiDeinterlaceMotionAdaptive_8u_C1(const Mox8u* const ppSrc[4], Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                              MoxiSize roiSize, Mox32s threshold, Mox32s topFirst, Mox32s topField,
                                              Mox32s copyField, Mox32s artifactProtection) {
  if (any_null(ppSrc, pDst) || any_null(ppSrc[0], ppSrc[1], ppSrc[2], ppSrc[3])) return moxStsNullPointer;
  if (roiSize.width < 1 || roiSize.height < 1) return moxStsBadSize;
  return motion_adaptive({{ppSrc[0], ppSrc[1], ppSrc[2], ppSrc[3]}, srcStep, topField != topFirst}, pDst, dstStep,
                         roiSize, {threshold, artifactProtection != 0}, topField, copyField != 0);
}
