#include "moxdec/h264/inter_prediction.hpp"

#include <algorithm>

#include "moxdec/error.hpp"
#include "moxdec/h264/direct.hpp"

namespace moxdec::h264 {
namespace {

void expect_ok(MoxStatus status) { require(status == moxStsOk, "inter prediction failed"); }

/// Whether a footprint lies in a plane and its margins.
bool is_inside(int x, int y, MoxiSize footprint, MoxiSize plane, int margin) {
  return x >= -margin && y >= -margin && x + footprint.width <= plane.width + margin &&
         y + footprint.height <= plane.height + margin;
}

MoxiSize coded_size(const Frame& frame) { return {frame.layout().width, frame.layout().height}; }

void expand_plane(Mox8u* plane, MoxiSize size, Mox32s step, int margin) {
  expect_ok(moxiExpandPlane_H264_8u_C1R(plane, size.width, size.height, step, margin, 0));
}
void expand_plane(Mox16u* plane, MoxiSize size, Mox32s step, int margin) {
  for (int y = 0; y < size.height; ++y) {
    Mox16u* row = plane + std::ptrdiff_t{y} * step;
    std::fill_n(row - margin, margin, row[0]);
    std::fill_n(row + size.width, margin, row[size.width - 1]);
  }
  const Mox16u *first = plane - margin, *last = first + std::ptrdiff_t{size.height - 1} * step;
  for (int y = 1; y <= margin; ++y) {
    std::copy_n(first, size.width + 2 * margin, plane - margin - std::ptrdiff_t{y} * step);
    std::copy_n(last, size.width + 2 * margin, plane - margin + std::ptrdiff_t{size.height - 1 + y} * step);
  }
}

template <class Sample>
void expand_planes(const Frame& frame) {
  for (int plane = 0; plane < 3; ++plane) {
    MoxiSize size = coded_size(frame);
    if (plane > 0) size = {size.width / 2, size.height >> chroma_shift_y(frame.format().chroma)};
    expand_plane(frame.samples<Sample>(plane), size, frame.sample_step<Sample>(plane),
                 plane == 0 ? kMargin : kMargin / 2);
  }
}

/// A prediction from one of both lists.
template <class Sample>
struct Scratch {
  alignas(64) std::array<Sample, 16 * 16> luma;
  alignas(64) std::array<std::array<Sample, 8 * 16>, 2> chroma;
};

}  // namespace

void expand(const Frame& frame) {
  frame.format().sample_bytes() == 1 ? expand_planes<Mox8u>(frame) : expand_planes<Mox16u>(frame);
}

void InterPredictor::begin_slice(const SliceHeader& slice, const ReferenceLists& lists,
                                 const ReferenceBuffer& references, int order) {
  weighting_ = slice.explicit_weights ? Weighting::kExplicit : Weighting::kNone;
  explicit_ = &slice.weights;
  bit_depth_ = slice.sps->bit_depth_luma;
  planes_ = slice.sps->chroma_mb_height() == 0 ? 1 : 3;
  chroma_shift_y_ = slice.sps->chroma_mb_height() == 16 ? 0 : 1;
  if (slice.type == SliceType::kB && slice.pps->weighted_bipred_idc == 2) {
    weighting_ = Weighting::kImplicit;
    find_implicit_weights(lists, references, order);
  }
  for (int list = 0; list < 2; ++list) {
    for (int i = 0; i < lists.count[list]; ++i) {
      const int slot = lists.slots[list][i];
      if (slot < 0) continue;
      const Frame& frame = *references.at(slot).frame;
      for (int plane = 0; plane < 3; ++plane) sources_[slot].plane[plane] = frame.samples<std::byte>(plane);
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
  bit_depth_ == 8 ? predict_macroblock<Mox8u>(picture, mb) : predict_macroblock<Mox16u>(picture, mb);
}

template <class Sample>
void InterPredictor::predict_macroblock(const Picture& picture, const Macroblock& mb) const {
  const MbMotion& motion = picture.motion[mb.y * picture.mb_width + mb.x];
  const auto predict_parts = [&](int left, int top, int size, Split split) {
    const int width = size >> (static_cast<int>(split) >> 1), height = size >> (static_cast<int>(split) & 1);
    for (int y = top; y < top + size; y += height) {
      for (int x = left; x < left + size; x += width) {
        predict_block<Sample>({picture, motion, {16 * mb.x + x, 16 * mb.y + y}, {width, height}, y / 4 * 4 + x / 4});
      }
    }
  };
  if (mb.split != Split::kQuarters) return predict_parts(0, 0, 16, mb.split);
  for (int i = 0; i < 4; ++i) predict_parts(i % 2 * 8, i / 2 * 8, 8, mb.quarter_splits[i]);
}

template <class Sample>
void InterPredictor::predict_block(const Block& block) const {
  const Frame& frame = *block.picture.frame;
  const MoxiPoint at = block.position;
  const int chroma_y = rows(1, at.y);
  const Target<Sample> target = {
      {block.picture.samples<Sample>(0, at.x, at.y), block.picture.samples<Sample>(1, at.x / 2, chroma_y),
       block.picture.samples<Sample>(2, at.x / 2, chroma_y)},
      frame.sample_step<Sample>(0),
      frame.sample_step<Sample>(1)};
  if (block.slot(0) < 0 || block.slot(1) < 0) {
    const int list = block.slot(0) < 0 ? 1 : 0;
    fetch(block, list, target);
    if (weighting_ == Weighting::kExplicit) weight(block, list, target);
    return;
  }
  std::array<Scratch<Sample>, 2> scratch;
  std::array<Target<Sample>, 2> sources;
  for (int list = 0; list < 2; ++list) {
    auto& [luma, chroma] = scratch[list];
    sources[list] = {{luma.data(), chroma[0].data(), chroma[1].data()}, 16, 8};
    fetch(block, list, sources[list]);
  }
  for (int plane = 0; plane < planes_; ++plane) expect_ok(combine_plane(block, plane, sources, target));
}

template <class Sample>
void InterPredictor::fetch(const Block& block, int list, const Target<Sample>& target) const {
  fetch_luma(block, list, target);
  if (planes_ > 1) fetch_chroma(block, list, target);
}

template <class Sample>
void InterPredictor::fetch_luma(const Block& block, int list, const Target<Sample>& target) const {
  const Planes& source = sources_[block.slot(list)];
  const Frame& frame = *block.picture.frame;  // all frames have the same layout
  const MotionVector vector = block.motion.vectors[list][block.index];
  const ReferenceBlock<Sample> luma = {{reinterpret_cast<const Sample*>(source.plane[0]), nullptr},
                                       frame.sample_step<Sample>(0),
                                       {target.plane[0], nullptr},
                                       target.luma_step,
                                       coded_size(frame),
                                       block.size,
                                       block.position,
                                       {vector.x, vector.y},
                                       bit_depth_};
  // The filter reaches two samples to the left and above, three to the right and below.
  const MoxiSize footprint = {block.size.width + 5, block.size.height + 5};
  const int x = block.position.x + (vector.x >> 2), y = block.position.y + (vector.y >> 2);
  const bool inside = expanded_ && is_inside(x - 2, y - 2, footprint, luma.frame_size, kMargin);
  expect_ok(inside ? interpolate_luma_inside(luma) : interpolate_luma(luma));
}

/// A vector in quarters of luma samples is one in eighths of chroma samples; not so for the rows of 4:2:2, which are
/// those of luma.
template <class Sample>
void InterPredictor::fetch_chroma(const Block& block, int list, const Target<Sample>& target) const {
  const Planes& source = sources_[block.slot(list)];
  const Frame& frame = *block.picture.frame;
  const MotionVector vector = block.motion.vectors[list][block.index];
  const ReferenceBlock<Sample> chroma = {
      {reinterpret_cast<const Sample*>(source.plane[1]), reinterpret_cast<const Sample*>(source.plane[2])},
      frame.sample_step<Sample>(1),
      {target.plane[1], target.plane[2]},
      target.chroma_step,
      size_in(1, coded_size(frame)),
      size_in(1, block.size),
      {block.position.x / 2, rows(1, block.position.y)},
      {vector.x, chroma_shift_y_ == 0 ? 2 * vector.y : vector.y},
      bit_depth_};
  const int x = chroma.position.x + (chroma.vector.x >> 3), y = chroma.position.y + (chroma.vector.y >> 3);
  const MoxiSize footprint = {chroma.size.width + 1, chroma.size.height + 1};
  if (!expanded_ || !is_inside(x, y, footprint, chroma.frame_size, kMargin / 2)) {
    return expect_ok(interpolate_chroma(chroma));
  }
  for (int i = 0; i < 2; ++i) expect_ok(interpolate_chroma_inside(chroma, i));
}

/// Offsets are written on the scale of 8 bits.
SampleWeight InterPredictor::explicit_weight(const Block& block, int list, int plane) const {
  const Weight& w = explicit_->weights[list][block.reference(list)][plane];
  return {w.weight, w.offset * (1 << (bit_depth_ - 8))};
}

template <class Sample>
void InterPredictor::weight(const Block& block, int list, const Target<Sample>& target) const {
  for (int plane = 0; plane < planes_; ++plane) {
    const int log2 = explicit_->log2_denominator[plane];
    const SampleWeight w = explicit_weight(block, list, plane);
    if (w.weight == 1 << log2 && w.offset == 0) continue;
    expect_ok(weight_one(target.plane[plane], target.step(plane), size_in(plane, block.size), log2, w, bit_depth_));
  }
}

/// Weights that come to a mean take the faster way.
template <class Sample>
MoxStatus InterPredictor::combine_plane(const Block& block, int plane, const std::array<Target<Sample>, 2>& sources,
                                        const Target<Sample>& target) const {
  const PredictionPair<Sample> pair = {sources[0].plane[plane],
                                       sources[1].plane[plane],
                                       sources[0].step(plane),
                                       target.plane[plane],
                                       target.step(plane),
                                       size_in(plane, block.size),
                                       bit_depth_};
  if (weighting_ == Weighting::kImplicit) {
    const int weight = implicit_[block.reference(0)][block.reference(1)];
    if (weight != 32) return weight_implicit(pair, weight);
  }
  if (weighting_ == Weighting::kExplicit) {
    const int log2 = explicit_->log2_denominator[plane];
    const SampleWeight a = explicit_weight(block, 0, plane), b = explicit_weight(block, 1, plane);
    if (a.weight != 1 << log2 || b.weight != 1 << log2 || a.offset != 0 || b.offset != 0) {
      return weight_two(pair, log2, a, b);
    }
  }
  return average(pair);
}

}  // namespace moxdec::h264
