/// One group of blocks: 33 macroblocks, from bits to samples.
#pragma once

#include <array>

#include "moxdec/byte_reader.hpp"
#include "moxdec/frame.hpp"

namespace moxdec::h261 {

/// Macroblocks of a group, in a row and in all.
inline constexpr int kGroupWidth = 11, kGroupSize = 33;

class GroupDecoder {
 public:
  /// The reader stands behind the group's number. There may be no reference.
  GroupDecoder(const Frame& frame, const Frame* reference, ByteReader& bits);

  /// Decodes the group whose first macroblock has this column and row. The reader then stands at a start code or at the
  /// zeros in front of it. Throws DecodeError.
  void decode(int mb_x, int mb_y);

 private:
  /// In full samples.
  struct Vector {
    int x = 0;
    int y = 0;
  };
  /// What precedes the blocks of a macroblock.
  struct Modes {
    int type = 0;     // flags of H261MacroblockFlag; 0 for a copy
    int pattern = 0;  // bit 5 - i: block i is coded
    Vector vector;
  };

  void begin_macroblock(int address);
  void copy_macroblocks(int count);
  Modes read_modes();
  void read_vector();
  void read_quantiser();
  void decode_macroblock(const Modes& modes);
  void predict(int plane, int x, int y, const Modes& modes, Mox8u* target) const;
  void decode_intra_block(Mox8u* target, int step);
  void decode_residual_block(Mox8u* target, int step);

  const Frame& frame_;
  const Frame* reference_;
  ByteReader& bits_;
  int first_x_ = 0, first_y_ = 0;  // of the group
  int address_ = 0;                // of the macroblock in work, from 1 on
  int mb_x_ = 0, mb_y_ = 0;
  int quantiser_ = 0;
  Vector vector_;  // of the last macroblock, none if it had none or was left out
  alignas(32) std::array<Mox16s, 64> block_{};
};

/// Passes over the information that may stand at the end of a picture or group header, and its end.
void skip_spare_information(ByteReader& bits);

}  // namespace moxdec::h261
