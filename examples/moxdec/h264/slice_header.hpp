/// Slice headers, and where one picture ends and the next one begins.
#pragma once

#include <array>
#include <memory>

#include "moxdec/h264/nal.hpp"
#include "moxdec/h264/parameter_sets.hpp"

namespace moxdec::h264 {

enum class SliceType { kP, kB, kI, kSP, kSI };

/// How the deblocking filter treats the edges of a slice.
enum class Deblocking { kOn = 0, kOff = 1, kInsideSlice = 2 };

struct SliceHeader {
  std::shared_ptr<const Sps> sps;
  std::shared_ptr<const Pps> pps;
  int nal_ref_idc = 0;
  bool idr = false;
  int first_mb = 0;
  SliceType type = SliceType::kI;
  int frame_num = 0;
  bool field_pic = false;
  bool bottom_field = false;
  int idr_pic_id = 0;
  int poc_lsb = 0;
  int delta_poc_bottom = 0;
  std::array<int, 2> delta_poc = {0, 0};
  int redundant_pic_count = 0;
  bool resets_order = false;  // memory management operation 5: later pictures count from here
  int qp = 26;
  Deblocking deblocking = Deblocking::kOn;
  int alpha_offset = 0;
  int beta_offset = 0;
};

/// Reads the header; `bits` then stands at the first macroblock. Throws DecodeError for what is broken and for what
/// this decoder cannot do, features of the parameter sets included.
SliceHeader parse_slice_header(BitReader& bits, const Nal& nal, const ParameterSets& sets);

/// Whether `next` is the first slice of another picture than the one that `slice` belongs to.
bool begins_new_picture(const SliceHeader& slice, const SliceHeader& next);

}  // namespace moxdec::h264
