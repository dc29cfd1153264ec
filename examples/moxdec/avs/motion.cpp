#include "moxdec/avs/motion.hpp"

#include <algorithm>
#include <cstdlib>

namespace moxdec::avs {
namespace {

/// A distance is coded modulo 256 pictures and counts fields.
constexpr int kDistances = 512;

/// Sums may be large with damaged data; sound ones stay far below.
int narrowed(std::int64_t value) {
  require(std::abs(value) < 1 << 15, "a vector is too long");
  return static_cast<int>(value);
}

int distance_between(Vector a, Vector b) { return std::abs(a.x - b.x) + std::abs(a.y - b.y); }

/// The middle of three numbers.
int median(int a, int b, int c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

/// A vector across `from` pictures for `to` of them, halves and signs as direct mode has them.
Vector direct_vector(Vector vector, int to, int from) {
  const std::int64_t factor = 16384 / from;
  const auto component = [&](int value) {
    const std::int64_t magnitude = (factor * (1 + std::int64_t{std::abs(value)} * to) - 1) >> 14;
    return narrowed(value < 0 ? -magnitude : magnitude);
  };
  return {component(vector.x), component(vector.y)};
}

Vector opposite(Vector vector) { return {-vector.x, -vector.y}; }

}  // namespace

Vector MotionPredictor::scale(Vector vector, int to, int from) const {
  const auto component = [&](int value) {
    const std::int64_t magnitude = (std::int64_t{std::abs(value)} * to * (kDistances / from) + 256) >> 9;
    return narrowed(value < 0 ? -magnitude : magnitude);
  };
  return {component(vector.x), component(vector.y)};
}

MotionPredictor::Neighbour MotionPredictor::neighbour(Direction direction, int x, int y) const {
  if (x < 0 || y < 0 || x >= picture_.blocks_a_row()) return {};
  const std::size_t address = static_cast<std::size_t>(y / 2 * picture_.mb_width() + x / 2);
  if (picture_.slices[address] != slice_) return {};
  const BlockMotion& motion = picture_.motion_at(x, y);
  return {true, motion.reference[direction], motion.vector[direction]};
}

/// The only neighbour with a vector is taken as it is, and so is one of the same reference beside a half. Else vectors
/// of neighbours count as if they went as far as this one, and the median is that of their mutual distances: the vector
/// opposite to the middle distance is taken.
Vector MotionPredictor::predict(Direction direction, Part part, int reference) const {
  const int x = x_ + part.x, y = y_ + part.y;
  const auto at = [&](int bx, int by) { return neighbour(direction, bx, by); };
  const bool right_comes_later = part.y == 1 && part.x + part.width == 2;
  Neighbour a = at(x - 1, y), b = at(x, y - 1), c;
  if (!right_comes_later) c = at(x + part.width, y - 1);
  if (!c.available) c = at(x - 1, y - 1);

  if ((a.reference >= 0) + (b.reference >= 0) + (c.reference >= 0) == 1) {
    return a.reference >= 0 ? a.vector : b.reference >= 0 ? b.vector : c.vector;
  }
  if (part.width < part.height) {
    const Neighbour& side = part.x == 0 ? a : c;
    if (side.reference == reference) return side.vector;
  } else if (part.width > part.height) {
    const Neighbour& side = part.y == 0 ? b : a;
    if (side.reference == reference) return side.vector;
  }
  const auto& distances = picture_.distances[direction];
  for (Neighbour* n : {&a, &b, &c}) {
    n->vector = n->reference < 0 ? Vector{} : scale(n->vector, distances[reference], distances[n->reference]);
  }
  const int ab = distance_between(a.vector, b.vector), bc = distance_between(b.vector, c.vector),
            ca = distance_between(c.vector, a.vector);
  const int middle = median(ab, bc, ca);
  return middle == ab ? c.vector : middle == bc ? a.vector : b.vector;
}

Vector MotionPredictor::predict_skipped() const {
  for (const auto& [dx, dy] : {std::pair{-1, 0}, {0, -1}}) {
    const Neighbour side = neighbour(kForward, x_ + dx, y_ + dy);
    if (!side.available || (side.reference == 0 && side.vector == Vector{})) return {};
  }
  return predict(kForward, {0, 0, 2, 2}, 0);
}

/// Where the block of the backward reference at this place is intra, there is no vector to be shared out: those of the
/// whole macroblock are predicted.
BlockMotion MotionPredictor::direct(int i) const {
  const Picture& later = *picture_.references[kBackward][0];
  const BlockMotion& located = later.motion_at(x_ + i % 2, y_ + i / 2);
  BlockMotion motion;
  motion.reference = {0, 0};
  if (located.is_intra()) {
    for (const Direction direction : {kForward, kBackward})
      motion.vector[direction] = predict(direction, {0, 0, 2, 2}, 0);
    return motion;
  }
  const int span = later.distances[kForward][located.reference[kForward]];
  const Vector vector = located.vector[kForward];
  motion.vector[kForward] = direct_vector(vector, picture_.distances[kForward][0], span);
  motion.vector[kBackward] = opposite(direct_vector(vector, picture_.distances[kBackward][0], span));
  return motion;
}

Vector MotionPredictor::symmetric(Vector forward) const {
  const std::int64_t factor =
      std::int64_t{picture_.distances[kBackward][0]} * (kDistances / picture_.distances[kForward][0]);
  const auto component = [&](int value) { return narrowed(-((value * factor + 256) >> 9)); };
  return {component(forward.x), component(forward.y)};
}

}  // namespace moxdec::avs
