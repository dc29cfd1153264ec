#include "moxdec/h264/direct.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

constexpr const char* kMissing = "a reference picture of direct prediction is missing";

constexpr std::int16_t clamp16(int value) {
  using Limits = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(std::clamp<int>(value, Limits::min(), Limits::max()));
}

/// Legal streams stay far below 16 bits.
MotionVector scaled(MotionVector vector, int scale) {
  return {clamp16((scale * vector.x + 128) >> 8), clamp16((scale * vector.y + 128) >> 8)};
}
MotionVector difference(MotionVector a, MotionVector b) { return {clamp16(a.x - b.x), clamp16(a.y - b.y)}; }

constexpr int clamped_difference(int a, int b) {
  return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{a} - b, -128, 127));
}

}  // namespace

std::optional<int> distance_scale(int now, int from, int to) {
  if (from == to) return std::nullopt;
  const int whole = clamped_difference(to, from);
  const int inverse = (16384 + std::abs(whole / 2)) / whole;
  return std::clamp((clamped_difference(now, from) * inverse + 32) >> 6, -1024, 1023);
}

void DirectPredictor::begin_slice(const SliceHeader& slice, const ReferenceLists& lists,
                                  const ReferenceBuffer& references) {
  spatial_ = slice.direct_spatial;
  whole_quadrants_ = slice.sps->direct_8x8_inference;
  field_pic_ = slice.field_pic;
  parity_ = slice.parity();
  mb_width_ = slice.sps->mb_width;
  const int id = lists.slots[1][0];
  colocated_ = id < 0 ? nullptr : &references.at(id);
  if (!colocated_) return;
  colocated_may_stand_still_ = colocated_->is(Marking::kShortTerm, id);
  if (field_pic_) {
    colocated_parity_ = colocated_->mbaff ? parity_ : parity_of(id);
  } else {
    const std::int64_t now = references.current().order.frame();
    const FieldOrder& order = colocated_->order;
    colocated_parity_ = std::abs(order.top - now) < std::abs(order.bottom - now) ? kTop : kBottom;
  }
  if (spatial_) return;
  find_indices(lists, references);
  find_scales(PicturePart::kWhole, slice, lists, references);
  if (!slice.mbaff()) return;
  find_scales(PicturePart::kTopField, slice, lists, references);
  find_scales(PicturePart::kBottomField, slice, lists, references);
}

void DirectPredictor::find_indices(const ReferenceLists& lists, const ReferenceBuffer& references) {
  for (auto& indices : indices_) indices.fill(kNoReference);
  for (int i = lists.count[0] - 1; i >= 0; --i) {
    const int id = lists.slots[0][i];
    if (id < 0) continue;
    auto& indices = indices_[is_field(id) ? 1 + parity_of(id) : 0];
    for (int old = 0; old < kPictureSlots; ++old) {
      if (colocated_->serials[old] == references.at(id).serial) indices[old] = static_cast<std::int8_t>(i);
    }
  }
}

void DirectPredictor::find_scales(PicturePart part, const SliceHeader& slice, const ReferenceLists& lists,
                                  const ReferenceBuffer& references) {
  auto& scales = scales_[static_cast<int>(part)];
  scales.fill(std::nullopt);
  const int now = references.current().order_of(part, slice);
  const int to = colocated_->order_of(lists.picture(1, 0, part));
  for (int i = 0; i < lists.entries(0, part); ++i) {
    const int id = lists.picture(0, i, part);
    if (id < 0 || references.at(id).is(Marking::kLongTerm, id)) continue;
    scales[i] = distance_scale(now, references.at(id).order_of(id), to);
  }
}

const MbMotion* DirectPredictor::facing_row(const Place& place) const {
  const int row = is_field_at(place) ? 2 * pair_of(place) + parity_of_fields(place) : place.y;
  return colocated_->motion.data() + std::ptrdiff_t{row} * mb_width_;
}

/// Motion that was written some pictures ago is far away in memory: the processor gets it while other macroblocks are
/// in work.
void DirectPredictor::fetch_early(const Place& place) const {
  constexpr int kAhead = 2;
  if (place.x + kAhead >= mb_width_) return;
  const MbMotion* motion = facing_row(place) + place.x + kAhead;
  __builtin_prefetch(&motion->references);
  __builtin_prefetch(&motion->vectors[0].back());
}

/// Where frames and fields meet, a macroblock faces two of the other kind or a half of one, and the corners of
/// quadrants move to the nearest block there.
DirectPredictor::Facing DirectPredictor::find_facing(const Place& place) const {
  const MbMotion* same = facing_row(place) + place.x;
  const bool field = is_field_at(place);
  if (same->field == field) return {{same, same}};
  const MbMotion* upper = &colocated_->motion[static_cast<std::size_t>(2 * pair_of(place) * mb_width_ + place.x)];
  const MbMotion* lower = upper + mb_width_;
  if (field) return {{upper, lower}, true, 0, 8};
  const MbMotion* nearer = parity_of_fields(place) == kTop ? upper : lower;
  return {{nearer, nearer}, true, 8 * (place.y & 1), 4};
}

DirectPredictor::Colocated DirectPredictor::colocated(const Facing& facing, int block) const {
  const int lower = block >> 3;
  const MbMotion& motion = *facing.half[static_cast<std::size_t>(lower)];
  if (facing.mixed) block = facing.first + facing.next * lower + (block & 3);
  const int quadrant = quadrant_of(block), list = motion.references[0][quadrant] >= 0 ? 0 : 1;
  return {motion.vectors[list][block], motion.references[list][quadrant], motion.pictures[list][quadrant]};
}

/// The index of the picture that the colocated block refers to, of its frame, or of its field of the own parity.
int DirectPredictor::map_to_list0(const Colocated& there, PicturePart part) const {
  const int slot = slot_of(there.picture);
  if (field_pic_) return indices_[1 + (is_field(there.picture) ? parity_of(there.picture) : parity_)][slot];
  const int frame = indices_[0][slot];
  if (part == PicturePart::kWhole || frame < 0) return frame;
  return 2 * frame + (is_field(there.picture) && parity_of(there.picture) != parity_of(part) ? 1 : 0);
}

template <class Work>
void DirectPredictor::for_each_rect(unsigned quadrants, Work work) const {
  constexpr int kCorners[] = {0, 3, 12, 15};
  for (int i = 0; i < 4; ++i) {
    if (!(quadrants >> i & 1)) continue;
    const BlockRect rect = quadrant_rect(i);
    if (whole_quadrants_) {
      work(rect, kCorners[i]);
      continue;
    }
    for (int j = 0; j < 4; ++j) {
      const BlockRect block = {rect.x + j % 2, rect.y + j / 2, 1, 1};
      work(block, 4 * block.y + block.x);
    }
  }
}

void DirectPredictor::derive(std::array<MotionWindow, 2>& windows, const Place& place, unsigned quadrants,
                             std::array<Split, 4>& splits) const {
  require(colocated_ != nullptr, kMissing);
  fetch_early({place.x + 2, place.y, place.part});
  spatial_ ? derive_spatial(windows, place, quadrants) : derive_temporal(windows, place, quadrants);
  for (int i = 0; i < 4; ++i) {
    if (!(quadrants >> i & 1)) continue;
    const bool whole = whole_quadrants_ ||
                       (windows[0].has_one_vector(quadrant_rect(i)) && windows[1].has_one_vector(quadrant_rect(i)));
    splits[i] = whole ? Split::kNone : Split::kQuarters;
  }
}

/// References and vectors come from the neighbours, but what stands still in the colocated picture may do so here.
void DirectPredictor::derive_spatial(std::array<MotionWindow, 2>& windows, const Place& place,
                                     unsigned quadrants) const {
  std::array<Motion, 2> motion;
  for (int list = 0; list < 2; ++list) {
    const int reference = windows[list].lowest_reference();
    motion[list].reference = static_cast<std::int8_t>(std::max<int>(reference, kNoReference));
    if (reference >= 0) motion[list].vector = windows[list].predict(kWholeMb, reference);
  }
  if (motion[0].reference < 0 && motion[1].reference < 0) motion[0].reference = motion[1].reference = 0;
  const auto set = [&](const BlockRect& rect) {
    for (int list = 0; list < 2; ++list) {
      windows[list].set_reference(rect, motion[list].reference);
      windows[list].set_vector(rect, motion[list].vector);
    }
  };
  if (quadrants == kAllQuadrants) {
    set(kWholeMb);
  } else {
    for (int i = 0; i < 4; ++i) {
      if (quadrants >> i & 1) set(quadrant_rect(i));
    }
  }
  const auto may_stop = [&](int list) {
    return colocated_may_stand_still_ && motion[list].reference == 0 && motion[list].vector != MotionVector{};
  };
  if (!may_stop(0) && !may_stop(1)) return;
  const Facing facing = find_facing(place);
  for_each_rect(quadrants, [&](const BlockRect& rect, int block) {
    const Colocated there = colocated(facing, block);
    if (there.reference != 0 || std::abs(there.vector.x) > 1 || std::abs(there.vector.y) > 1) return;
    for (int list = 0; list < 2; ++list) {
      if (may_stop(list)) windows[list].set_vector(rect, {});
    }
  });
}

/// The colocated vector, shared out by the distances in time.
void DirectPredictor::derive_temporal(std::array<MotionWindow, 2>& windows, const Place& place,
                                      unsigned quadrants) const {
  const bool field = is_field_at(place);
  const Facing facing = find_facing(place);
  for_each_rect(quadrants, [&](const BlockRect& rect, int block) {
    Colocated there = colocated(facing, block);
    const int reference = there.reference < 0 ? 0 : map_to_list0(there, place.part);
    require(reference >= 0, kMissing);
    if (facing.mixed) there.vector.y = clamp16(field ? there.vector.y / 2 : there.vector.y * 2);
    const auto& scale = scales_[static_cast<int>(place.part)][static_cast<std::size_t>(reference)];
    const MotionVector forward = scale ? scaled(there.vector, *scale) : there.vector;
    windows[0].set_reference(rect, reference);
    windows[0].set_vector(rect, forward);
    windows[1].set_reference(rect, 0);
    windows[1].set_vector(rect, scale ? difference(forward, there.vector) : MotionVector{});
  });
}

}  // namespace moxdec::h264
