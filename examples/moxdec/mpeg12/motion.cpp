#include "moxdec/mpeg12/motion.hpp"

#include <cstdlib>

namespace moxdec::mpeg12 {

void MotionReader::read(WordReader& bits, Direction s, Motion& motion) {
  motion.used[s] = true;
  const bool dual = motion.kind == MotionKind::kDualPrime;
  const bool two = motion.kind == MotionKind::k16x8 || (motion.kind == MotionKind::kField && picture_.is_frame());
  const bool field_of_frame = picture_.is_frame() && motion.kind != MotionKind::kFrame;
  Vector difference;
  for (int r = 0; r <= int{two}; ++r) {
    if (motion.kind == MotionKind::kField || motion.kind == MotionKind::k16x8) motion.parity[r][s] = bits.flag();
    motion.vector[r][s] = read_vector(bits, r, s, field_of_frame, dual ? &difference : nullptr);
  }
  if (!two) predicted_[1][s] = predicted_[0][s];
  if (dual) derive_opposite(motion, difference);
}

Vector MotionReader::read_vector(WordReader& bits, int r, Direction s, bool field_of_frame, Vector* dual) {
  Vector& predicted = predicted_[r][s];
  predicted.x = read_component(bits, picture_.f_code[s][0], predicted.x);
  if (dual) dual->x = tables_.dmvector.read(bits, "broken vector");
  const int y = read_component(bits, picture_.f_code[s][1], field_of_frame ? predicted.y >> 1 : predicted.y);
  if (dual) dual->y = tables_.dmvector.read(bits, "broken vector");
  predicted.y = field_of_frame ? 2 * y : y;
  const int scale = picture_.full_pel[s] ? 2 : 1;
  return {scale * predicted.x, scale * y};
}

/// A difference is coded in steps of 2^(f_code - 1); the sum wraps within 32 steps.
int MotionReader::read_component(WordReader& bits, int f_code, int predicted) {
  require(f_code >= 1 && f_code <= 9, "a range of vectors is none");
  const int code = tables_.motion_code.read(bits, "broken vector"), size = f_code - 1;
  int difference = code;
  if (code != 0 && size > 0) {
    const int magnitude = ((std::abs(code) - 1) << size) + bits.number(size) + 1;
    difference = code < 0 ? -magnitude : magnitude;
  }
  const int low = -16 << size, range = 32 << size;
  return ((predicted + difference - low) & (range - 1)) + low;
}

namespace {
/// value / 2, halves away from zero.
int half_away(int value) { return (value + (value > 0)) >> 1; }
}  // namespace

/// The vector between fields of one parity, scaled to the distance of the other field, plus a difference and the half
/// row by which the fields lie apart.
void MotionReader::derive_opposite(Motion& motion, Vector difference) const {
  const Vector v = motion.vector[0][kForward];
  for (int parity = 0; parity < 2; ++parity) {
    const int distance = !picture_.is_frame() || picture_.top_field_first == (parity == 0) ? 1 : 3;
    motion.opposite[parity] = {half_away(distance * v.x) + difference.x,
                               half_away(distance * v.y) + difference.y + (parity == 0 ? -1 : 1)};
  }
}

void MotionReader::repeat(Motion& motion) const {
  motion.kind = picture_.is_frame() ? MotionKind::kFrame : MotionKind::kField;
  for (const Direction s : {kForward, kBackward}) {
    const int scale = picture_.full_pel[s] ? 2 : 1;
    motion.vector[0][s] = {scale * predicted_[0][s].x, scale * predicted_[0][s].y};
    motion.parity[0][s] = picture_.parity();
  }
}

}  // namespace moxdec::mpeg12
