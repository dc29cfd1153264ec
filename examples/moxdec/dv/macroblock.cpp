#include "moxdec/dv/macroblock.hpp"

#include <algorithm>

namespace moxdec::dv {
namespace {

constexpr int kValues = 64;

bool has_mode_bit(Mox32u parameter) { return parameter >> 6 & 1; }

/// Columns `first` to `first + columns - 1` of a block of samples to a plane. A block of one field goes to every other
/// line: `spread` is 2.
void store(const Mox16s* block, int first, int columns, const Frame& frame, int plane, int x, int y, int spread) {
  const int step = frame.step(plane);
  Mox8u* row = frame.samples<Mox8u>(plane) + std::ptrdiff_t{y} * step + x;
  for (int i = 0; i < 8; ++i, block += 8, row += spread * step) {
    for (int j = 0; j < columns; ++j) row[j] = static_cast<Mox8u>(std::clamp(block[first + j] + 128, 0, 255));
  }
}
void store(const Mox16s* block, const Frame& frame, int plane, int x, int y, int spread = 1) {
  store(block, 0, 8, frame, plane, x, y, spread);
}

void transform_block(const Profile& profile, bool chroma, Mox16s* block, Mox32u parameter) {
  if (profile.is_dv100()) {
    moxiQuantInv_DV100_16s_C1I(block, parameter, (profile.format.height == 720 ? 2 : 0) + (chroma ? 1 : 0));
    moxiDCT8x8Inv_16s_C1I(block);
  } else {
    moxiQuantInv_DV_16s_C1I(block, parameter);
    has_mode_bit(parameter) ? moxiDCT2x4x8Inv_16s_C1I(block) : moxiDCT8x8Inv_16s_C1I(block);
  }
}

/// Six blocks: four of luma, or two with one left out behind each; Cr; Cb.
void store_dv(const Place& place, const Mox16s* blocks, const Frame& frame) {
  const int distance = place.shape == Shape::kTwoWide ? 2 : 1, wide = place.shape == Shape::kFourWide ? 4 : 2;
  for (int i = 0; i < 4 / distance; ++i) {
    store(blocks + i * distance * kValues, frame, 0, place.x + i % wide * 8, place.y + i / wide * 8);
  }
  const Chroma chroma = frame.format().chroma;
  for (int i = 0; i < 2; ++i) {
    const Mox16s* const block = blocks + (4 + i) * kValues;
    const int plane = 2 - i, x = place.x >> chroma_shift_x(chroma), y = place.y >> chroma_shift_y(chroma);
    if (chroma == Chroma::k411 && place.shape == Shape::kSquare) {  // the right edge: 4x16 samples as two halves
      store(block, 0, 4, frame, plane, x, y, 1);
      store(block, 4, 4, frame, plane, x, y + 8, 1);
    } else {
      store(block, frame, plane, x, y);
    }
  }
}

/// Eight blocks: four of luma, two of Cr, two of Cb, in frames or, upper ones first, in fields.
void store_dv100(const Place& place, bool fields, const Mox16s* blocks, const Frame& frame) {
  if (place.shape == Shape::kFourWide) {
    for (int i = 0; i < 4; ++i) store(blocks + i * kValues, frame, 0, place.x + 8 * i, place.y);
    for (int i = 0; i < 4; ++i) {
      store(blocks + (4 + i) * kValues, frame, 2 - i / 2, place.x / 2 + i % 2 * 8, place.y);
    }
    return;
  }
  const int below = fields ? 1 : 8, spread = fields ? 2 : 1;
  for (int i = 0; i < 4; ++i) {
    store(blocks + i * kValues, frame, 0, place.x + i % 2 * 8, place.y + i / 2 * below, spread);
  }
  for (int i = 0; i < 4; ++i) {
    store(blocks + (4 + i) * kValues, frame, 2 - i / 2, place.x / 2, place.y + i % 2 * below, spread);
  }
}

}  // namespace

void reconstruct(const Profile& profile, const Place& place, Mox16s* coefficients, const Mox32u* parameters,
                 const Frame& frame) {
  for (int i = 0; i < profile.blocks(); ++i)
    transform_block(profile, i >= 4, coefficients + i * kValues, parameters[i]);
  if (profile.is_dv100()) {
    store_dv100(place, profile.format.height == 1080 && has_mode_bit(parameters[0]), coefficients, frame);
  } else {
    store_dv(place, coefficients, frame);
  }
}

}  // namespace moxdec::dv
