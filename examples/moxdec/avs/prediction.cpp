#include "moxdec/avs/prediction.hpp"

#include <cstring>

#include "moxdec/avs/motion.hpp"

namespace moxdec::avs {
namespace {

/// Three planes of a part.
struct Samples {
  std::array<Mox8u*, 3> plane;
  std::array<int, 3> step;
};

/// Room for a part. Weighting writes 8 columns at least, in chroma, too.
struct Buffer {
  static constexpr int kStep = 16;
  alignas(32) std::array<std::array<Mox8u, 16 * kStep>, 3> plane;

  Samples samples() { return {{plane[0].data(), plane[1].data(), plane[2].data()}, {kStep, kStep, kStep}}; }
};

class PartPredictor {
 public:
  PartPredictor(const Picture& picture, int mb_x, int mb_y, const Weights* weights)
      : picture_(picture), x_(2 * mb_x), y_(2 * mb_y), weights_(weights) {}

  void predict(Part part) {
    const BlockMotion& motion = picture_.motion_at(x_ + part.x, y_ + part.y);
    const bool forward = motion.reference[kForward] >= 0, backward = motion.reference[kBackward] >= 0;
    const Samples target = target_of(part);
    if (forward && backward) {
      interpolate(part, kForward, buffers_[kForward].samples());
      interpolate(part, kBackward, buffers_[kBackward].samples());
      average(part, target);
      return;
    }
    const Direction direction = forward ? kForward : kBackward;
    if (!weights_) return interpolate(part, direction, target);
    interpolate(part, direction, buffers_[direction].samples());
    copy(part, buffers_[direction].samples(), target);
  }

 private:
  static int size(int blocks, int plane) { return plane == 0 ? 8 * blocks : 4 * blocks; }

  Samples target_of(Part part) const {
    Samples target;
    for (int i = 0; i < 3; ++i) {
      target.plane[i] = picture_.sample(i, size(x_ + part.x, i), size(y_ + part.y, i));
      target.step[i] = picture_.frame->step(i);
    }
    return target;
  }

  void interpolate(Part part, Direction direction, const Samples& out) const {
    const BlockMotion& motion = picture_.motion_at(x_ + part.x, y_ + part.y);
    const int reference = motion.reference[direction];
    const Picture* source = picture_.references[direction][reference].get();
    require(source != nullptr, "a reference is missing");
    const Frame& frame = *source->frame;
    const auto block = [&](int plane) {
      MoxiInterpBlock_8u arguments{};
      const int shift = plane == 0 ? 0 : 1;
      for (int i = 0; i <= shift; ++i) {
        arguments.pSrcPlane[i] = frame.samples<Mox8u>(plane + i);
        arguments.pDstPlane[i] = out.plane[plane + i];
      }
      arguments.srcStep = frame.step(plane);
      arguments.dstStep = out.step[plane];
      arguments.frameSize = {frame.layout().width >> shift, frame.layout().height >> shift};
      arguments.blockSize = {size(part.width, plane), size(part.height, plane)};
      arguments.blockPos = {size(x_ + part.x, plane), size(y_ + part.y, plane)};
      arguments.vector = {motion.vector[direction].x, motion.vector[direction].y};
      return arguments;
    };
    const MoxiInterpBlock_8u luma = block(0), chroma = block(1);
    moxiInterpolateLumaBlock_AVS_8u_P1R(&luma);
    moxiInterpolateChromaBlock_AVS_8u_P2R(&chroma);
    if (weights_) weight(part, direction, reference, out);
  }

  /// B pictures have one reference in each direction; its weights are numbered by the direction.
  void weight(Part part, Direction direction, int reference, const Samples& samples) const {
    const auto& weights = (*weights_)[static_cast<std::size_t>(direction + reference)];
    for (int i = 0; i < 3; ++i) {
      const Weight& w = weights[i > 0];
      moxiWeightPrediction_AVS_8u_C1R(samples.plane[i], samples.step[i], samples.plane[i], samples.step[i],
                                      static_cast<Mox32u>(w.scale), static_cast<Mox32u>(w.shift),
                                      {size(part.width, i), size(part.height, i)});
    }
  }

  void average(Part part, const Samples& target) {
    for (int i = 0; i < 3; ++i) {
      moxiInterpolateBlock_H264_8u_P3P1R(buffers_[0].plane[i].data(), buffers_[1].plane[i].data(), target.plane[i],
                                         size(part.width, i), size(part.height, i), Buffer::kStep, Buffer::kStep,
                                         target.step[i]);
    }
  }

  static void copy(Part part, const Samples& from, const Samples& to) {
    for (int i = 0; i < 3; ++i) {
      for (int row = 0; row < size(part.height, i); ++row) {
        std::memcpy(to.plane[i] + std::ptrdiff_t{row} * to.step[i], from.plane[i] + std::ptrdiff_t{row} * from.step[i],
                    static_cast<std::size_t>(size(part.width, i)));
      }
    }
  }

  const Picture& picture_;
  int x_, y_;  // of the macroblock's first block
  const Weights* weights_;
  std::array<Buffer, 2> buffers_;
};

}  // namespace

/// Blocks of one motion are predicted together.
void predict_macroblock(Picture& picture, int mb_x, int mb_y, const Weights* weights) {
  PartPredictor predictor(picture, mb_x, mb_y, weights);
  const auto motion = [&](int i) { return picture.motion_at(2 * mb_x + i % 2, 2 * mb_y + i / 2); };
  const bool rows = motion(0) == motion(1) && motion(2) == motion(3);
  const bool columns = motion(0) == motion(2) && motion(1) == motion(3);
  const int width = rows ? 2 : 1, height = columns ? 2 : 1;
  for (int y = 0; y < 2; y += height) {
    for (int x = 0; x < 2; x += width) predictor.predict({x, y, width, height});
  }
}

}  // namespace moxdec::avs
