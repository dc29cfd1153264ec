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
                                  const ReferenceBuffer& references, int order) {
  spatial_ = slice.direct_spatial;
  whole_quadrants_ = slice.sps->direct_8x8_inference;
  const int slot = lists.slots[1][0];
  colocated_ = slot < 0 ? nullptr : &references.at(slot);
  colocated_may_stand_still_ = colocated_ && colocated_->marking == Marking::kShortTerm;
  if (!spatial_) find_scales(lists, references, order);
}

void DirectPredictor::find_scales(const ReferenceLists& lists, const ReferenceBuffer& references, int order) {
  indices_.fill(kNoReference);
  scales_.fill(std::nullopt);
  if (!colocated_) return;
  for (int i = lists.count[0] - 1; i >= 0; --i) {
    const int slot = lists.slots[0][i];
    if (slot < 0) continue;
    const StoredPicture& picture = references.at(slot);
    for (int old = 0; old < kPictureSlots; ++old) {
      if (colocated_->serials[old] == picture.serial) indices_[old] = static_cast<std::int8_t>(i);
    }
    if (picture.marking == Marking::kLongTerm) continue;
    scales_[i] = distance_scale(order, picture.order.frame(), colocated_->order.frame());
  }
}

DirectPredictor::Colocated DirectPredictor::colocated(int address, int block) const {
  const MbMotion& motion = colocated_->motion[static_cast<std::size_t>(address)];
  const int quadrant = quadrant_of(block), list = motion.references[0][quadrant] >= 0 ? 0 : 1;
  return {motion.vectors[list][block], motion.references[list][quadrant], motion.picture_slots[list][quadrant]};
}

template <class Work>
void DirectPredictor::for_each_rect(int quadrant, Work work) const {
  const BlockRect rect = quadrant_rect(quadrant);
  if (whole_quadrants_) {
    constexpr int kCorners[] = {0, 3, 12, 15};
    return work(rect, kCorners[quadrant]);
  }
  for (int i = 0; i < 4; ++i) {
    const BlockRect block = {rect.x + i % 2, rect.y + i / 2, 1, 1};
    work(block, 4 * block.y + block.x);
  }
}

void DirectPredictor::derive(std::array<MotionWindow, 2>& windows, int address, unsigned quadrants,
                             std::array<Split, 4>& splits) const {
  require(colocated_ != nullptr, kMissing);
  if (spatial_) derive_spatial(windows, address, quadrants);
  for (int i = 0; i < 4; ++i) {
    if (!(quadrants >> i & 1)) continue;
    if (!spatial_) derive_temporal(windows, address, i);
    const bool whole = whole_quadrants_ ||
                       (windows[0].has_one_vector(quadrant_rect(i)) && windows[1].has_one_vector(quadrant_rect(i)));
    splits[i] = whole ? Split::kNone : Split::kQuarters;
  }
}

/// References and vectors come from the neighbours, but what stands still in the colocated picture may do so here.
void DirectPredictor::derive_spatial(std::array<MotionWindow, 2>& windows, int address, unsigned quadrants) const {
  std::array<Motion, 2> motion;
  for (int list = 0; list < 2; ++list) {
    const int reference = windows[list].lowest_reference();
    motion[list].reference = static_cast<std::int8_t>(std::max<int>(reference, kNoReference));
    if (reference >= 0) motion[list].vector = windows[list].predict(kWholeMb, reference);
  }
  if (motion[0].reference < 0 && motion[1].reference < 0) motion[0].reference = motion[1].reference = 0;
  const auto may_stop = [&](int list) {
    return colocated_may_stand_still_ && motion[list].reference == 0 && motion[list].vector != MotionVector{};
  };
  for (int i = 0; i < 4; ++i) {
    if (!(quadrants >> i & 1)) continue;
    for (int list = 0; list < 2; ++list) {
      windows[list].set_reference(quadrant_rect(i), motion[list].reference);
      windows[list].set_vector(quadrant_rect(i), motion[list].vector);
    }
    if (!may_stop(0) && !may_stop(1)) continue;
    for_each_rect(i, [&](const BlockRect& rect, int block) {
      const Colocated there = colocated(address, block);
      if (there.reference != 0 || std::abs(there.vector.x) > 1 || std::abs(there.vector.y) > 1) return;
      for (int list = 0; list < 2; ++list) {
        if (may_stop(list)) windows[list].set_vector(rect, {});
      }
    });
  }
}

/// The colocated vector, shared out by the distances in time.
void DirectPredictor::derive_temporal(std::array<MotionWindow, 2>& windows, int address, int quadrant) const {
  for_each_rect(quadrant, [&](const BlockRect& rect, int block) {
    const Colocated there = colocated(address, block);
    const int reference = there.reference < 0 ? 0 : indices_[there.slot];
    require(reference >= 0, kMissing);
    const auto& scale = scales_[reference];
    const MotionVector forward = scale ? scaled(there.vector, *scale) : there.vector;
    windows[0].set_reference(rect, reference);
    windows[0].set_vector(rect, forward);
    windows[1].set_reference(rect, 0);
    windows[1].set_vector(rect, scale ? difference(forward, there.vector) : MotionVector{});
  });
}

}  // namespace moxdec::h264
