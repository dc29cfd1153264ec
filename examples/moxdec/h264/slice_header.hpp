/// Slice headers, and where one picture ends and the next one begins.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "moxdec/h264/nal.hpp"
#include "moxdec/h264/parameter_sets.hpp"

namespace moxdec::h264 {

enum class SliceType { kP, kB, kI, kSP, kSI };

/// How the deblocking filter treats the edges of a slice.
enum class Deblocking { kOn = 0, kOff = 1, kInsideSlice = 2 };

/// The most entries of a reference list, of a field; a frame has half as many.
inline constexpr int kMaxListEntries = 32;

/// A change to the order of a reference list: 0 or 1 steps down or up from the picture number before by `value` + 1, 2
/// names a long-term picture.
struct ListChange {
  int operation;
  int value;
};

/// Memory management: `operation` 1 to 6 and its numbers, in the order in which they are written.
struct MarkingOperation {
  int operation;
  int first = 0;
  int second = 0;
};

struct Weight {
  std::int16_t weight;
  std::int16_t offset;
};

/// Explicit weights, [list][index][plane].
struct WeightTable {
  std::array<int, 3> log2_denominator;  // by plane
  std::array<std::array<std::array<Weight, 3>, kMaxListEntries>, 2> weights;
};

struct SliceHeader {
  std::shared_ptr<const Sps> sps;
  std::shared_ptr<const Pps> pps;
  int nal_ref_idc = 0;
  bool idr = false;
  int first_mb = 0;  // in coding order
  SliceType type = SliceType::kI;
  int frame_num = 0;
  bool field_pic = false;
  bool bottom_field = false;
  int idr_pic_id = 0;
  int poc_lsb = 0;
  int delta_poc_bottom = 0;
  std::array<int, 2> delta_poc = {0, 0};
  int redundant_pic_count = 0;
  bool direct_spatial = false;
  std::array<int, 2> ref_count = {0, 0};  // entries of the reference lists
  std::array<std::vector<ListChange>, 2> list_changes;
  WeightTable weights;  // if explicit_weights
  bool explicit_weights = false;
  bool long_term = false;         // IDR pictures: the picture becomes a long-term reference
  bool adaptive_marking = false;  // otherwise the oldest reference leaves
  std::vector<MarkingOperation> marking;
  bool resets_order = false;  // memory management operation 5: later pictures count from here
  int qp = 26;
  Deblocking deblocking = Deblocking::kOn;
  int alpha_offset = 0;
  int beta_offset = 0;

  /// A frame whose macroblocks come in pairs, which are coded as frames or as fields.
  bool mbaff() const { return !field_pic && sps->mb_adaptive; }
  int parity() const { return bottom_field ? 1 : 0; }
  int macroblocks() const { return sps->macroblocks() >> (field_pic ? 1 : 0); }
  /// Numbers of pictures count frames, in fields twice as much and one more for those of the same parity.
  int number_range() const { return sps->max_frame_num() << (field_pic ? 1 : 0); }
  int own_number() const { return field_pic ? 2 * frame_num + 1 : frame_num; }
};

/// Lists that the prediction of a slice uses.
constexpr int list_count(SliceType type) { return type == SliceType::kI ? 0 : type == SliceType::kP ? 1 : 2; }

/// Reads the header; `bits` then stands at the first macroblock. Throws DecodeError for what is broken and for what
/// this decoder cannot do, features of the parameter sets included.
SliceHeader parse_slice_header(BitReader& bits, const Nal& nal, const ParameterSets& sets);

/// Whether `next` is the first slice of another picture than the one that `slice` belongs to.
bool begins_new_picture(const SliceHeader& slice, const SliceHeader& next);

}  // namespace moxdec::h264
