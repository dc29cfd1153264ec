#include "moxdec/h263/advanced_intra.hpp"

#include <algorithm>

namespace moxdec::h263 {
namespace {

/// Of a grey block; stands for a block that is missing.
constexpr int kGreyDc = 1024;

constexpr bool is_luma(int i) { return i < 4; }

Mox16s limited(int coefficient) { return static_cast<Mox16s>(std::clamp(coefficient, -2048, 2047)); }

}  // namespace

void IntraPredictor::begin(const Picture& picture) {
  picture_ = &picture;
  edges_.resize(6 * picture.macroblocks.size());
}

const IntraPredictor::Edges* IntraPredictor::from(int mb_x, int mb_y, int i, int segment) const {
  const Macroblock* const other = picture_->in_segment(mb_x, mb_y, segment);
  return other && other->intra ? &edges_[index(mb_x, mb_y, i)] : nullptr;
}

const IntraPredictor::Edges* IntraPredictor::above(int mb_x, int mb_y, int i) const {
  if (is_luma(i) && i >= 2) return &edges_[index(mb_x, mb_y, i - 2)];
  return from(mb_x, mb_y - 1, is_luma(i) ? i + 2 : i, picture_->at(mb_x, mb_y).segment);
}

const IntraPredictor::Edges* IntraPredictor::left(int mb_x, int mb_y, int i) const {
  if (is_luma(i) && i & 1) return &edges_[index(mb_x, mb_y, i - 1)];
  return from(mb_x - 1, mb_y, is_luma(i) ? i + 1 : i, picture_->at(mb_x, mb_y).segment);
}

void IntraPredictor::complete(int mb_x, int mb_y, int i, IntraMode mode, Block& block) {
  const Edges* const a = mode == IntraMode::kHorizontal ? nullptr : above(mb_x, mb_y, i);
  const Edges* const b = mode == IntraMode::kVertical ? nullptr : left(mb_x, mb_y, i);
  int dc = block[0] + kGreyDc;
  if (a && b) {
    dc = block[0] + (a->row[0] + b->column[0]) / 2;
  } else if (a || b) {
    dc = block[0] + (a ? a->row[0] : b->column[0]);
  }
  for (int k = 1; k < 8; ++k) {
    if (a && mode == IntraMode::kVertical) block[k] = limited(block[k] + a->row[k]);
    if (b && mode == IntraMode::kHorizontal) block[8 * k] = limited(block[8 * k] + b->column[k]);
  }
  for (Mox16s& value : block) value = limited(value);
  block[0] = static_cast<Mox16s>(std::clamp(dc | 1, 1, 2047));  // odd, so that no mean of two needs rounding
  Edges& own = edges_[index(mb_x, mb_y, i)];
  for (int k = 0; k < 8; ++k) own.row[k] = block[k], own.column[k] = block[8 * k];
}

}  // namespace moxdec::h263
