/// The headers of macroblocks, from bits to modes and vectors.
#pragma once

#include <array>
#include <optional>

#include "moxdec/mpeg4/picture.hpp"
#include "moxdec/mpeg4/prediction.hpp"

namespace moxdec::mpeg4 {

class MacroblockReader {
 public:
  MacroblockReader(const Picture& picture, const GlobalMotion& warp) : picture_(picture), warp_(warp) {}

  void begin_packet(int quantiser);
  /// Everything in front of the blocks; keeps the macroblock's state for those that follow. Throws DecodeError.
  Macroblock read(ByteReader& bits, const Place& place);

  /// A partitioned packet tells of its macroblocks in two parts: their types with the DC of an I picture or the vectors
  /// of a P picture, and what else stands in front of the blocks. Both throw DecodeError.
  PartitionedMacroblock read_first_part(ByteReader& bits, const Place& place);
  void read_second_part(ByteReader& bits, PartitionedMacroblock& macroblock);

 private:
  Macroblock read_reference(ByteReader& bits, const Place& place, MbState& state);
  Macroblock read_left_out(const Place& place, MbState& state) const;
  std::optional<int> read_type(ByteReader& bits) const;
  void set_type(ByteReader& bits, int type, Macroblock& mb) const;
  void read_pattern(ByteReader& bits, int code, Macroblock& mb) const;
  void read_quantiser(ByteReader& bits, int type, Macroblock& mb);
  void read_interlaced(ByteReader& bits, Macroblock& mb, bool may_predict_fields) const;
  void read_vectors(ByteReader& bits, const Place& place, Macroblock& mb, MbState& state) const;
  Vector predicted_vector(const Place& place, int block) const;
  void set_global(const Place& place, Motion& motion, MbState& state) const;

  Macroblock read_bidirectional(ByteReader& bits, const Place& place);
  void read_bidirectional_vectors(ByteReader& bits, Direction s, Motion& motion);
  void change_quantiser(int change);

  const Picture& picture_;
  const GlobalMotion& warp_;
  int quantiser_ = 0;
  bool first_coded_ = true;                        // no macroblock of the packet has been coded so far
  std::array<std::array<Vector, 2>, 2> latest_{};  // of a row of a B picture: [direction][field]
};

}  // namespace moxdec::mpeg4
