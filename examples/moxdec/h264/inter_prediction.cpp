#include "moxdec/h264/inter_prediction.hpp"

#include "moxdec/error.hpp"
#include "moxdec/h264/direct.hpp"

namespace moxdec::h264 {
namespace {

void expect_ok(MoxStatus status) { require(status == moxStsOk, "inter prediction failed"); }

constexpr MoxiSize half(MoxiSize size) { return {size.width / 2, size.height / 2}; }

/// Whether a footprint lies in a plane and its margins.
bool is_inside(int x, int y, MoxiSize footprint, MoxiSize plane, int margin) {
  return x >= -margin && y >= -margin && x + footprint.width <= plane.width + margin &&
         y + footprint.height <= plane.height + margin;
}

MoxiSize coded_size(const Frame& frame) { return {frame.layout().width, frame.layout().height}; }

}  // namespace

void expand(const Frame& frame) {
  for (int plane = 0; plane < 3; ++plane) {
    const MoxiSize size = plane == 0 ? coded_size(frame) : half(coded_size(frame));
    expect_ok(moxiExpandPlane_H264_8u_C1R(frame.samples<Mox8u>(plane), size.width, size.height, frame.step(plane),
                                          plane == 0 ? kMargin : kMargin / 2, 0));
  }
}

void InterPredictor::begin_slice(const SliceHeader& slice, const ReferenceLists& lists,
                                 const ReferenceBuffer& references, int order) {
  weighting_ = slice.explicit_weights ? Weighting::kExplicit : Weighting::kNone;
  explicit_ = &slice.weights;
  if (slice.type == SliceType::kB && slice.pps->weighted_bipred_idc == 2) {
    weighting_ = Weighting::kImplicit;
    find_implicit_weights(lists, references, order);
  }
  for (int list = 0; list < 2; ++list) {
    for (int i = 0; i < lists.count[list]; ++i) {
      const int slot = lists.slots[list][i];
      if (slot < 0) continue;
      const Frame& frame = *references.at(slot).frame;
      for (int plane = 0; plane < 3; ++plane) sources_[slot].plane[plane] = frame.samples<Mox8u>(plane);
    }
  }
}

/// By the distances in time; equal where those tell nothing.
void InterPredictor::find_implicit_weights(const ReferenceLists& lists, const ReferenceBuffer& references, int order) {
  constexpr int kEqual = 32;
  for (int i = 0; i < lists.count[0]; ++i) {
    for (int j = 0; j < lists.count[1]; ++j) {
      implicit_[i][j] = kEqual;
      if (lists.slots[0][i] < 0 || lists.slots[1][j] < 0) continue;
      const StoredPicture &first = references.at(lists.slots[0][i]), &second = references.at(lists.slots[1][j]);
      if (first.marking == Marking::kLongTerm || second.marking == Marking::kLongTerm) continue;
      const auto scale = distance_scale(order, first.order.frame(), second.order.frame());
      if (!scale || *scale >> 2 < -64 || *scale >> 2 > 128) continue;
      implicit_[i][j] = static_cast<std::int16_t>(*scale >> 2);
    }
  }
}

void InterPredictor::predict(const Picture& picture, const Macroblock& mb) {
  const MbMotion& motion = picture.motion[mb.y * picture.mb_width + mb.x];
  const auto predict_parts = [&](int left, int top, int size, Split split) {
    const int width = size >> (static_cast<int>(split) >> 1), height = size >> (static_cast<int>(split) & 1);
    for (int y = top; y < top + size; y += height) {
      for (int x = left; x < left + size; x += width) {
        predict_block({picture, motion, {16 * mb.x + x, 16 * mb.y + y}, {width, height}, y / 4 * 4 + x / 4});
      }
    }
  };
  if (mb.split != Split::kQuarters) return predict_parts(0, 0, 16, mb.split);
  for (int i = 0; i < 4; ++i) predict_parts(i % 2 * 8, i / 2 * 8, 8, mb.quarter_splits[i]);
}

void InterPredictor::predict_block(const Block& block) const {
  const Frame& frame = *block.picture.frame;
  const MoxiPoint at = block.position;
  const Target target = {
      {block.picture.samples<Mox8u>(0, at.x, at.y), block.picture.samples<Mox8u>(1, at.x / 2, at.y / 2),
       block.picture.samples<Mox8u>(2, at.x / 2, at.y / 2)},
      frame.step(0),
      frame.step(1)};
  if (block.slot(0) < 0 || block.slot(1) < 0) {
    const int list = block.slot(0) < 0 ? 1 : 0;
    fetch(block, list, target);
    if (weighting_ == Weighting::kExplicit) weight(block, list, target);
    return;
  }
  std::array<Target, 2> sources;
  for (int list = 0; list < 2; ++list) {
    Scratch& scratch = scratch_[list];
    sources[list] = {{scratch.luma.data(), scratch.chroma[0].data(), scratch.chroma[1].data()}, 16, 8};
    fetch(block, list, sources[list]);
  }
  combine(block, sources, target);
}

void InterPredictor::fetch(const Block& block, int list, const Target& target) const {
  fetch_luma(block, list, target);
  fetch_chroma(block, list, target);
}

void InterPredictor::fetch_luma(const Block& block, int list, const Target& target) const {
  const Planes& source = sources_[block.slot(list)];
  const Frame& frame = *block.picture.frame;  // all frames have the same layout
  const MotionVector vector = block.motion.vectors[list][block.index];
  const int x = block.position.x + (vector.x >> 2), y = block.position.y + (vector.y >> 2);
  // The filter reaches two samples to the left and above, three to the right and below.
  const MoxiSize footprint = {block.size.width + 5, block.size.height + 5};
  if (expanded_ && is_inside(x - 2, y - 2, footprint, coded_size(frame), kMargin)) {
    return expect_ok(moxiInterpolateLuma_H264_8u_C1R(source.plane[0] + std::ptrdiff_t{y} * frame.step(0) + x,
                                                     frame.step(0), target.plane[0], target.luma_step, vector.x & 3,
                                                     vector.y & 3, block.size));
  }
  const MoxiInterpBlock_8u luma = {{source.plane[0], nullptr},
                                   frame.step(0),
                                   {target.plane[0], nullptr},
                                   target.luma_step,
                                   coded_size(frame),
                                   block.size,
                                   block.position,
                                   {vector.x, vector.y}};
  expect_ok(moxiInterpolateLumaBlock_H264_8u_P1R(&luma));
}

/// A vector in quarters of luma samples is one in eighths of 4:2:0 chroma samples.
void InterPredictor::fetch_chroma(const Block& block, int list, const Target& target) const {
  const Planes& source = sources_[block.slot(list)];
  const Frame& frame = *block.picture.frame;
  const MotionVector vector = block.motion.vectors[list][block.index];
  const MoxiSize size = half(block.size), plane_size = half(coded_size(frame));
  const MoxiPoint position = {block.position.x / 2, block.position.y / 2};
  const int x = position.x + (vector.x >> 3), y = position.y + (vector.y >> 3);
  if (expanded_ && is_inside(x, y, {size.width + 1, size.height + 1}, plane_size, kMargin / 2)) {
    for (int plane = 1; plane < 3; ++plane) {
      expect_ok(moxiInterpolateChroma_H264_8u_C1R(source.plane[plane] + std::ptrdiff_t{y} * frame.step(1) + x,
                                                  frame.step(1), target.plane[plane], target.chroma_step, vector.x & 7,
                                                  vector.y & 7, size));
    }
    return;
  }
  const MoxiInterpBlock_8u chroma = {{source.plane[1], source.plane[2]},
                                     frame.step(1),
                                     {target.plane[1], target.plane[2]},
                                     target.chroma_step,
                                     plane_size,
                                     size,
                                     position,
                                     {vector.x, vector.y}};
  expect_ok(moxiInterpolateChromaBlock_H264_8u_P2R(&chroma));
}

void InterPredictor::weight(const Block& block, int list, const Target& target) const {
  const auto& weights = explicit_->weights[list][block.reference(list)];
  for (int plane = 0; plane < 3; ++plane) {
    const int log2 = explicit_->log2_denominator[plane];
    const Weight& w = weights[plane];
    if (w.weight == 1 << log2 && w.offset == 0) continue;
    expect_ok(moxiUniDirWeightBlock_H264_8u_C1R(target.plane[plane], target.step(plane), static_cast<Mox32u>(log2),
                                                w.weight, w.offset, plane == 0 ? block.size : half(block.size)));
  }
}

void InterPredictor::combine(const Block& block, const std::array<Target, 2>& sources, const Target& target) const {
  for (int plane = 0; plane < 3; ++plane) expect_ok(combine_plane(block, plane, sources, target));
}

/// Weights that come to a mean take the faster way.
MoxStatus InterPredictor::combine_plane(const Block& block, int plane, const std::array<Target, 2>& sources,
                                        const Target& target) const {
  const MoxiSize size = plane == 0 ? block.size : half(block.size);
  const Mox8u *first = sources[0].plane[plane], *second = sources[1].plane[plane];
  Mox8u* out = target.plane[plane];
  const Mox32s step = sources[0].step(plane), out_step = target.step(plane);
  if (weighting_ == Weighting::kImplicit) {
    const int weight = implicit_[block.reference(0)][block.reference(1)];
    if (weight != 32) {
      return moxiBiDirWeightBlockImplicit_H264_8u_P3P1R(first, second, out, step, step, out_step, 64 - weight, weight,
                                                        size);
    }
  }
  if (weighting_ == Weighting::kExplicit) {
    const int log2 = explicit_->log2_denominator[plane];
    const Weight &a = explicit_->weights[0][block.reference(0)][plane],
                 &b = explicit_->weights[1][block.reference(1)][plane];
    if (a.weight != 1 << log2 || b.weight != 1 << log2 || a.offset != 0 || b.offset != 0) {
      return moxiBiDirWeightBlock_H264_8u_P3P1R(first, second, out, step, step, out_step, static_cast<Mox32u>(log2),
                                                a.weight, a.offset, b.weight, b.offset, size);
    }
  }
  return moxiInterpolateBlock_H264_8u_P3P1R(first, second, out, size.width, size.height, step, step, out_step);
}

}  // namespace moxdec::h264
