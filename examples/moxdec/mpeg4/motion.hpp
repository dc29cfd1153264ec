/// Motion of macroblocks: vectors, their prediction from one another, and how they are read.
#pragma once

#include <array>
#include <cstdint>

#include "moxdec/mpeg4/headers.hpp"

namespace moxdec::mpeg4 {

/// In half or quarter samples, as the layer says.
struct Vector {
  int x = 0;
  int y = 0;
};

enum Direction { kForward, kBackward };

/// What a macroblock is predicted by: one vector; one for each 8x8 block; one for each field; the picture's warp.
enum class MotionKind : std::uint8_t { kFrame, kBlocks, kFields, kGlobal };

/// Of one direction.
struct Vectors {
  std::array<Vector, 4> of{};   // by block (all the same with kFrame and kGlobal), or by field
  std::array<int, 2> parity{};  // by field, of the field pointed to: 0 top, 1 bottom
};

struct Motion {
  MotionKind kind = MotionKind::kFrame;
  std::array<bool, 2> used{};  // by direction
  std::array<Vectors, 2> vectors{};
};

/// What a macroblock leaves for its neighbours, and for the B pictures in front of it.
struct MbState {
  bool intra = false;
  bool skipped = false;  // nothing is coded, not even by a B picture in the same place
  std::uint8_t quantiser = 0;
  MotionKind kind = MotionKind::kFrame;
  std::array<Vector, 4> block{};  // of the frame, by block: what others are predicted from
  Vectors fields;                 // with kFields

  void set_vector(Vector vector) { block.fill(vector); }
};

/// A vector as a difference from a predicted one; the sum wraps within the range of an f_code.
Vector read_vector(ByteReader& bits, int f_code, Vector predicted);

/// A vector of one field, whose rows are half as many as those that the prediction counts.
inline Vector read_field_vector(ByteReader& bits, int f_code, Vector predicted) {
  return read_vector(bits, f_code, {predicted.x, predicted.y / 2});
}

/// The vector that stands for those of two fields in the prediction of others.
constexpr Vector frame_vector(const Vectors& fields) {
  const int x = fields.of[0].x + fields.of[1].x;
  return {x >> 1 | (x & 1), fields.of[0].y + fields.of[1].y};
}

}  // namespace moxdec::mpeg4
