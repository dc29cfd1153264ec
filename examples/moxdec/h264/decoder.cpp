#include "moxdec/h264/decoder.hpp"

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include "moxdec/error.hpp"
#include "moxdec/h264/nal.hpp"
#include "moxdec/h264/output_order.hpp"
#include "moxdec/h264/picture_decoder.hpp"
#include "moxdec/h264/slice_header.hpp"

namespace moxdec::h264 {
namespace {

/// Units that, behind the slices of a picture, can only belong to the next one.
bool ends_picture(int type) {
  return (type >= kNalSei && type <= kNalEndOfStream) || (type >= kNalPrefix && type <= kNalReserved18);
}

/// Does a part of the work; adds to its errors where they happened.
template <class Work>
void located(const char* part, std::size_t position, Work work) {
  try {
    work();
  } catch (const DecodeError& error) {
    throw DecodeError(std::string(part) + " at byte " + std::to_string(position) + ": " + error.what());
  }
}

class H264Decoder : public Decoder {
 public:
  explicit H264Decoder(Bytes data) : units_(data) {}

  std::shared_ptr<const Frame> next() override {
    for (;;) {
      if (auto frame = output_.take()) return frame;
      if (error_) std::rethrow_exception(error_);
      if (at_end_) return nullptr;
      advance();
    }
  }
  void expand_references() override { picture_.set_outside(OutsideSamples::kExpanded); }
  void set_threads(int count) override { picture_.set_threads(count); }
  FrameRate frame_rate() const override { return sps_ ? sps_->frame_rate : FrameRate{}; }

 private:
  void advance();
  void decode_unit(const Nal& unit);
  void decode_slice(const Nal& unit);
  void begin_picture(const SliceHeader& slice, std::size_t position);
  void finish_picture();
  void finish_frame();
  void finish_stream();

  NalReader units_;
  Rbsp payload_;
  ParameterSets sets_;
  std::shared_ptr<const Sps> sps_;  // of the pictures since the last IDR picture
  PictureDecoder picture_;
  SliceHeader latest_;  // slice of the picture in work
  std::size_t picture_position_ = 0;
  OutputQueue output_;
  std::exception_ptr error_;
  bool at_end_ = false;
};

/// One step through the stream. After an error the whole pictures before it are still shown.
void H264Decoder::advance() {
  try {
    if (const auto unit = units_.next()) {
      if (ends_picture(unit->type)) finish_picture();
      decode_unit(*unit);
    } else {
      finish_stream();
    }
  } catch (const DecodeError&) {
    error_ = std::current_exception();
    if (picture_.is_complete()) finish_picture();
    finish_frame();
    output_.flush();
  }
}

void H264Decoder::finish_stream() {
  finish_picture();
  finish_frame();
  require(sps_ != nullptr, "no picture found");
  output_.flush();
  at_end_ = true;
}

void H264Decoder::decode_unit(const Nal& unit) {
  switch (unit.type) {
    case kNalSlice:
    case kNalIdrSlice: return decode_slice(unit);
    case kNalSps:
      payload_.assign(unit.payload);
      return located("sequence parameter set", unit.position, [&] { sets_.read_sps(payload_.reader(), unit.payload); });
    case kNalPps:
      payload_.assign(unit.payload);
      return located("picture parameter set", unit.position, [&] { sets_.read_pps(payload_.reader(), unit.payload); });
    default:
      located("slice", unit.position, [&] {
        require(unit.type < kNalPartitionA || unit.type > kNalPartitionC, "data partitioning is not supported");
      });
  }
}

void H264Decoder::decode_slice(const Nal& unit) {
  payload_.assign(unit.payload);
  BitReader bits = payload_.reader();
  SliceHeader slice;
  located("slice", unit.position, [&] { slice = parse_slice_header(bits, unit, sets_); });
  if (slice.redundant_pic_count > 0) return;
  if (!picture_.in_work() || begins_new_picture(latest_, slice)) {
    finish_picture();
    located("slice", unit.position, [&] { begin_picture(slice, unit.position); });
  }
  located("slice", unit.position, [&] { picture_.decode_slice(slice, bits); });
  latest_ = std::move(slice);
}

void H264Decoder::begin_picture(const SliceHeader& slice, std::size_t position) {
  if (slice.sps != sps_) {
    require(!sps_ || slice.idr, "the sequence parameter set changes without an IDR picture");
    sps_ = slice.sps;
  }
  picture_position_ = position;
  if (!picture_.completes_frame(slice)) finish_frame();
  if (slice.idr || slice.resets_order) output_.flush();
  output_.set_window(sps_->reorder_frames);
  try {
    picture_.begin(slice);
  } catch (const std::bad_alloc&) {
    throw DecodeError("not enough memory for a picture");
  }
}

void H264Decoder::finish_picture() {
  if (!picture_.in_work()) return;
  located("picture", picture_position_, [&] {
    if (auto frame = picture_.finish()) output_.add(std::move(frame), picture_.order());
  });
}

/// A field whose frame gets no other one.
void H264Decoder::finish_frame() {
  if (picture_.has_single_field()) output_.add(picture_.take_single_field(), picture_.order());
}

/// A start code at once, then only units with whole headers, and a sequence parameter set before the first slice.
int probe(Bytes data) {
  const bool starts =
      data.size() > 4 && data[0] == 0 && data[1] == 0 && (data[2] == 1 || (data[2] == 0 && data[3] == 1));
  if (!starts) return 0;
  try {
    NalReader units(data.first(std::min<std::size_t>(data.size(), 65536)));
    while (const auto unit = units.next()) {
      if (unit->type == kNalSps && unit->ref_idc != 0) {
        Rbsp payload;
        payload.assign(unit->payload);
        BitReader bits = payload.reader();
        parse_sps(bits);
        return 90;
      }
      if (unit->type < kNalSei || unit->type > kNalDelimiter) return 0;
    }
  } catch (const DecodeError&) {
  }
  return 0;
}

constexpr std::string_view kExtensions[] = {"264", "h264", "avc", "26l", "jsv"};

}  // namespace

constinit const Codec kCodec = {"H.264", kExtensions, probe, [](Bytes data) -> std::unique_ptr<Decoder> {
                                  return std::make_unique<H264Decoder>(data);
                                }};

}  // namespace moxdec::h264
