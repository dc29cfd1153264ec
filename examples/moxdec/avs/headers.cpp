#include "moxdec/avs/headers.hpp"

#include "common/mpeg12_tables.hpp"

namespace moxdec::avs {
namespace {

constexpr int kJizhunProfile = 0x20;

/// Slices of pictures higher than this have a longer number.
constexpr int kHighPicture = 2800;

void read_loop_filter(BitReader& bits, PictureHeader& picture) {
  picture.loop_filter = !bits.flag();
  if (picture.loop_filter && bits.flag()) {
    picture.alpha_offset = bits.se(-8, 8, "alpha_c_offset");
    picture.beta_offset = bits.se(-8, 8, "beta_offset");
  }
}

Weight read_weight(BitReader& bits) {
  Weight weight;
  weight.scale = static_cast<int>(bits.bits(8));
  weight.shift = static_cast<std::int8_t>(bits.bits(8));
  require(bits.flag(), "a marker bit is 0");
  return weight;
}

}  // namespace

Sequence read_sequence_header(BitReader& bits) {
  Sequence sequence;
  require(bits.bits(8) == kJizhunProfile, "a profile other than Jizhun is not supported");
  bits.skip(8 + 1);  // level, progressive sequence
  sequence.width = static_cast<int>(bits.bits(14));
  sequence.height = static_cast<int>(bits.bits(14));
  require(bits.bits(2) == 1, "a chroma format other than 4:2:0 is not supported");
  require(bits.bits(3) == 1, "samples of other than 8 bits are not supported");
  bits.skip(4);  // shape of a sample
  const Mox32u rate = bits.bits(4);
  if (rate < example::kFrameRates.size()) {
    sequence.rate = {example::kFrameRates[rate].numerator, example::kFrameRates[rate].denominator};
  }
  bits.skip(18 + 1 + 12);  // bit rate
  sequence.low_delay = bits.flag();
  bits.expect_inside();
  require(sequence.width > 0 && sequence.height > 0, "a picture has no size");
  return sequence;
}

PictureHeader read_picture_header(BitReader& bits, int start_code, const Sequence& sequence) {
  PictureHeader picture;
  const bool intra = start_code == kIntraPicture;
  bits.skip(16);  // bbv_delay
  if (intra) {
    if (bits.flag()) bits.skip(24);  // time code
    require(bits.flag(), "a marker bit is 0");
  } else {
    const Mox32u type = bits.bits(2);
    require(type == 1 || type == 2, "picture_coding_type is out of range");
    picture.type = type == 1 ? PictureType::kP : PictureType::kB;
  }
  picture.distance = static_cast<int>(bits.bits(8));
  if (sequence.low_delay) bits.ue();  // bbv_check_times
  const bool progressive = bits.flag();
  if (!progressive) require(bits.flag(), "field pictures are not supported");
  bits.skip(2);  // order and repetition of fields
  picture.fixed_qp = bits.flag();
  picture.qp = static_cast<int>(bits.bits(6));
  if (intra) {
    bits.skip(4);
  } else {
    if (picture.type == PictureType::kP) picture.single_reference = bits.flag();
    bits.skip(1 + 3);  // whether B pictures have a forward reference; reserved
    picture.skip_runs = bits.flag();
  }
  read_loop_filter(bits, picture);
  bits.expect_inside();
  return picture;
}

SliceHeader read_slice_header(BitReader& bits, const Sequence& sequence, const PictureHeader& picture) {
  require(sequence.height <= kHighPicture, "a picture of more than 2800 rows is not supported");
  SliceHeader slice{picture.fixed_qp, picture.qp, false, false, {}};
  if (!picture.fixed_qp) {
    slice.fixed_qp = bits.flag();
    slice.qp = static_cast<int>(bits.bits(6));
  }
  if (picture.type == PictureType::kI) return slice;
  slice.weighted = bits.flag();
  if (!slice.weighted) return slice;
  for (auto& weights : slice.weights) {
    for (Weight& weight : weights) weight = read_weight(bits);
  }
  slice.weighted_by_macroblock = bits.flag();
  return slice;
}

}  // namespace moxdec::avs
