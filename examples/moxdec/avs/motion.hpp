/// Vectors: their prediction from neighbours, and direct and symmetric modes (GB/T 20090.2, 9.9.1).
#pragma once

#include <optional>

#include "moxdec/avs/picture.hpp"

namespace moxdec::avs {

/// A part of a macroblock in units of 8 samples: place and size, 1 or 2.
struct Part {
  int x, y, width, height;
};

class MotionPredictor {
 public:
  /// `slice` is the number of the slice in work: blocks of others are not there.
  MotionPredictor(Picture& picture, int slice) : picture_(picture), slice_(slice) {}

  void set_macroblock(int mb_x, int mb_y) { x_ = 2 * mb_x, y_ = 2 * mb_y; }
  /// The vector predicted for a part from `reference` of a direction.
  Vector predict(Direction direction, Part part, int reference) const;
  /// That of a skipped macroblock in a P picture.
  Vector predict_skipped() const;
  /// Direct mode of block i of the macroblock. Throws DecodeError if that needs a distance of 0.
  BlockMotion direct(int i) const;
  /// The backward vector that goes with a forward one in symmetric mode.
  Vector symmetric(Vector forward) const;

 private:
  struct Neighbour {
    bool available = false;
    int reference = -1;
    Vector vector;
  };
  Neighbour neighbour(Direction direction, int x, int y) const;
  Vector scale(Vector vector, int to, int from) const;

  Picture& picture_;
  int slice_;
  int x_ = 0, y_ = 0;  // of the macroblock's first block
};

}  // namespace moxdec::avs
