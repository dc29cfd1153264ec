#include "block/half_pel_copy_px.hpp"
#include "block/half_pel_copy_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/state_record.hpp"
#include "mpeg4/warp_px.hpp"
#include "mpeg4/warp_setup.hpp"
#include "mpeg4/warp_vec.hpp"

using namespace mox;

namespace {

constexpr Mox32u kWarpTag = 0x434D4151;
constexpr Mox32s kWarpRecordSize = 384, kStaticSprite = 1;
static_assert(kRecordSize<MoxiWarpSpec> <= kWarpRecordSize && alignof(MoxiWarpSpec) <= kRecordAlignment);

bool is_empty(const MoxiRect& rect) { return rect.width < 1 || rect.height < 1; }

constexpr Mox32s half_size(Mox32s size) { return (size >> 1) + (size & 1); }

MoxiRect chroma_half(const MoxiRect& rect) {
  return {rect.x / 2, rect.y / 2, half_size(rect.width), half_size(rect.height)};
}

/// Copies a square block of a translated sprite by half-sample kernels, where the positions are such and lie inside.
template <const auto& kCopies, Mox32s kSize, std::size_t kPlanes>
bool copied(const std::array<active::WarpedPlane, kPlanes>& planes, const MoxiRect& sprite, const MoxiRect& block,
            MoxiPoint offset, Mox32s rounding) {
  if (block.width != kSize || block.height != kSize || offset.x % 8 != 0 || offset.y % 8 != 0) return false;
  if (!active::copy_is_inside(offset.x, kSize, sprite.width)) return false;
  if (!active::copy_is_inside(offset.y, kSize, sprite.height)) return false;
  const auto copy = kCopies[acc_index((offset.x & 8) >> 3 | (offset.y & 8) >> 2, rounding)];
  for (const active::WarpedPlane& plane : planes) {
    const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(offset.y >> 4) * plane.srcStep + (offset.x >> 4);
    copy(plane.src + first, plane.srcStep, plane.dst, plane.dstStep);
  }
  return true;
}

template <bool kChroma, const auto& kCopies, Mox32s kSize, std::size_t kPlanes>
MoxStatus warp_block(const std::array<active::WarpedPlane, kPlanes>& planes, const MoxiRect& block,
                     const MoxiWarpSpec& spec) {
  const MoxiRect& sprite = kChroma ? spec.chromaSprite : spec.sprite;
  if (spec.points == 4) {
    return active::warp(planes, sprite, block, spec.roundConst, active::ProjectiveMap<kChroma>{spec, block});
  }
  if (spec.points >= 2) {
    const auto map = kChroma ? active::chroma_map(spec, block) : active::luma_map(spec, block);
    return active::warp(planes, sprite, block, spec.roundConst, map);
  }
  const MoxiPoint offset = active::translation_offset<kChroma>(spec, block);
  if (copied<kCopies, kSize>(planes, sprite, block, offset, spec.rounding)) return moxStsOk;
  return active::warp(planes, sprite, block, spec.roundConst, active::translation(offset));
}

MoxiPoint global_vector(const MoxiWarpSpec& spec, Mox32s xOffset, Mox32s yOffset) {
  if (spec.points == 0) return {0, 0};
  if (spec.points == 1) {
    const Mox32s shift = 3 - spec.quarterSample;
    return {wrap16(spec.origin.x >> shift), wrap16(spec.origin.y >> shift)};
  }
  return {active::mean_vector(spec, spec.right.x, spec.down.x, spec.origin.x, xOffset, yOffset, xOffset),
          active::mean_vector(spec, spec.right.y, spec.down.y, spec.origin.y, xOffset, yOffset, yOffset)};
}

}  // namespace

MoxStatus moxiWarpGetSize_MPEG4(Mox32s* pSize) {
  if (any_null(pSize)) return moxStsNullPointer;
  *pSize = kWarpRecordSize;
  return moxStsOk;
}

MoxStatus moxiWarpInit_MPEG4(MoxiWarpSpec* pSpec, const Mox32s* pDU, const Mox32s* pDV, Mox32s numWarpingPoints,
                             Mox32s spriteType, Mox32s warpingAccuracy, Mox32s roundingType, Mox32s quarterSample,
                             Mox32s fcode, const MoxiRect* pSpriteRect, const MoxiRect* pVopRect) {
  if (any_null(pSpec, pSpriteRect, pVopRect)) return moxStsNullPointer;
  if (outside(numWarpingPoints, 0, 4)) return moxStsOutOfRange;
  if (numWarpingPoints == 4 && spriteType != kStaticSprite) return moxStsOutOfRange;
  if (outside(warpingAccuracy, 0, 3)) return moxStsOutOfRange;
  if (outside(fcode, 1, 7)) return moxStsOutOfRange;
  if (is_empty(*pSpriteRect) || is_empty(*pVopRect)) return moxStsBadSize;
  if (numWarpingPoints > 0 && any_null(pDU, pDV)) return moxStsNullPointer;
  MoxiWarpSpec& spec = *record_in(pSpec);
  spec = {};
  spec.sprite = *pSpriteRect;
  spec.chromaSprite = chroma_half(*pSpriteRect);
  spec.vop = {pVopRect->x, pVopRect->y};
  spec.points = numWarpingPoints;
  spec.accuracy = warpingAccuracy;
  spec.quarterSample = quarterSample != 0;
  spec.rounding = spriteType != kStaticSprite && roundingType != 0;
  spec.roundConst = 128 - (spec.rounding << active::spare_bits(spec));
  spec.leastVector = -(16 << fcode);
  spec.mostVector = (16 << fcode) - 1;
  spec.tag = kWarpTag;
  if (numWarpingPoints > 0) {
    set_points(spec, {pDU, pDV}, {pVopRect->width, pVopRect->height}, spriteType == kStaticSprite);
  }
  return moxStsOk;
}

MoxStatus moxiWarpLuma_MPEG4_8u_C1R(const Mox8u* pSrcY, Mox32s srcYStep, Mox8u* pDst, Mox32s dstStep,
                                    const MoxiRect* pDstRect, const MoxiWarpSpec* pSpec) {
  if (any_null(pSrcY, pDst, pDstRect, pSpec)) return moxStsNullPointer;
  const MoxiWarpSpec& spec = *record_in(pSpec);
  if (spec.tag != kWarpTag) return moxStsBadContext;
  const std::array planes{active::WarpedPlane{pSrcY, srcYStep, pDst, dstStep}};
  return warp_block<false, active::ownvc_Copy16x16HP_8u_C1R, 16>(planes, *pDstRect, spec);
}

MoxStatus moxiWarpChroma_MPEG4_8u_P2R(const Mox8u* pSrcU, Mox32s srcUStep, const Mox8u* pSrcV, Mox32s srcVStep,
                                      Mox8u* pDstU, Mox32s dstUStep, Mox8u* pDstV, Mox32s dstVStep,
                                      const MoxiRect* pDstRect, const MoxiWarpSpec* pSpec) {
  if (any_null(pSrcU, pSrcV, pDstU, pDstV, pDstRect, pSpec)) return moxStsNullPointer;
  const MoxiWarpSpec& spec = *record_in(pSpec);
  if (spec.tag != kWarpTag) return moxStsBadContext;
  const std::array planes{active::WarpedPlane{pSrcU, srcUStep, pDstU, dstUStep},
                          active::WarpedPlane{pSrcV, srcVStep, pDstV, dstVStep}};
  return warp_block<true, active::ownvc_Copy8x8HP_8u_C1R, 8>(planes, *pDstRect, spec);
}

MoxStatus moxiCalcGlobalMV_MPEG4(Mox32s xOffset, Mox32s yOffset, MoxiMotionVector* pGMV, const MoxiWarpSpec* pSpec) {
  if (any_null(pGMV, pSpec)) return moxStsNullPointer;
  const MoxiWarpSpec& spec = *record_in(pSpec);
  if (spec.tag != kWarpTag) return moxStsBadContext;
  const MoxiPoint vector = global_vector(spec, xOffset, yOffset);
  pGMV->x = static_cast<Mox16s>(clip(vector.x, spec.leastVector, spec.mostVector));
  pGMV->y = static_cast<Mox16s>(clip(vector.y, spec.leastVector, spec.mostVector));
  return moxStsOk;
}

MoxStatus moxiChangeSpriteBrightness_MPEG4_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s width, Mox32s height,
                                                   Mox32s brightnessChange) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(brightnessChange, -112, 1648)) return moxStsOutOfRange;
  if (brightnessChange != 0) active::change_brightness(pSrcDst, srcDstStep, width, height, brightnessChange);
  return moxStsOk;
}
