#include "moxdec/h264/picture_decoder.hpp"

#include <exception>
#include <string>

#include "moxdec/error.hpp"

namespace moxdec::h264 {

bool PictureDecoder::completes_frame(const SliceHeader& slice) const {
  return single_field_ && slice.sps == sps_ && slice.field_pic && slice.bottom_field != first_slice_.bottom_field &&
         slice.frame_num == references_.current().frame_num && !slice.idr && !slice.resets_order &&
         (slice.nal_ref_idc == 0) == (first_slice_.nal_ref_idc == 0);
}

std::shared_ptr<const Frame> PictureDecoder::take_single_field() {
  single_field_ = false;
  picture_.frame->repeat_lines(first_slice_.parity());
  return picture_.frame;
}

void PictureDecoder::begin(const SliceHeader& first_slice) {
  in_work_ = false;
  if (completes_frame(first_slice)) {
    StoredPicture& stored = references_.begin_second_field(orders_.next(first_slice));
    picture_.begin(stored.frame, stored.motion.data(), first_slice);
    single_field_ = false;
  } else {
    if (first_slice.sps != sps_) configure(first_slice);
    fill_gap(first_slice);
    StoredPicture& stored = references_.begin(first_slice, orders_.next(first_slice), pool_.take());
    if (sps_->chroma_mb_height() == 0) stored.frame->fill_chroma(1 << (sps_->bit_depth_luma - 1));
    picture_.begin(stored.frame, stored.motion.data(), first_slice);
    single_field_ = first_slice.field_pic;
  }
  first_slice_ = first_slice;
  in_work_ = true;
  decoded_ = 0;
  rebuilder_.begin_picture();
}

void PictureDecoder::configure(const SliceHeader& slice) {
  sps_ = slice.sps;
  expands_ = outside_ == OutsideSamples::kExpanded;
  rebuilder_.set_outside(outside_);
  const Chroma chroma = sps_->chroma_format_idc == 2 ? Chroma::k422 : Chroma::k420;
  pool_.configure({sps_->width(), sps_->height(), chroma, sps_->bit_depth_luma},
                  {16 * sps_->mb_width, 16 * sps_->mb_height, sps_->crop.left, sps_->crop.top, expands_ ? kMargin : 0});
  references_.configure(sps_->max_ref_frames);
}

void PictureDecoder::fill_gap(const SliceHeader& slice) {
  SliceHeader missing;
  missing.sps = slice.sps;
  missing.nal_ref_idc = 1;
  const int range = sps_->max_frame_num();
  for (int number = references_.first_missing(slice); number != slice.frame_num; number = (number + 1) % range) {
    missing.frame_num = number;
    references_.add_missing(missing, sps_->poc_type == 0 ? FieldOrder{} : orders_.next(missing));
  }
}

void PictureDecoder::begin_slice(const Slice& slice) {
  inter_.lists = references_.lists(slice.header);
  if (slice.header.type == SliceType::kB) inter_.direct.begin_slice(slice.header, inter_.lists, references_);
  rebuilder_.begin_slice(slice, inter_.lists, references_);
}

std::shared_ptr<const LevelScales> PictureDecoder::scales_of(const SliceHeader& header) {
  if (header.sps != scales_sps_ || header.pps != scales_pps_) {
    scales_sps_ = header.sps, scales_pps_ = header.pps;
    scales_ = std::make_shared<const LevelScales>(
        resolve_scaling_lists(scales_sps_->scaling_lists, scales_pps_->scaling_lists));
  }
  return scales_;
}

void PictureDecoder::decode_slice(const SliceHeader& header, BitReader& bits) {
  const Slice& slice = picture_.slices.emplace_back(header, scales_of(header));
  try {
    const std::exception_ptr error = read_slice(slice, bits);
    rebuilder_.end_slice();  // throws first: it is behind reading
    if (error) std::rethrow_exception(error);
  } catch (const DecodeError&) {
    in_work_ = single_field_ = false;
    throw;
  }
}

std::exception_ptr PictureDecoder::read_slice(const Slice& slice, BitReader& bits) {
  int address = slice.header.first_mb;
  try {
    begin_slice(slice);
    MacroblockReader reader(bits, tables_, slice.header, inter_, picture_);
    read_macroblocks(reader, slice, bits, address);
    return nullptr;
  } catch (const DecodeError& error) {
    return std::make_exception_ptr(DecodeError("macroblock " + std::to_string(address) + ": " + error.what()));
  }
}

/// A pair tells once whether it is a field pair: before the first of its macroblocks that is not skipped.
void PictureDecoder::read_macroblocks(MacroblockReader& reader, const Slice& slice, BitReader& bits, int& address) {
  const auto index = static_cast<std::int32_t>(picture_.slices.size() - 1);
  const int end = picture_.macroblock_count();
  field_ = picture_.field_pic;
  do {
    int skipped = 0;
    if (slice.header.type != SliceType::kI) {
      skipped = bits.ue(static_cast<Mox32u>(end - address), "mb_skip_run");
      skip_macroblocks(reader, bits, skipped, address);
      if (skipped > 0 && !bits.more_data()) break;
    }
    require(address < end, "data go on behind the last macroblock");
    if (picture_.mbaff && (address % 2 == 0 || skipped > 0)) field_ = bits.flag();
    take_macroblock(address, [&](Macroblock& mb) { reader.read(mb, index); });
  } while (bits.more_data());
  require(!picture_.mbaff || address % 2 == 0, "half a pair of macroblocks");
}

void PictureDecoder::skip_macroblocks(MacroblockReader& reader, BitReader& bits, int count, int& address) {
  const auto index = static_cast<std::int32_t>(picture_.slices.size() - 1);
  for (int i = count; i > 0; --i) {
    if (picture_.mbaff && address % 2 == 0) {
      const bool lower_follows = i == 1 && bits.more_data();
      field_ = lower_follows ? bits.next_flag()
                             : infer_field_pair(picture_, picture_.x_of(address), picture_.y_of(address), index);
    }
    take_macroblock(address, [&](Macroblock& mb) { reader.skip(mb, index); });
  }
}

template <class Read>
void PictureDecoder::take_macroblock(int& address, Read read) {
  Macroblock& mb = rebuilder_.macroblock();
  mb.x = picture_.x_of(address);
  mb.y = picture_.y_of(address);
  mb.field = field_;
  MbInfo& info = picture_.at(mb.x, mb.y);
  require(info.slice < 0, "coded twice");
  picture_.fetch_early(mb.x, mb.y);
  read(mb);
  info.slice = static_cast<std::int32_t>(picture_.slices.size() - 1);
  rebuilder_.add(address);
  ++decoded_;
  ++address;
}

std::shared_ptr<const Frame> PictureDecoder::finish() {
  in_work_ = false;
  const int all = picture_.macroblock_count();
  if (decoded_ < all) {
    single_field_ = false;
    throw DecodeError(std::to_string(all - decoded_) + " of " + std::to_string(all) + " macroblocks are missing");
  }
  rebuilder_.end_picture();
  references_.finish(first_slice_);
  if (single_field_) return nullptr;
  if (expands_ && first_slice_.nal_ref_idc != 0) expand(*picture_.frame);
  return picture_.frame;
}

}  // namespace moxdec::h264
