/// How strongly the deblocking filter works on each edge.
#pragma once

#include <array>
#include <cstdint>

#include "moxdec/h264/motion.hpp"
#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// The strengths of the four blocks along an edge, 0 to 4, the first one in the lowest byte.
using EdgeStrengths = std::uint32_t;
/// Strength 1 for each.
inline constexpr EdgeStrengths kEachBlock = 0x01010101;
constexpr int strength_of(EdgeStrengths edge, int block) { return edge >> 8 * block & 255; }
inline const std::uint8_t* bytes_of(const EdgeStrengths& first) {
  return reinterpret_cast<const std::uint8_t*>(&first);
}

/// Of the four edges in one direction, outer edge first.
using Strengths = std::array<EdgeStrengths, 4>;
constexpr bool any(const Strengths& s) { return (s[0] | s[1] | s[2] | s[3]) != 0; }

enum class EdgeDirection { kVertical, kHorizontal };

/// The strengths between a macroblock and `outer`, its neighbour at the left or the top (null: not to be filtered), and
/// inside of it.
Strengths find_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer, EdgeDirection direction);

/// Rows of 4:2:2 chroma are those of luma, but its transform is always 4x4: it has edges at rows 4 and 12 where luma
/// may have none. Blocks on both sides of these belong to one 8x8 block of luma.
void add_422_rows(const MbInfo& mb, Strengths& strengths);

/// Of the left edge between a frame and a field macroblock. `rows` are rows of blocks in both that lie side by side.
struct BlockRows {
  int own, other;
};
EdgeStrengths mixed_left_strengths(const MbInfo& mb, const MbInfo& left, const std::array<BlockRows, 4>& rows);

/// Of the upper edge of a frame macroblock to one of two field macroblocks.
EdgeStrengths mixed_top_strengths(const MbInfo& mb, const MbInfo& above);

}  // namespace moxdec::h264
