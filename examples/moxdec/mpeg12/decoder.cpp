#include "moxdec/mpeg12/decoder.hpp"

#include <algorithm>
#include <new>
#include <optional>

#include "moxdec/error.hpp"
#include "moxdec/mpeg12/slice_decoder.hpp"
#include "moxdec/unit_decoder.hpp"

namespace moxdec::mpeg12 {
namespace {

bool is_slice(int code) { return code >= kFirstSlice && code <= kLastSlice; }

class Mpeg12Decoder : public UnitDecoder {
 public:
  explicit Mpeg12Decoder(Bytes data) : UnitDecoder(data) {}

  FrameRate frame_rate() const override { return sequence_.rate; }

 private:
  void decode_unit(const Unit& unit) override;
  void decode_header(const Unit& unit);
  void decode_group(WordReader& bits);
  void decode_extension(WordReader& bits);
  void decode_slice(const Unit& unit);
  void begin_picture();
  void begin_frame();
  void finish_picture();
  void finish_frame();
  void finish_stream() override;
  void finish_whole_picture() override {
    if (in_work_ && picture_.is_complete()) finish_picture();
  }

  Payload payload_;
  CodeTables tables_;
  Sequence sequence_;  // the latest header's
  Weights weights_;
  std::optional<PictureHeader> header_;  // of a picture whose slices have not begun
  Picture picture_;
  bool in_work_ = false;       // slices of picture_ may follow
  bool awaits_field_ = false;  // picture_ is a first field
  bool open_group_ = false;    // B pictures behind the group's first picture are predicted from the group before, too
  bool left_out_ = false;      // the latest picture header's slices are passed over
  std::size_t picture_position_ = 0;
  FramePool pool_;
  std::shared_ptr<const Frame> older_, newer_;  // references in display order
};

void Mpeg12Decoder::decode_unit(const Unit& unit) {
  if (is_slice(unit.code)) return decode_slice(unit);
  finish_picture();
  if (unit.code >= kFirstSystem) throw DecodeError("a system stream is not supported, only video alone");
  if (unit.code == kSequenceEnd) {
    flush();
    older_ = newer_ = nullptr;
  }
  located("header", unit.position, [&] { decode_header(unit); });
}

void Mpeg12Decoder::decode_header(const Unit& unit) {
  if (unit.code != kSequenceHeader && unit.code != kPictureStart && unit.code != kExtension && unit.code != kGroupStart)
    return;
  payload_.assign(unit.payload);
  WordReader bits = payload_.reader();
  if (unit.code == kSequenceHeader) {
    read_sequence_header(bits, sequence_, weights_);
  } else if (unit.code == kExtension) {
    decode_extension(bits);
  } else if (unit.code == kGroupStart) {
    decode_group(bits);
  } else {
    require(sequence_.width > 0, "a picture in front of the first sequence header");
    read_picture_header(bits, header_.emplace());
    picture_position_ = unit.position;
  }
}

/// A broken link says that the group before is not the one that its B pictures were predicted from.
void Mpeg12Decoder::decode_group(WordReader& bits) {
  bits.skip(25);
  open_group_ = !bits.flag();
  if (!bits.flag()) return;
  flush();
  older_ = newer_ = nullptr;
}

void Mpeg12Decoder::decode_extension(WordReader& bits) {
  const int id = bits.number(4);
  require(id != kSequenceScalableExtension, "scalable streams are not supported");
  require(sequence_.width > 0, "an extension in front of the first sequence header");
  if (id == kSequenceExtension && !sequence_.mpeg2) read_sequence_extension(bits, sequence_);
  if (id == kQuantMatrixExtension) read_quant_matrix_extension(bits, weights_);
  if (id == kPictureCodingExtension && header_) read_picture_coding_extension(bits, *header_);
}

void Mpeg12Decoder::decode_slice(const Unit& unit) {
  located("slice", unit.position, [&] {
    if (header_) begin_picture();
    if (left_out_) return;
    require(in_work_, "a slice without a picture header");
    payload_.assign(unit.payload);
    SliceDecoder(picture_, weights_, tables_, payload_.reader()).decode(unit.code);
  });
}

void Mpeg12Decoder::begin_picture() {
  const PictureHeader header = *header_;
  header_.reset();
  left_out_ = header.type == PictureType::kB && open_group_ && newer_ && !older_;
  if (left_out_) return;
  require(header.has_extension == sequence_.mpeg2, "a picture without its extension, or with one in MPEG-1");
  const bool second = awaits_field_ && !header.is_frame() && header.structure != picture_.header.structure &&
                      (header.type == PictureType::kB) == (picture_.header.type == PictureType::kB);
  require(second || !awaits_field_, "a field without the other one of its frame");
  require(header.is_frame() || !sequence_.progressive, "a field in a progressive sequence");
  picture_.header = header;
  picture_.second_field = second;
  picture_.next_address = 0;
  if (!second) begin_frame();
  in_work_ = true;
}

void Mpeg12Decoder::begin_frame() {
  if (!sequence_.same_pictures(picture_.sequence)) {
    flush();
    older_ = newer_ = nullptr;
  }
  picture_.sequence = sequence_;
  const bool bidirectional = picture_.header.type == PictureType::kB;
  picture_.reference = {bidirectional ? older_ : newer_, bidirectional ? newer_ : nullptr};
  try {
    pool_.configure({sequence_.width, sequence_.height, sequence_.chroma, 8},
                    {16 * sequence_.mb_width(), 16 * sequence_.mb_height(), 0, 0, 0});
    picture_.frame = pool_.take();
  } catch (const std::bad_alloc&) {
    throw DecodeError("not enough memory for a picture");
  }
}

void Mpeg12Decoder::finish_picture() {
  if (!in_work_) return;
  in_work_ = false;
  located("picture", picture_position_,
          [&] { require(picture_.is_complete(), "macroblocks are missing at the end of the picture"); });
  awaits_field_ = !picture_.header.is_frame() && !picture_.second_field;
  if (!awaits_field_) finish_frame();
}

void Mpeg12Decoder::finish_frame() {
  if (picture_.header.type == PictureType::kB) return show(std::move(picture_.frame));
  hold(picture_.frame);
  older_ = std::move(newer_);
  newer_ = std::move(picture_.frame);
}

void Mpeg12Decoder::finish_stream() {
  finish_picture();
  located("picture", picture_position_, [&] { require(!awaits_field_, "a field without the other one of its frame"); });
  require(picture_.sequence.width > 0, "no picture found");
}

/// A sequence header at once.
int probe(Bytes data) {
  std::size_t zeros = 0;
  while (zeros < data.size() && data[zeros] == 0) ++zeros;
  const bool starts = zeros >= 2 && zeros + 1 < data.size() && data[zeros] == 1;
  return starts && data[zeros + 1] == kSequenceHeader ? 80 : 0;
}

constexpr std::string_view kExtensions[] = {"m1v", "m2v", "mpv", "mpeg1", "mpeg2"};

}  // namespace

constinit const Codec kCodec = {"MPEG-1/2", kExtensions, probe, [](Bytes data) -> std::unique_ptr<Decoder> {
                                  return std::make_unique<Mpeg12Decoder>(data);
                                }};

}  // namespace moxdec::mpeg12
