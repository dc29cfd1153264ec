/// The H.264 macroblock as reconstruction sees it: where its blocks lie, which neighbours each may use, and the packed
/// coefficients that belong to them.
#pragma once

#include <cstddef>
#include <utility>

#include "h264/intra_modes.hpp"
#include "moxvc/types.h"

namespace mox {

struct BlockStep {
  int x, y;
};
/// From each 4x4 luma block to the next in coding order, which goes through the quadrants one after the other.
inline constexpr BlockStep xyoff[16] = {{4, 0}, {-4, 4}, {4, 0}, {4, -4}, {4, 0}, {-4, 4}, {4, 0}, {-12, 4},
                                        {4, 0}, {-4, 4}, {4, 0}, {4, -4}, {4, 0}, {-4, 4}, {4, 0}, {0, 0}};
/// The same for 8x8 blocks.
inline constexpr BlockStep xyoff8[4] = {{8, 0}, {-8, 8}, {8, 0}, {0, 0}};

/// Where block i + 1 lies, given where block i lies.
template <class Pixel>
Pixel* move(Pixel* block, std::ptrdiff_t step, BlockStep by) {
  return block + by.y * step + by.x;
}

/// Raster index, in the 4x4 array of luma DC values, of each block in coding order.
inline constexpr Mox8u block_subblock_mapping[16] = {0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 12, 13, 10, 11, 14, 15};

/// Bits of the coded block pattern.
inline constexpr Mox32u kLumaDC = 1, kLumaBlocks = 0x1FFFE;
inline constexpr int kFirstLumaBlock = 1, kFirstChromaDC = 17, kFirstChromaBlock = 19;

/// The bits of chroma plane 0 or 1 in the common pattern of 4:2:0 as a word of its own: bit 0 the DC block, bit i + 1
/// block i.
constexpr Mox32u chroma_pattern(Mox32u cbp4x4, int plane) {
  const Mox32u dc = cbp4x4 >> (kFirstChromaDC + plane) & 1, blocks = cbp4x4 >> (kFirstChromaBlock + 4 * plane) & 15;
  return blocks << 1 | dc;
}
static_assert(chroma_pattern(0x2AA0000, 0) == 0x0B && chroma_pattern(0x2AA0000, 1) == 0x0A);

/// Bits of edgeType: neighbouring macroblocks that cannot be used.
inline constexpr Mox32u kNoLeft = 1, kNoTop = 4, kNoTopLeft = 16, kNoTopRight = 32;

/// Neighbours of the macroblock as a whole, without those above and right of it.
constexpr Mox32u neighbours_of_macroblock(Mox32u edgeType) {
  return (edgeType & kNoTop ? 0 : kTop) | (edgeType & kNoLeft ? 0 : kLeft) | (edgeType & kNoTopLeft ? 0 : kTopLeft);
}

/// Neighbours of a 4x4 luma block in coding order. Blocks 3, 7, 11, 13 and 15 come before the block above and right of
/// them; block 5 finds it in the macroblock above and right, whether or not the row above is there.
constexpr Mox32u neighbours_4x4(int block, Mox32u edgeType) {
  constexpr Mox32u kAll = kWholeCorner | kTopRight;
  const bool top = !(edgeType & kNoTop), left = !(edgeType & kNoLeft);
  switch (block) {
    case 0: return neighbours_of_macroblock(edgeType) | (top ? kTopRight : 0);
    case 1:
    case 4: return top ? kAll : kLeft;
    case 2:
    case 8:
    case 10: return left ? kAll : kTop | kTopRight;
    case 5: return kLeft | (top ? kTop | kTopLeft : 0) | (edgeType & kNoTopRight ? 0 : kTopRight);
    case 3:
    case 7:
    case 11:
    case 13:
    case 15: return kWholeCorner;
    default: return kAll;
  }
}

/// [block]: it touches the macroblock's left edge, its top edge, and has samples above and right inside or above it.
inline constexpr bool left_edge_tab16[16] = {1, 0, 1, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0};
inline constexpr bool top_edge_tab16[16] = {1, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
inline constexpr bool above_right_avail_4x4[16] = {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0, 1, 0, 1, 0};

/// The same for the half macroblocks of flat quantisation, which are stricter where one neighbour is there without the
/// edge beside it: block 0 loses its corner with either edge, block 5 its samples above and right with the row above.
constexpr Mox32u neighbours_4x4_of_half(int block, Mox32u edgeType) {
  const bool no_top = top_edge_tab16[block] && edgeType & kNoTop;
  const bool no_left = left_edge_tab16[block] && edgeType & kNoLeft;
  const bool no_corner = no_top || no_left || (block == 0 && edgeType & kNoTopLeft);
  const bool no_right = no_top || !above_right_avail_4x4[block] || (block == 5 && edgeType & kNoTopRight);
  return (no_top ? 0 : kTop) | (no_left ? 0 : kLeft) | (no_corner ? 0 : kTopLeft) | (no_right ? 0 : kTopRight);
}

inline constexpr bool left_edge_tab4[4] = {1, 0, 1, 0}, top_edge_tab4[4] = {1, 1, 0, 0};

/// Neighbours of an 8x8 luma block.
constexpr Mox32u neighbours_8x8(int block, Mox32u edgeType) {
  const bool no_top = top_edge_tab4[block] && edgeType & kNoTop;
  const bool no_left = left_edge_tab4[block] && edgeType & kNoLeft;
  const bool no_corner = block == 0 ? bool(edgeType & kNoTopLeft) : no_top || no_left;
  const bool no_right = block == 3 || no_top || (block == 1 && edgeType & kNoTopRight);
  return (no_top ? 0 : kTop) | (no_left ? 0 : kLeft) | (no_corner ? 0 : kTopLeft) | (no_right ? 0 : kTopRight);
}

static_assert(neighbours_4x4(0, 0) == 99 && neighbours_4x4(5, kNoTop) == 66 && neighbours_4x4(2, kNoLeft) == 65);
static_assert(neighbours_4x4_of_half(5, kNoTop) == 2 && neighbours_4x4_of_half(0, kNoLeft) == 65);
static_assert(neighbours_8x8(0, kNoTop) == 34 && neighbours_8x8(1, kNoTopRight) == 35 && neighbours_8x8(3, 0xFF) == 35);

/// The packed coefficients: blocks one behind the other, in the order in which they are used. The caller's pointer is
/// always behind the last block taken, so planes may share one.
template <class Coeff>
class PackedCoeffs {
 public:
  explicit PackedCoeffs(Coeff** ppSrcCoeff) : next_(ppSrcCoeff) {}
  Coeff* take(int count) const { return std::exchange(*next_, *next_ + count); }

 private:
  Coeff** next_;
};

/// True if there is no stream, or nothing behind its pointer.
template <class Coeff>
constexpr bool no_stream(Coeff* const* ppSrcCoeff) {
  return ppSrcCoeff == nullptr || *ppSrcCoeff == nullptr;
}

/// Stands for a DC block that is not in the stream.
template <class Coeff>
inline constexpr Coeff zeroArray16[16] = {};

}  // namespace mox
