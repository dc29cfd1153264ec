#include "moxdec/mpeg4/decoder.hpp"

#include <algorithm>
#include <new>

#include "moxdec/error.hpp"
#include "moxdec/mpeg4/clock.hpp"
#include "moxdec/mpeg4/picture_decoder.hpp"
#include "moxdec/unit_decoder.hpp"

namespace moxdec::mpeg4 {
namespace {

bool between(int code, int first, int last) { return code >= first && code <= last; }

/// Pictures of H.263 have a start code of 22 bits.
bool has_short_header(Bytes data) {
  return data.size() > 2 && data[0] == 0 && data[1] == 0 && data[2] >> 2 == 0x80 >> 2;
}

class Mpeg4Decoder : public UnitDecoder {
 public:
  explicit Mpeg4Decoder(Bytes data) : UnitDecoder(data), short_header_(has_short_header(data)) {}

  FrameRate frame_rate() const override {
    if (layer_.fixed_time_step == 0) return {};
    return {static_cast<std::uint32_t>(layer_.time_resolution), static_cast<std::uint32_t>(layer_.fixed_time_step)};
  }

 private:
  void decode_unit(const Unit& unit) override;
  void decode_header(const Unit& unit);
  void begin_layer(const Layer& layer);
  void decode_picture();
  void show_again(const PictureHeader& header, std::int64_t time);
  void begin_picture(const PictureHeader& header, std::int64_t time);
  void finish_picture();
  void forget_references();
  void finish_stream() override;

  bool short_header_;
  PaddedBytes payload_;
  int version_ = 1;
  Layer layer_;  // the latest header's; without a width before the first one
  Workshop workshop_;
  Clock clock_;
  Picture picture_;
  std::vector<MbState> states_;
  FramePool pool_;
  std::shared_ptr<const Frame> older_, newer_;  // references in display order
  std::shared_ptr<const Frame> latest_;         // of the pictures in the order of the stream
  bool damaged_ = false;                        // macroblocks are shown without their texture
  bool any_picture_ = false;
};

void Mpeg4Decoder::decode_unit(const Unit& unit) {
  payload_.assign(unit.payload);
  if (unit.code == kPictureStart) return located("picture", unit.position, [&] { decode_picture(); });
  if (unit.code == kSequenceEnd) return forget_references();
  located("header", unit.position, [&] { decode_header(unit); });
}

void Mpeg4Decoder::decode_header(const Unit& unit) {
  ByteReader bits(payload_);
  if (between(unit.code, kFirstLayer, kLastLayer)) {
    begin_layer(read_layer_header(bits, version_));
  } else if (unit.code == kObjectStart) {
    version_ = read_object_header(bits);
  } else if (unit.code == kGroupStart) {
    const GroupHeader group = read_group_header(bits);
    clock_.synchronise(group.seconds);
    if (group.broken_link) forget_references();
  }
}

void Mpeg4Decoder::begin_layer(const Layer& layer) {
  const bool same = layer.width == layer_.width && layer.height == layer_.height;
  layer_ = layer;
  workshop_.quantisers = Quantisers(layer);
  if (!same) forget_references();
}

void Mpeg4Decoder::decode_picture() {
  require(layer_.width > 0, "a picture in front of the first header of a layer");
  ByteReader bits(payload_);
  const PictureHeader header = read_picture_header(bits, layer_);
  const std::int64_t time = clock_.time_of(header, layer_);
  if (!header.coded) return show_again(header, time);
  if (header.type == PictureType::kB && !older_) return;  // it has lost a reference
  begin_picture(header, time);
  PictureDecoder decoder(picture_, workshop_, bits);
  decoder.decode();
  damaged_ |= decoder.damaged();
  finish_picture();
}

/// A picture that is not coded is like the one before it. One that comes no later than its reference only fills a
/// place.
void Mpeg4Decoder::show_again(const PictureHeader& header, std::int64_t time) {
  if (!latest_) return;
  if (header.type == PictureType::kB) {
    show(latest_);
  } else if (clock_.is_later(time)) {
    hold(newer_);
  }
}

void Mpeg4Decoder::begin_picture(const PictureHeader& header, std::int64_t time) {
  picture_.layer = layer_;
  picture_.header = header;
  picture_.states = &states_;
  const bool bidirectional = header.type == PictureType::kB;
  picture_.reference = {bidirectional ? older_ : newer_, bidirectional ? newer_ : nullptr};
  try {
    states_.resize(static_cast<std::size_t>(layer_.macroblocks()));
    workshop_.intra.begin_picture(layer_.macroblocks());
    pool_.configure({layer_.width, layer_.height, Chroma::k420, 8},
                    {16 * layer_.mb_width(), 16 * layer_.mb_height(), 0, 0, 0});
    picture_.frame = pool_.take();
  } catch (const std::bad_alloc&) {
    throw DecodeError("not enough memory for a picture");
  }
  if (bidirectional) {
    picture_.distances = clock_.distances(time);
  } else {
    clock_.begin_reference(time);
  }
  if (header.type == PictureType::kS) workshop_.warp.begin_picture(picture_);
}

void Mpeg4Decoder::finish_picture() {
  any_picture_ = true;
  latest_ = picture_.frame;
  if (picture_.header.type == PictureType::kB) return show(std::move(picture_.frame));
  hold(picture_.frame);
  older_ = std::move(newer_);
  newer_ = std::move(picture_.frame);
}

void Mpeg4Decoder::forget_references() {
  flush();
  older_ = newer_ = latest_ = nullptr;
}

void Mpeg4Decoder::finish_stream() {
  require(any_picture_ || !short_header_, "pictures with short headers are to be decoded as H.263");
  require(any_picture_, "no picture found");
  require(!damaged_, "the texture of macroblocks is damaged; they are shown without");
}

/// A layer at once, or behind headers that belong to it.
int probe(Bytes data) {
  Unit unit;
  UnitReader units(data.first(std::min<std::size_t>(data.size(), 256)));
  for (int sure = 0; units.next(unit); sure = 80) {
    if (sure == 0 && unit.position > 8) return 0;
    if (between(unit.code, kFirstLayer, kLastLayer)) return std::max(sure, 50);
    const bool header = unit.code == kSequenceStart || unit.code == kObjectStart || unit.code == kUserData ||
                        between(unit.code, kFirstObject, kLastObject);
    if (!header) return 0;
  }
  return 0;
}

constexpr std::string_view kExtensions[] = {"m4v", "mpeg4", "cmp"};

}  // namespace

constinit const Codec kCodec = {"MPEG-4", kExtensions, probe, [](Bytes data) -> std::unique_ptr<Decoder> {
                                  return std::make_unique<Mpeg4Decoder>(data);
                                }};

}  // namespace moxdec::mpeg4
