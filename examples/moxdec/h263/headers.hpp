/// Headers of pictures.
#pragma once

#include "common/h263_quantiser_tables.hpp"
#include "moxdec/byte_reader.hpp"
#include "moxdec/codec.hpp"

namespace moxdec::h263 {

/// Bits of a picture's start code, which begins a byte: 16 zeros, a 1, and 5 zeros.
inline constexpr int kPictureStartBits = 22;
/// The start code of a group of blocks or of a slice: 16 zeros and a 1.
inline constexpr int kSegmentStartBits = 17;

/// How vectors are coded (annex D), and so how long they may be.
enum class VectorCode { kPlain, kExtended, kReversible };

/// What an extended header may leave out: it then is as in the picture before.
struct Options {
  int width = 0;
  int height = 0;
  FrameRate rate = {30000, 1001};
  bool custom_clock = false;
  VectorCode vector_code = VectorCode::kPlain;
  bool advanced_prediction = false;  // annex F: overlapped blocks
  bool advanced_intra = false;       // annex I
  bool deblocking = false;           // annex J
  bool slices = false;               // annex K
  bool rectangular_slices = false;   // annex K, too
  bool alternative_inter = false;    // annex S
  bool modified_quantiser = false;   // annex T

  int mb_width() const { return (width + 15) / 16; }
  int mb_height() const { return (height + 15) / 16; }
  int macroblocks() const { return mb_width() * mb_height(); }
  int chroma_quantiser(int quantiser) const {
    return modified_quantiser ? example::kH263ChromaQuantiser[quantiser - 1] : quantiser;
  }
  /// Rows of macroblocks in a group of blocks.
  int group_rows() const { return height <= 400 ? 1 : height <= 800 ? 2 : 4; }
};

struct PictureHeader {
  Options options;
  bool intra = true;
  int rounding = 0;  // the rounding bit of prediction
  int quantiser = 0;
};

/// Reads a header from its start code on. `options` are those of the picture before and become this one's. Throws
/// DecodeError.
PictureHeader read_picture_header(ByteReader& bits, Options& options);

/// A quantiser, 1 to 31, of 5 bits.
int read_quantiser(ByteReader& bits);

}  // namespace moxdec::h263
