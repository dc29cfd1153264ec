#include "moxvc/deinterlace.h"
#include "moxvc/denoise.h"
#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr MoxiSize kFrame{720, 576}, kField{720, 287};
constexpr Mox32s kStep = 768, kTopFirst = 1, kTopField = 0, kCopy = 1;

/// Frames of one picture, `noise` apart at most.
std::vector<const Mox8u*> frames(int count, int noise) {
  constexpr std::size_t kSize = std::size_t{kStep} * 578;
  const Mox8u* const picture = buffer<Mox8u>(kSize, 60, 180);
  std::vector<const Mox8u*> all;
  for (int i = 0; i < count; ++i) {
    Mox8u* const frame = buffer<Mox8u>(kSize, 0, noise);
    for (std::size_t k = 0; k < kSize; ++k) frame[k] = static_cast<Mox8u>(frame[k] + picture[k]);
    all.push_back(frame + kStep);
  }
  return all;
}
const std::vector<const Mox8u*> kFrames = frames(4, 20);
const Mox8u* const kPlane = kFrames[0];
Mox8u* const g_out = buffer<Mox8u>(std::size_t{kStep} * 578, 0, 0) + kStep;
Mox8u* const g_scratch = buffer<Mox8u>(2 * 723 * 579, 0, 0);

/// A record of the portable generation, which all generations read alike.
MoxiDeinterlaceBlendState* blend_state(Mox32s low, Mox32s high) {
  Mox32s threshold[] = {low, high};
  double constant[] = {0, 1};
  MoxiDeinterlaceBlendState* state = nullptr;
  if (Library::portable()[MOX_FN(moxiDeinterlaceBlendInitAlloc_8u_C1)](kFrame, threshold, constant, &state))
    std::abort();
  return state;
}
const MoxiDenoiseAdaptiveState* adaptive_state(MoxiSize mask) {
  MoxiDenoiseAdaptiveState* state = nullptr;
  if (Library::portable()[MOX_FN(moxiFilterDenoiseAdaptiveInitAlloc_8u_C1)](&state, kFrame, mask)) std::abort();
  return state;
}

Row blend(const char* name, Mox32s low, Mox32s high) {
  return call(MOX_FN(moxiDeinterlaceBlend_8u_C1), name, kFrames.data(), kStep, g_out, kStep, kFrame, kTopFirst,
              kTopField, kCopy, blend_state(low, high));
}
Row adaptive(const char* name, MoxiSize mask, Mox32s flags) {
  return call(MOX_FN(moxiFilterDenoiseAdaptive_8u_C1R), name, kFrames.data(), kStep, g_out, kStep, kFrame, mask,
              MoxiPoint{0, 0}, kFrame, 10, flags, adaptive_state(mask));
}
Row smooth(const char* name, Mox32s threshold) {
  return call(MOX_FN(moxiFilterDenoiseSmooth_8u_C1R), name, kPlane, kStep, g_out, kStep, kFrame, threshold,
              MoxiPoint{0, 0}, kFrame, g_scratch);
}

const Row kDeinterlaceRows[] = {
    call(MOX_FN(moxiDeinterlaceEdgeDetect_8u_C1R), "field", kPlane, 2 * kStep, g_out, 2 * kStep, kField, 1, 0),
    call(MOX_FN(moxiDeinterlaceFilterTriangle_8u_C1R), "", kPlane, kStep, g_out, kStep, kFrame, 128u, 0),
    call(MOX_FN(moxiDeinterlaceMedianThreshold_8u_C1R), "", kPlane, kStep, g_out, kStep, kFrame, 10, 1, 0),
    call(MOX_FN(moxiDeinterlaceMotionAdaptive_8u_C1), "", kFrames.data(), kStep, g_out, kStep, kFrame, 15, kTopFirst,
         kTopField, kCopy, 1),
    blend("weighted", 0, 40),
    blend("switched", 10, 10),
    blend("all edge value", -1, -1),
    blend("all median", 300, 300),
};
const Family kDeinterlace("deinterlace", kDeinterlaceRows);

const Row kDenoiseRows[] = {
    adaptive("3x3, three frames", {1, 1}, 3),
    adaptive("3x3, one frame", {1, 1}, 0),
    adaptive("5x5, three frames", {2, 2}, 3),
    smooth("flat", 255),
    smooth("edges", 12),
};
const Family kDenoise("denoise", kDenoiseRows);

}  // namespace
}  // namespace mox::bench
