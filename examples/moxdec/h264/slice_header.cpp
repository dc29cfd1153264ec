#include "moxdec/h264/slice_header.hpp"

#include <string>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

[[noreturn]] void unsupported(const std::string& what, const char* verb = "is") {
  throw DecodeError(what + " " + verb + " not supported");
}

void expect_supported(const Sps& sps, const Pps& pps) {
  if (pps.cabac) unsupported("CABAC");
  if (sps.chroma_format_idc != 1) unsupported("chroma format " + std::to_string(sps.chroma_format_idc));
  if (sps.bit_depth_luma != 8 || sps.bit_depth_chroma != 8) unsupported("a bit depth above 8");
  if (sps.transform_bypass) unsupported("lossless coding");
  if (sps.scaling_lists || pps.scaling_lists) unsupported("scaling lists", "are");
  if (pps.transform_8x8) unsupported("the 8x8 transform");
  if (pps.slice_groups > 1) unsupported("slice groups", "are");
  if (pps.chroma_qp_offset[0] != pps.chroma_qp_offset[1]) unsupported("a quantiser offset for one chroma plane alone");
}

SliceType parse_type(BitReader& bits) {
  constexpr const char* kNames[] = {"P slices", "B slices", "", "SP slices", "SI slices"};
  const int type = bits.ue(9, "slice_type") % 5;
  if (type != static_cast<int>(SliceType::kI)) unsupported(kNames[type], "are");
  return static_cast<SliceType>(type);
}

void parse_picture_structure(BitReader& bits, SliceHeader& slice) {
  if (slice.sps->frame_mbs_only) return;
  slice.field_pic = bits.flag();
  if (slice.field_pic) slice.bottom_field = bits.flag();
  if (slice.field_pic) unsupported("field pictures", "are");
  if (slice.sps->mb_adaptive) unsupported("frame/field adaptive coding");
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

void parse_reference_marking(BitReader& bits, SliceHeader& slice) {
  if (slice.idr) {
    bits.skip(2);  // all frames are shown and the long-term mark has no use yet
    return;
  }
  if (!bits.flag()) return;
  for (;;) {
    const int operation = bits.ue(6, "memory_management_control_operation");
    if (operation == 0) return;
    slice.resets_order |= operation == 5;
    if (operation != 5) bits.ue();
    if (operation == 3) bits.ue();
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
  slice.pps = sets.pps(bits.ue());
  slice.sps = sets.sps(static_cast<Mox32u>(slice.pps->sps_id));
  expect_supported(*slice.sps, *slice.pps);
  require(first_mb < static_cast<Mox32u>(slice.sps->macroblocks()), "first_mb_in_slice is out of range");
  slice.first_mb = static_cast<int>(first_mb);
  slice.frame_num = static_cast<int>(bits.bits(slice.sps->log2_max_frame_num));
  require(!slice.idr || slice.frame_num == 0, "frame_num is out of range");
  parse_picture_structure(bits, slice);
  if (slice.idr) slice.idr_pic_id = bits.ue(65535, "idr_pic_id");
  parse_picture_order(bits, slice);
  if (slice.pps->redundant_pic_count) slice.redundant_pic_count = bits.ue(127, "redundant_pic_cnt");
  if (slice.nal_ref_idc != 0) parse_reference_marking(bits, slice);
  slice.qp = slice.pps->init_qp + bits.se(-87, 77, "slice_qp_delta");
  require(slice.qp >= 0 && slice.qp <= 51, "slice_qp_delta is out of range");
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
