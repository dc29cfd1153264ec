/// A picture in work and what is known of its macroblocks.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "moxdec/frame.hpp"
#include "moxdec/h263/headers.hpp"
#include "moxvc.h"

namespace moxdec::h263 {

/// Samples that references have beyond their edges, as luma counts: more than a block and a half sample.
inline constexpr int kMargin = 32;

/// 64 values in raster order: coefficients, or what is added to the prediction.
struct alignas(32) Block : std::array<Mox16s, 64> {};

struct Macroblock {
  static constexpr int kNoSegment = -1;

  int segment = kNoSegment;  // the group of blocks or slice; prediction stays inside. None: not decoded yet
  bool coded = false;        // there is more of it than a copy
  bool intra = false;
  bool four_vectors = false;
  Mox8u pattern = 0;                             // bit 5 - i: block i has a residual
  Mox8u quantiser = 0;                           // behind a change
  int first_residual = 0;                        // index of the first one's
  std::array<MoxiMotionVector, 4> vectors = {};  // of the luma blocks, in half samples; 0 if intra or not coded
};

struct Picture {
  PictureHeader header;
  std::shared_ptr<Frame> frame;
  std::shared_ptr<const Frame> reference;  // null if missing
  std::vector<Macroblock> macroblocks;
  std::vector<Block> residuals;

  int mb_width() const { return header.options.mb_width(); }
  int mb_height() const { return header.options.mb_height(); }
  bool has(int x, int y) const { return x >= 0 && y >= 0 && x < mb_width() && y < mb_height(); }
  /// The macroblock at a column and row of macroblocks.
  Macroblock& at(int x, int y) { return macroblocks[index(x, y)]; }
  const Macroblock& at(int x, int y) const { return macroblocks[index(x, y)]; }
  /// The same if it is in that segment, else null.
  const Macroblock* in_segment(int x, int y, int segment) const {
    return has(x, y) && at(x, y).segment == segment ? &at(x, y) : nullptr;
  }

 private:
  std::size_t index(int x, int y) const { return static_cast<std::size_t>(y * mb_width() + x); }
};

/// Where block `i` of a macroblock lies: 0 to 3 are luma, then Cb and Cr.
struct BlockPlace {
  int plane, x, y;

  BlockPlace(int i, int mb_x, int mb_y)
      : plane(i < 4 ? 0 : i - 3),
        x(i < 4 ? 16 * mb_x + i % 2 * 8 : 8 * mb_x),
        y(i < 4 ? 16 * mb_y + i / 2 * 8 : 8 * mb_y) {}
  Mox8u* in(const Frame& frame) const { return frame.samples<Mox8u>(plane) + y * frame.step(plane) + x; }
};

}  // namespace moxdec::h263
