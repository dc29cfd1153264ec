/// Macroblocks from bits to intra samples, vectors and residuals.
#pragma once

#include "moxdec/h263/advanced_intra.hpp"
#include "moxdec/h263/picture.hpp"

namespace moxdec::h263 {

class MacroblockDecoder {
 public:
  MacroblockDecoder(Picture& picture, IntraPredictor& intra_predictor, ByteReader& bits)
      : picture_(picture), options_(picture.header.options), intra_predictor_(intra_predictor), bits_(bits) {}

  /// What follows is a new segment, coded with a quantiser.
  void begin_segment(int quantiser) {
    ++segment_;
    quantiser_ = quantiser;
  }
  /// Decodes the macroblock at a column and row. Throws DecodeError.
  void decode(int mb_x, int mb_y);

 private:
  int read_type();
  void decode_coded(int type);
  IntraMode read_intra_mode();
  void read_quantiser_change();
  int block_quantiser(int i) const;
  void decode_intra_block(int i, bool coded, IntraMode mode);
  void decode_residual_block(int i);

  Picture& picture_;
  const Options& options_;
  IntraPredictor& intra_predictor_;
  ByteReader& bits_;
  int segment_ = Macroblock::kNoSegment;
  int quantiser_ = 0;
  int mb_x_ = 0, mb_y_ = 0;
  Block block_;
};

}  // namespace moxdec::h263
