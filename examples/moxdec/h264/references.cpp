#include "moxdec/h264/references.hpp"

#include <algorithm>
#include <utility>

#include "moxdec/error.hpp"

namespace moxdec::h264 {

void ReferenceBuffer::configure(int limit) {
  for (StoredPicture& picture : pictures_) picture = {};
  limit_ = std::clamp(limit, 1, kPictureSlots - 1);
  last_number_ = -1;
}

template <class Pred>
ReferenceBuffer::Slots ReferenceBuffer::select(Pred pred) const {
  Slots slots;
  for (std::int8_t i = 0; i < kPictureSlots; ++i) {
    if (pictures_[i].marking != Marking::kUnused && pred(pictures_[i])) slots.push_back(i);
  }
  return slots;
}

void ReferenceBuffer::release(StoredPicture& picture) {
  picture.marking = Marking::kUnused;
  picture.frame.reset();
}

void ReferenceBuffer::take_slot() {
  const auto unused = std::ranges::find(pictures_, Marking::kUnused, &StoredPicture::marking);
  current_ = static_cast<int>(unused - pictures_.begin());
  current().serial = ++serial_;
}

StoredPicture& ReferenceBuffer::begin(const SliceHeader& slice, FieldOrder order, std::shared_ptr<Frame> frame) {
  if (slice.idr) std::ranges::for_each(pictures_, release);
  take_slot();
  StoredPicture& picture = current();
  picture.frame = std::move(frame);
  picture.order = order;
  picture.frame_num = slice.frame_num;
  picture.motion.resize(static_cast<std::size_t>(slice.sps->macroblocks()));
  std::ranges::transform(pictures_, picture.serials.begin(), &StoredPicture::serial);
  return picture;
}

int ReferenceBuffer::first_missing(const SliceHeader& slice) const {
  const int range = slice.sps->max_frame_num();
  if (slice.idr || last_number_ < 0 || slice.frame_num == last_number_) return slice.frame_num;
  const int missing = (slice.frame_num - last_number_ - 1 + range) % range;
  return (slice.frame_num - std::min(missing, limit_) + range) % range;
}

void ReferenceBuffer::add_missing(const SliceHeader& slice, FieldOrder order) {
  slide();
  take_slot();
  current().order = order;
  current().frame_num = slice.frame_num;
  current().marking = Marking::kShortTerm;
  last_number_ = slice.frame_num;
}

void ReferenceBuffer::finish(const SliceHeader& slice) {
  if (slice.nal_ref_idc == 0) return release(current());
  if (slice.adaptive_marking) {
    for (const MarkingOperation& operation : slice.marking) apply(operation, slice);
  } else {
    slide();
  }
  StoredPicture& picture = current();
  if (slice.long_term) {
    make_long_term(picture, 0);
  } else if (picture.marking == Marking::kUnused) {
    picture.marking = Marking::kShortTerm;
  }
  if (slice.resets_order) {
    picture.frame_num = 0;
    picture.order = picture.order.rebased();
  }
  last_number_ = picture.frame_num;
  require(std::ssize(select([](const StoredPicture&) { return true; })) <= limit_, "too many reference pictures");
}

/// Makes room for one more reference: the short-term one that was decoded first leaves.
void ReferenceBuffer::slide() {
  const Slots used = select([](const StoredPicture&) { return true; });
  if (std::ssize(used) < limit_) return;
  StoredPicture* oldest = nullptr;
  for (StoredPicture& picture : pictures_) {
    if (picture.marking == Marking::kShortTerm && (!oldest || picture.serial < oldest->serial)) oldest = &picture;
  }
  if (oldest) release(*oldest);
  require(oldest != nullptr, "too many reference pictures");
}

StoredPicture* ReferenceBuffer::find_short_term(int wanted, const SliceHeader& slice) {
  for (StoredPicture& picture : pictures_) {
    if (picture.marking == Marking::kShortTerm && number(picture, slice) == wanted) return &picture;
  }
  return nullptr;
}

StoredPicture* ReferenceBuffer::find_long_term(int index) {
  for (StoredPicture& picture : pictures_) {
    if (picture.marking == Marking::kLongTerm && picture.long_term_index == index) return &picture;
  }
  return nullptr;
}

void ReferenceBuffer::make_long_term(StoredPicture& picture, int index) {
  StoredPicture* holder = find_long_term(index);
  if (holder && holder != &picture) release(*holder);
  picture.marking = Marking::kLongTerm;
  picture.long_term_index = index;
}

void ReferenceBuffer::apply(const MarkingOperation& operation, const SliceHeader& slice) {
  switch (operation.operation) {
    case 1:
    case 3: {
      StoredPicture* picture = find_short_term(slice.frame_num - operation.first - 1, slice);
      if (!picture) return;
      return operation.operation == 1 ? release(*picture) : make_long_term(*picture, operation.second);
    }
    case 2:
      if (StoredPicture* picture = find_long_term(operation.first)) release(*picture);
      return;
    case 6: return make_long_term(current(), operation.first);
    default:  // 4 keeps the long-term pictures below an index, 5 none of any kind
      for (StoredPicture& picture : pictures_) {
        if (&picture == &current()) continue;
        const bool goes = picture.marking == Marking::kLongTerm && picture.long_term_index >= operation.first;
        if (operation.operation == 5 || goes) release(picture);
      }
  }
}

/// The frame number of a short-term picture as seen from the slice: those behind a wrap are negative.
int ReferenceBuffer::number(const StoredPicture& picture, const SliceHeader& slice) const {
  return picture.frame_num - (picture.frame_num > slice.frame_num ? slice.sps->max_frame_num() : 0);
}

/// For P slices: short-term pictures from the latest on, then long-term ones by their index.
ReferenceBuffer::Slots ReferenceBuffer::order_by_number(const SliceHeader& slice) const {
  Slots slots = select([](const StoredPicture&) { return true; });
  std::ranges::sort(slots, {}, [&](std::int8_t slot) {
    const StoredPicture& picture = at(slot);
    const bool long_term = picture.marking == Marking::kLongTerm;
    return std::pair(long_term, long_term ? picture.long_term_index : -number(picture, slice));
  });
  return slots;
}

/// For B slices: the nearest pictures before and behind the slice in display order, then the long-term ones.
void ReferenceBuffer::order_by_time(const SliceHeader& slice, std::array<Slots, 2>& lists) const {
  const int now = current().order.frame();
  const bool missing_ones = slice.sps->poc_type != 0;  // those have no place in time
  const auto short_term = [&](bool before) {
    Slots slots = select([&](const StoredPicture& picture) {
      return picture.marking == Marking::kShortTerm && (picture.frame || missing_ones) &&
             (picture.order.frame() <= now) == before;
    });
    std::ranges::sort(slots, {}, [&](std::int8_t slot) {
      const std::int64_t order = at(slot).order.frame();
      return before ? -order : order;
    });
    return slots;
  };
  Slots long_term = select([](const StoredPicture& picture) { return picture.marking == Marking::kLongTerm; });
  std::ranges::sort(long_term, {}, [&](std::int8_t slot) { return at(slot).long_term_index; });
  const std::array<Slots, 2> sides = {short_term(true), short_term(false)};
  for (int list = 0; list < 2; ++list) {
    for (const Slots& part : {sides[list], sides[1 - list], long_term}) {
      lists[list].insert(lists[list].end(), part.begin(), part.end());
    }
  }
  if (lists[1].size() > 1 && lists[0] == lists[1]) std::swap(lists[1][0], lists[1][1]);
}

void ReferenceBuffer::change(std::array<std::int8_t, kMaxListEntries>& list, int count,
                             const std::vector<ListChange>& changes, const SliceHeader& slice) const {
  const int range = slice.sps->max_frame_num();
  int predicted = slice.frame_num, place = 0;
  for (const ListChange& change : changes) {
    const bool long_term = change.operation == 2;
    if (!long_term) {
      const int step = change.value + 1;
      predicted = (predicted + (change.operation == 0 ? -step : step) + 2 * range) % range;
    }
    const int wanted = predicted > slice.frame_num ? predicted - range : predicted;
    const Slots found = select([&](const StoredPicture& picture) {
      if (long_term) return picture.marking == Marking::kLongTerm && picture.long_term_index == change.value;
      return picture.marking == Marking::kShortTerm && number(picture, slice) == wanted;
    });
    // The picture moves to its place; those from there to its old place, or all of them, make room.
    const std::int8_t slot = found.empty() ? kNoReference : found.front();
    const auto from = list.begin() + place, end = list.begin() + count;
    auto old = found.empty() ? end : std::find(from, end, slot);
    if (old == end) old = end - 1;
    std::move_backward(from, old, old + 1);
    *from = slot;
    ++place;
  }
}

ReferenceLists ReferenceBuffer::lists(const SliceHeader& slice) const {
  ReferenceLists lists;
  std::array<Slots, 2> initial;
  if (slice.type == SliceType::kP) initial[0] = order_by_number(slice);
  if (slice.type == SliceType::kB) order_by_time(slice, initial);
  for (int list = 0; list < list_count(slice.type); ++list) {
    const int count = lists.count[list] = slice.ref_count[list];
    auto& slots = lists.slots[list];
    slots.fill(kNoReference);
    std::copy_n(initial[list].begin(), std::min(count, static_cast<int>(initial[list].size())), slots.begin());
    change(slots, count, slice.list_changes[list], slice);
    for (auto& slot : slots) {
      if (slot >= 0 && !at(slot).frame) slot = kNoReference;
    }
  }
  return lists;
}

}  // namespace moxdec::h264
