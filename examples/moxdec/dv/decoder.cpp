#include "moxdec/dv/decoder.hpp"

#include <algorithm>
#include <array>
#include <new>

#include "moxdec/dv/macroblock.hpp"
#include "moxdec/dv/placement.hpp"
#include "moxdec/dv/profile.hpp"
#include "moxdec/error.hpp"

namespace moxdec::dv {
namespace {

constexpr int kSegmentBytes = kMacroblocks * kBlockBytes, kPadding = 8, kMostBlocks = 8 * kMacroblocks;

/// The first block of segment k in a sequence: behind each audio block lie three segments.
constexpr int segment_block(int k) { return 7 + 5 * k + k / 3; }

class DvDecoder : public Decoder {
 public:
  explicit DvDecoder(Bytes data) : data_(data) {}

  std::shared_ptr<const Frame> next() override {
    if (position_ == data_.size()) return nullptr;
    std::shared_ptr<Frame> frame;
    located("frame", position_, [&] { frame = decode_frame(); });
    position_ += profile_.frame_bytes();
    return frame;
  }
  FrameRate frame_rate() const override { return profile_.rate; }

 private:
  std::shared_ptr<Frame> decode_frame() {
    const Bytes rest = data_.subspan(position_);
    require(rest.size() >= static_cast<std::size_t>(kSequenceBytes), "the stream ends in a DIF sequence");
    profile_ = read_profile(rest);
    require(rest.size() >= profile_.frame_bytes(), "the stream ends in a frame");
    auto frame = take_frame();
    for (int i = 0; i < profile_.channels * profile_.sequences; ++i) {
      decode_sequence(rest.subspan(static_cast<std::size_t>(i) * kSequenceBytes), i, *frame);
    }
    return frame;
  }

  std::shared_ptr<Frame> take_frame() {
    try {
      pool_.configure(profile_.format, {profile_.format.width, profile_.format.height, 0, 0, 0});
      return pool_.take();
    } catch (const std::bad_alloc&) {
      throw DecodeError("not enough memory for a picture");
    }
  }

  void decode_sequence(Bytes sequence, int index, const Frame& frame) {
    const int channel = index / profile_.sequences, number = index % profile_.sequences;
    for (int k = 0; k < kSegmentsPerSequence; ++k) {
      const std::uint8_t* const blocks = &sequence[static_cast<std::size_t>(segment_block(k) * kBlockBytes)];
      for (int m = 0; m < kMacroblocks; ++m) {
        const std::uint8_t* const id = blocks + m * kBlockBytes;
        require(section(id) == static_cast<int>(Section::kVideo) && id[1] >> 4 == number && id[2] == 5 * k + m,
                "a DIF block of video is missing, or not in its place");
      }
      decode_segment(blocks);
      for (int m = 0; m < kMacroblocks; ++m) {
        const Place place = place_of(profile_.shuffling, profile_.sequences, channel, number, k, m);
        const int first = m * profile_.blocks();
        if (place.used) reconstruct(profile_, place, &coefficients_[64 * first], &parameters_[first], frame);
      }
    }
  }

  void decode_segment(const std::uint8_t* blocks) {
    std::copy_n(blocks, kSegmentBytes, segment_.begin());
    std::fill_n(coefficients_.begin(), 64 * kMacroblocks * profile_.blocks(), Mox16s{0});
    const auto decode = profile_.is_dv100() ? moxiHuffmanDecodeSegment_DV100_8u16s : moxiHuffmanDecodeSegment_DV_8u16s;
    decode(segment_.data(), nullptr, nullptr, coefficients_.data(), parameters_.data());
  }

  Bytes data_;
  std::size_t position_ = 0;
  Profile profile_{};
  FramePool pool_;
  std::array<Mox8u, kSegmentBytes + kPadding> segment_{};
  alignas(64) std::array<Mox16s, 64 * kMostBlocks> coefficients_;
  std::array<Mox32u, kMostBlocks> parameters_;
};

constexpr std::string_view kExtensions[] = {"dv", "dif"};

}  // namespace

constinit const Codec kCodec = {
    "DV", kExtensions, [](Bytes data) { return begins_sequence(data) ? 90 : 0; },
    [](Bytes data) -> std::unique_ptr<Decoder> { return std::make_unique<DvDecoder>(data); }};

}  // namespace moxdec::dv
