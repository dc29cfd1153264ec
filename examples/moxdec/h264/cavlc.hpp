/// The code tables of residual blocks, and the reading of one block.
#pragma once

#include <array>
#include <memory>

#include "moxdec/h264/bit_reader.hpp"

namespace moxdec::h264 {

class CavlcTables {
 public:
  /// Builds the tables. Throws DecodeError if the library refuses.
  CavlcTables();

  /// Reads a 4x4 block of `max` (16 or 15) coefficients into 16 raster positions at `*out`. If there are any, `*out`
  /// moves behind them. `context` is the count expected from the neighbours. Returns the count.
  int read_block(BitReader& bits, Mox16s** out, int context, int max) const;
  /// Reads one of the four parts of an 8x8 block, every fourth coefficient from the `part`-th one on, into raster
  /// positions at `block`. Clears 16 elements behind the 64 of the block, whose zeros are the caller's task. Returns
  /// the count.
  int read_part_8x8(BitReader& bits, Mox16s* block, int part, int context) const;
  /// Reads the 4 DC coefficients of a 4:2:0 chroma plane in the same way.
  int read_chroma_dc(BitReader& bits, Mox16s** out) const;

 private:
  struct Free {
    void operator()(MoxVlcTable* table) const { moxiHuffmanTableFree_32s(table); }
  };
  int read(BitReader& bits, Mox16s** out, int context, int max, const Mox32s* scan) const;
  const MoxVlcTable* build(const MoxVlcSpec* spec);

  std::array<std::unique_ptr<MoxVlcTable, Free>, 64> owned_;
  std::size_t count_ = 0;
  std::array<const MoxVlcTable*, 3> coeff_token_{};
  const MoxVlcTable* chroma_dc_token_ = nullptr;
  std::array<const MoxVlcTable*, 16> total_zeros_{};
  std::array<const MoxVlcTable*, 4> chroma_dc_total_zeros_{};
  std::array<const MoxVlcTable*, 16> run_before_{};
};

}  // namespace moxdec::h264
