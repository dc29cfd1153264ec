#include "moxdec/mpeg4/intra.hpp"

#include <algorithm>
#include <cstdlib>

namespace moxdec::mpeg4 {
namespace {

/// A block next to another one: the macroblock it lies in, in columns and rows from that one's, and its number there.
struct Neighbour {
  int dx, dy, block;
};
/// By block: at the left, above the left one, above.
constexpr Neighbour kNeighbours[6][3] = {{{-1, 0, 1}, {-1, -1, 3}, {0, -1, 2}}, {{0, 0, 0}, {0, -1, 2}, {0, -1, 3}},
                                         {{-1, 0, 3}, {-1, 0, 1}, {0, 0, 0}},   {{0, 0, 2}, {0, 0, 0}, {0, 0, 1}},
                                         {{-1, 0, 4}, {-1, -1, 4}, {0, -1, 4}}, {{-1, 0, 5}, {-1, -1, 5}, {0, -1, 5}}};

constexpr int kNoNeighbourDc = 1024;

/// To the nearest, halves away from zero.
int divide_rounded(int value, int divisor) {
  const int magnitude = (std::abs(value) + divisor / 2) / divisor;
  return value < 0 ? -magnitude : magnitude;
}

Mox16s saturated(int level) { return static_cast<Mox16s>(std::clamp(level, -2048, 2047)); }

}  // namespace

int dc_scale(int quantiser, int block) {
  if (quantiser < 5) return 8;
  if (block >= 4) return quantiser < 25 ? (quantiser + 13) / 2 : quantiser - 6;
  if (quantiser < 9) return 2 * quantiser;
  return quantiser < 25 ? quantiser + 8 : 2 * quantiser - 16;
}

IntraSource IntraPredictor::source(const Picture& picture, const Place& place, int block) const {
  std::array<IntraSource, 3> sides;
  for (int i = 0; i < 3; ++i) {
    const Neighbour& n = kNeighbours[block][i];
    const auto address = static_cast<std::size_t>(place.address + n.dy * picture.mb_width() + n.dx);
    const bool known = place.has_neighbour(n.dx, n.dy, picture.mb_width()) && (*picture.states)[address].intra;
    sides[i] = {i == 2, kNoNeighbourDc, nullptr, 0};
    if (!known) continue;
    const IntraBlock& beside = blocks_[address][n.block];
    sides[i] = {i == 2, beside.dc, &beside, (*picture.states)[address].quantiser};
  }
  return std::abs(sides[0].dc - sides[1].dc) < std::abs(sides[1].dc - sides[2].dc) ? sides[2] : sides[0];
}

void IntraPredictor::add(const IntraSource& source, const Macroblock& mb, int block, Mox16s* levels) {
  levels[0] = saturated(levels[0] + divide_rounded(source.dc, dc_scale(mb.quantiser, block)));
  if (!mb.ac_prediction || !source.block) return;
  const auto& beside = source.from_above ? source.block->row : source.block->column;
  const int step = source.from_above ? 1 : 8;
  for (int i = 1; i < 8; ++i) {
    levels[i * step] = saturated(levels[i * step] + divide_rounded(beside[i] * source.quantiser, mb.quantiser));
  }
}

void IntraPredictor::keep_levels(const Place& place, int block, const Mox16s* levels) {
  IntraBlock& kept = at(place.address, block);
  for (int i = 0; i < 8; ++i) {
    kept.row[i] = levels[i];
    kept.column[i] = levels[8 * i];
  }
}

}  // namespace moxdec::mpeg4
