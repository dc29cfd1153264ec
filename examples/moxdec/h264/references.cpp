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
    if (pictures_[i].is_used() && pred(pictures_[i])) slots.push_back(i);
  }
  return slots;
}

void ReferenceBuffer::release(int id) {
  StoredPicture& picture = pictures_[static_cast<std::size_t>(slot_of(id))];
  for (int parity = 0; parity < 2; ++parity) {
    if (!is_field(id) || parity == parity_of(id)) picture.marking[parity] = Marking::kUnused;
  }
  if (!picture.is_used() && &picture != &current()) picture.frame.reset();
}

void ReferenceBuffer::take_slot() {
  if (!current().is_used()) current().frame.reset();
  const auto unused = std::ranges::find_if(pictures_, [](const StoredPicture& picture) { return !picture.is_used(); });
  current_ = static_cast<int>(unused - pictures_.begin());
  current().serial = ++serial_;
}

StoredPicture& ReferenceBuffer::begin(const SliceHeader& slice, FieldOrder order, std::shared_ptr<Frame> frame) {
  if (slice.idr) {
    for (int slot = 0; slot < kPictureSlots; ++slot) release(slot);
  }
  take_slot();
  StoredPicture& picture = current();
  picture.frame = std::move(frame);
  picture.order = order;
  picture.frame_num = slice.frame_num;
  picture.mbaff = slice.mbaff();
  picture.motion.resize(static_cast<std::size_t>(slice.sps->macroblocks()));
  std::ranges::transform(pictures_, picture.serials.begin(), &StoredPicture::serial);
  return picture;
}

StoredPicture& ReferenceBuffer::begin_second_field(FieldOrder order) {
  current().order.complete(order);
  return current();
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
  current().frame.reset();
  current().order = order;
  current().frame_num = slice.frame_num;
  current().marking = {Marking::kShortTerm, Marking::kShortTerm};
  last_number_ = slice.frame_num;
}

/// The name of the picture in work.
std::int8_t ReferenceBuffer::own_id(const SliceHeader& slice) const {
  return slice.field_pic ? field_id(current_, slice.parity()) : static_cast<std::int8_t>(current_);
}

void ReferenceBuffer::finish(const SliceHeader& slice) {
  if (slice.nal_ref_idc == 0) return;
  StoredPicture& picture = current();
  if (slice.adaptive_marking) {
    for (const MarkingOperation& operation : slice.marking) apply(operation, slice);
  } else if (!picture.has(Marking::kShortTerm)) {  // the second field of a short-term frame takes no more room
    slide();
  }
  const std::int8_t id = own_id(slice);
  if (slice.long_term) {
    make_long_term(id, 0);
  } else if (!picture.is(Marking::kLongTerm, id)) {
    for (int parity = 0; parity < 2; ++parity) {
      if (!slice.field_pic || parity == slice.parity()) picture.marking[parity] = Marking::kShortTerm;
    }
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
  int oldest = kNoReference;
  for (const int slot : used) {
    if (at(slot).has(Marking::kShortTerm) && (oldest < 0 || at(slot).serial < at(oldest).serial)) oldest = slot;
  }
  require(oldest >= 0, "too many reference pictures");
  release(oldest);
}

/// Whether slices of this structure may refer to the picture, or to a field of it.
bool ReferenceBuffer::may_refer_to(const StoredPicture& picture, Marking marking, const SliceHeader& slice) const {
  return slice.field_pic ? picture.has(marking) : picture.is(marking);
}

/// The picture that has a number among those with a marking. Fields of the same parity have odd numbers.
std::int8_t ReferenceBuffer::find(int wanted, Marking marking, const SliceHeader& slice) const {
  const int of_frame = slice.field_pic ? wanted >> 1 : wanted;
  for (std::int8_t slot = 0; slot < kPictureSlots; ++slot) {
    const StoredPicture& picture = at(slot);
    const std::int8_t id = slice.field_pic ? field_id(slot, slice.parity() ^ (~wanted & 1)) : slot;
    if (!picture.is(marking, id)) continue;
    if ((marking == Marking::kLongTerm ? picture.long_term_index : number(picture, slice)) == of_frame) return id;
  }
  return kNoReference;
}

/// An index belongs to one frame; its two fields share it.
void ReferenceBuffer::make_long_term(int id, int index) {
  for (int slot = 0; slot < kPictureSlots; ++slot) {
    if (slot == slot_of(id) || at(slot).long_term_index != index) continue;
    for (int parity = 0; parity < 2; ++parity) {
      if (at(slot).marking[parity] == Marking::kLongTerm) release(field_id(slot, parity));
    }
  }
  StoredPicture& picture = pictures_[static_cast<std::size_t>(slot_of(id))];
  for (int parity = 0; parity < 2; ++parity) {
    if (!is_field(id) || parity == parity_of(id)) picture.marking[parity] = Marking::kLongTerm;
  }
  picture.long_term_index = index;
}

void ReferenceBuffer::apply(const MarkingOperation& operation, const SliceHeader& slice) {
  const std::int8_t own = own_id(slice);
  switch (operation.operation) {
    case 1:
    case 3: {
      const std::int8_t id = find(slice.own_number() - operation.first - 1, Marking::kShortTerm, slice);
      if (id < 0) return;
      return operation.operation == 1 ? release(id) : make_long_term(id, operation.second);
    }
    case 2:
      if (const std::int8_t id = find(operation.first, Marking::kLongTerm, slice); id >= 0) release(id);
      return;
    case 6: return make_long_term(own, operation.first);
    default:  // 4 keeps the long-term pictures below an index, 5 none of any kind
      for (int slot = 0; slot < kPictureSlots; ++slot) {
        for (const std::int8_t id : {field_id(slot, kTop), field_id(slot, kBottom)}) {
          if (id == own || slot == own) continue;
          const bool goes = at(id).is(Marking::kLongTerm, id) && at(id).long_term_index >= operation.first;
          if (operation.operation == 5 || goes) release(id);
        }
      }
  }
}

/// The frame number of a short-term picture as seen from the slice: those behind a wrap are negative.
int ReferenceBuffer::number(const StoredPicture& picture, const SliceHeader& slice) const {
  return picture.frame_num - (picture.frame_num > slice.frame_num ? slice.sps->max_frame_num() : 0);
}

/// Takes frames as they are. Of frames for a field, takes fields of both parities in turn, the field's own parity
/// first; those without the marking are passed over, and once one parity has no more, the rest of the other follows.
void ReferenceBuffer::append(Slots& list, const Slots& frames, Marking marking, const SliceHeader& slice) const {
  if (!slice.field_pic) {
    list.insert(list.end(), frames.begin(), frames.end());
    return;
  }
  std::array<Slots, 2> fields;
  for (int i = 0; i < 2; ++i) {
    for (const std::int8_t slot : frames) {
      const std::int8_t id = field_id(slot, slice.parity() ^ i);
      if (at(id).is(marking, id)) fields[i].push_back(id);
    }
  }
  for (std::size_t i = 0; i < std::max(fields[0].size(), fields[1].size()); ++i) {
    for (const Slots& parity : fields) {
      if (i < parity.size()) list.push_back(parity[i]);
    }
  }
}

/// For P slices: short-term pictures from the latest on, then long-term ones by their index.
ReferenceBuffer::Slots ReferenceBuffer::order_by_number(const SliceHeader& slice) const {
  Slots list;
  for (const Marking marking : {Marking::kShortTerm, Marking::kLongTerm}) {
    Slots slots = select([&](const StoredPicture& picture) { return may_refer_to(picture, marking, slice); });
    std::ranges::sort(slots, {}, [&](std::int8_t slot) {
      return marking == Marking::kLongTerm ? at(slot).long_term_index : -number(at(slot), slice);
    });
    append(list, slots, marking, slice);
  }
  return list;
}

/// The order count that stands for a reference. In its own second field, a frame has only the first one so far.
int ReferenceBuffer::time_of(const StoredPicture& picture, const SliceHeader& slice) const {
  return &picture == &current() ? picture.order.field(1 - slice.parity()) : picture.order.frame();
}

/// For B slices: the nearest pictures before and behind the slice in display order, then the long-term ones.
void ReferenceBuffer::order_by_time(const SliceHeader& slice, std::array<Slots, 2>& lists) const {
  const int now = current().order_of(own_id(slice));
  const bool missing_ones = slice.sps->poc_type != 0;  // those have no place in time
  const auto short_term = [&](bool before) {
    Slots slots = select([&](const StoredPicture& picture) {
      return may_refer_to(picture, Marking::kShortTerm, slice) && (picture.frame || missing_ones) &&
             (time_of(picture, slice) <= now) == before;
    });
    std::ranges::sort(slots, {}, [&](std::int8_t slot) {
      const std::int64_t order = time_of(at(slot), slice);
      return before ? -order : order;
    });
    return slots;
  };
  Slots long_term =
      select([&](const StoredPicture& picture) { return may_refer_to(picture, Marking::kLongTerm, slice); });
  std::ranges::sort(long_term, {}, [&](std::int8_t slot) { return at(slot).long_term_index; });
  const std::array<Slots, 2> sides = {short_term(true), short_term(false)};
  for (int list = 0; list < 2; ++list) {
    Slots frames = sides[list];
    frames.insert(frames.end(), sides[1 - list].begin(), sides[1 - list].end());
    append(lists[list], frames, Marking::kShortTerm, slice);
    append(lists[list], long_term, Marking::kLongTerm, slice);
  }
  if (lists[1].size() > 1 && lists[0] == lists[1]) std::swap(lists[1][0], lists[1][1]);
}

void ReferenceBuffer::change(std::array<std::int8_t, kMaxListEntries>& list, int count,
                             const std::vector<ListChange>& changes, const SliceHeader& slice) const {
  const int range = slice.number_range();
  int predicted = slice.own_number(), place = 0;
  for (const ListChange& change : changes) {
    const bool long_term = change.operation == 2;
    if (!long_term) {
      const int step = change.value + 1;
      predicted = (predicted + (change.operation == 0 ? -step : step) + 2 * range) % range;
    }
    const int wanted = predicted > slice.own_number() ? predicted - range : predicted;
    const std::int8_t id =
        long_term ? find(change.value, Marking::kLongTerm, slice) : find(wanted, Marking::kShortTerm, slice);
    // The picture moves to its place; those from there to its old place, or all of them, make room.
    const auto from = list.begin() + place, end = list.begin() + count;
    auto old = id < 0 ? end : std::find(from, end, id);
    if (old == end) old = end - 1;
    std::move_backward(from, old, old + 1);
    *from = id;
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
