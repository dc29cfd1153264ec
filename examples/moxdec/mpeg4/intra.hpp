/// Prediction of intra blocks from their neighbours: the DC always, a row or a column of AC levels if a macroblock says
/// so.
#pragma once

#include <array>
#include <vector>

#include "moxdec/mpeg4/picture.hpp"

namespace moxdec::mpeg4 {

/// What an intra block leaves for its neighbours.
struct IntraBlock {
  Mox16s dc = 0;                // coefficient
  std::array<Mox16s, 8> row{};  // levels; the first one counts for nothing
  std::array<Mox16s, 8> column{};
};

/// From which side a block is predicted.
struct IntraSource {
  bool from_above = false;
  int dc = 0;                         // coefficient
  const IntraBlock* block = nullptr;  // null if there is no intra block at that side
  int quantiser = 0;                  // of that block
};

/// Factor of the DC: of luma blocks 0 to 3 and chroma blocks 4 and 5.
int dc_scale(int quantiser, int block);

class IntraPredictor {
 public:
  void begin_picture(int macroblocks) { blocks_.resize(static_cast<std::size_t>(macroblocks)); }
  IntraSource source(const Picture& picture, const Place& place, int block) const;
  /// Adds the prediction to levels in raster order.
  static void add(const IntraSource& source, const Macroblock& mb, int block, Mox16s* levels);
  /// Keeps levels in raster order, and later the DC coefficient made of them.
  void keep_levels(const Place& place, int block, const Mox16s* levels);
  void keep_dc(const Place& place, int block, Mox16s dc) { at(place.address, block).dc = dc; }

 private:
  IntraBlock& at(int address, int block) { return blocks_[static_cast<std::size_t>(address)][block]; }

  std::vector<std::array<IntraBlock, 6>> blocks_;
};

}  // namespace moxdec::mpeg4
