#include "filters/deinterlace_blend_weights.hpp"
#include "filters/deinterlace_px.hpp"
#include "filters/deinterlace_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/bytes.hpp"
#include "frame/generation.hpp"
#include "frame/memory.hpp"
#include "moxvc/deinterlace.h"

using namespace mox;

namespace {

/// The sample-wise median of three planes of one step.
void moxiMedian_8u_P3C1R(const Mox8u* const src[3], std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                         MoxiSize size) {
  for (std::ptrdiff_t y = 0; y < size.height; ++y) {
    const std::ptrdiff_t row = y * srcStep;
    active::median_row(src[0] + row, src[1] + row, src[2] + row, dst + y * dstStep, size.width);
  }
}

/// Rows `first`, `first` + 2 and so on, `count` of them. `frames` and `dst` are those of row `first`.
void blend_rows(active::ThreeFrames frames, Mox8u* dst, std::ptrdiff_t dstStep, Mox32s width, Mox32s count,
                const MoxiDeinterlaceBlendState& state) {
  const std::ptrdiff_t twoRows = 2 * frames.step;
  if (state.motionLow > kMostMotion) {
    const Mox8u* const planes[] = {frames.current - frames.step, frames.current, frames.current + frames.step};
    return moxiMedian_8u_P3C1R(planes, twoRows, dst, 2 * dstStep, {width, count});
  }
  for (Mox32s i = 0; i < count; ++i, dst += 2 * dstStep) {
    if (state.motionHigh < 0) {
      const Mox8u *const a = frames.current - frames.step, *const b = frames.current + frames.step;
      active::edge_row(a, b, frames.endsBelow ? b : a, dst, width);
    } else {
      active::blend_row(frames, dst, width, state);
    }
    frames.previous += twoRows, frames.current += twoRows, frames.next += twoRows, frames.otherHere += twoRows;
  }
}

void copy_rows(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep, std::ptrdiff_t first,
               Mox32s count, Mox32s width) {
  for (std::ptrdiff_t row = first; count > 0; row += 2, --count) {
    moxsCopy_8u(src + row * srcStep, dst + row * dstStep, width);
  }
}

}  // namespace

MoxStatus moxiDeinterlaceBlendInitAlloc_8u_C1(MoxiSize roiSize, Mox32s blendThresh[2], double blendConstants[2],
                                              MoxiDeinterlaceBlendState** ppState) {
  if (any_null(ppState)) return moxStsNullPointer;
  if (roiSize.width < 3 || roiSize.height < 3) return moxStsBadSize;
  auto* const state = reinterpret_cast<MoxiDeinterlaceBlendState*>(moxsMalloc_8u(sizeof(MoxiDeinterlaceBlendState)));
  if (any_null(state)) return moxStsNoMemory;
  *ppState = state;
  state->pLUT = moxsMalloc_16u(512);
  if (any_null(state->pLUT)) return moxStsNoMemory;
  set_blend_weights(*state, blendThresh, blendConstants);
  return moxStsOk;
}

MoxStatus moxiDeinterlaceBlend_8u_C1(const Mox8u* const ppSrc[3], Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                     MoxiSize roiSize, Mox32s topFirst, Mox32s topField, Mox32s copyField,
                                     MoxiDeinterlaceBlendState* pState) {
  if (any_null(pState->pLUT, ppSrc, pDst) || any_null(ppSrc[0], ppSrc[1], ppSrc[2])) return moxStsNullPointer;
  const Mox32s width = roiSize.width, height = roiSize.height;
  if (width < 3 || height < 3) return moxStsBadSize;
  const Mox32s kept = topField != 0, odd = height & 1;
  const auto copy = [&](std::ptrdiff_t first, Mox32s count) {
    copy_rows(ppSrc[1], srcStep, pDst, dstStep, first, count, width);
  };
  if (kept) copy(0, 1);
  if (copyField != 0) copy(kept, (height + 1 - kept) >> 1);
  if (odd == kept) copy(height - 1, 1);
  const std::ptrdiff_t first = kept ? 2 : 1, at = first * srcStep;
  const Mox32s last = height + (odd ^ kept) - 2;
  const active::ThreeFrames frames{
      ppSrc[0] + at, ppSrc[1] + at, ppSrc[2] + at, srcStep, ppSrc[topFirst == topField ? 0 : 2] + at, kept != 0};
  blend_rows(frames, pDst + first * dstStep, dstStep, width, (last - static_cast<Mox32s>(first) + 2) / 2, *pState);
  return moxStsOk;
}

MoxStatus moxiDeinterlaceBlendFree_8u_C1(MoxiDeinterlaceBlendState* pState) {
  if (any_null(pState)) return moxStsNullPointer;
  moxsFree(pState->pLUT);
  pState->pLUT = nullptr;
  moxsFree(pState);
  return moxStsOk;
}
