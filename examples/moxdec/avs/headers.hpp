/// Headers of AVS streams (GB/T 20090.2, 7.1 and 7.2).
#pragma once

#include <array>

#include "moxdec/avs/payload.hpp"

namespace moxdec::avs {

inline constexpr int kLastSlice = 0xaf;
inline constexpr int kSequenceHeader = 0xb0;
inline constexpr int kSequenceEnd = 0xb1;
inline constexpr int kIntraPicture = 0xb3;
inline constexpr int kInterPicture = 0xb6;

struct Sequence {
  int width = 0;
  int height = 0;
  FrameRate rate;
  bool low_delay = false;

  int mb_width() const { return (width + 15) / 16; }
  int mb_height() const { return (height + 15) / 16; }
};

/// Throws DecodeError for what is not supported.
Sequence read_sequence_header(BitReader& bits);

enum class PictureType { kI, kP, kB };

struct PictureHeader {
  PictureType type = PictureType::kI;
  int distance = 0;  // its place in display order, modulo 256
  bool fixed_qp = false;
  int qp = 0;
  bool single_reference = false;  // P: the reference index is not coded
  bool skip_runs = false;         // runs of skipped macroblocks are counted, and no type says it
  bool loop_filter = false;
  int alpha_offset = 0;
  int beta_offset = 0;
};

/// Reads what follows either start code of a picture.
PictureHeader read_picture_header(BitReader& bits, int start_code, const Sequence& sequence);

/// How the prediction from one reference is weighted.
struct Weight {
  int scale = 32;
  int shift = 0;
};

struct SliceHeader {
  bool fixed_qp = false;
  int qp = 0;
  bool weighted = false;
  bool weighted_by_macroblock = false;           // a flag in each macroblock says whether
  std::array<std::array<Weight, 2>, 2> weights;  // [reference][luma, chroma]; of B pictures forward, backward
};

SliceHeader read_slice_header(BitReader& bits, const Sequence& sequence, const PictureHeader& picture);

}  // namespace moxdec::avs
