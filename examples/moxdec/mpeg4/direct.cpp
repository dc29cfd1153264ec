#include "moxdec/mpeg4/direct.hpp"

namespace moxdec::mpeg4 {
namespace {

/// One component, forward and backward; `past` and `all` are distances, in ticks or fields.
struct Pair {
  int forward, backward;
};
Pair scale(int vector, int difference, std::int64_t past, std::int64_t all) {
  const int forward = static_cast<int>(vector * past / all) + difference;
  return {forward, difference ? forward - vector : static_cast<int>(vector * (past - all) / all)};
}

void set(Motion& motion, int i, Vector vector, Vector difference, std::int64_t past, std::int64_t all) {
  const Pair x = scale(vector.x, difference.x, past, all), y = scale(vector.y, difference.y, past, all);
  motion.vectors[kForward].of[i] = {x.forward, y.forward};
  motion.vectors[kBackward].of[i] = {x.backward, y.backward};
}

}  // namespace

Motion direct_motion(const Picture& picture, const MbState& colocated, Vector difference) {
  const Distances& distances = picture.distances;
  Motion motion;
  motion.used = {true, true};
  if (colocated.kind != MotionKind::kFields) {
    // Halves of a sample are the same in blocks of any size; quarters are not.
    const bool blocks = colocated.kind == MotionKind::kBlocks || picture.layer.quarter_sample;
    motion.kind = blocks ? MotionKind::kBlocks : MotionKind::kFrame;
    for (int i = 0; i < 4; ++i) {
      set(motion, i, colocated.block[i], difference, distances.from_past, distances.between);
    }
    return motion;
  }
  motion.kind = MotionKind::kFields;
  for (int field = 0; field < 2; ++field) {
    const int parity = colocated.fields.parity[field];
    motion.vectors[kForward].parity[field] = parity;
    motion.vectors[kBackward].parity[field] = field;
    const int later = picture.header.top_field_first ? field - parity : parity - field;
    const std::int64_t past = distances.fields_from_past + later, all = distances.fields_between + later;
    require(all > 0, "fields of references are at no distance");
    set(motion, field, colocated.fields.of[field], difference, past, all);
  }
  return motion;
}

}  // namespace moxdec::mpeg4
