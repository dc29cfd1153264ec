/// The window of an IC Block form: the samples around a block, put through the tables of intensity compensation, with
/// the edges of the plane repeated.
///
/// kChannels is the number of bytes of a position. Columns of a window count bytes, as blockPos.x does.
#pragma once

#include <algorithm>
#include <cstddef>

#include "moxvc/vc1_interpolation.h"

namespace mox {

/// The largest block and one position left of and above it, two right of and below it.
inline constexpr int kVC1WindowSide = 16 + 3;

/// Where a window lies.
template <int kChannels>
struct VC1WindowArea {
  explicit VC1WindowArea(const MoxiVC1ICInterpolationParams& a)
      : left(std::ptrdiff_t{a.blockPos.x} - kChannels),
        top(std::ptrdiff_t{a.blockPos.y} - 1),
        columns(kChannels * (std::ptrdiff_t{a.blockSize.width} + 3)),
        rows(std::ptrdiff_t{a.blockSize.height} + 3) {}
  std::ptrdiff_t left, top, columns, rows;
};

/// A line of samples and the table that they go through, null for none.
struct VC1Line {
  const Mox8u *samples, *table;
};

/// The plane that a block is read from: a frame, or one field of it.
class VC1Reference {
 public:
  const std::ptrdiff_t step, rows;

  explicit VC1Reference(const MoxiVC1ICInterpolationParams& a)
      : step(std::ptrdiff_t{a.srcStep} * (a.isFieldPicture != 0 ? 2 : 1)),
        rows(a.isFieldPicture != 0 ? a.frameSize.height >> 1 : a.frameSize.height),
        a_(a) {}

  /// Row j, inside or outside of the plane, for a window whose first row inside is `first`.
  VC1Line line(std::ptrdiff_t j, std::ptrdiff_t first) const {
    if (j >= 0 && j < rows) return {a_.pSrc + j * step, table_of(j)};
    const bool above = j < 0;
    const std::ptrdiff_t height = a_.frameSize.height, bottom = a_.isBottomField;
    if (a_.isInterlacedRef == 0) {
      // Below, the table goes by the start of the window, not by the row that is repeated.
      return {a_.pSrc + (above ? 0 : rows - 1) * step, table_of(above ? first : first + 1)};
    }
    if (a_.isFieldPicture != 0) {
      return {a_.pSrc + ((above ? 0 : height - 1) - bottom) * a_.srcStep, above ? a_.pLUTTop : a_.pLUTBottom};
    }
    const std::ptrdiff_t row = (above ? 0 : height - 2) + (j & 1);
    return {a_.pSrc + (row - bottom) * a_.srcStep, table_of(row)};
  }

 private:
  const Mox8u* table_of(std::ptrdiff_t row) const {
    const bool bottom = a_.isFieldPicture != 0 ? a_.isBottomField != 0 : (row & 1) != 0;
    return bottom ? a_.pLUTBottom : a_.pLUTTop;
  }

  const MoxiVC1ICInterpolationParams& a_;
};

/// Reads `count` columns of a line from column x on; those outside of 0..width - 1 are the nearest of their channel.
template <int kChannels>
void vc1_read_line(VC1Line line, std::ptrdiff_t x, std::ptrdiff_t count, std::ptrdiff_t width, Mox8u* to) {
  const std::ptrdiff_t before = std::clamp<std::ptrdiff_t>(-x, 0, count);
  const std::ptrdiff_t inside = std::clamp<std::ptrdiff_t>(width - x, before, count);
  const auto channel = [x](std::ptrdiff_t i) { return (x + i) & (kChannels - 1); };
  for (std::ptrdiff_t i = 0; i < before; ++i) to[i] = line.samples[channel(i)];
  if (inside > before) std::copy(line.samples + x + before, line.samples + x + inside, to + before);
  for (std::ptrdiff_t i = inside; i < count; ++i) to[i] = line.samples[width - kChannels + channel(i)];
  if (line.table == nullptr) return;
  for (std::ptrdiff_t i = 0; i < count; ++i) to[i] = line.table[to[i]];
}

/// The samples of a window. A kernel larger than the block finds zeros behind them.
template <int kChannels>
class VC1Window {
 public:
  static constexpr std::ptrdiff_t kStep = kVC1WindowSide * kChannels;

  VC1Window(const MoxiVC1ICInterpolationParams& a, const VC1Reference& reference,
            const VC1WindowArea<kChannels>& area) {
    const std::ptrdiff_t first = std::max<std::ptrdiff_t>(area.top, 0),
                         width = std::ptrdiff_t{a.frameSize.width} * kChannels;
    const auto columns = std::clamp<std::ptrdiff_t>(area.columns, 0, kStep);
    const auto rows = std::clamp<std::ptrdiff_t>(area.rows, 0, kVC1WindowSide);
    for (std::ptrdiff_t i = 0; i < rows; ++i) {
      vc1_read_line<kChannels>(reference.line(area.top + i, first), area.left, columns, width, samples_ + i * kStep);
    }
  }
  const Mox8u* block() const { return samples_ + kStep + kChannels; }

 private:
  Mox8u samples_[kVC1WindowSide * kStep] = {};
};

}  // namespace mox
