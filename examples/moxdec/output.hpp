/// Where frames go: raw planes, a Y4M file, or a contact sheet.
#pragma once

#include <memory>
#include <string>

#include "moxdec/codec.hpp"
#include "moxdec/file.hpp"
#include "moxdec/frame.hpp"

namespace moxdec {

class FrameWriter {
 public:
  virtual ~FrameWriter() = default;
  /// `rate` may be 0/0. Throws OutputError.
  virtual void write(const Frame& frame, FrameRate rate) = 0;
  /// To be called once behind the last frame. Throws OutputError.
  virtual void finish() = 0;
};

/// Chooses by the ending: .yuv (or any other) raw planes Y, U, V of the shown size, 16-bit samples as little-endian;
/// .y4m with headers; .png a contact sheet. "-" is raw planes to standard output. Throws OutputError.
std::unique_ptr<FrameWriter> open_writer(const std::string& path);

}  // namespace moxdec
