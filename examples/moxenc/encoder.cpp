#include "moxenc/encoder.hpp"

#include <stdexcept>
#include <utility>

#include "moxenc/byte_stream.hpp"

namespace moxenc {
namespace {

const moxdec::FrameFormat& checked(const moxdec::FrameFormat& format) {
  if (format.bit_depth != 8 || format.chroma != moxdec::Chroma::k420) {
    throw std::runtime_error("only 8-bit 4:2:0 frames can be encoded");
  }
  if (format.width < 2 || format.height < 2 || format.width % 2 != 0 || format.height % 2 != 0) {
    throw std::runtime_error("width and height must be even");
  }
  return format;
}

}  // namespace

Encoder::Encoder(const moxdec::FrameFormat& format, moxdec::FrameRate rate, const Settings& settings)
    : header_{checked(format).width, format.height, rate, settings.kbits},
      settings_(settings),
      state_((format.width + 15) / 16, (format.height + 15) / 16),
      source_(make_picture(format)),
      picture_(make_picture(format)),
      reference_(make_picture(format)) {}

const std::vector<std::uint8_t>& Encoder::encode(const moxdec::Frame& frame) {
  if (frame.format() != source_->format()) throw std::runtime_error("the frame format changes");
  stream_.clear();
  const bool key = since_key_ % settings_.keyint == 0;
  if (key) since_key_ = 0, write_parameter_sets();
  copy_source(frame, *source_);
  bits_.clear();
  const int qp = settings_.qp;
  const long long key_number = frames_ / settings_.keyint;
  write_slice_header(bits_, {key, static_cast<int>(key_number % 2), since_key_ % (1 << kFrameNumBits), qp});
  code_picture({*source_, *picture_, key ? nullptr : reference_.get(), qp}, state_, bits_);
  append_unit(stream_, key ? Unit::kIdrSlice : Unit::kSlice, bits_);
  fill_margins(*picture_);
  std::swap(picture_, reference_);
  ++frames_, ++since_key_;
  return stream_;
}

void Encoder::write_parameter_sets() {
  bits_.clear();
  write_sequence(bits_, header_);
  append_unit(stream_, Unit::kSps, bits_);
  bits_.clear();
  write_picture_set(bits_);
  append_unit(stream_, Unit::kPps, bits_);
}

}  // namespace moxenc
