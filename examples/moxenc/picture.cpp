#include "moxenc/picture.hpp"

#include <cstring>

#include "moxenc/macroblock.hpp"

namespace moxenc {
namespace {

constexpr int whole_macroblocks(int samples) { return (samples + 15) / 16 * 16; }

}  // namespace

FramePtr make_picture(const moxdec::FrameFormat& format) {
  const moxdec::FrameLayout layout{whole_macroblocks(format.width), whole_macroblocks(format.height), 0, 0, kMargin};
  return std::make_shared<moxdec::Frame>(format, layout);
}

void copy_source(const moxdec::Frame& from, const moxdec::Frame& to) {
  for (int plane = 0; plane < 3; ++plane) {
    const int shift = plane == 0 ? 0 : 1;
    const auto shown = static_cast<std::size_t>(from.format().plane_width(plane)),
               width = static_cast<std::size_t>(to.layout().width >> shift);
    const int rows = from.format().plane_height(plane);
    for (int y = 0; y < rows; ++y) {
      Mox8u* row = sample_at(to, plane, 0, y);
      std::memcpy(row, from.shown_row(plane, y), shown);
      std::memset(row + shown, row[shown - 1], width - shown);
    }
    for (int y = rows; y < to.layout().height >> shift; ++y) {
      std::memcpy(sample_at(to, plane, 0, y), sample_at(to, plane, 0, rows - 1), width);
    }
  }
}

void fill_margins(const moxdec::Frame& frame) {
  for (int plane = 0; plane < 3; ++plane) {
    const int shift = plane == 0 ? 0 : 1;
    expect_ok(moxiExpandPlane_H264_8u_C1R(frame.samples<Mox8u>(plane), frame.layout().width >> shift,
                                          frame.layout().height >> shift, frame.step(plane), kMargin >> shift, 0));
  }
}

}  // namespace moxenc
