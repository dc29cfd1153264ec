/// Prediction of macroblocks from references, with the residual added, through the library.
#pragma once

#include "moxdec/mpeg12/motion.hpp"
#include "moxdec/mpeg12/picture.hpp"

namespace moxdec::mpeg12 {

/// What is added to the prediction of a macroblock: rows of 16 luma and 8 chroma values. In a frame picture the rows
/// of both fields alternate.
struct Residual {
  alignas(32) std::array<Mox16s, 256> luma{};
  alignas(32) std::array<std::array<Mox16s, 128>, 2> chroma{};

  Mox16s* plane(int i) { return i == 0 ? luma.data() : chroma[i - 1].data(); }
  const Mox16s* plane(int i) const { return i == 0 ? luma.data() : chroma[i - 1].data(); }
  /// Values from one row to the next.
  static constexpr int step(int plane) { return plane == 0 ? 16 : 8; }
};

/// Predicts the macroblock at a column and a row of macroblocks. Throws DecodeError if a reference is missing or a
/// vector points outside of it.
void predict_macroblock(const Picture& picture, int mb_x, int mb_y, const Motion& motion, const Residual& residual);

}  // namespace moxdec::mpeg12
