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

/// Of the four edges in one direction, outer edge first. Two edges share a word, so that all of them stay in registers
/// from where they are found to the filter: parts of it written one by one would have to reach the memory first.
class Strengths {
 public:
  constexpr Strengths() = default;
  constexpr Strengths(EdgeStrengths outer, EdgeStrengths first, EdgeStrengths second, EdgeStrengths third)
      : words_{outer | std::uint64_t{first} << 32, second | std::uint64_t{third} << 32} {}

  constexpr EdgeStrengths operator[](int edge) const {
    return static_cast<EdgeStrengths>(words_[edge / 2] >> 32 * (edge % 2));
  }
  constexpr bool any() const { return (words_[0] | words_[1]) != 0; }
  constexpr Strengths without_outer() const { return {words_[0] & ~kEvenEdge, words_[1]}; }
  constexpr Strengths without_inner() const { return {words_[0] & kEvenEdge, 0}; }
  /// The edges that 4:2:0 chroma has, too.
  constexpr Strengths even() const { return {words_[0] & kEvenEdge, words_[1] & kEvenEdge}; }
  /// Edges 0 and 1 or, as pair 1, edges 2 and 3.
  constexpr std::uint64_t pair(int i) const { return words_[i]; }
  /// Edges 0 and 2.
  constexpr std::uint64_t even_pair() const { return (words_[0] & kEvenEdge) | words_[1] << 32; }
  /// 16 bytes, a block's each.
  const std::uint8_t* bytes() const { return reinterpret_cast<const std::uint8_t*>(words_.data()); }

 private:
  static constexpr std::uint64_t kEvenEdge = 0xFFFFFFFF;
  constexpr Strengths(std::uint64_t low, std::uint64_t high) : words_{low, high} {}

  std::array<std::uint64_t, 2> words_ = {};
};

enum class EdgeDirection { kVertical, kHorizontal };

/// The strengths between a macroblock and `outer`, its neighbour at the left or the top (null: not to be filtered), and
/// inside of it.
Strengths find_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer, EdgeDirection direction);

/// Rows of 4:2:2 chroma are those of luma, but its transform is always 4x4: it has edges at rows 4 and 12 where luma
/// may have none. Blocks on both sides of these belong to one 8x8 block of luma.
Strengths with_422_rows(const MbInfo& mb, const Strengths& strengths);

/// Of the left edge between a frame and a field macroblock. `rows` are rows of blocks in both that lie side by side.
struct BlockRows {
  int own, other;
};
EdgeStrengths mixed_left_strengths(const MbInfo& mb, const MbInfo& left, const std::array<BlockRows, 4>& rows);

/// Of the upper edge of a frame macroblock to one of two field macroblocks.
EdgeStrengths mixed_top_strengths(const MbInfo& mb, const MbInfo& above);

}  // namespace moxdec::h264
