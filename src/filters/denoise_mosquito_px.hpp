/// State record and portable kernels of the mosquito-noise filter.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "moxvc/denoise_mosquito.h"

struct MoxiDenoiseMosquitoState {
  MoxiSize picture;
  MoxiSize grid;      ///< blocks of a picture
  Mox32s edge, flat;  ///< thresholds
  Mox8u* kinds;       ///< of all blocks, in raster order; a call fills in those that it needs
};

namespace mox {

/// Kinds of a block, as bits.
inline constexpr Mox8u kMosquitoEdge = 1, kMosquitoTexture = 2;

/// Pictures of a call.
struct MosquitoPictures {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  Mox8u* dst;
  std::ptrdiff_t dstStep;
  MoxiSize size;

  /// The sample of the source that is nearest to a place.
  Mox32s nearest(int x, int y) const { return src[clip(y, 0, size.height - 1) * srcStep + clip(x, 0, size.width - 1)]; }
};

/// A rectangle by its first column and row and the ones behind its last.
struct MosquitoArea {
  int left, top, right, bottom;

  constexpr MosquitoArea cut(const MosquitoArea& by) const {
    return {std::max(left, by.left), std::max(top, by.top), std::min(right, by.right), std::min(bottom, by.bottom)};
  }
  /// The blocks that hold any of these samples.
  constexpr MosquitoArea blocks() const { return {left >> 3, top >> 3, (right + 7) >> 3, (bottom + 7) >> 3}; }
  /// With the places around it.
  constexpr MosquitoArea wider() const { return {left - 1, top - 1, right + 1, bottom + 1}; }
  constexpr int size() const { return (right - left) * (bottom - top); }
};
constexpr MosquitoArea area_of(MoxiSize size) { return {0, 0, size.width, size.height}; }
/// The samples of a block.
constexpr MosquitoArea mosquito_block(int bx, int by) { return {8 * bx, 8 * by, 8 * bx + 8, 8 * by + 8}; }

/// True if the block is to be smoothed where it is flat.
inline bool is_ringing(const MoxiDenoiseMosquitoState& state, int bx, int by) {
  if (state.kinds[by * state.grid.width + bx] & kMosquitoTexture) return false;
  const MosquitoArea around = MosquitoArea{bx, by, bx + 1, by + 1}.wider().cut(area_of(state.grid));
  Mox8u kinds = 0;
  for (int y = around.top; y < around.bottom; ++y) {
    for (int x = around.left; x < around.right; ++x) kinds |= state.kinds[y * state.grid.width + x];
  }
  return kinds & kMosquitoEdge;
}

}  // namespace mox

namespace mox::px {

/// The greatest less the least of the 3x3 samples around a place.
inline Mox32s mosquito_spread(const MosquitoPictures& pictures, int x, int y) {
  Mox32s least = 255, greatest = 0;
  for (int j = -1; j <= 1; ++j) {
    for (int i = -1; i <= 1; ++i) {
      const Mox32s sample = pictures.nearest(x + i, y + j);
      least = std::min(least, sample), greatest = std::max(greatest, sample);
    }
  }
  return greatest - least;
}

inline Mox8u mosquito_kind(const MosquitoPictures& pictures, const MosquitoArea& block, Mox32s edge, Mox32s flat) {
  Mox32s least = 255, greatest = 0;
  int active = 0;
  for (int y = block.top; y < block.bottom; ++y) {
    for (int x = block.left; x < block.right; ++x) {
      const Mox32s sample = pictures.nearest(x, y);
      least = std::min(least, sample), greatest = std::max(greatest, sample);
      active += mosquito_spread(pictures, x, y) >= flat;
    }
  }
  const bool isEdge = greatest - least >= edge, isTexture = 2 * active > block.size();
  return static_cast<Mox8u>((isEdge ? kMosquitoEdge : 0) | (isTexture ? kMosquitoTexture : 0));
}

/// The weighted mean of the 5x5 samples around a place, of those that are near to the middle one.
inline Mox8u mosquito_mean(const MosquitoPictures& pictures, int x, int y, Mox32s flat) {
  constexpr Mox32s kWeights[5] = {1, 2, 2, 2, 1};
  const Mox32s middle = pictures.nearest(x, y);
  Mox32s sum = 32;
  for (int j = 0; j < 5; ++j) {
    for (int i = 0; i < 5; ++i) {
      const Mox32s sample = pictures.nearest(x + i - 2, y + j - 2);
      sum += kWeights[j] * kWeights[i] * (std::abs(sample - middle) < flat ? sample : middle);
    }
  }
  return static_cast<Mox8u>(sum >> 6);
}

/// Samples of one block.
inline void mosquito_filter(const MosquitoPictures& pictures, const MosquitoArea& area, bool isRinging, Mox32s flat) {
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      const bool smooth = isRinging && mosquito_spread(pictures, x, y) < flat;
      pictures.dst[y * pictures.dstStep + x] =
          smooth ? mosquito_mean(pictures, x, y, flat) : pictures.src[y * pictures.srcStep + x];
    }
  }
}

inline MoxStatus ownFilterDenoiseMosquito_8u(const MosquitoPictures& pictures, const MosquitoArea& region,
                                             const MoxiDenoiseMosquitoState& state) {
  const MosquitoArea blocks = region.blocks(), around = blocks.wider().cut(area_of(state.grid));
  for (int by = around.top; by < around.bottom; ++by) {
    for (int bx = around.left; bx < around.right; ++bx) {
      const MosquitoArea block = mosquito_block(bx, by).cut(area_of(pictures.size));
      state.kinds[by * state.grid.width + bx] = mosquito_kind(pictures, block, state.edge, state.flat);
    }
  }
  for (int by = blocks.top; by < blocks.bottom; ++by) {
    for (int bx = blocks.left; bx < blocks.right; ++bx) {
      mosquito_filter(pictures, mosquito_block(bx, by).cut(region), is_ringing(state, bx, by), state.flat);
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
