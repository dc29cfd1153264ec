/// Pictures with what later ones need of them.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "moxdec/avs/headers.hpp"
#include "moxdec/frame.hpp"
#include "moxvc.h"

namespace moxdec::avs {

enum Direction { kForward, kBackward };

/// In quarters of a luma sample.
struct Vector {
  int x = 0;
  int y = 0;
  bool operator==(const Vector&) const = default;
};

/// How an 8x8 block is predicted, by direction; without a reference in either it is intra.
struct BlockMotion {
  std::array<Vector, 2> vector;
  std::array<std::int8_t, 2> reference{-1, -1};

  bool operator==(const BlockMotion&) const = default;
  bool is_intra() const { return reference[kForward] < 0 && reference[kBackward] < 0; }
};

struct Picture {
  Sequence sequence;
  PictureHeader header;
  std::shared_ptr<Frame> frame;
  /// By direction and index; null if missing. P pictures have two forward ones, the nearest first.
  std::array<std::array<std::shared_ptr<const Picture>, 2>, 2> references;
  /// How far they are away in display order, in half pictures; 1 to 511 if there is one.
  std::array<std::array<int, 2>, 2> distances{};
  std::vector<BlockMotion> motion;  // 8x8 blocks, row by row
  std::vector<std::int8_t> modes;   // luma intra modes of the same, -1 for inter
  std::vector<std::uint8_t> qps;    // of macroblocks
  std::vector<int> slices;          // first macroblocks of the slices of macroblocks, -1 for none yet
  int next_address = 0;             // of the first macroblock that is not decoded yet

  int mb_width() const { return sequence.mb_width(); }
  int macroblocks() const { return mb_width() * sequence.mb_height(); }
  bool is_complete() const { return next_address == macroblocks(); }
  int blocks_a_row() const { return 2 * mb_width(); }
  const BlockMotion& motion_at(int x, int y) const { return motion[static_cast<std::size_t>(y * blocks_a_row() + x)]; }
  BlockMotion& motion_at(int x, int y) { return motion[static_cast<std::size_t>(y * blocks_a_row() + x)]; }
  std::int8_t& mode_at(int x, int y) { return modes[static_cast<std::size_t>(y * blocks_a_row() + x)]; }
  Mox8u* sample(int plane, int x, int y) const {
    return frame->samples<Mox8u>(plane) + std::ptrdiff_t{y} * frame->step(plane) + x;
  }
};

}  // namespace moxdec::avs
