#include "moxvc/mpeg4_motion.h"

#include "support/bench.hpp"

namespace mox::bench {
namespace {

// References lie one byte off any alignment, as motion vectors leave them.
const Mox8u* const kReference = picture<Mox8u>(0, 255) + 1;
Mox8u* const g_block = buffer<Mox8u>(16 * kPictureStep, 0, 0);

/// Vectors of a block and of those around it: all alike, or each another one.
constexpr MoxiMotionVector kAlike[8] = {{3, 1}, {3, 1}, {3, 1}, {3, 1}, {3, 1}, {3, 1}, {3, 1}, {3, 1}};
constexpr MoxiMotionVector kDifferent[8] = {{5, 3}, {-3, 1}, {4, -3}, {0, 5}, {-1, -1}, {2, 3}, {7, 6}, {1, -4}};

template <class Function>
void copies(std::vector<Row>& rows, Symbol<Function> symbol) {
  for (const Mox32s rounding : {0, 1}) {
    for (Mox32s acc = 0; acc < 16; ++acc) {
      const std::string name = std::to_string(acc & 3) + " " + std::to_string(acc >> 2) + (rounding ? " down" : "");
      rows.push_back(call(symbol, name, kReference, kPictureStep, g_block, kPictureStep, acc, rounding));
    }
  }
}
template <class Function>
void overlaps(std::vector<Row>& rows, Symbol<Function> symbol) {
  const auto row = [&](const char* name, const MoxiMotionVector* around) {
    return call(symbol, name, kReference, kPictureStep, g_block, kPictureStep, MoxiMotionVector{3, 1}, around, 0);
  };
  rows.push_back(row("vectors alike", kAlike));
  rows.push_back(row("vectors different", kDifferent));
}

const std::vector<Row> kCopyRows = [] {
  std::vector<Row> rows;
  copies(rows, MOX_FN(moxiCopy16x16QP_MPEG4_8u_C1R));
  copies(rows, MOX_FN(moxiCopy16x8QP_MPEG4_8u_C1R));
  copies(rows, MOX_FN(moxiCopy8x8QP_MPEG4_8u_C1R));
  return rows;
}();
const Family kCopies("mpeg4_motion quarter samples", kCopyRows);

const std::vector<Row> kOverlapRows = [] {
  std::vector<Row> rows;
  overlaps(rows, MOX_FN(moxiOBMC16x16HP_MPEG4_8u_C1R));
  overlaps(rows, MOX_FN(moxiOBMC16x16QP_MPEG4_8u_C1R));
  overlaps(rows, MOX_FN(moxiOBMC8x8HP_MPEG4_8u_C1R));
  overlaps(rows, MOX_FN(moxiOBMC8x8QP_MPEG4_8u_C1R));
  return rows;
}();
const Family kOverlaps("mpeg4_motion overlapped", kOverlapRows);

}  // namespace
}  // namespace mox::bench
