/// Portable kernels of the MPEG-4 deringing post filter.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

/// A plane to dering.
struct RingingPlane {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  Mox8u* dst;
  std::ptrdiff_t dstStep;
};

/// The planes of a picture, luma first, and a quantiser for each macroblock.
struct RingingPicture {
  std::array<RingingPlane, 3> planes;
  int macroblocksAcross, macroblocksDown;
  const Mox8u* qp;
  std::ptrdiff_t qpStep;
};

/// Middle and spread of a block's samples.
struct BlockLevels {
  Mox32s threshold, range;
};

/// Thresholds of a macroblock's luma blocks: a block with little in it takes that of the block with most, and where no
/// block has anything, no sample lies below.
constexpr std::array<Mox32s, 4> luma_thresholds(const std::array<BlockLevels, 4>& blocks) {
  BlockLevels most = blocks[0];
  for (const BlockLevels& block : blocks) {
    if (block.range > most.range) most = block;
  }
  std::array<Mox32s, 4> thresholds{};
  for (std::size_t i = 0; i < 4; ++i) {
    const bool follows = blocks[i].range < 32 && most.range >= 64;
    thresholds[i] = most.range < 16 ? 0 : follows ? most.threshold : blocks[i].threshold;
  }
  return thresholds;
}

}  // namespace mox

namespace mox::px {

inline BlockLevels block_levels(const Mox8u* block, std::ptrdiff_t step) {
  Mox32s least = 255, greatest = 0;
  for (int y = 0; y < 8; ++y, block += step) {
    for (int x = 0; x < 8; ++x) {
      least = std::min<Mox32s>(least, block[x]);
      greatest = std::max<Mox32s>(greatest, block[x]);
    }
  }
  return {(greatest + least + 1) >> 1, greatest - least};
}

/// The sample at (x, y) of a plane of width x height, smoothed if nothing around it crosses the threshold.
inline Mox8u deringed(const RingingPlane& plane, int x, int y, int width, int height, Mox32s threshold, Mox32s limit) {
  Mox32s sum = 8, below = 0;
  for (int j = -1; j <= 1; ++j) {
    for (int i = -1; i <= 1; ++i) {
      const Mox32s sample = plane.src[clip(y + j, 0, height - 1) * plane.srcStep + clip(x + i, 0, width - 1)];
      sum += (2 - i * i) * (2 - j * j) * sample;
      below += sample < threshold;
    }
  }
  const Mox32s sample = plane.src[y * plane.srcStep + x];
  if (below != 0 && below != 9) return static_cast<Mox8u>(sample);
  return static_cast<Mox8u>(clip(sum >> 4, sample - limit, sample + limit));
}

inline void dering_block(const RingingPlane& plane, int x, int y, int width, int height, Mox32s threshold,
                         Mox32s limit) {
  for (int j = y; j < y + 8; ++j) {
    for (int i = x; i < x + 8; ++i) {
      plane.dst[j * plane.dstStep + i] = deringed(plane, i, j, width, height, threshold, limit);
    }
  }
}

/// The macroblock at column and row `at` of the macroblocks.
inline void dering_macroblock(const RingingPicture& picture, MoxiPoint at, Mox32s limit) {
  const int width = 8 * picture.macroblocksAcross, height = 8 * picture.macroblocksDown;
  const auto levels = [&](const RingingPlane& plane, int x, int y) {
    return block_levels(plane.src + y * plane.srcStep + x, plane.srcStep);
  };
  const RingingPlane& luma = picture.planes[0];
  const int x = 16 * at.x, y = 16 * at.y;
  const auto thresholds =
      luma_thresholds({levels(luma, x, y), levels(luma, x + 8, y), levels(luma, x, y + 8), levels(luma, x + 8, y + 8)});
  for (std::size_t i = 0; i < 4; ++i) {
    dering_block(luma, x + 8 * static_cast<int>(i % 2), y + 8 * static_cast<int>(i / 2), 2 * width, 2 * height,
                 thresholds[i], limit);
  }
  for (std::size_t i : {1, 2}) {
    const RingingPlane& chroma = picture.planes[i];
    const Mox32s threshold = levels(chroma, x / 2, y / 2).threshold;
    dering_block(chroma, x / 2, y / 2, width, height, threshold, limit);
  }
}

inline MoxStatus ownFilterDeringingThreshold_MPEG4(const RingingPicture& picture) {
  for (int y = 0; y < picture.macroblocksDown; ++y) {
    for (int x = 0; x < picture.macroblocksAcross; ++x) {
      dering_macroblock(picture, {x, y}, picture.qp[y * picture.qpStep + x] >> 1);
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
