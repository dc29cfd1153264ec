#include "moxenc/headers.hpp"

#include <algorithm>
#include <iterator>

namespace moxenc {
namespace {

/// Limits of table A-1: macroblocks a second and in a frame, kbit/s.
struct Level {
  int idc;
  double macroblock_rate;
  int macroblocks;
  int kbits;
};
constexpr Level kLevels[] = {
    {10, 1485, 99, 64},
    {11, 3000, 396, 192},
    {12, 6000, 396, 384},
    {13, 11880, 396, 768},
    {20, 11880, 396, 2000},
    {21, 19800, 792, 4000},
    {22, 20250, 1620, 4000},
    {30, 40500, 1620, 10000},
    {31, 108000, 3600, 14000},
    {32, 216000, 5120, 20000},
    {40, 245760, 8192, 20000},
    {41, 245760, 8192, 50000},
    {42, 522240, 8704, 50000},
    {50, 589824, 22080, 135000},
    {51, 983040, 36864, 240000},
    {52, 2073600, 36864, 240000},
    {60, 4177920, kMostMacroblocks, 240000},
    {61, 8355840, kMostMacroblocks, 480000},
    {62, 16711680, kMostMacroblocks, 800000},
};

constexpr int macroblocks(int samples) { return (samples + 15) / 16; }

/// The rate in ticks of half a frame, two of which are told by time_scale.
void write_timing(BitWriter& bits, moxdec::FrameRate rate) {
  bits.flag(true);  // timing_info_present_flag
  bits.put(rate.denominator, 32);
  bits.put(2 * rate.numerator, 32);
  bits.flag(true);  // fixed_frame_rate_flag
}

/// That decoders need no picture more than the reference, and may show each one at once.
void write_restrictions(BitWriter& bits) {
  bits.flag(true);  // bitstream_restriction_flag
  bits.flag(true);  // motion_vectors_over_pic_boundaries_flag
  bits.ue(0);       // max_bytes_per_pic_denom: no limit
  bits.ue(0);       // max_bits_per_mb_denom: no limit
  bits.ue(13);      // log2_max_mv_length_horizontal
  bits.ue(9);       // log2_max_mv_length_vertical
  bits.ue(0);       // max_num_reorder_frames
  bits.ue(1);       // max_dec_frame_buffering
}

void write_vui(BitWriter& bits, moxdec::FrameRate rate) {
  bits.flag(false);  // aspect_ratio_info_present_flag
  bits.flag(false);  // overscan_info_present_flag
  bits.flag(false);  // video_signal_type_present_flag
  bits.flag(false);  // chroma_loc_info_present_flag
  const bool timed = rate.numerator > 0 && rate.numerator <= 0x7fffffffu && rate.denominator > 0;
  if (timed) {
    write_timing(bits, rate);
  } else {
    bits.flag(false);
  }
  bits.flag(false);  // nal_hrd_parameters_present_flag
  bits.flag(false);  // vcl_hrd_parameters_present_flag
  bits.flag(false);  // pic_struct_present_flag
  write_restrictions(bits);
}

}  // namespace

int level_of(const SequenceHeader& header) {
  const int columns = macroblocks(header.width), rows = macroblocks(header.height), size = columns * rows;
  const double rate = header.rate.denominator == 0
                          ? 25.0
                          : static_cast<double>(header.rate.numerator) / static_cast<double>(header.rate.denominator);
  const int side = std::max(columns, rows);
  const auto level = std::ranges::find_if(kLevels, [&](const Level& l) {
    return size <= l.macroblocks && size * rate <= l.macroblock_rate && header.kbits <= l.kbits &&
           side * side <= 8 * l.macroblocks;
  });
  return level == std::end(kLevels) ? kLevels[std::size(kLevels) - 1].idc : level->idc;
}

void write_sequence(BitWriter& bits, const SequenceHeader& header) {
  const int columns = macroblocks(header.width), rows = macroblocks(header.height);
  bits.put(66, 8);    // profile_idc: Baseline
  bits.put(0xc0, 8);  // constraint_set0_flag and constraint_set1_flag: what Baseline and Main have in common
  bits.put(static_cast<std::uint32_t>(level_of(header)), 8);
  bits.ue(0);                  // seq_parameter_set_id
  bits.ue(kFrameNumBits - 4);  // log2_max_frame_num_minus4
  bits.ue(2);                  // pic_order_cnt_type: display order is coding order
  bits.ue(1);                  // max_num_ref_frames
  bits.flag(false);            // gaps_in_frame_num_value_allowed_flag
  bits.ue(static_cast<std::uint32_t>(columns - 1));
  bits.ue(static_cast<std::uint32_t>(rows - 1));
  bits.flag(true);  // frame_mbs_only_flag
  bits.flag(true);  // direct_8x8_inference_flag
  const int right = 16 * columns - header.width, bottom = 16 * rows - header.height;
  bits.flag(right > 0 || bottom > 0);  // frame_cropping_flag
  if (right > 0 || bottom > 0) {
    bits.ue(0);
    bits.ue(static_cast<std::uint32_t>(right / 2));
    bits.ue(0);
    bits.ue(static_cast<std::uint32_t>(bottom / 2));
  }
  bits.flag(true);  // vui_parameters_present_flag
  write_vui(bits, header.rate);
  bits.finish();
}

void write_picture_set(BitWriter& bits) {
  bits.ue(0);                // pic_parameter_set_id
  bits.ue(0);                // seq_parameter_set_id
  bits.flag(false);          // entropy_coding_mode_flag: CAVLC
  bits.flag(false);          // bottom_field_pic_order_in_frame_present_flag
  bits.ue(0);                // num_slice_groups_minus1
  bits.ue(0);                // num_ref_idx_l0_default_active_minus1
  bits.ue(0);                // num_ref_idx_l1_default_active_minus1
  bits.flag(false);          // weighted_pred_flag
  bits.put(0, 2);            // weighted_bipred_idc
  bits.se(kInitialQp - 26);  // pic_init_qp_minus26
  bits.se(0);                // pic_init_qs_minus26
  bits.se(0);                // chroma_qp_index_offset
  bits.flag(true);           // deblocking_filter_control_present_flag
  bits.flag(false);          // constrained_intra_pred_flag
  bits.flag(false);          // redundant_pic_cnt_present_flag
  bits.finish();
}

void write_slice_header(BitWriter& bits, const SliceHeader& header) {
  bits.ue(0);                   // first_mb_in_slice
  bits.ue(header.idr ? 7 : 5);  // slice_type, the same in the whole picture
  bits.ue(0);                   // pic_parameter_set_id
  bits.put(static_cast<std::uint32_t>(header.frame_num), kFrameNumBits);
  if (header.idr) {
    bits.ue(static_cast<std::uint32_t>(header.idr_id));
    bits.flag(false);  // no_output_of_prior_pics_flag
    bits.flag(false);  // long_term_reference_flag
  } else {
    bits.flag(false);  // num_ref_idx_active_override_flag
    bits.flag(false);  // ref_pic_list_modification_flag_l0
    bits.flag(false);  // adaptive_ref_pic_marking_mode_flag
  }
  bits.se(header.qp - kInitialQp);  // slice_qp_delta
  bits.ue(0);                       // disable_deblocking_filter_idc
  bits.se(0);                       // slice_alpha_c0_offset_div2
  bits.se(0);                       // slice_beta_offset_div2
}

}  // namespace moxenc
