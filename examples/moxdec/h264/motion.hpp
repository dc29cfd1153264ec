/// Motion of macroblocks, and the prediction of vectors from the neighbours.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

namespace moxdec::h264 {

/// In quarter samples of luma.
struct MotionVector {
  std::int16_t x = 0;
  std::int16_t y = 0;
  bool operator==(const MotionVector&) const = default;
};

/// The 8x8 quadrant that a 4x4 block, in raster order, lies in.
constexpr int quadrant_of(int block) { return block >> 3 << 1 | (block >> 1 & 1); }

inline constexpr std::int8_t kNoReference = -1;

/// Which field of a frame: its top one has the lines 0, 2 and so on.
enum Parity { kTop = 0, kBottom = 1 };

/// What a macroblock belongs to: the whole picture, or one field of a frame that has field macroblocks among others.
enum class PicturePart { kWhole, kTopField, kBottomField };
inline constexpr int kPictureParts = 3;
/// -1 for the whole picture.
constexpr int parity_of(PicturePart field) { return static_cast<int>(field) - 1; }

/// Names a reference picture: the place of its frame in the reference buffer and, if it is only one field, which one.
constexpr std::int8_t field_id(int slot, int parity) { return static_cast<std::int8_t>(slot | (parity + 1) << 5); }
constexpr int slot_of(int id) { return id & 31; }
constexpr bool is_field(int id) { return id >= 32; }
constexpr int parity_of(int field) { return (field >> 5) - 1; }
static_assert(parity_of(field_id(16, kBottom)) == kBottom && slot_of(field_id(16, kBottom)) == 16);

/// What stays of a macroblock's motion. Where a list is not used, index and picture are kNoReference and the vector 0.
/// Vectors and indices of field macroblocks are those of fields.
struct MbMotion {
  std::array<std::array<std::int8_t, 4>, 2> references;  // [list][quadrant], indices into the slice's lists
  std::array<std::array<std::int8_t, 4>, 2> pictures;    // the same as names of pictures
  bool field = false;
  alignas(16) std::array<std::array<MotionVector, 16>, 2> vectors;  // [list][4x4 block in raster order]
};

constexpr MbMotion still_motion(std::int8_t reference) {
  MbMotion motion{};
  for (int list = 0; list < 2; ++list) {
    motion.references[list].fill(reference);
    motion.pictures[list].fill(reference);
  }
  return motion;
}
inline constexpr MbMotion kNoMotion = still_motion(kNoReference);

/// Reference index and vector of one list.
struct Motion {
  std::int8_t reference = kNoReference;
  MotionVector vector;
  bool operator==(const Motion&) const = default;
};

/// A rectangle of 4x4 blocks in a macroblock; each side is 1, 2 or 4.
struct BlockRect {
  int x, y, width, height;
};
inline constexpr BlockRect kWholeMb = {0, 0, 4, 4};
constexpr BlockRect quadrant_rect(int quadrant) { return {quadrant % 2 * 2, quadrant / 2 * 2, 2, 2}; }

/// The motion of a macroblock in work for one list, with the blocks around it: a row above from the top left to the top
/// right neighbour, and a column at the left.
class MotionWindow {
 public:
  /// Stands for the reference index of a neighbour that is not available.
  static constexpr std::int8_t kNotThere = -2;

  MotionWindow() { references_.fill(kNotThere); }

  /// What is next to a macroblock in work. Null stands for a neighbour that is not available.
  struct Block {
    const MbMotion* mb = nullptr;
    int row = 0;  // of blocks in its macroblock
  };
  struct Surroundings {
    std::array<Block, 4> left;    // of each row of blocks
    std::array<Block, 4> corner;  // at the left too, one line above
    const MbMotion* top = nullptr;
    const MbMotion* top_right = nullptr;
    bool field = false;  // the macroblock's own kind, into which vectors and indices are converted
  };
  void load(int list, const Surroundings& around);
  /// Where all macroblocks are of the same kind.
  void load(int list, const MbMotion* left, const MbMotion* top, const MbMotion* top_left, const MbMotion* top_right);
  /// Writes the whole list of a macroblock, names of pictures excepted.
  void store(int list, MbMotion& out) const;

  void set_reference(const BlockRect& rect, int reference) {
    fill(references_, rect, static_cast<std::int8_t>(reference));
  }
  void set_vector(const BlockRect& rect, MotionVector vector) { fill(vectors_, rect, vector); }
  Motion at(int x, int y) const { return {references_[index(x, y)], vectors_[index(x, y)]}; }

  /// The median of the neighbours, or the vector of the only one that has the same reference index.
  MotionVector predict(const BlockRect& rect, int reference) const;
  /// For the halves of a macroblock, which prefer one neighbour.
  MotionVector predict_half(const BlockRect& rect, int reference) const;
  /// For a P macroblock without any data.
  MotionVector predict_skip() const;
  /// The lowest index that the neighbours of the macroblock have; negative if they have none.
  int lowest_reference() const;

  /// Whether all blocks of the rectangle have the same vector.
  bool has_one_vector(const BlockRect& rect) const;

 private:
  static constexpr int kRow = 8;
  static constexpr int index(int x, int y) { return kRow * (y + 1) + x + 1; }
  void put(int list, int at, const MbMotion& mb, int block);
  /// Rows of a known width are a single store each.
  template <class Values, class Value>
  static void fill(Values& values, const BlockRect& rect, Value value) {
    auto* row = &values[index(rect.x, rect.y)];
    const auto fill_rows = [&](auto width) {
      for (int y = 0; y < rect.height; ++y, row += kRow) std::fill_n(row, decltype(width)::value, value);
    };
    if (rect.width == 4) return fill_rows(std::integral_constant<int, 4>{});
    if (rect.width == 2) return fill_rows(std::integral_constant<int, 2>{});
    fill_rows(std::integral_constant<int, 1>{});
  }
  /// The neighbour above at the right, or the one at the left where that is not there or not yet decoded.
  int diagonal_neighbour(const BlockRect& rect) const;

  /// The blocks at the left as seen from the row below. Apart from the others only where frames and fields meet.
  int corner(int y) const { return y < 0 ? index(-1, -1) : index(corner_column_, y); }
  static constexpr int kCornerColumn = 5;

  std::array<std::int8_t, 5 * kRow> references_;  // the column at the right is never there
  std::array<MotionVector, 5 * kRow> vectors_{};  // 0 where there is no reference
  int corner_column_ = -1;
};

}  // namespace moxdec::h264
