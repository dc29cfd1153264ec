#include "filters/denoise_adaptive_px.hpp"
#include "filters/denoise_adaptive_vec.hpp"
#include "filters/rectangle.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/memory.hpp"
#include "moxvc/denoise.h"

using namespace mox;

namespace {

/// What the filter returns for flags that it does not know; no other function has such a value.
constexpr auto kUnknownFlags = static_cast<MoxStatus>(1);
enum TemporalFlags : Mox32s { kWithPrevious = 1, kWithNext = 2 };

/// Entries for all counts of samples that three windows can hold, or, for windows beyond all memory, too many.
constexpr long long recip_length(MoxiSize mask) {
  const long long m = std::min(std::max(mask.width, mask.height), 1 << 20);
  return 12 * m * m + 12 * m + 4;
}
static_assert(recip_length({1, 1}) == 28);

void filter_rectangle(const active::AdaptiveFilter& filter, Mox8u* dst, std::ptrdiff_t dstStep, MoxiPoint offset,
                      MoxiSize size) {
  const auto row = filter.mask.width == 1 && filter.mask.height == 1 ? active::ownFilterDenoiseAdaptive_8u_C1R_3x3
                                                                     : active::adaptive_row;
  for (std::ptrdiff_t y = 0; y < size.height; ++y) row(filter, offset.x, offset.y + y, dst + y * dstStep, size.width);
}

}  // namespace

MoxStatus moxiFilterDenoiseAdaptiveInitAlloc_8u_C1(MoxiDenoiseAdaptiveState** ppState, MoxiSize maxRoiSize,
                                                   MoxiSize maskSize) {
  if (any_null(ppState)) return moxStsNullPointer;
  if (is_empty(maxRoiSize) || is_empty(maskSize)) return moxStsBadSize;
  if (maxRoiSize.width < maskSize.width || maxRoiSize.height < maskSize.height) return moxStsBadSize;
  auto* const state = reinterpret_cast<MoxiDenoiseAdaptiveState*>(moxsMalloc_8u(sizeof(MoxiDenoiseAdaptiveState)));
  if (any_null(state)) return moxStsNoMemory;
  *ppState = state;
  const long long length = recip_length(maskSize);
  *state = {maskSize, maxRoiSize, length > INT32_MAX ? nullptr : moxsMalloc_16u(static_cast<Mox32s>(length))};
  if (any_null(state->pRecip)) return moxStsNoMemory;
  state->pRecip[0] = 1;
  for (long long n = 1; n < length; ++n) state->pRecip[n] = static_cast<Mox16u>((2 * 65535 + n) / (2 * n));
  return moxStsOk;
}

MoxStatus moxiFilterDenoiseAdaptive_8u_C1R(const Mox8u* const ppSrc[3], Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                           MoxiSize srcRoiSize, MoxiSize maskSize, MoxiPoint dstOffset,
                                           MoxiSize dstRoiSize, Mox32s threshold, Mox32s temporalFlags,
                                           const MoxiDenoiseAdaptiveState* pState) {
  if (any_null(ppSrc, pDst, pState) || any_null(ppSrc[0], ppSrc[1], ppSrc[2])) return moxStsNullPointer;
  if (is_empty(srcRoiSize) || is_empty(maskSize) || is_empty(dstRoiSize)) return moxStsBadSize;
  if (!lies_inside(dstOffset, dstRoiSize, srcRoiSize)) return moxStsBadSize;
  if (maskSize.width != pState->maskSize.width || maskSize.height != pState->maskSize.height) return moxStsBadSize;
  if (outside(temporalFlags, 0, 3)) return kUnknownFlags;
  filter_rectangle(
      {temporalFlags & kWithPrevious ? ppSrc[0] : nullptr, ppSrc[1], temporalFlags & kWithNext ? ppSrc[2] : nullptr,
       srcStep, srcRoiSize, maskSize, threshold, pState->pRecip},
      pDst, dstStep, dstOffset, dstRoiSize);
  return moxStsOk;
}

MoxStatus moxiFilterDenoiseAdaptiveFree_8u_C1(MoxiDenoiseAdaptiveState* pState) {
  if (any_null(pState)) return moxStsNullPointer;
  moxsFree(pState->pRecip);
  pState->pRecip = nullptr;
  moxsFree(pState);
  return moxStsOk;
}
