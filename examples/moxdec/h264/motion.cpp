#include "moxdec/h264/motion.hpp"

#include <algorithm>

#include "common/h264_tables.hpp"

namespace moxdec::h264 {
namespace {

constexpr std::int16_t median(std::int16_t a, std::int16_t b, std::int16_t c) {
  return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

/// Whether the block at (x, y) comes before the one at (to_x, to_y) in coding order. The permutation between raster and
/// coding order is its own inverse.
constexpr bool precedes(int x, int y, int to_x, int to_y) {
  return example::kBlockRaster[4 * y + x] < example::kBlockRaster[4 * to_y + to_x];
}
static_assert(precedes(1, 0, 0, 1) && !precedes(2, 0, 1, 1));

/// A neighbour that is not available.
constexpr MbMotion kMissing = still_motion(MotionWindow::kNotThere);

}  // namespace

void MotionWindow::put(int list, int at, const MbMotion& mb, int block) {
  references_[at] = mb.references[list][quadrant_of(block)];
  vectors_[at] = mb.vectors[list][block];
}

void MotionWindow::load(int list, const MbMotion* left, const MbMotion* top, const MbMotion* top_left,
                        const MbMotion* top_right) {
  const auto known = [](const MbMotion* mb) -> const MbMotion& { return mb ? *mb : kMissing; };
  const MbMotion &beside = known(left), &above = known(top);
  corner_column_ = -1;
  put(list, index(-1, -1), known(top_left), 15);
  for (int x = 0; x < 4; ++x) put(list, index(x, -1), above, 12 + x);
  put(list, index(4, -1), known(top_right), 12);
  for (int y = 0; y < 4; ++y) put(list, index(-1, y), beside, 4 * y + 3);
}

void MotionWindow::load(int list, const Surroundings& around) {
  const auto put_converted = [&](int at, const MbMotion* mb, int block) {
    put(list, at, mb ? *mb : kMissing, block);
    if (!mb || mb->field == around.field || references_[at] < 0) return;
    // A frame has two fields and twice as many lines as each of them.
    MotionVector& vector = vectors_[at];
    references_[at] = static_cast<std::int8_t>(around.field ? references_[at] * 2 : references_[at] / 2);
    vector.y = static_cast<std::int16_t>(around.field ? vector.y / 2 : vector.y * 2);
  };
  corner_column_ = kCornerColumn;
  for (int x = 0; x < 4; ++x) put_converted(index(x, -1), around.top, 12 + x);
  put_converted(index(4, -1), around.top_right, 12);
  for (int y = 0; y < 4; ++y) {
    const Block &left = around.left[y], &above = around.corner[y];
    put_converted(index(-1, y), left.mb, 4 * left.row + 3);
    put_converted(corner(y - 1), above.mb, 4 * above.row + 3);
  }
}

void MotionWindow::store(int list, MbMotion& out) const {
  for (int y = 0; y < 4; ++y) std::copy_n(&vectors_[index(0, y)], 4, &out.vectors[list][4 * y]);
  for (int i = 0; i < 4; ++i) out.references[list][i] = references_[index(i % 2 * 2, i / 2 * 2)];
}

int MotionWindow::diagonal_neighbour(const BlockRect& rect) const {
  const int x = rect.x + rect.width, y = rect.y - 1;
  const bool decoded = y < 0 || x > 3 || precedes(x, y, rect.x, rect.y);
  const int right = index(x, y);
  if (decoded && references_[right] != kNotThere) return right;
  return rect.x > 0 ? index(rect.x - 1, y) : corner(y);
}

MotionVector MotionWindow::predict(const BlockRect& rect, int reference) const {
  const int a = index(rect.x - 1, rect.y), b = index(rect.x, rect.y - 1), c = diagonal_neighbour(rect);
  const bool same_a = references_[a] == reference, same_b = references_[b] == reference,
             same_c = references_[c] == reference;
  const int same = same_a + same_b + same_c;
  if (same == 1) return vectors_[same_a ? a : same_b ? b : c];
  if (same == 0 && references_[b] == kNotThere && references_[c] == kNotThere) return vectors_[a];
  return {median(vectors_[a].x, vectors_[b].x, vectors_[c].x), median(vectors_[a].y, vectors_[b].y, vectors_[c].y)};
}

MotionVector MotionWindow::predict_half(const BlockRect& rect, int reference) const {
  int preferred;
  if (rect.width == 4) {
    preferred = rect.y == 0 ? index(0, -1) : index(-1, 2);
  } else {
    preferred = rect.x == 0 ? index(-1, 0) : diagonal_neighbour(rect);
  }
  return references_[preferred] == reference ? vectors_[preferred] : predict(rect, reference);
}

MotionVector MotionWindow::predict_skip() const {
  for (const int neighbour : {index(-1, 0), index(0, -1)}) {
    const int reference = references_[neighbour];
    if (reference == kNotThere || (reference == 0 && vectors_[neighbour] == MotionVector{})) return {};
  }
  return predict(kWholeMb, 0);
}

int MotionWindow::lowest_reference() const {
  int lowest = -1;
  for (const int neighbour : {index(-1, 0), index(0, -1), diagonal_neighbour(kWholeMb)}) {
    const int reference = references_[neighbour];
    if (reference >= 0 && (lowest < 0 || reference < lowest)) lowest = reference;
  }
  return lowest;
}

bool MotionWindow::has_one_vector(const BlockRect& rect) const {
  const MotionVector first = vectors_[index(rect.x, rect.y)];
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    for (int x = rect.x; x < rect.x + rect.width; ++x) {
      if (vectors_[index(x, y)] != first) return false;
    }
  }
  return true;
}

}  // namespace moxdec::h264
