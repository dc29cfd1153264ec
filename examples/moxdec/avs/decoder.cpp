#include "moxdec/avs/decoder.hpp"

#include <new>

#include "moxdec/avs/deblock.hpp"
#include "moxdec/avs/slice_decoder.hpp"
#include "moxdec/error.hpp"
#include "moxdec/unit_decoder.hpp"

namespace moxdec::avs {
namespace {

class AvsDecoder : public UnitDecoder {
 public:
  explicit AvsDecoder(Bytes data) : UnitDecoder(data) {}

  FrameRate frame_rate() const override { return sequence_.rate; }

 private:
  void decode_unit(const Unit& unit) override;
  void decode_sequence_header();
  void begin_picture(int start_code);
  void set_references(Picture& picture) const;
  void finish_picture();
  void finish_stream() override;
  void finish_whole_picture() override {
    if (picture_ && picture_->is_complete()) finish_picture();
  }

  Payload payload_;
  Sequence sequence_;
  FramePool pool_;
  std::shared_ptr<Picture> picture_;  // in work
  bool left_out_ = false;             // slices of a B picture without its references are passed over
  std::size_t picture_position_ = 0;
  std::shared_ptr<const Picture> older_, newer_;  // references in display order
};

void AvsDecoder::decode_unit(const Unit& unit) {
  payload_.assign(unit.payload);
  if (unit.code <= kLastSlice) {
    if (left_out_) return;
    return located("slice", unit.position, [&] {
      require(picture_ != nullptr, "a slice without a picture header");
      SliceDecoder(*picture_, payload_.reader()).decode(unit.code);
    });
  }
  finish_picture();
  left_out_ = false;
  located("header", unit.position, [&] {
    if (unit.code == kSequenceHeader) decode_sequence_header();
    if (unit.code == kIntraPicture || unit.code == kInterPicture) {
      picture_position_ = unit.position;
      begin_picture(unit.code);
    }
  });
  if (unit.code == kSequenceEnd) {
    flush();
    older_ = newer_ = nullptr;
  }
}

void AvsDecoder::decode_sequence_header() {
  BitReader bits = payload_.reader();
  const Sequence sequence = read_sequence_header(bits);
  if (sequence.width != sequence_.width || sequence.height != sequence_.height) {
    flush();
    older_ = newer_ = nullptr;
  }
  sequence_ = sequence;
}

void AvsDecoder::begin_picture(int start_code) {
  require(sequence_.width > 0, "a picture in front of the first sequence header");
  BitReader bits = payload_.reader();
  const PictureHeader header = read_picture_header(bits, start_code, sequence_);
  left_out_ = header.type == PictureType::kB && !older_;
  if (left_out_) return;
  try {
    pool_.configure({sequence_.width, sequence_.height, Chroma::k420, 8},
                    {16 * sequence_.mb_width(), 16 * sequence_.mb_height(), 0, 0, 0});
    auto picture = std::make_shared<Picture>();
    picture->sequence = sequence_;
    picture->header = header;
    picture->frame = pool_.take();
    const auto macroblocks = static_cast<std::size_t>(picture->macroblocks());
    picture->motion.resize(4 * macroblocks);
    picture->modes.resize(4 * macroblocks);
    picture->qps.resize(macroblocks);
    picture->slices.assign(macroblocks, -1);
    set_references(*picture);
    picture_ = std::move(picture);
  } catch (const std::bad_alloc&) {
    throw DecodeError("not enough memory for a picture");
  }
}

/// A reference at the picture's own distance cannot be one.
void AvsDecoder::set_references(Picture& picture) const {
  const auto add = [&](Direction direction, int index, const std::shared_ptr<const Picture>& reference) {
    if (!reference) return;
    const int ahead = 2 * (reference->header.distance - picture.header.distance);
    const int distance = (direction == kForward ? -ahead : ahead) & 511;
    require(distance != 0, "a picture and its reference have the same distance");
    picture.references[direction][static_cast<std::size_t>(index)] = reference;
    picture.distances[direction][static_cast<std::size_t>(index)] = distance;
  };
  if (picture.header.type == PictureType::kP) {
    require(newer_ != nullptr, "a P picture without a picture before it");
    add(kForward, 0, newer_);
    add(kForward, 1, older_);
  } else if (picture.header.type == PictureType::kB) {
    add(kForward, 0, older_);
    add(kBackward, 0, newer_);
  }
}

/// A finished picture lets go of
/// its references.
void AvsDecoder::finish_picture() {
  if (!picture_) return;
  const std::shared_ptr<Picture> picture = std::move(picture_);
  located("picture", picture_position_,
          [&] { require(picture->is_complete(), "macroblocks are missing at the end of the picture"); });
  picture->references = {};
  if (picture->header.loop_filter) filter_picture(*picture);
  if (picture->header.type == PictureType::kB) return show(picture->frame);
  hold(picture->frame);
  older_ = std::move(newer_);
  newer_ = picture;
}

void AvsDecoder::finish_stream() {
  finish_picture();
  require(picture_position_ > 0, "no picture found");
}

/// A sequence header at once. MPEG-4 streams may begin with the same start code, but the next one comes a byte later.
int probe(Bytes data) {
  const auto starts_at = [&](std::size_t at) { return data[at] == 0 && data[at + 1] == 0 && data[at + 2] == 1; };
  return data.size() >= 8 && starts_at(0) && data[3] == kSequenceHeader && !starts_at(5) ? 80 : 0;
}

constexpr std::string_view kExtensions[] = {"avs", "cavs"};

}  // namespace

constinit const Codec kCodec = {"AVS", kExtensions, probe, [](Bytes data) -> std::unique_ptr<Decoder> {
                                  return std::make_unique<AvsDecoder>(data);
                                }};

}  // namespace moxdec::avs
