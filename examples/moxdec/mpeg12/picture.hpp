/// A picture in work, and views of frames as a whole or as one of their fields.
#pragma once

#include <array>
#include <memory>

#include "moxdec/frame.hpp"
#include "moxdec/mpeg12/headers.hpp"

namespace moxdec::mpeg12 {

/// Samples of a frame or of one field of it.
struct View {
  std::array<Mox8u*, 3> base;
  std::array<int, 3> step;
  int width;   // luma samples
  int height;  // luma rows
};

inline View view_of(const Frame& frame, Structure structure) {
  const bool whole = structure == Structure::kFrame;
  View view{{}, {}, frame.layout().width, frame.layout().height >> int{!whole}};
  for (int plane = 0; plane < 3; ++plane) {
    view.step[plane] = frame.step(plane) << int{!whole};
    view.base[plane] = frame.samples<Mox8u>(plane) + (structure == Structure::kBottomField ? frame.step(plane) : 0);
  }
  return view;
}
inline View field_of(const Frame& frame, int parity) {
  return view_of(frame, parity ? Structure::kBottomField : Structure::kTopField);
}

struct Picture {
  PictureHeader header;
  Sequence sequence;
  std::shared_ptr<Frame> frame;
  std::array<std::shared_ptr<const Frame>, 2> reference;  // by direction; null if missing
  bool second_field = false;
  int next_address = 0;  // of the first macroblock that is not decoded yet

  int mb_width() const { return sequence.mb_width(); }
  int macroblocks() const { return mb_width() * sequence.mb_height() >> int{!header.is_frame()}; }
  bool is_complete() const { return next_address == macroblocks(); }
  int chroma_rows_shift() const { return chroma_shift_y(sequence.chroma); }
};

}  // namespace moxdec::mpeg12
