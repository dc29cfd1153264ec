/// The directional intra predictors of H.264, one set of formulas for 4x4 and 8x8 blocks (8.3.1.2, 8.3.2.2).
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/arithmetic.hpp"
#include "h264/intra_modes.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Samples of a plane relative to a block's first one; the step counts samples.
template <class Pixel>
struct Block {
  Pixel* origin;
  std::ptrdiff_t step;
  Pixel& operator()(int x, int y) const { return origin[y * step + x]; }
};

/// Writes formula(x, y) to every sample of a W x H block.
template <int W, int H, class Pixel, class Formula>
void each_sample(Block<Pixel> block, Formula formula) {
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) block(x, y) = static_cast<Pixel>(formula(x, y));
  }
}

/// Weights 1, 2, 1.
constexpr Mox32s smooth(Mox32s a, Mox32s b, Mox32s c) { return (a + 2 * b + c + 2) >> 2; }

/// The neighbours of an N x N block as one line: up the left column, over the corner and along the row above, which is
/// 2N long. Behind the ends of left() and top() the last sample repeats; that makes the standard's special cases for
/// the last sample instances of the general formula.
template <int N, class Pixel>
struct Edge {
  Pixel line[3 * N + 1];

  /// i = 0 is the corner, 1.. the row above, -1.. the left column.
  Mox32s around(int i) const { return line[N + i]; }
  Mox32s left(int y) const { return around(-1 - std::min(y, N - 1)); }
  Mox32s top(int x) const { return around(1 + std::min(x, 2 * N - 1)); }

  Mox32s smooth_around(int i) const { return smooth(around(i - 1), around(i), around(i + 1)); }
};

/// The neighbours whose bits are set; `missing` in place of the others. The samples above and right of a block that has
/// none repeat the last one above.
template <int N, class Pixel>
Edge<N, Pixel> load_edge(Block<Pixel> block, Mox32u available, Mox32s missing) {
  Edge<N, Pixel> edge;
  Pixel* const corner = edge.line + N;
  std::fill(edge.line, edge.line + 3 * N + 1, static_cast<Pixel>(missing));
  if (available & kTopLeft) *corner = block(-1, -1);
  if (available & kLeft) {
    for (int y = 0; y < N; ++y) corner[-1 - y] = block(-1, y);
  }
  if (available & kTop) std::copy_n(&block(0, -1), N, corner + 1);
  if (available & kTopRight) {
    std::copy_n(&block(N, -1), N, corner + 1 + N);
  } else {
    std::fill_n(corner + 1 + N, N, corner[N]);
  }
  return edge;
}

/// Vertical right, and with Direction -1 its mirror image at the diagonal, horizontal down. `along` counts samples
/// along the edge that the mode leans on, `across` the distance from it.
template <int Direction, int N, class Pixel>
Mox32s steep(const Edge<N, Pixel>& edge, int along, int across) {
  const int z = 2 * along - across, i = along - (across >> 1);
  if (z < -1) return edge.smooth_around(Direction * (z + 1));
  if (z & 1) return edge.smooth_around(Direction * i);
  return avg_up(edge.around(Direction * i), edge.around(Direction * (i + 1)));
}

/// Modes 0, 1 and 3 to 8 from a prepared edge. Mode is none of the others.
template <int N, class Pixel>
void predict_direction(Block<Pixel> block, Mox32u mode, const Edge<N, Pixel>& edge) {
  const auto each = [&](auto formula) { each_sample<N, N>(block, formula); };
  switch (mode) {
    case kVertical: return each([&](int x, int) { return edge.top(x); });
    case kHorizontal: return each([&](int, int y) { return edge.left(y); });
    case kDiagonalDownLeft:
      return each([&](int x, int y) { return smooth(edge.top(x + y), edge.top(x + y + 1), edge.top(x + y + 2)); });
    case kDiagonalDownRight: return each([&](int x, int y) { return edge.smooth_around(x - y); });
    case kVerticalRight: return each([&](int x, int y) { return steep<1>(edge, x, y); });
    case kHorizontalDown: return each([&](int x, int y) { return steep<-1>(edge, y, x); });
    case kVerticalLeft:
      return each([&](int x, int y) {
        const int i = x + (y >> 1);
        return y & 1 ? smooth(edge.top(i), edge.top(i + 1), edge.top(i + 2)) : avg_up(edge.top(i), edge.top(i + 1));
      });
    default:  // horizontal up
      return each([&](int x, int y) {
        const int i = y + (x >> 1);
        return x & 1 ? smooth(edge.left(i), edge.left(i + 1), edge.left(i + 2))
                     : avg_up(edge.left(i), edge.left(i + 1));
      });
  }
}

}  // namespace mox::px
