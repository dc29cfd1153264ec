#include "moxdec/h264/picture.hpp"

#include <algorithm>
#include <utility>

#include "common/h264_tables.hpp"

namespace moxdec::h264 {

Slice::Slice(const SliceHeader& slice_header, std::shared_ptr<const LevelScales> level_scales)
    : header(slice_header), scales(std::move(level_scales)) {
  const int lowest = -header.sps->qp_offset();
  for (int plane = 0; plane < 2; ++plane) {
    for (int qp = lowest; qp < 52; ++qp) {
      const int index = std::clamp(qp + header.pps->chroma_qp_offset[plane], lowest, 51);
      chroma_qps_[plane][qp + kMaxQpOffset] =
          static_cast<std::int8_t>(index < 0 ? index : example::kChromaQp[static_cast<std::size_t>(index)]);
    }
  }
}

void Picture::begin(std::shared_ptr<Frame> new_frame, MbMotion* new_motion, int new_mb_width, int new_mb_height) {
  frame = std::move(new_frame);
  motion = new_motion;
  mb_width = new_mb_width;
  mb_height = new_mb_height;
  macroblocks.resize(static_cast<std::size_t>(mb_width * mb_height));
  for (MbInfo& mb : macroblocks) mb.slice = -1;
  slices.clear();
}

Neighbours Picture::neighbours(int x, int y, std::int32_t slice) const {
  const MbInfo* mb = &macroblocks[static_cast<std::size_t>(y * mb_width + x)];
  const auto same_slice = [=](const MbInfo* other) { return other->slice == slice ? other : nullptr; };
  Neighbours found;
  if (x > 0) found.left = same_slice(mb - 1);
  if (y == 0) return found;
  const MbInfo* above = mb - mb_width;
  found.top = same_slice(above);
  if (x > 0) found.top_left = same_slice(above - 1);
  if (x + 1 < mb_width) found.top_right = same_slice(above + 1);
  return found;
}

}  // namespace moxdec::h264
