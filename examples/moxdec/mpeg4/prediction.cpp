#include "moxdec/mpeg4/prediction.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace moxdec::mpeg4 {
namespace {

using Copy = decltype(&moxiCopy16x16HP_8u_C1R);

/// Samples of one plane of a frame, and which of its rows count: all, or those of a field.
struct Plane {
  const Mox8u* samples;
  int step;
  int width, height;  // of the frame
  int first = 0, gap = 1;

  Plane field(int parity) const { return {samples, step, width, height, parity, 2}; }
  int frame_row(int y) const { return first + gap * y; }
};

Plane plane_of(const Frame& frame, int i) {
  return {frame.samples<Mox8u>(i), frame.step(i), frame.layout().width >> (i > 0), frame.layout().height >> (i > 0)};
}

/// Where a macroblock, or its prediction in one direction, is written to.
struct Target {
  std::array<Mox8u*, 3> samples;
  std::array<int, 3> step;
};

/// The samples at a place of a plane: there, or in a copy if some of them lie outside, where the nearest ones inside
/// stand for them. Those are the nearest of the frame, for a field too.
class Patch {
 public:
  static constexpr int kLargest = 17;

  Patch(const Plane& plane, int x, int y, int columns, int rows) {
    const int top = plane.frame_row(y), bottom = plane.frame_row(y + rows - 1);
    if (x >= 0 && top >= 0 && x + columns <= plane.width && bottom < plane.height) {
      samples_ = plane.samples + std::ptrdiff_t{top} * plane.step + x;
      step_ = plane.gap * plane.step;
      return;
    }
    for (int row = 0; row < rows; ++row) {
      const int inside = std::clamp(plane.frame_row(y + row), 0, plane.height - 1);
      const Mox8u* const line = plane.samples + std::ptrdiff_t{inside} * plane.step;
      for (int i = 0; i < columns; ++i) copy_[row][i] = line[std::clamp(x + i, 0, plane.width - 1)];
    }
    samples_ = copy_[0].data();
    step_ = kStep;
  }
  const Mox8u* samples() const { return samples_; }
  int step() const { return step_; }

 private:
  static constexpr int kStep = 32;
  const Mox8u* samples_;
  int step_;
  std::array<std::array<Mox8u, kStep>, kLargest> copy_;
};

/// The vector of chroma from the sum of those of `count` luma blocks, 1 or 4, in half samples: in twice or 8 times as
/// many parts of a chroma sample. Other than halves go to halves.
int chroma_component(int sum, int count) {
  constexpr std::array<int, 16> kHalves = {0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2};
  const int sixteenths = std::abs(sum) * (4 / count), halves = kHalves[sixteenths % 16] + sixteenths / 16 * 2;
  return sum < 0 ? -halves : halves;
}

class MacroblockPredictor {
 public:
  MacroblockPredictor(const Picture& picture, const Place& place, const Motion& motion, const GlobalMotion& warp)
      : picture_(picture), place_(place), motion_(motion), warp_(warp), quarter_(picture.layer.quarter_sample) {}

  void predict(Direction s, const Target& target) const {
    const Frame& reference = picture_.reference_frame(s);
    const Vectors& vectors = motion_.vectors[s];
    switch (motion_.kind) {
      case MotionKind::kFrame: return predict_frame(reference, vectors, target);
      case MotionKind::kBlocks: return predict_blocks(reference, vectors, target);
      case MotionKind::kFields: return predict_fields(reference, vectors, target);
      case MotionKind::kGlobal: return predict_warped(reference, target);
    }
  }

 private:
  void predict_frame(const Frame& reference, const Vectors& vectors, const Target& target) const {
    copy_luma({16, 16}, plane_of(reference, 0), 16 * place_.x, 16 * place_.y, vectors.of[0], target.samples[0],
              target.step[0]);
    const Vector chroma = chroma_vector(vectors, 0, 1);
    for (int i = 1; i < 3; ++i) copy_chroma(8, plane_of(reference, i), chroma, target.samples[i], target.step[i]);
  }

  void predict_blocks(const Frame& reference, const Vectors& vectors, const Target& target) const {
    for (int block = 0; block < 4; ++block) {
      const int x = block % 2 * 8, y = block / 2 * 8;
      copy_luma({8, 8}, plane_of(reference, 0), 16 * place_.x + x, 16 * place_.y + y, vectors.of[block],
                target.samples[0] + y * target.step[0] + x, target.step[0]);
    }
    const Vector chroma = chroma_vector(vectors, 0, 4);
    for (int i = 1; i < 3; ++i) copy_chroma(8, plane_of(reference, i), chroma, target.samples[i], target.step[i]);
  }

  /// Quarters in fields are those of 8x8 blocks.
  void predict_fields(const Frame& reference, const Vectors& vectors, const Target& target) const {
    const int width = quarter_ ? 8 : 16;
    for (int field = 0; field < 2; ++field) {
      const int parity = vectors.parity[field];
      for (int x = 0; x < 16; x += width) {
        copy_luma({width, 8}, plane_of(reference, 0).field(parity), 16 * place_.x + x, 8 * place_.y, vectors.of[field],
                  target.samples[0] + field * target.step[0] + x, 2 * target.step[0]);
      }
      const Vector chroma = chroma_vector(vectors, field, 1);
      for (int i = 1; i < 3; ++i) {
        copy_chroma(4, plane_of(reference, i).field(parity), chroma, target.samples[i] + field * target.step[i],
                    2 * target.step[i]);
      }
    }
  }

  void predict_warped(const Frame& reference, const Target& target) const {
    const MoxiRect luma{16 * place_.x, 16 * place_.y, 16, 16}, chroma{8 * place_.x, 8 * place_.y, 8, 8};
    moxiWarpLuma_MPEG4_8u_C1R(reference.samples<Mox8u>(0), reference.step(0), target.samples[0], target.step[0], &luma,
                              warp_.record());
    moxiWarpChroma_MPEG4_8u_P2R(reference.samples<Mox8u>(1), reference.step(1), reference.samples<Mox8u>(2),
                                reference.step(2), target.samples[1], target.step[1], target.samples[2], target.step[2],
                                &chroma, warp_.record());
  }

  void copy_luma(MoxiSize size, const Plane& plane, int x, int y, Vector vector, Mox8u* target, int step) const {
    const int shift = quarter_ ? 2 : 1, mask = (1 << shift) - 1;
    const int dx = vector.x & mask, dy = vector.y & mask;
    const Patch patch(plane, x + (vector.x >> shift), y + (vector.y >> shift), size.width + (dx != 0),
                      size.height + (dy != 0));
    Copy copy = quarter_ ? moxiCopy16x16QP_MPEG4_8u_C1R : moxiCopy16x16HP_8u_C1R;
    if (size.width == 8) copy = quarter_ ? moxiCopy8x8QP_MPEG4_8u_C1R : moxiCopy8x8HP_8u_C1R;
    if (size.width > size.height) copy = moxiCopy16x8HP_8u_C1R;
    copy(patch.samples(), patch.step(), target, step, dx | dy << shift, picture_.header.rounding);
  }

  /// 8 columns and so many rows: 8 of a frame, 4 of a field.
  void copy_chroma(int rows, const Plane& plane, Vector vector, Mox8u* target, int step) const {
    const int half_x = vector.x & 1, half_y = vector.y & 1;
    const Patch patch(plane, 8 * place_.x + (vector.x >> 1), rows * place_.y + (vector.y >> 1), 8 + half_x,
                      rows + half_y);
    const Copy copy = rows == 8 ? moxiCopy8x8HP_8u_C1R : moxiCopy8x4HP_8u_C1R;
    copy(patch.samples(), patch.step(), target, step, half_x | half_y << 1, picture_.header.rounding);
  }

  /// From `count` luma vectors, whose quarters are first cut to halves: rows of fields downwards, all else to zero.
  Vector chroma_vector(const Vectors& vectors, int first, int count) const {
    const int unit = quarter_ ? 2 : 1;
    const bool fields = motion_.kind == MotionKind::kFields;
    Vector sum;
    for (int i = first; i < first + count; ++i) {
      sum.x += vectors.of[i].x / unit;
      sum.y += fields ? vectors.of[i].y >> (unit - 1) : vectors.of[i].y / unit;
    }
    return {chroma_component(sum.x, count), chroma_component(sum.y, count)};
  }

  const Picture& picture_;
  const Place& place_;
  const Motion& motion_;
  const GlobalMotion& warp_;
  bool quarter_;
};

Target target_of(const Picture& picture, const Place& place) {
  Target target{};
  for (int i = 0; i < 3; ++i) {
    const int size = i == 0 ? 16 : 8;
    target.step[i] = picture.frame->step(i);
    target.samples[i] = picture.frame->samples<Mox8u>(i) + size * place.y * target.step[i] + size * place.x;
  }
  return target;
}

}  // namespace

void GlobalMotion::begin_picture(const Picture& picture) {
  Mox32s size = 0;
  moxiWarpGetSize_MPEG4(&size);
  memory_.resize(static_cast<std::size_t>(size));
  constexpr Mox32s kNoStaticSprite = 0;
  const Layer& layer = picture.layer;
  const PictureHeader& header = picture.header;
  const MoxiRect reference{0, 0, 16 * layer.mb_width(), 16 * layer.mb_height()}, shown{0, 0, layer.width, layer.height};
  require(moxiWarpInit_MPEG4(reinterpret_cast<MoxiWarpSpec*>(memory_.data()), header.trajectory.du.data(),
                             header.trajectory.dv.data(), layer.warping_points, kNoStaticSprite, layer.warping_accuracy,
                             header.rounding, layer.quarter_sample, header.f_code[kForward], &reference,
                             &shown) == moxStsOk,
          "a warp cannot be set up");
}

Vector GlobalMotion::vector(const Place& place) const {
  MoxiMotionVector vector{};
  moxiCalcGlobalMV_MPEG4(16 * place.x, 16 * place.y, &vector, record());
  return {vector.x, vector.y};
}

void predict_macroblock(const Picture& picture, const Place& place, const Motion& motion, const GlobalMotion& warp) {
  const MacroblockPredictor predictor(picture, place, motion, warp);
  const Target target = target_of(picture, place);
  const bool both = motion.used[kForward] && motion.used[kBackward];
  predictor.predict(motion.used[kForward] ? kForward : kBackward, target);
  if (!both) return;
  alignas(32) std::array<Mox8u, 256> luma;
  alignas(32) std::array<std::array<Mox8u, 64>, 2> chroma;
  predictor.predict(kBackward, {{luma.data(), chroma[0].data(), chroma[1].data()}, {16, 8, 8}});
  moxiAverage16x16_8u_C1IR(luma.data(), 16, target.samples[0], target.step[0]);
  for (int i = 1; i < 3; ++i) moxiAverage8x8_8u_C1IR(chroma[i - 1].data(), 8, target.samples[i], target.step[i]);
}

}  // namespace moxdec::mpeg4
