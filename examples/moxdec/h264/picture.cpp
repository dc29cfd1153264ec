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

void Picture::begin(std::shared_ptr<Frame> new_frame, MbMotion* new_motion, const SliceHeader& slice) {
  frame = std::move(new_frame);
  motion = new_motion;
  mb_width = slice.sps->mb_width;
  mb_height = slice.sps->mb_height >> (slice.field_pic ? 1 : 0);
  field_pic = slice.field_pic;
  mbaff = slice.mbaff();
  parity = slice.parity();
  chroma_mb_height = slice.sps->chroma_mb_height();
  for (int plane = 0; plane < 3; ++plane) {
    const int step = frame->step(plane);
    planes_[plane] = {frame->samples<std::byte>(plane) + std::ptrdiff_t{parity} * step, field_pic ? 2 * step : step};
  }
  macroblocks.resize(static_cast<std::size_t>(slice.sps->macroblocks()));
  for (MbInfo& mb : macroblocks) mb.slice = -1;
  slices.clear();
}

}  // namespace moxdec::h264
