/// The syntax of macroblocks (ITU-T H.264 7.3.5).
#pragma once

#include "moxenc/bit_writer.hpp"
#include "moxenc/macroblock.hpp"

namespace moxenc {

/// The mode that an Intra 4x4 block is coded relative to; x and y in blocks of the picture.
inline int predict_mode(const Grid<std::int8_t>& modes, int x, int y) {
  const int left = modes.at(x - 1, y), above = modes.at(x, y - 1);
  return left < 0 || above < 0 ? 2 : std::min(left, above);
}

class MacroblockWriter {
 public:
  /// The payload is written behind the slice header that is already there. All macroblocks have the slice's QP.
  MacroblockWriter(BitWriter& bits, CodingState& state, bool p_picture, int qp)
      : bits_(bits), state_(state), p_picture_(p_picture), qp_(qp) {}

  /// What a macroblock may take.
  static constexpr std::size_t kMostBits = 3200;

  /// Writes a macroblock and leaves in the state what its neighbours need. An inter macroblock without levels whose one
  /// vector is the one for it is skipped.
  void write(const Macroblock& mb);
  /// The skipped macroblocks at the end, and the end of the payload.
  void finish();

 private:
  void write_type(const Macroblock& mb, int pattern);
  void write_intra_modes(const Macroblock& mb);
  void write_vectors(const Macroblock& mb);
  void write_samples(const Macroblock& mb);
  void write_luma(const Macroblock& mb, int pattern);
  void write_chroma(const Macroblock& mb, int pattern);
  void leave_state(const Macroblock& mb);

  BitWriter& bits_;
  CodingState& state_;
  bool p_picture_;
  int qp_;
  std::uint32_t skipped_ = 0;
};

}  // namespace moxenc
