/// The coefficients of a partitioned packet, which come behind all else that the packet tells of its macroblocks.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "moxdec/mpeg4/texture.hpp"

namespace moxdec::mpeg4 {

/// By block; zeros where none is coded.
using MacroblockLevels = std::array<Levels, 6>;

/// Reversible codes can be read from both ends, so that damage costs only what lies about it. An error shows some codes
/// behind its place: what ends within kDoubtfulBits in front of the block where a reader has come to grief counts as
/// lost, too, and so does what both readers, coming from either end, claim to be theirs. Intra macroblocks behind the
/// damage are lost where their levels are differences from those of others.
class PacketTexture {
 public:
  static constexpr std::size_t kDoubtfulBits = 90;

  explicit PacketTexture(bool reversible_codes) : reversible_(reversible_codes) {}

  /// The macroblocks of the packet, in order.
  void expect(const Macroblock& mb) { macroblocks_.push_back(mb); }
  /// Reads all blocks, of which the first begins at `bits` and the last one ends at position `end`.
  void read(const ByteReader& bits, std::size_t end);
  /// Null if they are lost.
  const MacroblockLevels* levels(std::size_t macroblock) const {
    return levels_[macroblock] ? &*levels_[macroblock] : nullptr;
  }

 private:
  /// The macroblocks that a reader has read, from its end of the packet, and how far it has come.
  struct Run {
    std::vector<MacroblockLevels> levels;
    std::vector<std::size_t> lengths;  // bits from the reader's end of the packet to behind each macroblock
    std::size_t length = 0;            // to where there is no code, or no place for one

    std::size_t trusted() const;
  };

  bool read_block(ByteReader& bits, const Macroblock& mb, int block, Levels& levels) const;
  Run read_forwards(ByteReader bits, std::size_t end) const;
  Run read_backwards(ByteReader bits, std::size_t end) const;
  bool depends_on_others(std::size_t macroblock) const;

  bool reversible_;
  std::vector<Macroblock> macroblocks_;
  std::vector<std::optional<MacroblockLevels>> levels_;
};

}  // namespace moxdec::mpeg4
