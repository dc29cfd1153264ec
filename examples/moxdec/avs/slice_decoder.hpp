/// One slice: macroblocks from bits to samples, before the loop filter.
#pragma once

#include <array>

#include "moxdec/avs/motion.hpp"
#include "moxdec/avs/picture.hpp"

namespace moxdec::avs {

class SliceDecoder {
 public:
  SliceDecoder(Picture& picture, BitReader bits);

  /// Decodes the slice of a start code. Its macroblocks must follow those that the picture has. Throws DecodeError.
  void decode(int start_code);

 private:
  /// How a part is predicted, in the order of the codes of 8x8 blocks.
  enum class Use { kDirect, kForward, kBackward, kSymmetric };
  struct Partition {
    Part part;
    Use use;
    int reference = 0;  // forward
    BlockMotion motion{};
  };
  /// The parts of a macroblock, 1 to 4.
  struct Partitions {
    std::array<Partition, 4> list;
    int count = 0;

    void add(Part part, Use use) { list[count++] = {part, use}; }
    Partition* begin() { return list.data(); }
    Partition* end() { return list.data() + count; }
  };

  void begin_macroblock();
  void decode_macroblock();
  void decode_skipped();
  void decode_intra(int blocks_code);
  int read_luma_mode(int i);
  void decode_inter(Partitions& partitions);
  Partitions read_partitions_p(int type);
  Partitions read_partitions_b(int type);
  void read_motion(Partitions& partitions);
  Vector read_vector(Direction direction, const Partition& partition);
  void set_motion(Part part, const BlockMotion& motion);
  void predict(bool weighted);
  int read_coded_blocks(bool inter);
  void read_qp_change(int blocks);
  void read_blocks(int blocks, bool intra);
  Mox32u missing_edges() const;
  bool is_available(int mb_x, int mb_y) const;
  bool is_b() const { return picture_.header.type == PictureType::kB; }

  Picture& picture_;
  BitReader bits_;
  SliceHeader header_;
  int slice_ = 0;
  MotionPredictor predictor_;
  int qp_ = 0;
  int address_ = 0;  // of the macroblock in work
  int mb_x_ = 0, mb_y_ = 0;
  alignas(32) std::array<Mox16s, 6 * 64> coefficients_;
};

}  // namespace moxdec::avs
