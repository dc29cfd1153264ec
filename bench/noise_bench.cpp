#include <vector>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A picture with slopes, an edge in every 64 columns and noise around it, and one beside it in time.
constexpr MoxiSize kSize = {256, 128};
Mox8u* scene() {
  Mox8u* const samples = buffer<Mox8u>(256 * 128, 0, 8);
  for (int i = 0; i < 256 * 128; ++i) {
    samples[i] = static_cast<Mox8u>(samples[i] + 40 + i % 256 / 4 + (i % 64 > 35 ? 90 : 0));
  }
  return samples;
}
const Mox8u *const kNow = scene(), *const kBefore = scene();
Mox8u* const kResult = buffer<Mox8u>(256 * 128, 0, 0);

Row cast(MoxiSize size, const char* variant) {
  return loop(MOX_FN(moxiFilterDenoiseCAST_8u_C1R), variant, [=](decltype(moxiFilterDenoiseCAST_8u_C1R)* filter) {
    MoxiDenoiseCASTState state;
    Library::portable()[MOX_FN(moxiFilterDenoiseCASTInit)](&state, 3, 16, 12);
    return filter(kNow, 256, kBefore, 256, kResult, 256, size, &state);
  });
}

/// The threshold of edges tells how many blocks ring: three of eight, or none.
Row mosquito(Mox32s edge, const char* variant) {
  return loop(MOX_FN(moxiFilterDenoiseMosquito_8u_C1R), variant,
              [=, state = static_cast<MoxiDenoiseMosquitoState*>(nullptr)](
                  decltype(moxiFilterDenoiseMosquito_8u_C1R)* filter) mutable {
                if (!state) {
                  Library::portable()[MOX_FN(moxiFilterDenoiseMosquitoInitAlloc_8u_C1)](kSize, edge, 16, &state);
                }
                return filter(kNow, 256, kResult, 256, {0, 0, kSize.width, kSize.height}, state);
              });
}

const Row kRows[] = {
    cast(kSize, "256x128"),
    cast({32, 128}, "32x128"),
    cast({16, 128}, "16x128"),
    mosquito(64, "256x128, an edge in every eighth block"),
    mosquito(255, "256x128, no edges"),
};
const Family kNoise("noise", kRows);

const Mox8u* const kPacked = buffer<Mox8u>(2 * 256 * 128, 0, 255);
Mox8u *const kLarge = buffer<Mox8u>(256 * 256, 0, 0), *const kCb = buffer<Mox8u>(128 * 128, 0, 0),
             *const kCr = buffer<Mox8u>(128 * 128, 0, 0);

Row resize(const char* variant, Mox32s scale, Mox32s interpolation, Mox32s rotation) {
  return call(MOX_FN(moxiResizeCCRotate_8u_C2R), variant, kPacked, 512, kLarge, 256, kSize, scale, interpolation, 565,
              rotation);
}
Row planes(const char* variant, Mox32s rotation) {
  return call(MOX_FN(moxiCbYCr422ToYCbCr420_Rotate_8u_C2P3R), variant, kPacked, 512, kLarge, 256, kCb, 128, kCr, 128,
              kSize, rotation);
}
const Row kCameraRows[] = {
    resize("256x128 by 2, nearest", 2, 1, 0),
    resize("256x128 by 2, bilinear", 2, 2, 0),
    resize("256x128 by 2, bilinear, 90 left", 2, 2, 1),
    resize("256x128 by 2, bilinear, 180", 2, 2, 3),
    resize("256x128 by 4, bilinear", 4, 2, 0),
    resize("256x128 by 8, bilinear", 8, 2, 0),
    planes("256x128", 0),
    planes("256x128, 90 left", 1),
    planes("256x128, 180", 3),
};
const Family kCamera("camera", kCameraRows);

}  // namespace
}  // namespace mox::bench
