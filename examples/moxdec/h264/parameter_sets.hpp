/// Sequence and picture parameter sets.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxdec/h264/bit_reader.hpp"
#include "moxdec/h264/scaling.hpp"

namespace moxdec::h264 {

struct Sps {
  int profile_idc = 0;
  bool constraint_set3 = false;
  int level_idc = 0;
  int id = 0;
  int chroma_format_idc = 1;
  bool separate_colour_planes = false;
  int bit_depth_luma = 8;
  int bit_depth_chroma = 8;
  bool transform_bypass = false;
  std::optional<CodedScalingLists> scaling_lists;
  int log2_max_frame_num = 4;
  int poc_type = 0;
  int log2_max_poc_lsb = 4;
  bool delta_poc_always_zero = false;
  std::int32_t offset_for_non_ref_pic = 0;
  std::int32_t offset_for_top_to_bottom = 0;
  std::vector<std::int32_t> offsets_for_ref_frame;
  std::int64_t poc_delta_per_cycle = 0;  // sum of the offsets; its magnitude fits 32 bits
  int max_ref_frames = 0;
  bool gaps_in_frame_num = false;
  int mb_width = 0;   // in macroblocks
  int mb_height = 0;  // of a frame, in macroblocks
  bool frame_mbs_only = true;
  bool mb_adaptive = false;
  bool direct_8x8_inference = false;
  struct {
    int left = 0, right = 0, top = 0, bottom = 0;
  } crop;  // in luma samples
  FrameRate frame_rate;
  int reorder_frames = 0;  // how many frames may come before one in the stream and behind it on display

  int max_frame_num() const { return 1 << log2_max_frame_num; }
  int macroblocks() const { return mb_width * mb_height; }
  /// Samples take 16 bits, coefficients 32.
  bool is_deep() const { return bit_depth_luma > 8; }
  /// How far below 0 quantisers begin, of luma and of chroma.
  int qp_offset() const { return 6 * (bit_depth_luma - 8); }
  /// Rows of a macroblock's chroma, which has 8 columns; 0 if there is none.
  int chroma_mb_height() const { return chroma_format_idc == 0 ? 0 : chroma_format_idc == 1 ? 8 : 16; }
  int width() const { return 16 * mb_width - crop.left - crop.right; }
  int height() const { return 16 * mb_height - crop.top - crop.bottom; }
};

struct Pps {
  int id = 0;
  int sps_id = 0;
  bool cabac = false;
  bool bottom_field_poc = false;
  int slice_groups = 1;
  std::array<int, 2> default_ref_count = {1, 1};
  bool weighted_pred = false;
  int weighted_bipred_idc = 0;
  int init_qp = 26;
  std::array<int, 2> chroma_qp_offset = {0, 0};  // U, V
  bool deblocking_control = false;
  bool constrained_intra = false;
  bool redundant_pic_count = false;
  bool transform_8x8 = false;
  std::optional<CodedScalingLists> scaling_lists;
};

/// The sets of a stream by their number. A set that comes again replaces the earlier one for the pictures behind it;
/// pictures and slices hold on to the set they began with.
class ParameterSets {
 public:
  void read_sps(BitReader bits, Bytes payload);
  void read_pps(BitReader bits, Bytes payload);

  /// Throw DecodeError if there is none of this number.
  const std::shared_ptr<const Pps>& pps(Mox32u id) const;
  const std::shared_ptr<const Sps>& sps(Mox32u id) const;

 private:
  template <class Set>
  struct Entry {
    std::shared_ptr<const Set> set;
    std::vector<std::uint8_t> payload;  // as it came: an identical repetition changes nothing
  };
  std::array<Entry<Sps>, 32> sps_;
  std::array<Entry<Pps>, 256> pps_;
};

Sps parse_sps(BitReader& bits);
/// `sets` gives the sequence parameter set, which tells how many scaling lists there are.
Pps parse_pps(BitReader& bits, const ParameterSets& sets);

}  // namespace moxdec::h264
