#include "moxdec/h264/lossless.hpp"

#include <algorithm>
#include <array>

namespace moxdec::h264 {
namespace {

template <class Value>
void sum(Value* values, int width, int height, SumDirection direction) {
  const int first_x = direction == SumDirection::kRows, first_y = direction == SumDirection::kColumns;
  const int back = first_x + first_y * width;
  for (int y = first_y; y < height; ++y) {
    for (int i = width * y + first_x; i < width * (y + 1); ++i) {
      values[i] = static_cast<Value>(values[i] + values[i - back]);
    }
  }
}

}  // namespace

template <class Coeff>
void sum_blocks(Macroblock& mb, Coeff* blocks) {
  const int size = mb.transform_8x8 ? 8 : 4;
  const Mox32u coded = mb.transform_8x8 ? mb.coded_8x8 : mb.coded >> 1;
  for (int i = 0; i < 256 / (size * size); ++i) {
    if (!(coded >> i & 1)) continue;
    const SumDirection direction = luma_sums(mb.intra_modes[i]);
    if (direction != SumDirection::kNone) sum(blocks, size, size, direction);
    blocks += size * size;
  }
}

template <class Sample, class Coeff>
Coeff* add_sums(const PredictedPlane<Sample>& plane, SumDirection direction, Mox32u coded, const Coeff* dc,
                Coeff* blocks) {
  const int width = 4 * plane.columns, height = 4 * plane.rows;
  std::array<int, 16 * 16> values{};
  for (int i = 0; i < plane.columns * plane.rows; ++i) {
    const int raster = plane.columns == 4 ? example::kBlockRaster[i] : i;
    int* first = &values[4 * (raster / plane.columns) * width + 4 * (raster % plane.columns)];
    if (coded & coded_block(i)) {
      for (int y = 0; y < 4; ++y) std::copy_n(blocks + 4 * y, 4, first + y * width);
      blocks += 16;
    }
    *first = coded & kCodedDc ? dc[raster] : 0;
  }
  sum(values.data(), width, height, direction);
  for (int y = 0; y < height; ++y) {
    Sample* row = plane.samples + std::ptrdiff_t{y} * plane.step;
    for (int x = 0; x < width; ++x) {
      row[x] = static_cast<Sample>(std::clamp(row[x] + values[y * width + x], 0, plane.max_sample));
    }
  }
  return blocks;
}

template void sum_blocks(Macroblock&, Mox16s*);
template void sum_blocks(Macroblock&, Mox32s*);
template Mox16s* add_sums(const PredictedPlane<Mox8u>&, SumDirection, Mox32u, const Mox16s*, Mox16s*);
template Mox32s* add_sums(const PredictedPlane<Mox16u>&, SumDirection, Mox32u, const Mox32s*, Mox32s*);

}  // namespace moxdec::h264
