/// The code tables of residual blocks, and the reading of one block, whose coefficients have 16 or 32 bits.
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
  /// moves behind them. `context` is the count expected from the neighbours; field macroblocks have another order of
  /// coefficients. Returns the count.
  template <class Coeff>
  int read_block(BitReader& bits, Coeff** out, int context, int max, bool field) const;
  /// Reads one of the four parts of an 8x8 block, every fourth coefficient from the `part`-th one on, into raster
  /// positions at `block`. Clears 16 elements behind the 64 of the block, whose zeros are the caller's task. Returns
  /// the count.
  template <class Coeff>
  int read_part_8x8(BitReader& bits, Coeff* block, int part, int context, bool field) const;
  /// Reads the DC coefficients of a chroma plane in the same way: 4 of a 4:2:0 plane, 8 of a 4:2:2 plane.
  template <class Coeff>
  int read_chroma_dc(BitReader& bits, Coeff** out, bool is_422) const;

 private:
  struct Free {
    void operator()(MoxVlcTable* table) const { moxiHuffmanTableFree_32s(table); }
  };
  template <class Coeff>
  int read(BitReader& bits, Coeff** out, int context, int max, const Mox32s* scan) const;
  const MoxVlcTable* build(const MoxVlcSpec* spec);
  [[noreturn]] static void broken();

  /// Of chroma DC blocks, 2x2 and 2x4.
  struct ChromaDc {
    const MoxVlcTable* token = nullptr;
    std::array<const MoxVlcTable*, 8> total_zeros{};
  };

  std::array<std::unique_ptr<MoxVlcTable, Free>, 64> owned_;
  std::size_t count_ = 0;
  std::array<const MoxVlcTable*, 3> coeff_token_{};
  std::array<ChromaDc, 2> chroma_dc_;  // 4:2:0, 4:2:2
  std::array<const MoxVlcTable*, 16> total_zeros_{};
  std::array<const MoxVlcTable*, 16> run_before_{};
};

}  // namespace moxdec::h264
