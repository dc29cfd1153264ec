/// The picture in work: its frame, and what its macroblocks tell their neighbours and the deblocking filter.
#pragma once

#include <array>
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

/// Neighbours that belong to the same slice; null for any other.
struct Neighbours {
  const MbInfo* left = nullptr;
  const MbInfo* top = nullptr;
  const MbInfo* top_left = nullptr;
  const MbInfo* top_right = nullptr;
};

class Picture {
 public:
  /// Starts a new picture, whose motion has a place for each macroblock. Memory is kept from picture to picture as long
  /// as the size stays.
  void begin(std::shared_ptr<Frame> new_frame, MbMotion* new_motion, int new_mb_width, int new_mb_height);

  MbInfo& at(int x, int y) { return macroblocks[static_cast<std::size_t>(y * mb_width + x)]; }
  Neighbours neighbours(int x, int y, std::int32_t slice) const;
  /// Null for null.
  const MbMotion* motion_of(const MbInfo* mb) const { return mb ? motion + (mb - macroblocks.data()) : nullptr; }
  template <class Sample>
  Sample* samples(int plane, int x, int y) const {
    auto* row = frame->samples<std::byte>(plane) + std::ptrdiff_t{y} * frame->step(plane);
    return reinterpret_cast<Sample*>(row) + x;
  }

  std::shared_ptr<Frame> frame;
  int mb_width = 0;
  int mb_height = 0;
  std::vector<MbInfo> macroblocks;
  MbMotion* motion = nullptr;
  std::vector<Slice> slices;
};

}  // namespace moxdec::h264
