#include "moxdec/h263/inter_prediction.hpp"

#include <algorithm>

#include "moxdec/error.hpp"
#include "moxdec/h263/motion.hpp"

namespace moxdec::h263 {
namespace {

class MacroblockPredictor {
 public:
  MacroblockPredictor(const Picture& picture, int mb_x, int mb_y)
      : picture_(picture), x_(mb_x), y_(mb_y), macroblock_(picture.at(mb_x, mb_y)) {}

  void predict() const {
    if (picture_.header.options.advanced_prediction) {
      for (int i = 0; i < 4; ++i) overlap_block(i);
    } else if (macroblock_.four_vectors) {
      for (int i = 0; i < 4; ++i) move(BlockPlace(i, x_, y_), 8, macroblock_.vectors[i], moxiCopy8x8HP_8u_C1R);
    } else {
      move(BlockPlace(0, x_, y_), 16, macroblock_.vectors[0], moxiCopy16x16HP_8u_C1R);
    }
    const MoxiMotionVector chroma = chroma_vector(macroblock_);
    for (int i = 4; i < 6; ++i) move(BlockPlace(i, x_, y_), 8, chroma, moxiCopy8x8HP_8u_C1R);
    add_residuals();
  }

 private:
  using Copy = decltype(&moxiCopy8x8HP_8u_C1R);

  void move(const BlockPlace& place, int size, MoxiMotionVector vector, Copy copy) const {
    const MoxiMotionVector v = within_margin(place, size, vector);
    const int step = picture_.reference->step(place.plane);
    copy(place.in(*picture_.reference) + (v.y >> 1) * step + (v.x >> 1), step, place.in(*picture_.frame),
         picture_.frame->step(place.plane), (v.x & 1) | (v.y & 1) << 1, picture_.header.rounding);
  }

  /// A block that lies wholly beyond an edge is the same wherever it lies there.
  MoxiMotionVector within_margin(const BlockPlace& place, int size, MoxiMotionVector vector) const {
    const int shift = place.plane > 0;
    const auto limit = [size](Mox16s component, int at, int extent) {
      return static_cast<Mox16s>(std::clamp<int>(component, 2 * (-size - 1 - at), 2 * (extent - at)));
    };
    return {limit(vector.x, place.x, 16 * picture_.mb_width() >> shift),
            limit(vector.y, place.y, 16 * picture_.mb_height() >> shift)};
  }

  /// The vectors of the blocks around take part.
  void overlap_block(int i) const {
    const BlockPlace place(i, x_, y_);
    const auto& own = macroblock_.vectors;
    std::array<MoxiMotionVector, 4> around = {
        i & 2 ? own[i - 2] : neighbour(x_, y_ - 1, i + 2, i), i & 1 ? own[i - 1] : neighbour(x_ - 1, y_, i + 1, i),
        i & 1 ? neighbour(x_ + 1, y_, i - 1, i) : own[i + 1], i & 2 ? own[i] : own[i + 2]};
    for (MoxiMotionVector& vector : around) vector = within_margin(place, 8, vector);
    moxiOBMC8x8HP_MPEG4_8u_C1R(place.in(*picture_.reference), picture_.reference->step(0), place.in(*picture_.frame),
                               picture_.frame->step(0), within_margin(place, 8, own[i]), around.data(),
                               picture_.header.rounding);
  }

  /// The vector of a block of another macroblock. One that has none, or belongs to another slice, counts as having that
  /// of the own block i. Groups of blocks are no such border.
  MoxiMotionVector neighbour(int mb_x, int mb_y, int other, int i) const {
    const bool beside = picture_.has(mb_x, mb_y) && !picture_.at(mb_x, mb_y).intra;
    const bool known = !picture_.header.options.slices || picture_.in_segment(mb_x, mb_y, macroblock_.segment);
    return beside && known ? picture_.at(mb_x, mb_y).vectors[other] : macroblock_.vectors[i];
  }

  void add_residuals() const {
    auto residual = picture_.residuals.begin() + macroblock_.first_residual;
    for (int i = 0; i < 6; ++i) {
      if (!(macroblock_.pattern >> (5 - i) & 1)) continue;
      const BlockPlace place(i, x_, y_);
      moxiAdd8x8_16s8u_C1IRS(residual->data(), 16, place.in(*picture_.frame), picture_.frame->step(place.plane));
      ++residual;
    }
  }

  const Picture& picture_;
  int x_, y_;
  const Macroblock& macroblock_;
};

}  // namespace

void predict_picture(const Picture& picture) {
  for (int y = 0; y < picture.mb_height(); ++y) {
    for (int x = 0; x < picture.mb_width(); ++x) {
      if (!picture.at(x, y).intra) MacroblockPredictor(picture, x, y).predict();
    }
  }
}

}  // namespace moxdec::h263
