/// From frames to a byte stream: which pictures are I and P pictures, and their QP.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "moxenc/headers.hpp"
#include "moxenc/picture_coder.hpp"
#include "moxenc/rate_control.hpp"

namespace moxenc {

struct Settings {
  int qp = 26;
  int kbits = 0;     ///< per second; 0 keeps the QP
  int keyint = 250;  ///< pictures from one I picture to the next
};

class Encoder {
 public:
  /// For 8-bit 4:2:0 frames of even sides. Throws std::runtime_error for others.
  Encoder(const moxdec::FrameFormat& format, moxdec::FrameRate rate, const Settings& settings);

  /// The units of the next frame, which stay until the next call.
  const std::vector<std::uint8_t>& encode(const moxdec::Frame& frame);
  /// What a decoder makes of the last frame.
  const moxdec::Frame& reconstruction() const { return *reference_; }

 private:
  void write_parameter_sets();
  /// Codes the source with a QP into bits_ and picture_.
  void code(int qp);
  int choose_qp();

  SequenceHeader header_;
  Settings settings_;
  std::optional<RateControl> rate_control_;
  CodingState state_;
  FramePtr source_, picture_, reference_;
  BitWriter bits_;
  std::vector<std::uint8_t> stream_;
  int since_key_ = 0;  ///< pictures since the last I picture
  int keys_ = 0;
};

}  // namespace moxenc
