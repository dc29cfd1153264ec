/// Motion of macroblocks: vectors, their prediction from one another, and the fields that they point to.
#pragma once

#include <array>

#include "moxdec/mpeg12/code_tables.hpp"
#include "moxdec/mpeg12/headers.hpp"

namespace moxdec::mpeg12 {

/// In half samples.
struct Vector {
  int x = 0;
  int y = 0;
};

enum Direction { kForward, kBackward };

/// What a macroblock is predicted by. In frame pictures: kFrame one vector for the frame, kField one for each field. In
/// field pictures: kField one vector, k16x8 one for each half. kDualPrime: each field from both fields of one
/// reference.
enum class MotionKind { kFrame, kField, k16x8, kDualPrime };

struct Motion {
  MotionKind kind = MotionKind::kFrame;
  std::array<bool, 2> used{};                     // by direction
  std::array<std::array<Vector, 2>, 2> vector{};  // [field or half][direction]
  std::array<std::array<int, 2>, 2> parity{};     // of the field pointed to: 0 top, 1 bottom
  std::array<Vector, 2> opposite{};               // dual prime: to the other field, for the top and the bottom field

  bool any() const { return used[kForward] || used[kBackward]; }
};

/// Reads vectors as differences from those before them in the slice.
class MotionReader {
 public:
  MotionReader(const PictureHeader& picture, const CodeTables& tables) : picture_(picture), tables_(tables) {}

  /// Starts the differences from zero.
  void reset() { predicted_ = {}; }
  /// The vectors of one direction; `motion.kind` is known.
  void read(WordReader& bits, Direction s, Motion& motion);
  /// Motion of a macroblock that tells none: by the vectors before it, which a reset makes zero.
  void repeat(Motion& motion) const;

 private:
  Vector read_vector(WordReader& bits, int r, Direction s, bool field_of_frame, Vector* dual);
  int read_component(WordReader& bits, int f_code, int predicted);
  void derive_opposite(Motion& motion, Vector difference) const;

  const PictureHeader& picture_;
  const CodeTables& tables_;
  std::array<std::array<Vector, 2>, 2> predicted_{};  // [first or second][direction]
};

}  // namespace moxdec::mpeg12
