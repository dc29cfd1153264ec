#include "moxdec/h264/picture_decoder.hpp"

#include <string>

#include "moxdec/error.hpp"
#include "moxdec/h264/deblock.hpp"
#include "moxdec/h264/reconstruct.hpp"

namespace moxdec::h264 {

void PictureDecoder::begin(const SliceHeader& first_slice) {
  in_work_ = false;
  if (first_slice.sps != sps_) configure(first_slice);
  fill_gap(first_slice);
  order_ = orders_.next(first_slice);
  StoredPicture& stored = references_.begin(first_slice, order_, pool_.take());
  if (sps_->chroma_mb_height() == 0) stored.frame->fill_chroma(1 << (sps_->bit_depth_luma - 1));
  picture_.begin(stored.frame, stored.motion.data(), sps_->mb_width, sps_->mb_height);
  first_slice_ = first_slice;
  in_work_ = true;
  decoded_ = complete_ = filtered_rows_ = 0;
}

void PictureDecoder::configure(const SliceHeader& slice) {
  sps_ = slice.sps;
  // A block that leaves so small a picture at two sides is beyond what the library repeats samples for.
  expands_ = outside_ == OutsideSamples::kExpanded || sps_->mb_width == 1 || sps_->mb_height == 1;
  predictor_.set_outside(expands_ ? OutsideSamples::kExpanded : OutsideSamples::kOnDemand);
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

void PictureDecoder::begin_slice(const SliceHeader& header) {
  const int order = order_.frame();
  inter_.lists = references_.lists(header);
  if (header.type == SliceType::kB) inter_.direct.begin_slice(header, inter_.lists, references_, order);
  if (header.type != SliceType::kI) predictor_.begin_slice(header, inter_.lists, references_, order);
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
  int address = header.first_mb;
  try {
    begin_slice(slice.header);
    MacroblockReader reader(bits, tables_, slice.header, inter_, picture_);
    decode_macroblocks(reader, slice, bits, address);
  } catch (const DecodeError& error) {
    in_work_ = false;
    throw DecodeError("macroblock " + std::to_string(address) + ": " + error.what());
  }
}

void PictureDecoder::decode_macroblocks(MacroblockReader& reader, const Slice& slice, BitReader& bits, int& address) {
  const auto index = static_cast<std::int32_t>(picture_.slices.size() - 1);
  const int end = static_cast<int>(picture_.macroblocks.size());
  do {
    if (slice.header.type != SliceType::kI) {
      const int skipped = bits.ue(static_cast<Mox32u>(end - address), "mb_skip_run");
      for (int i = 0; i < skipped; ++i) decode_macroblock(slice, address, [&] { reader.skip(mb_, index); });
      if (skipped > 0 && !bits.more_data()) return;
    }
    require(address < end, "data go on behind the last macroblock");
    decode_macroblock(slice, address, [&] { reader.read(mb_, index); });
  } while (bits.more_data());
}

template <class Read>
void PictureDecoder::decode_macroblock(const Slice& slice, int& address, Read read) {
  MbInfo& info = picture_.macroblocks[static_cast<std::size_t>(address)];
  require(info.slice < 0, "coded twice");
  mb_.x = address % picture_.mb_width;
  mb_.y = address / picture_.mb_width;
  read();
  if (mb_.kind == MbKind::kInter) {
    predictor_.predict(picture_, mb_);
    reconstruct_inter(picture_, slice, mb_);
  } else {
    reconstruct_intra(picture_, slice, mb_);
  }
  info.slice = static_cast<std::int32_t>(picture_.slices.size() - 1);
  ++decoded_;
  ++address;
  if (address % picture_.mb_width == 0) filter_complete_rows();
}

void PictureDecoder::filter_complete_rows() {
  const int all = static_cast<int>(picture_.macroblocks.size());
  while (complete_ < all && picture_.macroblocks[static_cast<std::size_t>(complete_)].slice >= 0) ++complete_;
  const int ready = complete_ == all ? picture_.mb_height : complete_ / picture_.mb_width - 1;
  for (; filtered_rows_ < ready; ++filtered_rows_) deblock_row(picture_, filtered_rows_);
}

std::shared_ptr<const Frame> PictureDecoder::finish() {
  in_work_ = false;
  const int all = static_cast<int>(picture_.macroblocks.size());
  if (decoded_ < all) {
    throw DecodeError(std::to_string(all - decoded_) + " of " + std::to_string(all) + " macroblocks are missing");
  }
  filter_complete_rows();
  if (expands_ && first_slice_.nal_ref_idc != 0) expand(*picture_.frame);
  references_.finish(first_slice_);
  return picture_.frame;
}

}  // namespace moxdec::h264
