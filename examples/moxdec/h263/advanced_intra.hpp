/// Prediction of intra coefficients from those of the blocks beside (annex I).
#pragma once

#include "moxdec/h263/picture.hpp"

namespace moxdec::h263 {

/// As coded: 0, 10, 11.
enum class IntraMode { kDc, kVertical, kHorizontal };

class IntraPredictor {
 public:
  /// Forgets all blocks.
  void begin(const Picture& picture);
  /// Adds the prediction of block `i` of the macroblock at a column and row, limits all coefficients, and keeps those
  /// that others are predicted from.
  void complete(int mb_x, int mb_y, int i, IntraMode mode, Block& block);

 private:
  /// The first row and column of a block.
  struct Edges {
    std::array<Mox16s, 8> row, column;
  };
  const Edges* above(int mb_x, int mb_y, int i) const;
  const Edges* left(int mb_x, int mb_y, int i) const;
  /// Of a block of another macroblock; null unless that is intra and in the same segment as the one in work.
  const Edges* from(int mb_x, int mb_y, int i, int segment) const;
  std::size_t index(int mb_x, int mb_y, int i) const {
    return static_cast<std::size_t>(6 * (mb_y * picture_->mb_width() + mb_x) + i);
  }

  const Picture* picture_ = nullptr;
  std::vector<Edges> edges_;
};

}  // namespace moxdec::h263
