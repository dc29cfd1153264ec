/// One slice: macroblocks from bits to samples.
#pragma once

#include <array>

#include "moxdec/mpeg12/code_tables.hpp"
#include "moxdec/mpeg12/motion.hpp"
#include "moxdec/mpeg12/picture.hpp"
#include "moxdec/mpeg12/prediction.hpp"

namespace moxdec::mpeg12 {

class SliceDecoder {
 public:
  SliceDecoder(Picture& picture, const Weights& weights, const CodeTables& tables, WordReader bits);

  /// Decodes the slice of a start code. Its macroblocks must follow those that the picture has. Throws DecodeError.
  void decode(int start_code);

 private:
  /// What precedes the blocks of a macroblock.
  struct Modes {
    int type = 0;  // flags of macroblock_type
    bool field_transform = false;
    int pattern = 0;  // bit 7 - i: block i is coded
    Motion motion;
  };

  void read_header(int start_code);
  int read_increment();
  void begin_macroblock(int address);
  void skip_macroblocks(int count);
  void decode_macroblock();
  Modes read_modes();
  void read_motion(Modes& modes);
  int read_motion_type();
  int read_pattern();
  void set_scale(int code);
  void reset_dc();
  void decode_intra_block(int i, bool field_transform);
  void decode_residual_block(int i, bool field_transform);
  void saturate();
  int block_count() const { return picture_.sequence.chroma == Chroma::k420 ? 6 : 8; }

  Picture& picture_;
  const PictureHeader& header_;
  const Weights& weights_;
  const CodeTables& tables_;
  WordReader bits_;
  MotionReader motion_reader_;
  Motion motion_;  // of the last macroblock, none if it was intra
  std::array<Mox16s, 3> dc_{};
  int scale_ = 0;
  int address_ = 0;  // of the macroblock in work
  int mb_x_ = 0, mb_y_ = 0;
  alignas(32) std::array<Mox16s, 64> block_{};
  Residual residual_;
};

}  // namespace moxdec::mpeg12
