/// Portable kernels of the VC-1 filters.
///
/// An edge is given by the first sample behind it, by the distance `across` from a sample to the next one of its line,
/// and by the distance `along` from a line to the next, both in bytes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// The activity of four samples in a row.
constexpr Mox32s vc1_activity(Mox32s a, Mox32s b, Mox32s c, Mox32s d) { return (2 * (a - d) - 5 * (b - c) + 4) >> 3; }

/// Filters the line whose P5 is at `behind`; false, and nothing changed, if it is no candidate.
inline bool vc1_deblock_line(Mox8u* behind, std::ptrdiff_t across, Mox32s pquant) {
  const auto p = [=](int i) { return Mox32s{behind[(i - 5) * across]}; };
  const Mox32s a0 = vc1_activity(p(3), p(4), p(5), p(6)), c = (p(4) - p(5)) / 2;
  const Mox32s a3 =
      std::min(std::abs(vc1_activity(p(1), p(2), p(3), p(4))), std::abs(vc1_activity(p(5), p(6), p(7), p(8))));
  if (std::abs(a0) >= pquant || a3 >= std::abs(a0) || c == 0) return false;
  const Mox32s d = clip(5 * (sign_of(a0) * a3 - a0) / 8, std::min(0, c), std::max(0, c));
  behind[-across] = static_cast<Mox8u>(p(4) - d);
  behind[0] = static_cast<Mox8u>(p(5) + d);
  return true;
}

/// Four lines, of which the third decides.
inline void vc1_deblock_segment(Mox8u* behind, std::ptrdiff_t across, std::ptrdiff_t along, Mox32s pquant) {
  if (!vc1_deblock_line(behind + 2 * along, across, pquant)) return;
  for (int line : {0, 1, 3}) vc1_deblock_line(behind + line * along, across, pquant);
}

/// Segments 0 to kSegments - 1 of one channel, by the lowest bits of the mask.
template <int kSegments>
void vc1_deblock_edge(Mox8u* behind, std::ptrdiff_t across, std::ptrdiff_t along, Mox32s pquant, Mox32u mask) {
  for (int i = 0; i < kSegments; ++i) {
    if (mask >> i & 1) vc1_deblock_segment(behind + 4 * i * along, across, along, pquant);
  }
}

/// An edge of kLines lines of 1 or 2 channels; luma 16 x 1, chroma 8 x 1 or 8 x 2.
template <int kLines, int kChannels>
MoxStatus ownFilterDeblocking_VerEdge_VC1(Mox8u* edge, std::ptrdiff_t step, Mox32s pquant, Mox32u mask) {
  for (int i = 0; i < kChannels; ++i) vc1_deblock_edge<kLines / 4>(edge + i, kChannels, step, pquant, mask >> 2 * i);
  return moxStsOk;
}
template <int kLines, int kChannels>
MoxStatus ownFilterDeblocking_HorEdge_VC1(Mox8u* edge, std::ptrdiff_t step, Mox32s pquant, Mox32u mask) {
  for (int i = 0; i < kChannels; ++i) vc1_deblock_edge<kLines / 4>(edge + i, step, kChannels, pquant, mask >> 2 * i);
  return moxStsOk;
}

/// Smooths the line whose x2 is at `behind`, and writes it to the picture too.
inline void vc1_smooth_line(Mox16s* behind, std::ptrdiff_t across, Mox8u* picture, std::ptrdiff_t pictureAcross,
                            bool odd) {
  Mox32s x[4];
  for (int i = 0; i < 4; ++i) x[i] = load<Mox16s>(step_bytes(behind, (i - 2) * across));
  const Mox32s r = odd ? 3 : 4, q = odd ? 4 : 3;
  const Mox32s sums[4] = {7 * x[0] + x[3] + r, -x[0] + 7 * x[1] + x[2] + x[3] + q, x[0] + x[1] + 7 * x[2] - x[3] + r,
                          x[0] + 7 * x[3] + q};
  for (int i = 0; i < 4; ++i) {
    const auto y = static_cast<Mox16s>(wrap16(sums[i]) >> 3);
    store(step_bytes(behind, (i - 2) * across), y);
    picture[(i - 2) * pictureAcross] = clip8(y + 128);
  }
}

/// Eight lines of one 16-bit plane, written to one of kChannels channels.
template <int kChannels>
void vc1_smooth_ver(Mox16s* edge, std::ptrdiff_t step, Mox8u* picture, std::ptrdiff_t pictureStep) {
  for (int i = 0; i < 8; ++i) {
    vc1_smooth_line(step_bytes(edge, i * step), sizeof(Mox16s), picture + i * pictureStep, kChannels, i & 1);
  }
}
template <int kChannels>
void vc1_smooth_hor(Mox16s* edge, std::ptrdiff_t step, Mox8u* picture, std::ptrdiff_t pictureStep) {
  for (int i = 0; i < 8; ++i) vc1_smooth_line(edge + i, step, picture + i * kChannels, pictureStep, i & 1);
}

inline MoxStatus ownSmoothing8_VerEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep) {
  vc1_smooth_ver<1>(edge, step, dst, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothing8_HorEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep) {
  vc1_smooth_hor<1>(edge, step, dst, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothing16_VerEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep,
                                            Mox32u mask) {
  if (mask & 1) vc1_smooth_ver<1>(edge, step, dst, dstStep);
  if (mask & 2) vc1_smooth_ver<1>(step_bytes(edge, 8 * step), step, dst + 8 * dstStep, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothing16_HorEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep,
                                            Mox32u mask) {
  if (mask & 1) vc1_smooth_hor<1>(edge, step, dst, dstStep);
  if (mask & 2) vc1_smooth_hor<1>(edge + 8, step, dst + 8, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothingPair_VerEdge_VC1(Mox16s* u, Mox16s* v, std::ptrdiff_t step, Mox8u* dst,
                                              std::ptrdiff_t dstStep) {
  vc1_smooth_ver<2>(u, step, dst, dstStep);
  vc1_smooth_ver<2>(v, step, dst + 1, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothingPair_HorEdge_VC1(Mox16s* u, Mox16s* v, std::ptrdiff_t step, Mox8u* dst,
                                              std::ptrdiff_t dstStep) {
  vc1_smooth_hor<2>(u, step, dst, dstStep);
  vc1_smooth_hor<2>(v, step, dst + 1, dstStep);
  return moxStsOk;
}

/// Maps a run of samples; it may lie where the samples come from.
inline void vc1_map_range(const Mox8u* src, Mox8u* dst, Mox32s count, Mox32s rangeMap) {
  for (Mox32s x = 0; x < count; ++x) dst[x] = clip8((((src[x] - 128) * (rangeMap + 9) + 4) >> 3) + 128);
}
inline MoxStatus ownRangeMapping_VC1(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                     MoxiSize size, Mox32s rangeMap) {
  for (Mox32s y = 0; y < size.height; ++y, src += srcStep, dst += dstStep)
    vc1_map_range(src, dst, size.width, rangeMap);
  return moxStsOk;
}

}  // namespace mox::px
