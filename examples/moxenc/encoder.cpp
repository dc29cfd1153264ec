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
  if ((format.width + 15) / 16 * ((format.height + 15) / 16) > kMostMacroblocks) {
    throw std::runtime_error("the frames are larger than any level allows");
  }
  return format;
}

double pictures_per_second(moxdec::FrameRate rate) {
  return rate.denominator == 0 ? 25.0 : static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator);
}

}  // namespace

Encoder::Encoder(const moxdec::FrameFormat& format, moxdec::FrameRate rate, const Settings& settings)
    : header_{checked(format).width, format.height, rate, settings.kbits},
      settings_(settings),
      state_((format.width + 15) / 16, (format.height + 15) / 16),
      source_(make_picture(format)),
      picture_(make_picture(format)),
      reference_(make_picture(format)) {
  if (settings.kbits > 0) rate_control_.emplace(1e3 * settings.kbits, pictures_per_second(rate), settings.keyint);
}

const std::vector<std::uint8_t>& Encoder::encode(const moxdec::Frame& frame) {
  if (frame.format() != source_->format()) throw std::runtime_error("the frame format changes");
  stream_.clear();
  copy_source(frame, *source_);
  const int qp = choose_qp();
  if (since_key_ == 0) write_parameter_sets();
  code(qp);
  append_unit(stream_, since_key_ == 0 ? Unit::kIdrSlice : Unit::kSlice, bits_);
  if (rate_control_) {
    rate_control_->learn(since_key_, qp, bits_.size());
    rate_control_->account(qp, 8 * stream_.size());
  }
  fill_margins(*picture_);
  std::swap(picture_, reference_);
  if (since_key_ == 0) ++keys_;
  since_key_ = (since_key_ + 1) % settings_.keyint;
  return stream_;
}

void Encoder::code(int qp) {
  const bool key = since_key_ == 0;
  bits_.clear();
  write_slice_header(bits_, {key, keys_ % 2, since_key_ % (1 << kFrameNumBits), qp});
  code_picture({*source_, *picture_, key ? nullptr : reference_.get(), qp}, state_, bits_);
}

int Encoder::choose_qp() {
  if (!rate_control_) return settings_.qp;
  if (rate_control_->is_blind()) {
    const int trial = rate_control_->choose_qp(since_key_);
    code(trial);
    rate_control_->learn(since_key_, trial, bits_.size());
  }
  return rate_control_->choose_qp(since_key_);
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
