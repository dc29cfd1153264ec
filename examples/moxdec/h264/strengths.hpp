/// How strongly the deblocking filter works on each edge.
#pragma once

#include <array>
#include <cstdint>

#include "moxdec/h264/motion.hpp"
#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// The strengths of the four edges in one direction, outer edge first: [4 * edge + line / 4].
using Strengths = std::array<std::uint8_t, 16>;

enum class EdgeDirection { kVertical, kHorizontal };

/// Of one edge.
using EdgeStrengths = std::array<std::uint8_t, 4>;

/// The strengths between a macroblock and `outer`, its neighbour at the left or the top (null: not to be filtered), and
/// inside of it. False if all are 0.
bool find_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer, EdgeDirection direction,
                    Strengths& strengths);

/// Of the left edge between a frame and a field macroblock. `rows` are rows of blocks in both that lie side by side.
struct BlockRows {
  int own, other;
};
EdgeStrengths mixed_left_strengths(const MbInfo& mb, const MbInfo& left, const std::array<BlockRows, 4>& rows);

/// Of the upper edge of a frame macroblock to one of two field macroblocks.
EdgeStrengths mixed_top_strengths(const MbInfo& mb, const MbInfo& above);

}  // namespace moxdec::h264
