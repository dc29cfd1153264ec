#include "moxdec/h264/output_order.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

int checked(std::int64_t count) {
  using Limits = std::numeric_limits<std::int32_t>;
  require(count >= Limits::min() && count < Limits::max(), "picture order count is out of range");
  return static_cast<int>(count);
}

}  // namespace

FieldOrder PictureOrder::next(const SliceHeader& slice) {
  if (slice.idr) *this = {};
  if (previous_frame_num_ > slice.frame_num) frame_num_offset_ += slice.sps->max_frame_num();
  previous_frame_num_ = slice.frame_num;
  FieldOrder order;
  switch (slice.sps->poc_type) {
    case 0: order = from_lsb(slice); break;
    case 1: order = from_cycle(slice); break;
    default: order = from_frame_num(slice); break;
  }
  if (slice.field_pic) (slice.bottom_field ? order.top : order.bottom) = FieldOrder::kMissing;
  if (!slice.resets_order) return order;
  if (!slice.field_pic) checked(std::int64_t{std::max(order.top, order.bottom)} - order.frame());
  const FieldOrder rebased = slice.field_pic ? FieldOrder{} : order.rebased();
  *this = {};
  previous_lsb_ = rebased.top;
  return order;
}

FieldOrder PictureOrder::from_lsb(const SliceHeader& slice) {
  const int range = 1 << slice.sps->log2_max_poc_lsb, step = slice.poc_lsb - previous_lsb_;
  const std::int64_t msb = previous_msb_ + (-step >= range / 2 ? range : step > range / 2 ? -range : 0);
  if (slice.nal_ref_idc != 0) previous_msb_ = msb, previous_lsb_ = slice.poc_lsb;
  return {checked(msb + slice.poc_lsb), checked(msb + slice.poc_lsb + slice.delta_poc_bottom)};
}

FieldOrder PictureOrder::from_cycle(const SliceHeader& slice) const {
  const Sps& sps = *slice.sps;
  const auto cycle_length = static_cast<std::int64_t>(sps.offsets_for_ref_frame.size());
  std::int64_t count = cycle_length > 0 ? frame_num_offset_ + slice.frame_num : 0;
  if (slice.nal_ref_idc == 0 && count > 0) --count;
  std::int64_t expected = slice.nal_ref_idc == 0 ? sps.offset_for_non_ref_pic : 0;
  if (count > 0) {
    expected += (count - 1) / cycle_length * sps.poc_delta_per_cycle;
    for (int i = 0; i <= (count - 1) % cycle_length; ++i) expected += sps.offsets_for_ref_frame[i];
  }
  const std::int64_t top = expected + slice.delta_poc[0];
  return {checked(top), checked(top + sps.offset_for_top_to_bottom + slice.delta_poc[1])};
}

FieldOrder PictureOrder::from_frame_num(const SliceHeader& slice) const {
  const int order = checked(2 * (frame_num_offset_ + slice.frame_num) - (slice.nal_ref_idc == 0 ? 1 : 0));
  return {order, order};
}

void OutputQueue::add(std::shared_ptr<const Frame> frame, int order) {
  waiting_.push_back({std::move(frame), order});
  while (waiting_.size() > window_) release_first();
}

void OutputQueue::flush() {
  while (!waiting_.empty()) release_first();
}

void OutputQueue::release_first() {
  const auto first = std::ranges::min_element(waiting_, {}, &Waiting::order);
  due_.push_back(std::move(first->frame));
  waiting_.erase(first);
}

std::shared_ptr<const Frame> OutputQueue::take() {
  if (due_.empty()) return nullptr;
  auto frame = std::move(due_.front());
  due_.pop_front();
  return frame;
}

}  // namespace moxdec::h264
