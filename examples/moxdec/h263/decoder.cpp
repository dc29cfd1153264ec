#include "moxdec/h263/decoder.hpp"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>

#include "moxdec/error.hpp"
#include "moxdec/h263/picture_decoder.hpp"

namespace moxdec::h263 {
namespace {

/// The first place from `from` on where a picture starts, or the size of the data. No other bytes look so.
std::size_t find_picture(Bytes data, std::size_t from) {
  for (std::size_t at = from; at + 3 < data.size(); ++at) {
    const void* zero = std::memchr(data.data() + at, 0, data.size() - at - 3);
    if (!zero) break;
    at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(zero) - data.data());
    if (data[at + 1] == 0 && data[at + 2] >> 2 == 0x20) return at;
  }
  return data.size();
}

class H263Decoder : public Decoder {
 public:
  explicit H263Decoder(Bytes data) : data_(data), position_(find_picture(data, 0)) {}

  std::shared_ptr<const Frame> next() override {
    if (error_) std::rethrow_exception(error_);
    try {
      return next_picture();
    } catch (const DecodeError&) {
      error_ = std::current_exception();
      throw;
    }
  }
  FrameRate frame_rate() const override { return options_.rate; }

 private:
  std::shared_ptr<const Frame> next_picture();
  void decode_picture(Bytes data);
  void begin_picture();
  void expand();

  Bytes data_;
  std::size_t position_;  // of the next picture
  PaddedBytes bytes_;
  Options options_;  // the latest picture's
  Picture picture_;
  PictureDecoder picture_decoder_;
  FramePool pool_;
  std::shared_ptr<const Frame> reference_;
  std::exception_ptr error_;
};

std::shared_ptr<const Frame> H263Decoder::next_picture() {
  if (position_ == data_.size()) {
    require(reference_ != nullptr, "no picture found");
    return nullptr;
  }
  const std::size_t start = position_;
  position_ = find_picture(data_, start + 3);
  located("picture", start, [&] { decode_picture(data_.subspan(start, position_ - start)); });
  return reference_;
}

void H263Decoder::decode_picture(Bytes data) {
  bytes_.assign(data);
  ByteReader bits(bytes_);
  picture_.header = read_picture_header(bits, options_);
  begin_picture();
  picture_decoder_.decode(picture_, bits);
  expand();
  reference_ = std::move(picture_.frame);
}

void H263Decoder::begin_picture() {
  const FrameFormat format{options_.width, options_.height, Chroma::k420, 8};
  picture_.reference = reference_ && reference_->format() == format ? reference_ : nullptr;
  require(picture_.header.intra || picture_.reference, "a picture that is predicted from is missing");
  try {
    pool_.configure(format, {16 * options_.mb_width(), 16 * options_.mb_height(), 0, 0, kMargin});
    picture_.frame = pool_.take();
  } catch (const std::bad_alloc&) {
    throw DecodeError("not enough memory for a picture");
  }
}

/// Fills the margins with the edges: vectors may point there.
void H263Decoder::expand() {
  const Frame& frame = *picture_.frame;
  for (int plane = 0; plane < 3; ++plane) {
    const int shift = plane > 0;
    moxiExpandPlane_H264_8u_C1R(frame.samples<Mox8u>(plane), frame.layout().width >> shift,
                                frame.layout().height >> shift, frame.step(plane), kMargin >> shift, 0);
  }
}

/// A picture header at once that has the two fixed bits of its type.
int probe(Bytes data) {
  PaddedBytes bytes;
  bytes.assign(data.first(std::min<std::size_t>(data.size(), 16)));
  ByteReader bits(bytes);
  if (bits.left() < 64 || bits.bits(kPictureStartBits) != 1u << 5) return 0;
  bits.skip(8);
  return bits.number(2) == 2 ? 70 : 0;
}

constexpr std::string_view kExtensions[] = {"263", "h263"};

}  // namespace

constinit const Codec kCodec = {"H.263", kExtensions, probe, [](Bytes data) -> std::unique_ptr<Decoder> {
                                  return std::make_unique<H263Decoder>(data);
                                }};

}  // namespace moxdec::h263
