#include "moxvc/mpeg4_warp.h"

#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr MoxiRect kSprite{0, 0, 64, 64}, kLuma{16, 16, 16, 16}, kChroma{8, 8, 8, 8}, kOutside{56, -8, 16, 16};
const auto* const kPicture = buffer<Mox8u>(64 * 64, 0, 255);
auto* const g_block = buffer<Mox8u>(2 * 256, 0, 0);
MoxiMotionVector g_vector;

/// A record of the portable generation, which all generations read alike. The first point moves by a sample and a half.
const MoxiWarpSpec* record(Mox32s points) {
  constexpr Mox32s kDu[] = {3, 5, -2, 1}, kDv[] = {1, 3, 2, -2};
  auto* const spec = reinterpret_cast<MoxiWarpSpec*>(buffer<Mox8u>(384, 0, 0));
  if (Library::portable()[MOX_FN(moxiWarpInit_MPEG4)](spec, kDu, kDv, points, 1, 3, 0, 0, 1, &kSprite, &kSprite) !=
      moxStsOk) {
    std::abort();
  }
  return spec;
}
Row luma(const char* name, Mox32s points, const MoxiRect* rect = &kLuma) {
  return call(MOX_FN(moxiWarpLuma_MPEG4_8u_C1R), name, kPicture, 64, g_block, 16, rect, record(points));
}
Row chroma(const char* name, Mox32s points) {
  return call(MOX_FN(moxiWarpChroma_MPEG4_8u_P2R), name, kPicture, 64, kPicture + 32, 64, g_block, 16, g_block + 256,
              16, &kChroma, record(points));
}

const Row kRows[] = {
    luma("0 points", 0),
    luma("1 point", 1),
    luma("1 point, past the edge", 1, &kOutside),
    luma("2 points", 2),
    luma("3 points", 3),
    luma("3 points, past the edge", 3, &kOutside),
    luma("4 points", 4),
    chroma("0 points", 0),
    chroma("1 point, quarters", 1),
    chroma("3 points", 3),
    chroma("4 points", 4),
    call(MOX_FN(moxiCalcGlobalMV_MPEG4), "3 points", 16, 16, &g_vector, record(3)),
    call(MOX_FN(moxiChangeSpriteBrightness_MPEG4_8u_C1IR), "64x64", buffer<Mox8u>(64 * 64, 0, 255), 64, 64, 64, 20),
};
const Family kFamily("mpeg4_warp", kRows);

}  // namespace
}  // namespace mox::bench
