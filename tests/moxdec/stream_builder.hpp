/// Hand-made H.264 streams: parameter sets and slices written element by element, each wrong or rare in one place.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mox::test {

using Stream = std::vector<std::uint8_t>;

class BitWriter {
 public:
  BitWriter& u(int count, std::uint32_t value) {
    for (int i = count; i-- > 0;) bits_.push_back(value >> i & 1);
    return *this;
  }
  BitWriter& ue(std::uint32_t value) {
    int length = 0;
    while ((std::uint64_t{value} + 1) >> (length + 1)) ++length;
    return u(length, 0).u(length + 1, value + 1);
  }
  BitWriter& se(int value) { return ue(value > 0 ? 2u * value - 1 : 2u * -value); }
  BitWriter& append(const BitWriter& other) {
    bits_.insert(bits_.end(), other.bits_.begin(), other.bits_.end());
    return *this;
  }
  BitWriter& align() { return u((8 - static_cast<int>(bits_.size() % 8)) % 8, 0); }
  std::size_t bit_count() const { return bits_.size(); }
  /// The bytes with a stop bit behind the last bit.
  Stream payload() const {
    BitWriter ended = *this;
    ended.u(1, 1).align();
    Stream bytes(ended.bits_.size() / 8);
    for (std::size_t i = 0; i < ended.bits_.size(); ++i) {
      bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] << 1 | ended.bits_[i]);
    }
    return bytes;
  }

 private:
  std::vector<bool> bits_;
};

struct SpsFields {
  int profile = 66, level = 30, id = 0;
  int chroma_format = 1, bit_depth = 8, chroma_depth = 0;  // from here to bypass for profile 100 and higher
  bool bypass = false;
  int poc_type = 0, max_ref_frames = 1;
  int offset_for_non_ref = 0, offset_top_to_bottom = 0;
  std::vector<int> offsets_for_ref_frame{};
  int mb_width = 1, mb_height = 1;
  bool frame_mbs_only = true, mb_adaptive = false, direct_inference = true;
  std::vector<std::uint32_t> crop{};  // left, right, top, bottom
  int reorder_frames = -1;            // in the VUI, if not negative
};

struct PpsFields {
  int id = 0, sps_id = 0;
  bool cabac = false, bottom_field_poc = false, deblocking_control = false;
  int slice_groups = 1, init_qp = 26;
  bool weighted_pred = false, redundant_pic_count = false;
  bool transform_8x8 = false;  // with the other fields of High, if set
  int chroma_offset = 0;
};

/// frame_num has 4 bits, pic_order_cnt_lsb 4 bits.
struct SliceFields {
  int nal_type = 5, ref_idc = 1;
  std::uint32_t first_mb = 0;
  int type = 7, pps_id = 0;
  int frame_num = 0;
  int field_pic = -1;  // written if not negative
  bool bottom = false;
  int idr_pic_id = 0;
  int poc_lsb = -1;               // written if not negative
  std::vector<int> delta_poc{};   // as the parameter sets want them
  int redundant_pic_count = -1;   // written if not negative
  BitWriter list_fields{};        // P and B slices: from the direct mode to the weights
  std::vector<int> operations{};  // memory management, each with its numbers, closed by 0
  int qp_delta = 0;
  int deblocking = -1;  // the mode, written if not negative
};

class StreamBuilder {
 public:
  StreamBuilder& nal(int type, int ref_idc, const BitWriter& bits) {
    out_.insert(out_.end(), {0, 0, 0, 1, static_cast<std::uint8_t>(ref_idc << 5 | type)});
    int zeros = 0;
    for (const std::uint8_t byte : bits.payload()) {
      if (zeros == 2 && byte <= 3) out_.push_back(3), zeros = 0;
      zeros = byte == 0 ? zeros + 1 : 0;
      out_.push_back(byte);
    }
    return *this;
  }

  StreamBuilder& zeros(std::size_t count) {
    out_.resize(out_.size() + count);
    return *this;
  }

  StreamBuilder& sps(const SpsFields& f = {}) {
    BitWriter w;
    w.u(8, f.profile).u(8, 0).u(8, f.level).ue(f.id);
    if (f.profile >= 100) {
      w.ue(f.chroma_format);
      if (f.chroma_format == 3) w.u(1, 0);
      w.ue(f.bit_depth - 8).ue((f.chroma_depth ? f.chroma_depth : f.bit_depth) - 8).u(1, f.bypass).u(1, 0);
    }
    w.ue(0).ue(f.poc_type);
    if (f.poc_type == 0) w.ue(0);
    if (f.poc_type == 1) {
      w.u(1, 0)
          .se(f.offset_for_non_ref)
          .se(f.offset_top_to_bottom)
          .ue(static_cast<std::uint32_t>(f.offsets_for_ref_frame.size()));
      for (const int offset : f.offsets_for_ref_frame) w.se(offset);
    }
    w.ue(f.max_ref_frames).u(1, 0).ue(f.mb_width - 1).ue(f.mb_height - 1).u(1, f.frame_mbs_only);
    if (!f.frame_mbs_only) w.u(1, f.mb_adaptive);
    w.u(1, f.direct_inference).u(1, !f.crop.empty());
    for (const auto crop : f.crop) w.ue(crop);
    w.u(1, f.reorder_frames >= 0);
    if (f.reorder_frames >= 0) w.u(8, 0).u(2, 3).ue(0).ue(0).ue(9).ue(9).ue(f.reorder_frames).ue(f.reorder_frames);
    return nal(7, 3, w);
  }

  StreamBuilder& pps(const PpsFields& f = {}) {
    BitWriter w;
    w.ue(f.id).ue(f.sps_id).u(1, f.cabac).u(1, f.bottom_field_poc).ue(f.slice_groups - 1);
    if (f.slice_groups > 1) w.ue(1);  // dispersed: has no further fields
    w.ue(0).ue(0).u(1, f.weighted_pred).u(2, 0).se(f.init_qp - 26).se(0).se(f.chroma_offset);
    w.u(1, f.deblocking_control).u(1, 0).u(1, f.redundant_pic_count);
    if (f.transform_8x8) w.u(1, 1).u(1, 0).se(f.chroma_offset);
    return nal(8, 3, w);
  }

  static BitWriter slice_header(const SliceFields& f) {
    BitWriter w;
    w.ue(f.first_mb).ue(f.type).ue(f.pps_id).u(4, f.frame_num);
    if (f.field_pic >= 0) w.u(1, f.field_pic);
    if (f.field_pic > 0) w.u(1, f.bottom);
    if (f.nal_type == 5) w.ue(f.idr_pic_id);
    if (f.poc_lsb >= 0) w.u(4, f.poc_lsb);
    for (const int delta : f.delta_poc) w.se(delta);
    if (f.redundant_pic_count >= 0) w.ue(f.redundant_pic_count);
    w.append(f.list_fields);
    if (f.ref_idc > 0 && f.nal_type == 5) w.u(2, 0);
    if (f.ref_idc > 0 && f.nal_type != 5) w.u(1, !f.operations.empty());
    for (const int number : f.operations) w.ue(number);
    w.se(f.qp_delta);
    if (f.deblocking >= 0) w.ue(f.deblocking);
    if (f.deblocking >= 0 && f.deblocking != 1) w.se(0).se(0);
    return w;
  }
  static BitWriter& raw_macroblock(BitWriter& w, int shade) {
    w.ue(25).align();
    for (int i = 0; i < 384; ++i) w.u(8, shade);
    return w;
  }
  /// A slice of raw macroblocks, all of whose samples are `shades[i]`.
  StreamBuilder& raw_slice(const SliceFields& f, const std::vector<int>& shades) {
    BitWriter w = slice_header(f);
    for (const int shade : shades) raw_macroblock(w, shade);
    return nal(f.nal_type, f.ref_idc, w);
  }

  const Stream& stream() const { return out_; }

 private:
  Stream out_;
};

}  // namespace mox::test
