/// One picture: its groups of blocks or slices, and the order of the work.
#pragma once

#include "moxdec/h263/macroblock_decoder.hpp"

namespace moxdec::h263 {

class PictureDecoder {
 public:
  /// Decodes what follows the header of `picture`, whose frame and reference are there. Throws DecodeError.
  void decode(Picture& picture, ByteReader& bits);

 private:
  IntraPredictor intra_predictor_;
};

}  // namespace moxdec::h263
