#include "moxenc/motion.hpp"

#include <algorithm>

namespace moxenc {
namespace {

struct Neighbours {
  Motion left, above, diagonal;
};

/// What is not yet coded is unknown to the grid, so only its order of filling decides what may be used.
Neighbours neighbours_of(const Grid<Motion>& motion, const Part& part) {
  const Motion& right = motion.at(part.x + part.width, part.y - 1);
  return {motion.at(part.x - 1, part.y), motion.at(part.x, part.y - 1),
          right.reference == Motion::kUnknown ? motion.at(part.x - 1, part.y - 1) : right};
}

std::int16_t median(std::int16_t a, std::int16_t b, std::int16_t c) {
  return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

Vector median_of(const Neighbours& n) {
  const int same = (n.left.reference == 0) + (n.above.reference == 0) + (n.diagonal.reference == 0);
  if (same == 1)
    return n.left.reference == 0 ? n.left.vector : n.above.reference == 0 ? n.above.vector : n.diagonal.vector;
  if (n.above.reference == Motion::kUnknown && n.diagonal.reference == Motion::kUnknown) return n.left.vector;
  return {median(n.left.vector.x, n.above.vector.x, n.diagonal.vector.x),
          median(n.left.vector.y, n.above.vector.y, n.diagonal.vector.y)};
}

}  // namespace

Vector predict_vector(const Grid<Motion>& motion, const Part& part, Split split) {
  const Neighbours n = neighbours_of(motion, part);
  if (split == Split::kRows) {
    const Motion& preferred = part.y % 2 == 0 ? n.above : n.left;
    if (preferred.reference == 0) return preferred.vector;
  } else if (split == Split::kColumns) {
    const Motion& preferred = part.x % 2 == 0 ? n.left : n.diagonal;
    if (preferred.reference == 0) return preferred.vector;
  }
  return median_of(n);
}

Vector predict_skip(const Grid<Motion>& motion, int mb_x, int mb_y) {
  const Part part = part_of(mb_x, mb_y, Split::kNone, 0);
  const Neighbours n = neighbours_of(motion, part);
  for (const Motion& neighbour : {n.left, n.above}) {
    if (neighbour.reference == Motion::kUnknown) return {};
    if (neighbour.reference == 0 && neighbour.vector == Vector{}) return {};
  }
  return median_of(n);
}

}  // namespace moxenc
