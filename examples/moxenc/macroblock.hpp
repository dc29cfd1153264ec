/// What is decided about a macroblock, and what the macroblocks of a picture leave behind for the next ones.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "common/h264_tables.hpp"
#include "moxenc/grid.hpp"
#include "moxenc/picture.hpp"
#include "moxvc.h"

namespace moxenc {

/// The arguments of this program's calls are always legal.
inline void expect_ok(MoxStatus status) {
  if (status != moxStsOk) throw std::logic_error("a library function refused its arguments");
}

/// In quarters of a luma sample.
struct Vector {
  std::int16_t x = 0;
  std::int16_t y = 0;
  bool operator==(const Vector&) const = default;
};

/// kPcm: samples as they are.
enum class Kind : std::uint8_t { kIntra4x4, kIntra16x16, kPcm, kInter };
using example::Split;

/// A partition of an inter macroblock, in units of 8 samples within the picture.
struct Part {
  int x, y, width, height;
};

/// Quantised levels. Blocks are in raster order, coefficients too.
struct Residual {
  alignas(16) std::array<Mox16s, 16> luma_dc;  ///< of Intra 16x16
  alignas(16) std::array<std::array<Mox16s, 16>, 16> luma;
  alignas(16) std::array<std::array<Mox16s, 4>, 2> chroma_dc;
  alignas(16) std::array<std::array<std::array<Mox16s, 16>, 4>, 2> chroma;
  /// The highest scan position with a level in each block that has any.
  Mox8u luma_dc_last;
  std::array<Mox8u, 16> luma_last;
  std::array<std::array<Mox8u, 4>, 2> chroma_last;
  /// Blocks with levels: bit 0 the luma DC, 1 to 16 luma in coding order, 17 and 18 the chroma DC, 19 to 26 chroma.
  std::uint32_t coded;

  /// coded_block_pattern: bits 0 to 3 for the luma quarters, 4 and 5 the chroma part (0 none, 1 DC, 2 DC and AC).
  int pattern() const {
    int quarters = 0;
    for (int i = 0; i < 4; ++i) quarters |= (coded >> (4 * i + 1) & 15) != 0 ? 1 << i : 0;
    return quarters | ((coded >> 19 & 255) != 0 ? 2 : (coded >> 17 & 3) != 0 ? 1 : 0) << 4;
  }
};

struct Macroblock {
  int x, y;  ///< in macroblocks
  int qp;
  Kind kind;
  Split split;                          ///< of kInter
  std::array<Vector, 4> vectors;        ///< of the quarters
  std::array<std::uint8_t, 16> modes;   ///< of Intra 4x4 blocks in raster order
  std::uint8_t luma_mode, chroma_mode;  ///< of Intra 16x16, and of all intra chroma
  Planes samples;                       ///< of kPcm
  Residual residual;

  bool is_intra() const { return kind != Kind::kInter; }
};

/// How many partitions an inter macroblock has, and the `i`-th one.
constexpr int part_count(Split split) { return split == Split::kNone ? 1 : split == Split::kQuarters ? 4 : 2; }
constexpr Part part_of(int mb_x, int mb_y, Split split, int i) {
  const int width = split == Split::kNone || split == Split::kRows ? 2 : 1,
            height = split == Split::kNone || split == Split::kColumns ? 2 : 1;
  return {2 * mb_x + i * width % 2, 2 * mb_y + (split == Split::kQuarters ? i / 2 : i * height % 2), width, height};
}

/// Which quarter of its macroblock a partition begins with.
constexpr std::size_t first_quarter(const Part& part) { return static_cast<std::size_t>(part.y % 2 * 2 + part.x % 2); }

/// The motion of an 8x8 block.
struct Motion {
  Vector vector;
  std::int8_t reference;  ///< 0, kIntra or kUnknown
  static constexpr std::int8_t kIntra = -1, kUnknown = -2;
};

/// What the macroblocks of the picture in work leave behind.
struct CodingState {
  CodingState(int mb_columns, int mb_rows)
      : columns(mb_columns),
        rows(mb_rows),
        luma_counts(4 * columns, 4 * rows, -1),
        chroma_counts{Grid<std::int8_t>(2 * columns, 2 * rows, -1), Grid<std::int8_t>(2 * columns, 2 * rows, -1)},
        modes(4 * columns, 4 * rows, -1),
        motion(2 * columns, 2 * rows, Motion{{}, Motion::kUnknown}),
        info(static_cast<std::size_t>(columns * rows)) {}

  struct Info {
    bool intra;
    std::uint8_t qp;  ///< for the deblocking filter
  };
  Info& info_at(int x, int y) { return info[static_cast<std::size_t>(y * columns + x)]; }
  const Info& info_at(int x, int y) const { return info[static_cast<std::size_t>(y * columns + x)]; }

  void begin_picture() {
    luma_counts.forget(), chroma_counts[0].forget(), chroma_counts[1].forget();
    modes.forget(), motion.forget();
  }

  int columns, rows;
  Grid<std::int8_t> luma_counts;                   ///< levels of each 4x4 block
  std::array<Grid<std::int8_t>, 2> chroma_counts;  ///< but the DC
  Grid<std::int8_t> modes;                         ///< of 4x4 blocks; 2 (DC) in other macroblocks
  Grid<Motion> motion;
  std::vector<Info> info;
};

}  // namespace moxenc
