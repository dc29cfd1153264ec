#include "moxdec/h264/slice_header.hpp"

#include <iterator>
#include <string>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

[[noreturn]] void unsupported(const std::string& what, const char* verb = "is") {
  throw DecodeError(what + " " + verb + " not supported");
}

void expect_supported(const Sps& sps, const Pps& pps) {
  if (pps.cabac) unsupported("CABAC");
  if (sps.chroma_format_idc == 3) unsupported("4:4:4 chroma");
  if (sps.bit_depth_luma != sps.bit_depth_chroma && sps.chroma_format_idc != 0) {
    unsupported("a bit depth of chroma other than luma's");
  }
  if (pps.slice_groups > 1) unsupported("slice groups", "are");
}

SliceType parse_type(BitReader& bits) {
  const auto type = static_cast<SliceType>(bits.ue(9, "slice_type") % 5);
  if (type == SliceType::kSP) unsupported("SP slices", "are");
  if (type == SliceType::kSI) unsupported("SI slices", "are");
  return type;
}

void parse_picture_structure(BitReader& bits, SliceHeader& slice) {
  if (slice.sps->frame_mbs_only) return;
  slice.field_pic = bits.flag();
  if (slice.field_pic) slice.bottom_field = bits.flag();
}

void parse_picture_order(BitReader& bits, SliceHeader& slice) {
  const Sps& sps = *slice.sps;
  const bool bottom_too = slice.pps->bottom_field_poc && !slice.field_pic;
  if (sps.poc_type == 0) {
    slice.poc_lsb = static_cast<int>(bits.bits(sps.log2_max_poc_lsb));
    if (bottom_too) slice.delta_poc_bottom = bits.se();
  } else if (sps.poc_type == 1 && !sps.delta_poc_always_zero) {
    slice.delta_poc[0] = bits.se();
    if (bottom_too) slice.delta_poc[1] = bits.se();
  }
}

void parse_list_changes(BitReader& bits, SliceHeader& slice) {
  const Mox32u highest = static_cast<Mox32u>(slice.number_range()) - 1, longest = slice.field_pic ? 31 : 15;
  for (int list = 0; list < list_count(slice.type); ++list) {
    if (!bits.flag()) continue;
    auto& changes = slice.list_changes[list];
    for (int operation; (operation = bits.ue(3, "modification_of_pic_nums_idc")) != 3;) {
      require(std::ssize(changes) < slice.ref_count[list], "too many changes to a reference list");
      changes.push_back({operation, bits.ue(operation == 2 ? longest : highest, "picture number")});
    }
  }
}

void parse_reference_lists(BitReader& bits, SliceHeader& slice) {
  const int lists = list_count(slice.type);
  if (lists == 2) slice.direct_spatial = bits.flag();
  const bool has_counts = lists > 0 && bits.flag();
  for (int list = 0; list < lists; ++list) {
    const int longest = slice.field_pic ? kMaxListEntries : kMaxListEntries / 2;
    slice.ref_count[list] = has_counts ? 1 + bits.ue(static_cast<Mox32u>(longest - 1), "num_ref_idx_active_minus1")
                                       : slice.pps->default_ref_count[list];
    require(slice.ref_count[list] <= longest, "num_ref_idx_active_minus1 is out of range");
  }
  parse_list_changes(bits, slice);
}

void parse_weight(BitReader& bits, Weight& weight) {
  weight.weight = static_cast<std::int16_t>(bits.se(-128, 127, "prediction weight"));
  weight.offset = static_cast<std::int16_t>(bits.se(-128, 127, "prediction offset"));
}

void parse_weights(BitReader& bits, SliceHeader& slice) {
  slice.explicit_weights = slice.type == SliceType::kP   ? slice.pps->weighted_pred
                           : slice.type == SliceType::kB ? slice.pps->weighted_bipred_idc == 1
                                                         : false;
  if (!slice.explicit_weights) return;
  auto& log2 = slice.weights.log2_denominator;
  log2[0] = bits.ue(7, "luma_log2_weight_denom");
  const bool has_chroma = slice.sps->chroma_format_idc != 0;
  log2[1] = log2[2] = has_chroma ? bits.ue(7, "chroma_log2_weight_denom") : 0;
  for (int list = 0; list < list_count(slice.type); ++list) {
    for (int i = 0; i < slice.ref_count[list]; ++i) {
      auto& planes = slice.weights.weights[list][i];
      for (int plane = 0; plane < 3; ++plane) planes[plane] = {static_cast<std::int16_t>(1 << log2[plane]), 0};
      if (bits.flag()) parse_weight(bits, planes[0]);
      if (has_chroma && bits.flag()) parse_weight(bits, planes[1]), parse_weight(bits, planes[2]);
    }
  }
}

MarkingOperation parse_marking_operation(BitReader& bits, const SliceHeader& slice, int operation) {
  constexpr Mox32u kHighestIndex = 15;
  const Mox32u highest = static_cast<Mox32u>(slice.number_range()) - 1;
  switch (operation) {
    case 1: return {operation, bits.ue(highest, "difference_of_pic_nums_minus1")};
    case 2: return {operation, bits.ue(slice.field_pic ? 2 * kHighestIndex + 1 : kHighestIndex, "long_term_pic_num")};
    case 3: {
      const int difference = bits.ue(highest, "difference_of_pic_nums_minus1");
      return {operation, difference, bits.ue(kHighestIndex, "long_term_frame_idx")};
    }
    case 4: return {operation, bits.ue(kHighestIndex + 1, "max_long_term_frame_idx_plus1")};
    case 5: return {operation};
    default: return {operation, bits.ue(kHighestIndex, "long_term_frame_idx")};
  }
}

void parse_reference_marking(BitReader& bits, SliceHeader& slice) {
  if (slice.idr) {
    bits.skip(1);  // all frames are shown
    slice.long_term = bits.flag();
    return;
  }
  slice.adaptive_marking = bits.flag();
  if (!slice.adaptive_marking) return;
  while (const int operation = bits.ue(6, "memory_management_control_operation")) {
    slice.resets_order |= operation == 5;
    slice.marking.push_back(parse_marking_operation(bits, slice, operation));
  }
}

void parse_deblocking(BitReader& bits, SliceHeader& slice) {
  slice.deblocking = static_cast<Deblocking>(bits.ue(2, "disable_deblocking_filter_idc"));
  if (slice.deblocking == Deblocking::kOff) return;
  slice.alpha_offset = 2 * bits.se(-6, 6, "slice_alpha_c0_offset_div2");
  slice.beta_offset = 2 * bits.se(-6, 6, "slice_beta_offset_div2");
}

}  // namespace

SliceHeader parse_slice_header(BitReader& bits, const Nal& nal, const ParameterSets& sets) {
  SliceHeader slice;
  slice.nal_ref_idc = nal.ref_idc;
  slice.idr = nal.type == kNalIdrSlice;
  require(!slice.idr || slice.nal_ref_idc != 0, "nal_ref_idc is out of range");
  const Mox32u first_mb = bits.ue();
  slice.type = parse_type(bits);
  require(!slice.idr || slice.type == SliceType::kI, "slice_type is out of range");
  slice.pps = sets.pps(bits.ue());
  slice.sps = sets.sps(static_cast<Mox32u>(slice.pps->sps_id));
  expect_supported(*slice.sps, *slice.pps);
  slice.frame_num = static_cast<int>(bits.bits(slice.sps->log2_max_frame_num));
  require(!slice.idr || slice.frame_num == 0, "frame_num is out of range");
  parse_picture_structure(bits, slice);
  const int unit = slice.mbaff() ? 2 : 1;  // slices begin at pairs
  require(first_mb < static_cast<Mox32u>(slice.macroblocks() / unit), "first_mb_in_slice is out of range");
  slice.first_mb = static_cast<int>(first_mb) * unit;
  if (slice.idr) slice.idr_pic_id = bits.ue(65535, "idr_pic_id");
  parse_picture_order(bits, slice);
  if (slice.pps->redundant_pic_count) slice.redundant_pic_count = bits.ue(127, "redundant_pic_cnt");
  parse_reference_lists(bits, slice);
  parse_weights(bits, slice);
  if (slice.nal_ref_idc != 0) parse_reference_marking(bits, slice);
  slice.qp = slice.pps->init_qp + bits.se(-87, 77, "slice_qp_delta");
  require(slice.qp >= -slice.sps->qp_offset() && slice.qp <= 51, "slice_qp_delta is out of range");
  if (slice.pps->deblocking_control) parse_deblocking(bits, slice);
  bits.expect_inside();
  return slice;
}

bool begins_new_picture(const SliceHeader& slice, const SliceHeader& next) {
  return slice.pps->id != next.pps->id || slice.frame_num != next.frame_num || slice.field_pic != next.field_pic ||
         slice.bottom_field != next.bottom_field || (slice.nal_ref_idc == 0) != (next.nal_ref_idc == 0) ||
         slice.idr != next.idr || slice.idr_pic_id != next.idr_pic_id || slice.poc_lsb != next.poc_lsb ||
         slice.delta_poc_bottom != next.delta_poc_bottom || slice.delta_poc != next.delta_poc;
}

}  // namespace moxdec::h264
