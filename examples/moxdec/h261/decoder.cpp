#include "moxdec/h261/decoder.hpp"

#include <algorithm>
#include <exception>

#include "moxdec/error.hpp"
#include "moxdec/h261/group_decoder.hpp"

namespace moxdec::h261 {
namespace {

/// A start code is 15 zeros, a 1 and the number of a group, or 0 for a picture.
constexpr int kStartBits = 16, kNumberBits = 4, kPictureNumber = 0;

/// CIF has all twelve groups, two side by side; QCIF has groups 1, 3 and 5.
struct Format {
  int width, height, last_group, group_distance;
};
constexpr Format kQcif = {176, 144, 5, 2}, kCif = {352, 288, 12, 1};

class H261Decoder : public Decoder {
 public:
  explicit H261Decoder(Bytes data) {
    bytes_.assign(data);
    bits_ = ByteReader(bytes_);
  }

  std::shared_ptr<const Frame> next() override {
    if (error_) std::rethrow_exception(error_);
    try {
      return next_picture();
    } catch (const DecodeError&) {
      error_ = std::current_exception();
      throw;
    }
  }
  FrameRate frame_rate() const override { return {30000, 1001}; }

 private:
  std::shared_ptr<const Frame> next_picture();
  int next_start_code();
  const Format& read_picture_header();
  void decode_group(const Format& format, int number);

  PaddedBytes bytes_;
  ByteReader bits_{bytes_};
  FramePool pool_;
  const Format* format_ = nullptr;  // of the reference
  std::shared_ptr<const Frame> reference_;
  std::shared_ptr<Frame> frame_;
  std::exception_ptr error_;
};

/// Moves behind the next start code and gives its number, -1 if there is none. Start codes begin at any bit.
int H261Decoder::next_start_code() {
  for (; bits_.left() >= kStartBits + kNumberBits; bits_.skip(1)) {
    if (bits_.peek(kStartBits) != 1) continue;
    bits_.skip(kStartBits);
    return bits_.number(kNumberBits);
  }
  return -1;
}

std::shared_ptr<const Frame> H261Decoder::next_picture() {
  int number = next_start_code();
  while (!reference_ && number > kPictureNumber) number = next_start_code();  // what precedes the first picture
  if (number < 0) {
    require(reference_ != nullptr, "no picture found");
    return nullptr;
  }
  located("picture", bits_.position() / 8, [&] {
    require(number == kPictureNumber, "a group of blocks that the picture does not have");
    const Format& format = read_picture_header();
    if (&format != format_) reference_ = nullptr;
    format_ = &format;
    pool_.configure({format.width, format.height, Chroma::k420, 8}, {format.width, format.height, 0, 0, 0});
    frame_ = pool_.take();
    for (int group = 1; group <= format.last_group; group += format.group_distance) decode_group(format, group);
  });
  return reference_ = std::move(frame_);
}

const Format& H261Decoder::read_picture_header() {
  bits_.skip(5);  // temporal reference
  bits_.skip(3);  // split screen, document camera, freeze picture release
  const Format& format = bits_.flag() ? kCif : kQcif;
  require(bits_.flag(), "still images of high resolution are not supported");
  bits_.skip(1);
  skip_spare_information(bits_);
  return format;
}

/// All groups of a picture are there, in order.
void H261Decoder::decode_group(const Format& format, int number) {
  require(next_start_code() == number, "groups of blocks are missing");
  const int columns = format.width / 16 / kGroupWidth;
  const int index = (number - 1) / format.group_distance;
  located("group of blocks", bits_.position() / 8, [&] {
    GroupDecoder(*frame_, reference_.get(), bits_)
        .decode(kGroupWidth * (index % columns), kGroupSize / kGroupWidth * (index / columns));
  });
}

/// A picture header at once and, unless the header tells more, its first group.
int probe(Bytes data) {
  PaddedBytes bytes;
  bytes.assign(data.first(std::min<std::size_t>(data.size(), 16)));
  ByteReader bits(bytes);
  if (bits.left() < 64 || bits.bits(20) != 1u << 4) return 0;
  bits.skip(11);
  return bits.flag() || bits.bits(20) == (1u << 4 | 1) ? 70 : 0;
}

constexpr std::string_view kExtensions[] = {"261", "h261"};

}  // namespace

constinit const Codec kCodec = {"H.261", kExtensions, probe, [](Bytes data) -> std::unique_ptr<Decoder> {
                                  return std::make_unique<H261Decoder>(data);
                                }};

}  // namespace moxdec::h261
