/// From slices to one finished picture.
#pragma once

#include <memory>

#include "moxdec/h264/macroblock.hpp"
#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

class PictureDecoder {
 public:
  /// Starts the picture of this slice; one that is still in work is given up.
  void begin(const SliceHeader& first_slice);
  bool in_work() const { return in_work_; }
  /// Whether the picture in work lacks nothing.
  bool is_complete() const { return in_work_ && decoded_ == static_cast<int>(picture_.macroblocks.size()); }
  /// Decodes the macroblocks of a slice; `bits` stands behind its header. The slices of a picture may come in any
  /// order. Throws DecodeError, and then gives the picture up.
  void decode_slice(const SliceHeader& header, BitReader& bits);
  /// Filters what is left to be filtered and hands the frame out. Throws DecodeError if macroblocks are missing.
  std::shared_ptr<const Frame> finish();

 private:
  void decode_macroblock(MacroblockReader& reader, const Slice& slice, int address);
  void filter_complete_rows();

  CavlcTables tables_;
  FramePool pool_;
  Picture picture_;
  Macroblock mb_;
  bool in_work_ = false;
  int decoded_ = 0;        // macroblocks, wherever they lie
  int complete_ = 0;       // macroblocks without a gap, from the first one on
  int filtered_rows_ = 0;  // one row behind the complete ones
};

}  // namespace moxdec::h264
