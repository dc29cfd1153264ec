#include "moxdec/mpeg12/prediction.hpp"

#include <optional>

#include "moxvc.h"

namespace moxdec::mpeg12 {
namespace {

using OneReference = decltype(&moxiMC16x16_8u_C1);
using TwoReferences = decltype(&moxiMC16x16B_8u_C1);

struct BlockFunctions {
  int width, rows;
  OneReference one;
  TwoReferences two;
};
constexpr BlockFunctions kBlocks[] = {{16, 16, moxiMC16x16_8u_C1, moxiMC16x16B_8u_C1},
                                      {16, 8, moxiMC16x8_8u_C1, moxiMC16x8B_8u_C1},
                                      {8, 16, moxiMC8x16_8u_C1, moxiMC8x16B_8u_C1},
                                      {8, 8, moxiMC8x8_8u_C1, moxiMC8x8B_8u_C1},
                                      {8, 4, moxiMC8x4_8u_C1, moxiMC8x4B_8u_C1}};
constexpr const BlockFunctions& block_functions(int width, int rows) {
  return kBlocks[width == 16 ? rows == 8 : 2 + (rows == 8) + 2 * (rows == 4)];
}
static_assert(block_functions(16, 8).rows == 8 && block_functions(8, 16).rows == 16 && block_functions(8, 4).rows == 4);

/// A reference and a vector into it.
struct Source {
  View view;
  Vector vector;
};

/// A rectangle of a macroblock that is predicted at once.
struct Part {
  View target;
  int x, y, rows;                  // in luma samples of the target
  int residual_row, residual_gap;  // first luma row of the residual, and rows from one to the next: 2 for a field
};

/// The place in a plane that a vector points to, and the half samples that are left.
struct Position {
  const Mox8u* samples;
  Mox32s type;
};

class PartPredictor {
 public:
  PartPredictor(const Part& part, int chroma_rows_shift, const Residual& residual)
      : part_(part), chroma_rows_shift_(chroma_rows_shift), residual_(residual) {}

  void predict(const Source& first, const std::optional<Source>& second) const {
    for (int plane = 0; plane < 3; ++plane) {
      const int shift_x = plane > 0, shift_y = plane > 0 ? chroma_rows_shift_ : 0;
      const int rows = part_.rows >> shift_y, step = part_.target.step[plane];
      const auto& functions = block_functions(16 >> shift_x, rows);
      Mox8u* const target = part_.target.base[plane] + (part_.y >> shift_y) * step + (part_.x >> shift_x);
      const int residual_row = part_.residual_gap == 2 ? part_.residual_row : part_.residual_row >> shift_y;
      const Mox16s* const residual = residual_.plane(plane) + residual_row * Residual::step(plane);
      const Mox32s residual_step = 2 * part_.residual_gap * Residual::step(plane);
      const Position a = locate(first, plane, shift_x, shift_y);
      if (second) {
        const Position b = locate(*second, plane, shift_x, shift_y);
        functions.two(a.samples, first.view.step[plane], a.type, b.samples, second->view.step[plane], b.type, residual,
                      residual_step, target, step, 0);
      } else {
        functions.one(a.samples, first.view.step[plane], residual, residual_step, target, step, a.type, 0);
      }
    }
  }

 private:
  Position locate(const Source& source, int plane, int shift_x, int shift_y) const {
    // Chroma vectors are halved towards zero.
    const int vx = source.vector.x / (1 << shift_x), vy = source.vector.y / (1 << shift_y);
    const int x = (part_.x >> shift_x) + (vx >> 1), y = (part_.y >> shift_y) + (vy >> 1);
    const bool half_x = vx & 1, half_y = vy & 1;
    const int width = 16 >> shift_x, rows = part_.rows >> shift_y;
    require(x >= 0 && y >= 0 && x + width + half_x <= source.view.width >> shift_x &&
                y + rows + half_y <= source.view.height >> shift_y,
            "a vector points outside of the picture");
    return {source.view.base[plane] + std::ptrdiff_t{y} * source.view.step[plane] + x, 8 * half_x + 4 * half_y};
  }

  const Part& part_;
  int chroma_rows_shift_;
  const Residual& residual_;
};

class MacroblockPredictor {
 public:
  MacroblockPredictor(const Picture& picture, int mb_x, int mb_y, const Motion& motion, const Residual& residual)
      : picture_(picture), x_(16 * mb_x), y_(16 * mb_y), motion_(motion), residual_(residual) {}

  void predict() const {
    const View target = view_of(*picture_.frame, picture_.header.structure);
    if (motion_.kind == MotionKind::kFrame) {
      part({target, x_, y_, 16, 0, 1}, 0, std::nullopt);
    } else if (motion_.kind == MotionKind::k16x8) {
      for (int half = 0; half < 2; ++half) part({target, x_, y_ + 8 * half, 8, 8 * half, 1}, half, std::nullopt);
    } else if (picture_.header.is_frame()) {
      for (int parity = 0; parity < 2; ++parity) {
        part({field_of(*picture_.frame, parity), x_, y_ / 2, 8, parity, 2}, parity, parity);
      }
    } else {
      part({target, x_, y_, 16, 0, 1}, 0, picture_.header.parity());
    }
  }

 private:
  /// Predicts a part by vectors `index`; `parity` is that of the field it belongs to, for dual prime.
  void part(const Part& part, int index, std::optional<int> parity) const {
    const PartPredictor predictor(part, picture_.chroma_rows_shift(), residual_);
    if (motion_.kind == MotionKind::kDualPrime) {
      const int own = *parity;
      predictor.predict({field(kForward, own), motion_.vector[0][kForward]},
                        Source{field(kForward, 1 - own), motion_.opposite[own]});
    } else if (motion_.used[kForward]) {
      predictor.predict(source(index, kForward),
                        motion_.used[kBackward] ? std::optional(source(index, kBackward)) : std::nullopt);
    } else {
      predictor.predict(source(index, kBackward), std::nullopt);
    }
  }

  Source source(int index, Direction s) const {
    const Vector& vector = motion_.vector[index][s];
    if (motion_.kind == MotionKind::kFrame) return {view_of(frame(s), Structure::kFrame), vector};
    return {field(s, motion_.parity[index][s]), vector};
  }

  /// A field of a reference. The second field of a P frame is predicted from the first one too.
  View field(Direction s, int parity) const {
    const PictureHeader& header = picture_.header;
    const bool from_first_field = picture_.second_field && header.type == PictureType::kP && parity != header.parity();
    return field_of(from_first_field ? *picture_.frame : frame(s), parity);
  }

  const Frame& frame(Direction s) const {
    const auto& frame = picture_.reference[s];
    require(frame != nullptr, "a picture that is predicted from is missing");
    return *frame;
  }

  const Picture& picture_;
  int x_, y_;
  const Motion& motion_;
  const Residual& residual_;
};

}  // namespace

void predict_macroblock(const Picture& picture, int mb_x, int mb_y, const Motion& motion, const Residual& residual) {
  MacroblockPredictor(picture, mb_x, mb_y, motion, residual).predict();
}

}  // namespace moxdec::mpeg12
