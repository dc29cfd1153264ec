#include "moxdec/h264/picture_decoder.hpp"

#include <string>

#include "moxdec/error.hpp"
#include "moxdec/h264/deblock.hpp"
#include "moxdec/h264/reconstruct.hpp"

namespace moxdec::h264 {

void PictureDecoder::begin(const SliceHeader& first_slice) {
  const Sps& sps = *first_slice.sps;
  in_work_ = false;
  pool_.configure({sps.width(), sps.height(), Chroma::k420, 8},
                  {16 * sps.mb_width, 16 * sps.mb_height, sps.crop.left, sps.crop.top, 0});
  picture_.begin(pool_.take(), sps.mb_width, sps.mb_height);
  in_work_ = true;
  decoded_ = complete_ = filtered_rows_ = 0;
}

void PictureDecoder::decode_slice(const SliceHeader& header, BitReader& bits) {
  const Slice& slice = picture_.slices.emplace_back(header);
  const int end = static_cast<int>(picture_.macroblocks.size());
  MacroblockReader reader(bits, tables_, header);
  int address = header.first_mb;
  try {
    do {
      require(address < end, "data go on behind the last macroblock");
      decode_macroblock(reader, slice, address);
      ++address;
      if (address % picture_.mb_width == 0) filter_complete_rows();
    } while (bits.more_data());
  } catch (const DecodeError& error) {
    in_work_ = false;
    throw DecodeError("macroblock " + std::to_string(address) + ": " + error.what());
  }
}

void PictureDecoder::decode_macroblock(MacroblockReader& reader, const Slice& slice, int address) {
  MbInfo& info = picture_.macroblocks[static_cast<std::size_t>(address)];
  require(info.slice < 0, "coded twice");
  const auto slice_index = static_cast<std::int32_t>(picture_.slices.size() - 1);
  mb_.x = address % picture_.mb_width;
  mb_.y = address / picture_.mb_width;
  reader.read_intra(mb_, info, picture_.neighbours(mb_.x, mb_.y, slice_index));
  reconstruct_intra(picture_, slice, mb_);
  info.slice = slice_index;
  ++decoded_;
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
  return picture_.frame;
}

}  // namespace moxdec::h264
