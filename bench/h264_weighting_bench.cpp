#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// Two predictions and a result, rows kPictureStep samples apart.
template <class T>
struct Blocks {
  static constexpr int kDepth = sizeof(T) == 1 ? 8 : 10;
  const T* first = picture<T>(0, (1 << kDepth) - 1);
  const T* second = picture<T>(0, (1 << kDepth) - 1);
  T* result = picture<T>(0, (1 << kDepth) - 1);
};
const Blocks<Mox8u> k8u;
const Blocks<Mox16u> k16u;

MoxiBidirParams_16u record(Mox32s width, Mox32s height) {
  return {k16u.first, kPictureStep, k16u.second, kPictureStep, k16u.result, kPictureStep, width, height, k16u.kDepth};
}
const MoxiBidirParams_16u k16x16 = record(16, 16), k8x8 = record(8, 8);

Row explicit_weights(const char* name, MoxiSize size) {
  return call(MOX_FN(moxiBiDirWeightBlock_H264_8u_P3P1R), name, k8u.first, k8u.second, k8u.result, kPictureStep,
              kPictureStep, kPictureStep, 5, 40, 3, 25, -2, size);
}
Row implicit_weights(const char* name, MoxiSize size) {
  return call(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P3P1R), name, k8u.first, k8u.second, k8u.result, kPictureStep,
              kPictureStep, kPictureStep, 40, 24, size);
}
Row average(const char* name, Mox32s width, Mox32s height) {
  return call(MOX_FN(moxiInterpolateBlock_H264_8u_P3P1R), name, k8u.first, k8u.second, k8u.result, width, height,
              kPictureStep, kPictureStep, kPictureStep);
}

// The forms in place go on with what their last call left.
const Row kRows[] = {
    explicit_weights("2x2", {2, 2}),
    explicit_weights("4x4", {4, 4}),
    explicit_weights("8x8", {8, 8}),
    explicit_weights("16x8", {16, 8}),
    explicit_weights("16x16", {16, 16}),
    explicit_weights("4x16, no kernel of its own", {4, 16}),
    call(MOX_FN(moxiBiDirWeightBlock_H264_8u_P2P1R), "16x16", k8u.first, k8u.second, k8u.result, kPictureStep,
         kPictureStep, 5, 40, 3, 25, -2, MoxiSize{16, 16}),
    implicit_weights("4x4", {4, 4}),
    implicit_weights("8x8", {8, 8}),
    implicit_weights("16x16", {16, 16}),
    call(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P2P1R), "16x16", k8u.first, k8u.second, k8u.result, kPictureStep,
         kPictureStep, 40, 24, MoxiSize{16, 16}),
    call(MOX_FN(moxiBiDirWeightBlockImplicit_H264_8u_P2P1R), "8x8", k8u.first, k8u.second, k8u.result, kPictureStep,
         kPictureStep, 40, 24, MoxiSize{8, 8}),
    call(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1R), "8x8", k8u.result, kPictureStep, 5, 40, 3, MoxiSize{8, 8}),
    call(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1R), "16x16", k8u.result, kPictureStep, 5, 40, 3, MoxiSize{16, 16}),
    call(MOX_FN(moxiUniDirWeightBlock_H264_8u_C1IR), "16x16", k8u.result, kPictureStep, 5, 40, 3, MoxiSize{16, 16}),
    call(MOX_FN(moxiWeightedAverage_H264_8u_C1IR), "16x16", k8u.first, k8u.result, kPictureStep, 20, 12, 5, 0,
         MoxiSize{16, 16}),
    call(MOX_FN(moxiBidir_H264_16u_P2P1R), "16x16", &k16x16),
    call(MOX_FN(moxiBidirWeight_H264_16u_P2P1R), "8x8", &k8x8, 5, 40, 3, 25, -2),
    call(MOX_FN(moxiBidirWeight_H264_16u_P2P1R), "16x16", &k16x16, 5, 40, 3, 25, -2),
    call(MOX_FN(moxiBidirWeightImplicit_H264_16u_P2P1R), "16x16", &k16x16, 40, 24),
    call(MOX_FN(moxiUnidirWeight_H264_16u_IP2P1R), "16x16", k16u.result, kPictureStep, 5, 40, 3, MoxiSize{16, 16},
         k16u.kDepth),
};
const Family kWeighting("h264_weighting", kRows);

constexpr Mox32s kMargin = 32;
constexpr Mox32s kWidth = 352, kHeight = 288, kStep = kWidth + 2 * kMargin;
Mox8u* const kPlane = buffer<Mox8u>(kStep * (kHeight + 2 * kMargin), 0, 255) + kMargin * kStep + kMargin;

const Row kExpansionRows[] = {
    average("4x4", 4, 4),
    average("8x8", 8, 8),
    average("16x16", 16, 16),
    average("15x15, any size", 15, 15),
    call(MOX_FN(moxiInterpolateBlock_H264_8u_P2P1R), "16x16", k8u.first, k8u.second, k8u.result, 16, 16, kPictureStep),
    call(MOX_FN(moxiExpandPlane_H264_8u_C1R), "352x288 by 32, frame", kPlane, kWidth, kHeight, kStep, kMargin, 0),
    call(MOX_FN(moxiExpandPlane_H264_8u_C1R), "352x288 by 32, field", kPlane, kWidth, kHeight, kStep, kMargin, 1),
};
const Family kExpansion("h264_expansion", kExpansionRows);

}  // namespace
}  // namespace mox::bench
