/// The library's functions of inter prediction, under one name for both types of samples. Steps count samples.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

#include "moxvc.h"

namespace moxdec::h264 {

/// A block of a reference: luma in [0], or U and V. Sizes and positions are in samples of the planes.
template <class Sample>
struct ReferenceBlock {
  std::array<const Sample*, 2> source;
  Mox32s source_step;
  std::array<Sample*, 2> target;
  Mox32s target_step;
  MoxiSize frame_size;
  MoxiSize size;
  MoxiPoint position;  // in its own picture
  MoxiPoint vector;    // in quarters of luma samples, in eighths of chroma samples
  int bit_depth;
};

inline MoxiInterpBlock_8u library_block(const ReferenceBlock<Mox8u>& b) {
  return {{b.source[0], b.source[1]},
          b.source_step,
          {b.target[0], b.target[1]},
          b.target_step,
          b.frame_size,
          b.size,
          b.position,
          b.vector};
}
inline MoxiInterpBlock_16u library_block(const ReferenceBlock<Mox16u>& b) {
  return {{b.source[0], b.source[1]},
          b.source_step,
          {b.target[0], b.target[1]},
          b.target_step,
          b.frame_size,
          b.size,
          b.position,
          b.vector,
          b.bit_depth};
}

/// Blocks that may leave the reference.
inline MoxStatus interpolate_luma(const ReferenceBlock<Mox8u>& b) {
  const auto block = library_block(b);
  return moxiInterpolateLumaBlock_H264_8u_P1R(&block);
}
inline MoxStatus interpolate_luma(const ReferenceBlock<Mox16u>& b) {
  const auto block = library_block(b);
  return moxiInterpolateLumaBlock_H264_16u_P1R(&block);
}
inline MoxStatus interpolate_chroma(const ReferenceBlock<Mox8u>& b) {
  const auto block = library_block(b);
  return moxiInterpolateChromaBlock_H264_8u_P2R(&block);
}
inline MoxStatus interpolate_chroma(const ReferenceBlock<Mox16u>& b) {
  const auto block = library_block(b);
  return moxiInterpolateChromaBlock_H264_16u_P2R(&block);
}

/// Blocks of one plane that lie in it and its margins: the vector has become a place and a fraction of a sample.
template <class Sample>
struct InsideBlock {
  const Sample* source;
  Mox32s source_step;
  Sample* target;
  Mox32s target_step;
  MoxiPoint fraction;
  MoxiSize size;
  int bit_depth;
};

inline MoxiInterpRegion_16u library_region(const InsideBlock<Mox16u>& b) {
  return {b.source,     b.source_step, b.target,      b.target_step, b.fraction.x,
          b.fraction.y, b.size.width,  b.size.height, b.bit_depth};
}
inline MoxStatus interpolate_luma(const InsideBlock<Mox8u>& b) {
  return moxiInterpolateLuma_H264_8u_C1R(b.source, b.source_step, b.target, b.target_step, b.fraction.x, b.fraction.y,
                                         b.size);
}
inline MoxStatus interpolate_luma(const InsideBlock<Mox16u>& b) {
  const auto region = library_region(b);
  return moxiInterpolateLuma_H264_16u_C1R(&region);
}
inline MoxStatus interpolate_chroma(const InsideBlock<Mox8u>& b) {
  return moxiInterpolateChroma_H264_8u_C1R(b.source, b.source_step, b.target, b.target_step, b.fraction.x, b.fraction.y,
                                           b.size);
}
inline MoxStatus interpolate_chroma(const InsideBlock<Mox16u>& b) {
  const auto region = library_region(b);
  return moxiInterpolateChroma_H264_16u_C1R(&region);
}

/// Luma, or one of the planes of chroma, from a reference that is smaller than what the filter reads: from a patch with
/// all of it. `before` and `more` are the samples read before the block and besides it, `log2` is that of the vector.
template <class Sample, class Interpolate>
MoxStatus interpolate_patch(const ReferenceBlock<Sample>& b, int i, int before, int more, int log2,
                            Interpolate interpolate) {
  constexpr int kStep = 32;
  std::array<Sample, kStep*(16 + 5)> patch;
  const int left = b.position.x + (b.vector.x >> log2) - before, top = b.position.y + (b.vector.y >> log2) - before;
  for (int y = 0; y < b.size.height + more; ++y) {
    const Sample* row = b.source[i] + std::ptrdiff_t{std::clamp(top + y, 0, b.frame_size.height - 1)} * b.source_step;
    for (int x = 0; x < b.size.width + more; ++x) {
      patch[kStep * y + x] = row[std::clamp(left + x, 0, b.frame_size.width - 1)];
    }
  }
  const int fraction = (1 << log2) - 1;
  return interpolate(InsideBlock<Sample>{patch.data() + kStep * before + before,
                                         kStep,
                                         b.target[i],
                                         b.target_step,
                                         {b.vector.x & fraction, b.vector.y & fraction},
                                         b.size,
                                         b.bit_depth});
}

/// A prediction to be weighted in place; `offset` on the scale of the bit depth.
struct SampleWeight {
  int weight, offset;
};
inline MoxStatus weight_one(Mox8u* block, Mox32s step, MoxiSize size, int log2, SampleWeight w, int) {
  return moxiUniDirWeightBlock_H264_8u_C1R(block, step, static_cast<Mox32u>(log2), w.weight, w.offset, size);
}
inline MoxStatus weight_one(Mox16u* block, Mox32s step, MoxiSize size, int log2, SampleWeight w, int bit_depth) {
  return moxiUnidirWeight_H264_16u_IP2P1R(block, step, static_cast<Mox32u>(log2), w.weight, w.offset, size, bit_depth);
}

/// Two predictions that become one, in place of the first.
template <class Sample>
struct PredictionPair {
  Sample* first;
  Mox32s first_step;
  const Sample* second;
  Mox32s second_step;
  MoxiSize size;
  int bit_depth;
};

inline MoxiBidirParams_16u library_pair(const PredictionPair<Mox16u>& p) {
  return {p.first,      p.first_step, p.second,      p.second_step, p.first,
          p.first_step, p.size.width, p.size.height, p.bit_depth};
}

inline MoxStatus average(const PredictionPair<Mox8u>& p) {
  return moxiInterpolateBlock_H264_8u_P3P1R(p.first, p.second, p.first, p.size.width, p.size.height, p.first_step,
                                            p.second_step, p.first_step);
}
inline MoxStatus average(const PredictionPair<Mox16u>& p) {
  const auto pair = library_pair(p);
  return moxiBidir_H264_16u_P2P1R(&pair);
}
inline MoxStatus weight_two(const PredictionPair<Mox8u>& p, int log2, SampleWeight a, SampleWeight b) {
  return moxiBiDirWeightBlock_H264_8u_P3P1R(p.first, p.second, p.first, p.first_step, p.second_step, p.first_step,
                                            static_cast<Mox32u>(log2), a.weight, a.offset, b.weight, b.offset, p.size);
}
inline MoxStatus weight_two(const PredictionPair<Mox16u>& p, int log2, SampleWeight a, SampleWeight b) {
  const auto pair = library_pair(p);
  return moxiBidirWeight_H264_16u_P2P1R(&pair, static_cast<Mox32u>(log2), a.weight, a.offset, b.weight, b.offset);
}
/// `weight` of the second one; of the first one it is 64 less this one.
inline MoxStatus weight_implicit(const PredictionPair<Mox8u>& p, int weight) {
  return moxiBiDirWeightBlockImplicit_H264_8u_P3P1R(p.first, p.second, p.first, p.first_step, p.second_step,
                                                    p.first_step, 64 - weight, weight, p.size);
}
inline MoxStatus weight_implicit(const PredictionPair<Mox16u>& p, int weight) {
  const auto pair = library_pair(p);
  return moxiBidirWeightImplicit_H264_16u_P2P1R(&pair, 64 - weight, weight);
}

}  // namespace moxdec::h264
