#include "moxdec/h264/inter_prediction.hpp"

#include <algorithm>

#include "moxdec/error.hpp"
#include "moxdec/h264/direct.hpp"

namespace moxdec::h264 {
namespace {

void expect_ok(MoxStatus status) { require(status == moxStsOk, "inter prediction failed"); }

/// Whether a footprint lies in a plane and its margins, as most do.
bool is_inside(int x, int y, MoxiSize footprint, MoxiSize plane, int margin) {
  return x >= -margin && y >= -margin && x + footprint.width <= plane.width + margin &&
         y + footprint.height <= plane.height + margin;
}

/// Too small for the library to repeat its samples at two opposite sides of a block.
bool is_smaller(MoxiSize plane, MoxiSize footprint) {
  return plane.width < footprint.width || plane.height < footprint.height;
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

/// Of a macroblock and of a quarter, in samples, by split.
constexpr MoxiSize kPartSizes[] = {{16, 16}, {16, 8}, {8, 16}}, kQuarterPartSizes[] = {{8, 8}, {8, 4}, {4, 8}, {4, 4}};

/// Samples of other pictures, and those of the last one that had this one's memory, are far away from the processor.
/// Macroblocks that follow want what lies on the right, in references if they move in the same way: so each asks for
/// its share of the rows of the next 64 bytes, which serve all macroblocks that they cover. `first` is the place of the
/// macroblock's own block.
template <class Sample>
void fetch_early(const Sample* plane, Mox32s step, MoxiSize size, MoxiPoint first, int mb_x, int mb_size) {
  constexpr int kLine = 64 / sizeof(Sample);
  const int sharing = kLine / mb_size, rows = mb_size / sharing, share = mb_x % sharing;
  const int x = first.x + kLine, y = first.y + share * rows;
  if (!is_inside(x, y, {1, rows}, size, 0)) return;
  for (int i = 0; i < rows; ++i) __builtin_prefetch(plane + std::ptrdiff_t{y + i} * step + x);
}

/// The prediction from list 1, before it becomes one with that of list 0.
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
                                 const ReferenceBuffer& references) {
  weighting_ = slice.explicit_weights ? Weighting::kExplicit : Weighting::kNone;
  explicit_ = &slice.weights;
  bit_depth_ = slice.sps->bit_depth_luma;
  planes_ = slice.sps->chroma_mb_height() == 0 ? 1 : 3;
  chroma_shift_y_ = slice.sps->chroma_mb_height() == 16 ? 0 : 1;
  if (slice.type == SliceType::kB && slice.pps->weighted_bipred_idc == 2) {
    weighting_ = Weighting::kImplicit;
    find_implicit_weights(PicturePart::kWhole, slice, lists, references);
    if (slice.mbaff()) {
      find_implicit_weights(PicturePart::kTopField, slice, lists, references);
      find_implicit_weights(PicturePart::kBottomField, slice, lists, references);
    }
  }
  for (int list = 0; list < 2; ++list) {
    for (int i = 0; i < lists.count[list]; ++i) {
      const int id = lists.slots[list][i];
      if (id < 0) continue;
      const Frame& frame = *references.at(id).frame;
      for (int plane = 0; plane < 3; ++plane) sources_[slot_of(id)].plane[plane] = frame.samples<std::byte>(plane);
    }
  }
}

/// By the distances in time; equal where those tell nothing.
void InterPredictor::find_implicit_weights(PicturePart part, const SliceHeader& slice, const ReferenceLists& lists,
                                           const ReferenceBuffer& references) {
  constexpr int kEqual = 32;
  const int now = references.current().order_of(part, slice);
  for (int i = 0; i < lists.entries(0, part); ++i) {
    for (int j = 0; j < lists.entries(1, part); ++j) {
      std::int16_t& weight = implicit_[static_cast<int>(part)][i][j];
      weight = kEqual;
      const int id0 = lists.picture(0, i, part), id1 = lists.picture(1, j, part);
      if (id0 < 0 || id1 < 0) continue;
      const StoredPicture &first = references.at(id0), &second = references.at(id1);
      if (first.is(Marking::kLongTerm, id0) || second.is(Marking::kLongTerm, id1)) continue;
      const auto scale = distance_scale(now, first.order_of(id0), second.order_of(id1));
      if (!scale || *scale >> 2 < -64 || *scale >> 2 > 128) continue;
      weight = static_cast<std::int16_t>(*scale >> 2);
    }
  }
}

void InterPredictor::predict(const Picture& picture, const Macroblock& mb) {
  bit_depth_ == 8 ? predict_macroblock<Mox8u>(picture, mb) : predict_macroblock<Mox16u>(picture, mb);
}

template <class Sample>
InterPredictor::Unit InterPredictor::unit_of(const Picture& picture, const Macroblock& mb) {
  const PicturePart part = picture.part_of(mb.y, mb.field);
  const int halved = part == PicturePart::kWhole ? 0 : 1;  // a field of the picture, which is none
  return {picture.motion_at(mb.x, mb.y),
          part,
          picture.field_pic ? picture.parity : parity_of(part),
          {16 * picture.mb_width, 16 * picture.mb_height >> halved},
          {16 * mb.x, 16 * (mb.y >> halved)},
          picture.step<Sample>(0, mb.field),
          picture.step<Sample>(1, mb.field)};
}

template <class Sample>
void InterPredictor::predict_macroblock(const Picture& picture, const Macroblock& mb) const {
  const Unit unit = unit_of<Sample>(picture, mb);
  const std::array<Sample*, 3> planes = {picture.samples<Sample>(0, mb.x, mb.y, mb.field),
                                         picture.samples<Sample>(1, mb.x, mb.y, mb.field),
                                         picture.samples<Sample>(2, mb.x, mb.y, mb.field)};
  fetch_early(planes[0] - 16 * mb.x, unit.luma_step, {unit.size.width, 16}, {16 * mb.x, 0}, mb.x, 16);
  for (const Sample* plane : {planes[1], planes[2]}) {
    fetch_early(plane - 8 * mb.x, unit.chroma_step, {unit.size.width / 2, 8}, {8 * mb.x, 0}, mb.x, 8);
  }
  const auto predict_parts = [&](int left, int top, int whole, const MoxiSize& size) {
    for (int y = top; y < top + whole; y += size.height) {
      for (int x = left; x < left + whole; x += size.width) {
        const std::ptrdiff_t in_chroma = std::ptrdiff_t{rows(1, y)} * unit.chroma_step + x / 2;
        const Target<Sample> target = {
            {planes[0] + std::ptrdiff_t{y} * unit.luma_step + x, planes[1] + in_chroma, planes[2] + in_chroma},
            unit.luma_step,
            unit.chroma_step};
        predict_block<Sample>({unit, {unit.position.x + x, unit.position.y + y}, size, y / 4 * 4 + x / 4}, target);
      }
    }
  };
  if (mb.split != Split::kQuarters) return predict_parts(0, 0, 16, kPartSizes[static_cast<int>(mb.split)]);
  for (int i = 0; i < 4; ++i) {
    predict_parts(i % 2 * 8, i / 2 * 8, 8, kQuarterPartSizes[static_cast<int>(mb.quarter_splits[i])]);
  }
}

template <class Sample>
void InterPredictor::predict_block(const Block& block, const Target<Sample>& target) const {
  if (block.picture_id(0) < 0 || block.picture_id(1) < 0) {
    const int list = block.picture_id(0) < 0 ? 1 : 0;
    fetch(block, list, target);
    if (weighting_ == Weighting::kExplicit) weight(block, list, target);
    return;
  }
  Scratch<Sample> scratch;
  const Target<Sample> second = {{scratch.luma.data(), scratch.chroma[0].data(), scratch.chroma[1].data()}, 16, 8};
  fetch(block, 0, target);
  fetch(block, 1, second);
  for (int plane = 0; plane < planes_; ++plane) expect_ok(combine_plane(block, plane, target, second));
}

/// A field is every other line of its frame.
template <class Sample>
void InterPredictor::fetch(const Block& block, int list, const Target<Sample>& target) const {
  const int id = block.picture_id(list);
  const bool bottom = is_field(id) && parity_of(id) == kBottom;
  const auto& planes = sources_[static_cast<std::size_t>(slot_of(id))].plane;
  const auto source = [&](int plane, Mox32s step) {
    return reinterpret_cast<const Sample*>(planes[static_cast<std::size_t>(plane)]) + (bottom ? step / 2 : 0);
  };
  const Unit& unit = block.unit;
  const MotionVector vector = unit.motion.vectors[list][block.index];
  const Sample* luma = source(0, unit.luma_step);
  const std::array<const Sample*, 2> chroma = {source(1, unit.chroma_step), source(2, unit.chroma_step)};
  if (block.index == 0) {
    // The rows that the macroblocks above have not asked for: behind the reach of their filters.
    const MoxiPoint first = {block.position.x + (vector.x >> 2), block.position.y + (vector.y >> 2)};
    const int mb_x = block.position.x / 16;
    fetch_early(luma, unit.luma_step, unit.size, {first.x, first.y + 3}, mb_x, 16);
    for (const Sample* plane : chroma) {
      fetch_early(plane, unit.chroma_step, size_in(1, unit.size), {first.x >> 1, (first.y >> 1) + 1}, mb_x, 8);
    }
  }
  fetch_luma<Sample>(block, {vector.x, vector.y}, luma, target);
  if (planes_ == 1) return;
  // A vector in quarters of luma samples is one in eighths of chroma samples; not so for the rows of 4:2:2, which are
  // those of luma. In 4:2:0, chroma lines of the two fields are not as far apart as luma lines: a quarter of a line.
  MoxiPoint chroma_vector = {vector.x, vector.y};
  if (chroma_shift_y_ == 0) {
    chroma_vector.y *= 2;
  } else if (is_field(id)) {
    chroma_vector.y += 2 * (unit.parity - parity_of(id));
  }
  fetch_chroma<Sample>(block, chroma_vector, chroma, target);
}

template <class Sample>
void InterPredictor::fetch_luma(const Block& block, MoxiPoint vector, const Sample* source,
                                const Target<Sample>& target) const {
  const Unit& unit = block.unit;
  const int x = block.position.x + (vector.x >> 2), y = block.position.y + (vector.y >> 2);
  // The filter reaches two samples to the left and above, three to the right and below.
  const MoxiSize footprint = {block.size.width + 5, block.size.height + 5};
  if (is_inside(x - 2, y - 2, footprint, unit.size, margin(unit))) {
    const Sample* first = source + std::ptrdiff_t{y} * unit.luma_step + x;
    return expect_ok(interpolate_luma(InsideBlock<Sample>{first,
                                                          unit.luma_step,
                                                          target.plane[0],
                                                          target.luma_step,
                                                          {vector.x & 3, vector.y & 3},
                                                          block.size,
                                                          bit_depth_}));
  }
  const ReferenceBlock<Sample> luma = {{source, nullptr}, unit.luma_step, {target.plane[0], nullptr},
                                       target.luma_step,  unit.size,      block.size,
                                       block.position,    vector,         bit_depth_};
  if (!is_smaller(unit.size, footprint)) return expect_ok(interpolate_luma(luma));
  expect_ok(interpolate_patch(luma, 0, 2, 5, 2, [](const auto& inside) { return interpolate_luma(inside); }));
}

template <class Sample>
void InterPredictor::fetch_chroma(const Block& block, MoxiPoint vector, const std::array<const Sample*, 2>& sources,
                                  const Target<Sample>& target) const {
  const Unit& unit = block.unit;
  const MoxiPoint position = {block.position.x >> 1, rows(1, block.position.y)};
  const MoxiSize size = size_in(1, block.size), plane_size = size_in(1, unit.size);
  const int x = position.x + (vector.x >> 3), y = position.y + (vector.y >> 3);
  const MoxiSize footprint = {size.width + 1, size.height + 1};
  if (is_inside(x, y, footprint, plane_size, margin(unit) / 2)) {
    const std::ptrdiff_t offset = std::ptrdiff_t{y} * unit.chroma_step + x;
    for (std::size_t i = 0; i < 2; ++i) {
      expect_ok(interpolate_chroma(InsideBlock<Sample>{sources[i] + offset,
                                                       unit.chroma_step,
                                                       target.plane[1 + i],
                                                       target.chroma_step,
                                                       {vector.x & 7, vector.y & 7},
                                                       size,
                                                       bit_depth_}));
    }
    return;
  }
  const ReferenceBlock<Sample> chroma = {
      sources, unit.chroma_step, {target.plane[1], target.plane[2]}, target.chroma_step, plane_size, size, position,
      vector,  bit_depth_};
  if (!is_smaller(plane_size, footprint)) return expect_ok(interpolate_chroma(chroma));
  for (int i = 0; i < 2; ++i) {
    expect_ok(interpolate_patch(chroma, i, 0, 1, 3, [](const auto& inside) { return interpolate_chroma(inside); }));
  }
}

/// Offsets are written on the scale of 8 bits.
SampleWeight InterPredictor::explicit_weight(const Block& block, int list, int plane) const {
  // Both fields of a frame have its weight.
  const int index = block.reference(list) >> (block.unit.part == PicturePart::kWhole ? 0 : 1);
  const Weight& w = explicit_->weights[list][index][plane];
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
MoxStatus InterPredictor::combine_plane(const Block& block, int plane, const Target<Sample>& first,
                                        const Target<Sample>& second) const {
  const PredictionPair<Sample> pair = {first.plane[plane], first.step(plane),          second.plane[plane],
                                       second.step(plane), size_in(plane, block.size), bit_depth_};
  if (weighting_ == Weighting::kImplicit) {
    const int weight = implicit_[static_cast<int>(block.unit.part)][block.reference(0)][block.reference(1)];
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
