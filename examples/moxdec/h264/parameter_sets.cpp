#include "moxdec/h264/parameter_sets.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

// The largest frame of any level, and the longest side that such a frame may have.
constexpr int kMaxMacroblocks = 139264;
constexpr Mox32u kMaxSide = 1055;

bool has_chroma_format(int profile) {
  constexpr int kProfiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
  return std::ranges::find(kProfiles, profile) != std::end(kProfiles);
}

void skip_hrd(BitReader& bits) {
  const int count = 1 + bits.ue(31, "cpb_cnt_minus1");
  bits.skip(8);
  for (int i = 0; i < count; ++i) {
    bits.ue();
    bits.ue();
    bits.skip(1);
  }
  bits.skip(20);
}

/// How many frames the level's memory holds: the most that can wait for display.
int frames_of_level(const Sps& sps) {
  struct Level {
    int idc, macroblocks;
  };
  constexpr Level kLevels[] = {{10, 396},   {11, 900},   {20, 2376},  {21, 4752},   {30, 8100},  {31, 18000},
                               {32, 20480}, {41, 32768}, {42, 34816}, {50, 110400}, {52, 184320}};
  const bool is_1b = sps.level_idc == 11 && sps.constraint_set3 && !has_chroma_format(sps.profile_idc);
  const int idc = is_1b ? 10 : sps.level_idc;
  const auto level = std::ranges::find_if(kLevels, [=](const Level& l) { return idc <= l.idc; });
  const int macroblocks = level == std::end(kLevels) ? 696320 : level->macroblocks;
  return std::clamp(macroblocks / sps.macroblocks(), 1, 16);
}

int default_reorder_frames(const Sps& sps) {
  const bool intra_profile =
      sps.profile_idc == 44 || (sps.constraint_set3 && sps.profile_idc >= 100 && has_chroma_format(sps.profile_idc));
  return sps.poc_type == 2 || intra_profile ? 0 : frames_of_level(sps);
}

void parse_bitstream_restriction(BitReader& bits, Sps& sps) {
  bits.skip(1);
  for (int i = 0; i < 4; ++i) bits.ue();
  sps.reorder_frames = bits.ue(16, "max_num_reorder_frames");
  bits.ue(16, "max_dec_frame_buffering");
}

void parse_vui(BitReader& bits, Sps& sps) {
  if (bits.flag() && bits.bits(8) == 255) bits.skip(32);  // sample aspect ratio
  if (bits.flag()) bits.skip(1);                          // overscan
  if (bits.flag()) {                                      // video signal type
    bits.skip(4);
    if (bits.flag()) bits.skip(24);
  }
  if (bits.flag()) {  // chroma sample location
    bits.ue(5, "chroma_sample_loc_type");
    bits.ue(5, "chroma_sample_loc_type");
  }
  if (bits.flag()) {  // timing: a tick is half a frame
    const Mox32u ticks = bits.bits(32), scale = bits.bits(32);
    bits.skip(1);
    if (ticks > 0 && ticks <= std::numeric_limits<Mox32u>::max() / 2) sps.frame_rate = {scale, 2 * ticks};
  }
  const bool nal_hrd = bits.flag();
  if (nal_hrd) skip_hrd(bits);
  const bool vcl_hrd = bits.flag();
  if (vcl_hrd) skip_hrd(bits);
  if (nal_hrd || vcl_hrd) bits.skip(1);
  bits.skip(1);
  if (bits.flag()) parse_bitstream_restriction(bits, sps);
}

void parse_chroma_format(BitReader& bits, Sps& sps) {
  sps.chroma_format_idc = bits.ue(3, "chroma_format_idc");
  if (sps.chroma_format_idc == 3) sps.separate_colour_planes = bits.flag();
  sps.bit_depth_luma = 8 + bits.ue(6, "bit_depth_luma_minus8");
  sps.bit_depth_chroma = 8 + bits.ue(6, "bit_depth_chroma_minus8");
  sps.transform_bypass = bits.flag();
  if (bits.flag()) sps.scaling_lists = parse_scaling_lists(bits, sps.chroma_format_idc == 3 ? 6 : 2);
}

void parse_picture_order(BitReader& bits, Sps& sps) {
  sps.poc_type = bits.ue(2, "pic_order_cnt_type");
  if (sps.poc_type == 0) sps.log2_max_poc_lsb = 4 + bits.ue(12, "log2_max_pic_order_cnt_lsb_minus4");
  if (sps.poc_type != 1) return;
  sps.delta_poc_always_zero = bits.flag();
  sps.offset_for_non_ref_pic = bits.se();
  sps.offset_for_top_to_bottom = bits.se();
  sps.offsets_for_ref_frame.resize(static_cast<std::size_t>(bits.ue(255, "num_ref_frames_in_pic_order_cnt_cycle")));
  for (auto& offset : sps.offsets_for_ref_frame) sps.poc_delta_per_cycle += offset = bits.se();
  require(std::abs(sps.poc_delta_per_cycle) <= std::numeric_limits<std::int32_t>::max(),
          "offset_for_ref_frame is out of range");
}

void parse_dimensions(BitReader& bits, Sps& sps) {
  sps.mb_width = 1 + bits.ue(kMaxSide - 1, "picture width");
  const int map_height = 1 + bits.ue(kMaxSide - 1, "picture height");
  sps.frame_mbs_only = bits.flag();
  sps.mb_height = map_height * (sps.frame_mbs_only ? 1 : 2);
  require(sps.macroblocks() <= kMaxMacroblocks, "picture size is out of range");
  if (!sps.frame_mbs_only) sps.mb_adaptive = bits.flag();
  sps.direct_8x8_inference = bits.flag() || !sps.frame_mbs_only;
  if (!bits.flag()) return;
  const int unit_x = sps.chroma_format_idc == 1 || sps.chroma_format_idc == 2 ? 2 : 1;
  const int unit_y = (sps.chroma_format_idc == 1 ? 2 : 1) * (sps.frame_mbs_only ? 1 : 2);
  constexpr Mox32u kMaxCrop = 16 * kMaxSide;
  sps.crop.left = unit_x * bits.ue(kMaxCrop, "frame cropping");
  sps.crop.right = unit_x * bits.ue(kMaxCrop, "frame cropping");
  sps.crop.top = unit_y * bits.ue(kMaxCrop, "frame cropping");
  sps.crop.bottom = unit_y * bits.ue(kMaxCrop, "frame cropping");
  require(sps.width() > 0 && sps.height() > 0, "frame cropping leaves nothing");
}

void skip_slice_groups(BitReader& bits, int groups) {
  const int type = bits.ue(6, "slice_group_map_type");
  if (type == 0) {
    for (int i = 0; i < groups; ++i) bits.ue();
  } else if (type == 2) {
    for (int i = 0; i < 2 * (groups - 1); ++i) bits.ue();
  } else if (type >= 3 && type <= 5) {
    bits.skip(1);
    bits.ue();
  } else if (type == 6) {
    const std::size_t size = 1 + static_cast<std::size_t>(bits.ue(kMaxMacroblocks - 1, "pic_size_in_map_units_minus1"));
    bits.skip(size * (groups > 4 ? 3 : groups > 2 ? 2 : 1));
  }
}

}  // namespace

Sps parse_sps(BitReader& bits) {
  Sps sps;
  sps.profile_idc = static_cast<int>(bits.bits(8));
  sps.constraint_set3 = bits.bits(8) >> 4 & 1;
  sps.level_idc = static_cast<int>(bits.bits(8));
  sps.id = bits.ue(31, "seq_parameter_set_id");
  if (has_chroma_format(sps.profile_idc)) parse_chroma_format(bits, sps);
  sps.log2_max_frame_num = 4 + bits.ue(12, "log2_max_frame_num_minus4");
  parse_picture_order(bits, sps);
  sps.max_ref_frames = bits.ue(16, "max_num_ref_frames");
  sps.gaps_in_frame_num = bits.flag();
  parse_dimensions(bits, sps);
  sps.reorder_frames = default_reorder_frames(sps);
  if (bits.flag()) parse_vui(bits, sps);
  bits.expect_inside();
  return sps;
}

Pps parse_pps(BitReader& bits, const ParameterSets& sets) {
  Pps pps;
  pps.id = bits.ue(255, "pic_parameter_set_id");
  pps.sps_id = bits.ue(31, "seq_parameter_set_id");
  pps.cabac = bits.flag();
  pps.bottom_field_poc = bits.flag();
  pps.slice_groups = 1 + bits.ue(7, "num_slice_groups_minus1");
  if (pps.slice_groups > 1) skip_slice_groups(bits, pps.slice_groups);
  for (int& count : pps.default_ref_count) count = 1 + bits.ue(31, "num_ref_idx_default_active_minus1");
  pps.weighted_pred = bits.flag();
  pps.weighted_bipred_idc = static_cast<int>(bits.bits(2));
  pps.init_qp = 26 + bits.se(-26 - 36, 25, "pic_init_qp_minus26");
  bits.se(-26, 25, "pic_init_qs_minus26");
  pps.chroma_qp_offset[0] = pps.chroma_qp_offset[1] = bits.se(-12, 12, "chroma_qp_index_offset");
  pps.deblocking_control = bits.flag();
  pps.constrained_intra = bits.flag();
  pps.redundant_pic_count = bits.flag();
  if (!bits.more_data()) return pps;
  pps.transform_8x8 = bits.flag();
  if (bits.flag()) {
    const int lists_8x8 = sets.sps(static_cast<Mox32u>(pps.sps_id))->chroma_format_idc == 3 ? 6 : 2;
    pps.scaling_lists = parse_scaling_lists(bits, pps.transform_8x8 ? lists_8x8 : 0);
  }
  pps.chroma_qp_offset[1] = bits.se(-12, 12, "second_chroma_qp_index_offset");
  bits.expect_inside();
  return pps;
}

namespace {

template <class Entry, class Set>
void store(Entry& entry, Set&& set, Bytes payload) {
  if (entry.set && std::ranges::equal(entry.payload, payload)) return;
  entry.set = std::make_shared<const std::decay_t<Set>>(std::forward<Set>(set));
  entry.payload.assign(payload.begin(), payload.end());
}

}  // namespace

void ParameterSets::read_sps(BitReader bits, Bytes payload) {
  Sps sps = parse_sps(bits);
  store(sps_[static_cast<std::size_t>(sps.id)], std::move(sps), payload);
}

void ParameterSets::read_pps(BitReader bits, Bytes payload) {
  const Pps pps = parse_pps(bits, *this);
  store(pps_[static_cast<std::size_t>(pps.id)], pps, payload);
}

const std::shared_ptr<const Pps>& ParameterSets::pps(Mox32u id) const {
  require(id < pps_.size() && pps_[id].set, "picture parameter set is missing");
  return pps_[id].set;
}

const std::shared_ptr<const Sps>& ParameterSets::sps(Mox32u id) const {
  require(id < sps_.size() && sps_[id].set, "sequence parameter set is missing");
  return sps_[id].set;
}

}  // namespace moxdec::h264
