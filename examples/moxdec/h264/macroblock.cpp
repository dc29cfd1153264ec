#include "moxdec/h264/macroblock.hpp"

#include <algorithm>

#include "common/h264_tables.hpp"
#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

/// mb_type of raw samples in I slices; in other slices the types of inter macroblocks come first.
constexpr int kRawType = 25;
constexpr int kInterTypes[] = {0, 5, 23};  // by the number of reference lists

/// The coefficient counts of a plane's blocks, with the row above and the column at the left of them.
template <int Columns, int Rows>
class CountWindow {
 public:
  /// `counts_of` gives the counts of a macroblock in raster order.
  template <class CountsOf>
  CountWindow(const Neighbours& neighbours, CountsOf counts_of) {
    constexpr int kStride = 4 / Rows;  // rows of luma blocks for each row
    if (neighbours.left_pair[0]) {
      for (int y = 0; y < Rows; ++y) {
        const int row = neighbours.left_row(kStride * y) / kStride;
        at(-1, y) = as_count(counts_of(*neighbours.left_at(kStride * y))[Columns * row + Columns - 1]);
      }
    } else {
      for (int y = 0; y < Rows; ++y) at(-1, y) = kMissing;
    }
    for (int x = 0; x < Columns; ++x) {
      at(x, -1) = neighbours.top ? as_count(counts_of(*neighbours.top)[Columns * (Rows - 1) + x]) : kMissing;
    }
  }
  /// The mean of the neighbours' counts, rounded up; of one if the other is missing; else 0.
  int expected(int x, int y) const {
    const int a = at(x - 1, y), b = at(x, y - 1);
    if (a >= 0 && b >= 0) return (a + b + 1) >> 1;
    return std::max({a, b, 0});
  }
  void set(int x, int y, int count) { at(x, y) = static_cast<std::int8_t>(count); }
  /// In raster order.
  void store(std::uint8_t* counts) const {
    for (int y = 0; y < Rows; ++y) std::copy_n(&at(0, y), Columns, counts + Columns * y);
  }

 private:
  static constexpr std::int8_t kMissing = -1;
  static constexpr std::int8_t as_count(std::uint8_t count) { return static_cast<std::int8_t>(count); }
  std::int8_t& at(int x, int y) { return counts_[static_cast<std::size_t>((Columns + 1) * (y + 1) + x + 1)]; }
  const std::int8_t& at(int x, int y) const {
    return counts_[static_cast<std::size_t>((Columns + 1) * (y + 1) + x + 1)];
  }

  std::array<std::int8_t, (Columns + 1) * (Rows + 1)> counts_{};
};

/// The modes that the first column and row of blocks see; -1 where nothing can be told, which makes the expected mode
/// plain whatever the other neighbour has.
struct ModeBorder {
  std::array<std::int8_t, 4> left, top;

  /// Constrained prediction tells nothing of inter macroblocks.
  ModeBorder(const Neighbours& neighbours, bool constrained) {
    left.fill(-1);
    top.fill(-1);
    const auto usable = [=](const MbInfo* mb) { return mb && !(constrained && is_inter(*mb)); };
    for (int y = 0; y < 4; ++y) {
      const MbInfo* mb = neighbours.left_at(y);
      if (usable(mb)) left[y] = mb->intra_modes[4 * neighbours.left_row(y) + 3];
    }
    if (usable(neighbours.top)) std::copy_n(neighbours.top->intra_modes.begin() + 12, 4, top.begin());
  }
  std::int8_t expected(const std::array<std::int8_t, 16>& modes, int x, int y) const {
    const std::int8_t a = x > 0 ? modes[4 * y + x - 1] : left[y];
    const std::int8_t b = y > 0 ? modes[4 * (y - 1) + x] : top[x];
    const std::int8_t mode = std::min(a, b);
    return mode < 0 ? kPlainMode : mode;
  }
};

/// What intra prediction may not use.
void deny_neighbours(const Neighbours& neighbours, bool constrained, Macroblock& mb) {
  const auto denied = [=](const MbInfo* other, Mox32u bit) {
    return other && !(constrained && is_inter(*other)) ? 0 : bit;
  };
  Mox32u left[2] = {0, 0};
  for (int half = 0; half < 2; ++half) {
    for (int i = 0; i < 2; ++i) {
      if (neighbours.left->used[half] >> i & 1) left[half] |= denied(neighbours.left_pair[i], kDenyLeft);
    }
  }
  const Mox32u above = denied(neighbours.top, kDenyTop) | denied(neighbours.top_left, kDenyTopLeft) |
                       denied(neighbours.top_right, kDenyTopRight);
  mb.denied = left[0] | left[1] | above;
  mb.denied_halves = {left[0] | above, left[1] | (left[0] ? kDenyTopLeft : 0) | kDenyTopRight};
}

const std::uint8_t* luma_counts(const MbInfo& mb) { return mb.luma_counts.data(); }

}  // namespace

void MacroblockReader::read(Macroblock& mb, std::int32_t slice_index) {
  MbInfo& info = picture_.at(mb.x, mb.y);
  const Neighbours neighbours = find_neighbours(picture_, mb.x, mb.y, mb.field, slice_index);
  info.field = mb.field;
  const int inter_types = kInterTypes[list_count(slice_.type)];
  const int type = bits_.ue(static_cast<Mox32u>(inter_types + kRawType), "mb_type");
  clear_residual(mb, info);
  if (type < inter_types) return read_inter(mb, info, neighbours, type);
  picture_.motion_at(mb.x, mb.y) = kNoMotion;
  picture_.motion_at(mb.x, mb.y).field = mb.field;
  info.motion_edges = 0;
  read_intra(mb, info, neighbours, type - inter_types);
}

void MacroblockReader::clear_residual(Macroblock& mb, MbInfo& info) {
  mb.transform_8x8 = info.transform_8x8 = false;
  mb.coded = mb.coded_8x8 = mb.coded_chroma[0] = mb.coded_chroma[1] = 0;
  info.coded_blocks = 0;
}

void MacroblockReader::read_intra(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int type) {
  if (type == kRawType) return read_raw(mb, info);
  deny_neighbours(neighbours, slice_.pps->constrained_intra, mb);
  info.intra_modes.fill(kPlainMode);

  const bool in_blocks = type == 0;
  mb.transform_8x8 = info.transform_8x8 = in_blocks && slice_.pps->transform_8x8 && bits_.flag();
  info.kind = mb.kind = !in_blocks ? MbKind::kIntra16x16 : mb.transform_8x8 ? MbKind::kIntra8x8 : MbKind::kIntra4x4;
  if (in_blocks) read_intra_modes(mb, info, neighbours);
  if (slice_.sps->chroma_mb_height() != 0) {
    mb.chroma_mode = static_cast<Mox32u>(bits_.ue(3, "intra_chroma_pred_mode"));
  }
  int pattern;  // bits 0 to 3: luma quarters; from bit 4: chroma part
  if (in_blocks) {
    pattern = read_pattern(false);
  } else {
    mb.intra_16x16_mode = static_cast<Mox32u>((type - 1) % 4);
    pattern = (type - 1) / 4 % 3 << 4 | (type > 12 ? 15 : 0);
  }
  read_residual(mb, info, neighbours, pattern);
}

int MacroblockReader::read_pattern(bool inter) {
  constexpr const char* kName = "coded_block_pattern";
  if (slice_.sps->chroma_mb_height() == 0) {
    return (inter ? example::kCbpInterLuma : example::kCbpIntraLuma)[bits_.ue(15, kName)];
  }
  return (inter ? example::kCbpInter : example::kCbpIntra)[bits_.ue(47, kName)];
}

void MacroblockReader::read_residual(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int pattern) {
  info.luma_counts.fill(0);
  for (auto& counts : info.chroma_counts) counts.fill(0);
  if (pattern != 0 || mb.kind == MbKind::kIntra16x16) {
    read_qp_delta();
    if (slice_.sps->is_deep()) {
      read_blocks<Mox32s>(mb, info, neighbours, pattern);
    } else {
      read_blocks<Mox16s>(mb, info, neighbours, pattern);
    }
  }
  mb.qp = qp_;
  info.qp = static_cast<std::int8_t>(qp_);
}

template <class Coeff>
void MacroblockReader::read_blocks(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int pattern) {
  Coeff* out = mb.coefficients<Coeff>();
  if (mb.transform_8x8) {
    read_luma_8x8(mb, info, neighbours, pattern & 15, &out);
  } else {
    read_luma(mb, info, neighbours, pattern & 15, &out);
  }
  const int chroma_height = slice_.sps->chroma_mb_height();
  if (chroma_height == 0 || pattern < 16) return;
  const bool has_ac = pattern >= 32;
  if (chroma_height == 8) {
    read_chroma<2>(mb, info, neighbours, has_ac, &out);
  } else {
    read_chroma<4>(mb, info, neighbours, has_ac, &out);
  }
}

void MacroblockReader::read_raw(Macroblock& mb, MbInfo& info) {
  info.kind = mb.kind = MbKind::kRaw;
  bits_.align();
  const int samples = 16 * (16 + slice_.sps->chroma_mb_height());
  for (int i = 0; i < samples; ++i) mb.raw[i] = static_cast<Mox16u>(bits_.bits(slice_.sps->bit_depth_luma));
  info.intra_modes.fill(kPlainMode);
  info.luma_counts.fill(16);
  for (auto& counts : info.chroma_counts) counts.fill(16);
  info.qp = 0;
}

void MacroblockReader::read_intra_modes(Macroblock& mb, MbInfo& info, const Neighbours& neighbours) {
  const ModeBorder border(neighbours, slice_.pps->constrained_intra);
  const int size = mb.transform_8x8 ? 2 : 1;  // in 4x4 blocks
  for (int i = 0; i < 16 / (size * size); ++i) {
    const int raster = example::kBlockRaster[size * size * i];
    int mode = border.expected(info.intra_modes, raster % 4, raster / 4);
    if (!bits_.flag()) {
      const int other = static_cast<int>(bits_.bits(3));
      mode = other + (other >= mode ? 1 : 0);
    }
    for (int y = 0; y < size; ++y) {
      std::fill_n(info.intra_modes.begin() + raster + 4 * y, size, static_cast<std::int8_t>(mode));
    }
    mb.intra_modes[i] = static_cast<Mox32u>(mode);
  }
}

void MacroblockReader::read_qp_delta() {
  const int offset = slice_.sps->qp_offset(), range = 52 + offset;
  qp_ += bits_.se(-range / 2, range / 2 - 1, "mb_qp_delta");
  if (qp_ < -offset) qp_ += range;
  if (qp_ > 51) qp_ -= range;
}

template <class Coeff>
void MacroblockReader::read_luma(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int quarters,
                                 Coeff** out) {
  CountWindow<4, 4> counts(neighbours, luma_counts);
  int max = 16;
  if (mb.kind == MbKind::kIntra16x16) {
    if (tables_.read_block(bits_, out, counts.expected(0, 0), 16, mb.field) > 0) mb.coded |= kCodedDc;
    max = 15;
  }
  for (int i = 0; i < 16; ++i) {
    if (!(quarters >> (i / 4) & 1)) continue;
    const int raster = example::kBlockRaster[i], x = raster % 4, y = raster / 4;
    const int count = tables_.read_block(bits_, out, counts.expected(x, y), max, mb.field);
    if (count == 0) continue;
    counts.set(x, y, count);
    mb.coded |= coded_block(i);
    info.coded_blocks = static_cast<std::uint16_t>(info.coded_blocks | 1 << raster);
  }
  counts.store(info.luma_counts.data());
}

/// Each 8x8 block is coded as four blocks of 4x4 coefficients, which the neighbours see as 4x4 blocks.
template <class Coeff>
void MacroblockReader::read_luma_8x8(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int quarters,
                                     Coeff** out) {
  CountWindow<4, 4> counts(neighbours, luma_counts);
  for (int i = 0; i < 4; ++i) {
    if (!(quarters >> i & 1)) continue;
    std::fill_n(*out, 64, Coeff{0});
    int all = 0;
    for (int part = 0; part < 4; ++part) {
      const int raster = example::kBlockRaster[4 * i + part], x = raster % 4, y = raster / 4;
      const int count = tables_.read_part_8x8(bits_, *out, part, counts.expected(x, y), mb.field);
      counts.set(x, y, count);
      all += count;
    }
    if (all == 0) continue;
    *out += 64;
    mb.coded_8x8 |= 1u << i;
    info.coded_blocks = static_cast<std::uint16_t>(info.coded_blocks | 0x33 << example::kBlockRaster[4 * i]);
  }
  counts.store(info.luma_counts.data());
}

/// `Rows` of 4x4 blocks in each plane.
template <int Rows, class Coeff>
void MacroblockReader::read_chroma(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, bool has_ac,
                                   Coeff** out) {
  for (int plane = 0; plane < 2; ++plane) {
    if (tables_.read_chroma_dc(bits_, out, Rows == 4) > 0) mb.coded_chroma[plane] |= kCodedDc;
  }
  if (!has_ac) return;
  for (int plane = 0; plane < 2; ++plane) {
    CountWindow<2, Rows> counts(neighbours, [=](const MbInfo& other) { return other.chroma_counts[plane].data(); });
    for (int i = 0; i < 2 * Rows; ++i) {
      const int count = tables_.read_block(bits_, out, counts.expected(i % 2, i / 2), 15, mb.field);
      counts.set(i % 2, i / 2, count);
      if (count > 0) mb.coded_chroma[plane] |= coded_block(i);
    }
    counts.store(info.chroma_counts[plane].data());
  }
}

}  // namespace moxdec::h264
