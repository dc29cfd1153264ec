#include "moxenc/macroblock_writer.hpp"

#include <algorithm>

#include "moxenc/cavlc.hpp"
#include "moxenc/motion.hpp"

namespace moxenc {
namespace {

/// Code number of each coded_block_pattern.
constexpr auto code_numbers(const std::array<std::uint8_t, 48>& patterns) {
  std::array<std::uint8_t, 48> numbers{};
  for (std::size_t i = 0; i < 48; ++i) numbers[patterns[i]] = static_cast<std::uint8_t>(i);
  return numbers;
}
constexpr auto kIntraNumbers = code_numbers(example::kCbpIntra), kInterNumbers = code_numbers(example::kCbpInter);

/// nC of a block: the mean count of the neighbours that there are.
int mean_count(const Grid<std::int8_t>& counts, int x, int y) {
  const int left = counts.at(x - 1, y), above = counts.at(x, y - 1);
  if (left < 0) return std::max(above, 0);
  return above < 0 ? left : (left + above + 1) >> 1;
}

}  // namespace

void MacroblockWriter::write(const Macroblock& mb) {
  const int pattern = mb.residual.pattern();
  if (mb.kind == Kind::kInter && mb.split == Split::kNone && mb.residual.coded == 0 &&
      mb.vectors[0] == predict_skip(state_.motion, mb.x, mb.y)) {
    ++skipped_;
    state_.motion.fill(2 * mb.x, 2 * mb.y, 2, 2, {mb.vectors[0], 0});
    return leave_state(mb);
  }
  if (p_picture_) bits_.ue(skipped_);
  skipped_ = 0;
  write_type(mb, pattern);
  if (mb.kind == Kind::kPcm) return write_samples(mb);
  if (mb.is_intra()) {
    write_intra_modes(mb);
  } else {
    write_vectors(mb);
  }
  if (mb.kind != Kind::kIntra16x16) {
    bits_.ue((mb.is_intra() ? kIntraNumbers : kInterNumbers)[static_cast<std::size_t>(pattern)]);
  }
  if (mb.kind == Kind::kIntra16x16 || pattern != 0) {
    bits_.se(0);  // mb_qp_delta
    leave_state(mb);
    write_luma(mb, pattern);
    write_chroma(mb, pattern);
  } else {
    leave_state(mb);
  }
}

void MacroblockWriter::finish() {
  if (skipped_ > 0) bits_.ue(skipped_);
  bits_.finish();
}

void MacroblockWriter::write_type(const Macroblock& mb, int pattern) {
  constexpr std::uint32_t kIntraInP = 5;
  if (mb.kind == Kind::kInter) {
    bits_.ue(static_cast<std::uint32_t>(mb.split));
    if (mb.split == Split::kQuarters) bits_.put(15, 4);  // four times sub_mb_type 0: not split further
    return;
  }
  std::uint32_t type = mb.kind == Kind::kPcm ? 25 : 0;
  if (mb.kind == Kind::kIntra16x16) {
    type = static_cast<std::uint32_t>(1 + mb.luma_mode + 4 * (pattern >> 4) + ((pattern & 15) != 0 ? 12 : 0));
  }
  bits_.ue(type + (p_picture_ ? kIntraInP : 0));
}

void MacroblockWriter::write_intra_modes(const Macroblock& mb) {
  if (mb.kind == Kind::kIntra4x4) {
    for (const int block : example::kBlockRaster) {
      const int x = 4 * mb.x + block % 4, y = 4 * mb.y + block / 4;
      const int mode = mb.modes[static_cast<std::size_t>(block)], predicted = predict_mode(state_.modes, x, y);
      bits_.flag(mode == predicted);
      if (mode != predicted) bits_.put(static_cast<std::uint32_t>(mode < predicted ? mode : mode - 1), 3);
      state_.modes.at(x, y) = static_cast<std::int8_t>(mode);
    }
  }
  bits_.ue(mb.chroma_mode);
  state_.motion.fill(2 * mb.x, 2 * mb.y, 2, 2, {{}, Motion::kIntra});
}

void MacroblockWriter::write_vectors(const Macroblock& mb) {
  for (int i = 0; i < part_count(mb.split); ++i) {
    const Part part = part_of(mb.x, mb.y, mb.split, i);
    const Vector predicted = predict_vector(state_.motion, part, mb.split);
    const Vector vector = mb.vectors[first_quarter(part)];
    bits_.se(vector.x - predicted.x);
    bits_.se(vector.y - predicted.y);
    state_.motion.fill(part.x, part.y, part.width, part.height, {vector, 0});
  }
}

/// Such a macroblock counts as full of levels, and as one of QP 0 to the filter.
void MacroblockWriter::write_samples(const Macroblock& mb) {
  bits_.align();
  for (std::size_t plane = 0; plane < 3; ++plane) {
    const int size = plane == 0 ? 16 : 8;
    for (int y = 0; y < size; ++y) {
      const Mox8u* row = mb.samples.at[plane] + std::ptrdiff_t{y} * mb.samples.step[plane];
      for (int x = 0; x < size; ++x) bits_.put(row[x], 8);
    }
  }
  leave_state(mb);
  state_.luma_counts.fill(4 * mb.x, 4 * mb.y, 4, 4, 16);
  for (auto& counts : state_.chroma_counts) counts.fill(2 * mb.x, 2 * mb.y, 2, 2, 16);
  state_.motion.fill(2 * mb.x, 2 * mb.y, 2, 2, {{}, Motion::kIntra});
  state_.info_at(mb.x, mb.y).qp = 0;
}

void MacroblockWriter::write_luma(const Macroblock& mb, int pattern) {
  const Residual& residual = mb.residual;
  const bool intra16 = mb.kind == Kind::kIntra16x16;
  const int left = 4 * mb.x, top = 4 * mb.y;
  if (intra16) {
    const int nc = mean_count(state_.luma_counts, left, top);
    if (residual.coded & 1) {
      write_block(bits_, residual.luma_dc.data(), 0, residual.luma_dc_last, nc);
    } else {
      write_empty_block(bits_, nc);
    }
    if ((pattern & 15) != 0) pattern |= 15;
  }
  for (int i = 0; i < 16; ++i) {
    if (!(pattern >> (i / 4) & 1)) continue;
    const auto block = static_cast<std::size_t>(example::kBlockRaster[static_cast<std::size_t>(i)]);
    const int x = left + static_cast<int>(block % 4), y = top + static_cast<int>(block / 4);
    const int nc = mean_count(state_.luma_counts, x, y);
    if (residual.coded >> (i + 1) & 1) {
      state_.luma_counts.at(x, y) = static_cast<std::int8_t>(
          write_block(bits_, residual.luma[block].data(), intra16 ? 1 : 0, residual.luma_last[block], nc));
    } else {
      write_empty_block(bits_, nc);
    }
  }
}

void MacroblockWriter::write_chroma(const Macroblock& mb, int pattern) {
  const Residual& residual = mb.residual;
  if (pattern >> 4 == 0) return;
  for (std::size_t plane = 0; plane < 2; ++plane) {
    if (residual.coded >> (17 + plane) & 1) {
      write_chroma_dc(bits_, residual.chroma_dc[plane].data());
    } else {
      write_empty_chroma_dc(bits_);
    }
  }
  if (pattern >> 4 == 1) return;
  for (std::size_t i = 0; i < 8; ++i) {
    const std::size_t plane = i / 4, block = i % 4;
    auto& counts = state_.chroma_counts[plane];
    const int x = 2 * mb.x + static_cast<int>(block % 2), y = 2 * mb.y + static_cast<int>(block / 2);
    const int nc = mean_count(counts, x, y);
    if (residual.coded >> (19 + i) & 1) {
      counts.at(x, y) = static_cast<std::int8_t>(
          write_block(bits_, residual.chroma[plane][block].data(), 1, residual.chroma_last[plane][block], nc));
    } else {
      write_empty_block(bits_, nc);
    }
  }
}

/// Counts start as zeros; those of coded blocks come with writing.
void MacroblockWriter::leave_state(const Macroblock& mb) {
  state_.luma_counts.fill(4 * mb.x, 4 * mb.y, 4, 4, 0);
  for (auto& counts : state_.chroma_counts) counts.fill(2 * mb.x, 2 * mb.y, 2, 2, 0);
  if (mb.kind != Kind::kIntra4x4) state_.modes.fill(4 * mb.x, 4 * mb.y, 4, 4, 2);
  state_.info_at(mb.x, mb.y) = {mb.is_intra(), static_cast<std::uint8_t>(qp_)};
}

}  // namespace moxenc
