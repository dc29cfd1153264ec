/// The picture in work: its frame, and what its macroblocks tell their neighbours and the deblocking filter. A picture
/// may be one field, every other line, of its frame.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "moxdec/frame.hpp"
#include "moxdec/h264/motion.hpp"
#include "moxdec/h264/slice_header.hpp"

namespace moxdec::h264 {

enum class MbKind : std::uint8_t { kIntra4x4, kIntra8x8, kIntra16x16, kRaw, kInter };

/// What stays of a macroblock once it is rebuilt. One cache line. Blocks are in raster order.
struct alignas(64) MbInfo {
  std::int32_t slice = -1;  // index into Picture::slices; -1 if the macroblock is still to come
  MbKind kind = MbKind::kIntra4x4;
  std::int8_t qp = 0;  // luma; 0 for raw samples, whatever the next macroblock's quantiser builds on
  /// Edges between inter partitions: bit e for the vertical inner edge e, bit 4 + e for the horizontal one, e 1 to 3.
  std::uint8_t motion_edges = 0;
  bool transform_8x8 = false;
  bool field = false;              // its lines are those of one field
  std::uint16_t coded_blocks = 0;  // bit i if 4x4 luma block i, or the 8x8 block it is part of, has coefficients
  std::array<std::int8_t, 16> intra_modes;                   // kPlainMode where the macroblock has none
  std::array<std::uint8_t, 16> luma_counts;                  // coefficients of each 4x4 block, as they are coded
  std::array<std::array<std::uint8_t, 8>, 2> chroma_counts;  // U, V; 2 blocks a row, 4:2:0 uses the first 4
};
static_assert(sizeof(MbInfo) == 64);
inline bool is_inter(const MbInfo& mb) { return mb.kind == MbKind::kInter; }

/// The intra mode that a neighbour without modes of its own stands for: DC.
inline constexpr std::int8_t kPlainMode = 2;

struct Slice {
  Slice(const SliceHeader& slice_header, std::shared_ptr<const LevelScales> level_scales);

  SliceHeader header;
  std::shared_ptr<const LevelScales> scales;

  /// Quantiser of U (plane 1) or V (2) by that of luma.
  int chroma_qp(int plane, int luma_qp) const { return chroma_qps_[plane - 1][luma_qp + kMaxQpOffset]; }

 private:
  static constexpr int kMaxQpOffset = 36;
  std::array<std::array<std::int8_t, kMaxQpOffset + 52>, 2> chroma_qps_;
};

class Picture {
 public:
  /// Starts a new picture, whose motion has a place for each macroblock of a frame. Memory is kept from picture to
  /// picture as long as the size stays.
  void begin(std::shared_ptr<Frame> new_frame, MbMotion* new_motion, const SliceHeader& slice);

  int macroblock_count() const { return mb_width * mb_height; }
  /// Where the macroblock lies that comes so many places behind the first one in coding order.
  int x_of(int address) const { return mbaff ? address / 2 % mb_width : address % mb_width; }
  int y_of(int address) const { return mbaff ? address / 2 / mb_width * 2 + address % 2 : address / mb_width; }

  PicturePart part_of(int y, bool field) const {
    if (!mbaff || !field) return PicturePart::kWhole;
    return (y & 1) == kTop ? PicturePart::kTopField : PicturePart::kBottomField;
  }

  /// The macroblock rows of a field are every other one of the frame's. The two fields of a frame so leave behind what
  /// a frame of field pairs does.
  std::ptrdiff_t row_stride() const { return field_pic ? 2 * mb_width : mb_width; }
  /// Asks for the memory of a macroblock some places further on, which has long left the processor's caches.
  void fetch_early(int x, int y) const {
    constexpr int kAhead = 4;
    if (x + kAhead < mb_width) __builtin_prefetch(&macroblocks[index(x + kAhead, y)]);
  }
  MbInfo& at(int x, int y) { return macroblocks[index(x, y)]; }
  const MbInfo& at(int x, int y) const { return macroblocks[index(x, y)]; }
  MbMotion& motion_at(int x, int y) { return motion[index(x, y)]; }
  const MbMotion& motion_at(int x, int y) const { return motion[index(x, y)]; }
  /// Null for null.
  const MbMotion* motion_of(const MbInfo* mb) const { return mb ? motion + (mb - macroblocks.data()) : nullptr; }

  /// The first sample of the macroblock at (x, y), and how many samples lead from one of its rows to the next.
  template <class Sample>
  Sample* samples(int plane, int x, int y, bool field) const {
    const int width = plane == 0 ? 16 : 8, height = plane == 0 ? 16 : chroma_mb_height;
    const int row = mbaff && field ? height * (y & ~1) + (y & 1) : height * y;
    const Plane& lines = planes_[static_cast<std::size_t>(plane)];
    return reinterpret_cast<Sample*>(lines.first + std::ptrdiff_t{row} * lines.step) + width * x;
  }
  template <class Sample>
  int step(int plane, bool field) const {
    const int step = planes_[static_cast<std::size_t>(plane)].step / static_cast<int>(sizeof(Sample));
    return step << (mbaff && field ? 1 : 0);
  }

  std::shared_ptr<Frame> frame;
  int mb_width = 0;
  int mb_height = 0;       // of the field, if the picture is one
  bool field_pic = false;  // all macroblocks are field macroblocks then
  bool mbaff = false;      // macroblocks come in pairs, one above the other, which are coded as frames or as fields
  int parity = kTop;       // of a field picture
  int chroma_mb_height = 8;
  std::vector<MbInfo> macroblocks;  // of the frame
  MbMotion* motion = nullptr;
  std::vector<Slice> slices;

 private:
  /// Of the frame, or of the field that the picture is.
  struct Plane {
    std::byte* first;
    int step;  // in bytes
  };

  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>((field_pic ? 2 * y + parity : y) * mb_width + x);
  }

  std::array<Plane, 3> planes_;
};

}  // namespace moxdec::h264
