/// Weights, steps and areas of DV quantisation (IEC 61834-2, SMPTE 314M and 370M).
#pragma once

#include <array>

#include "dv/code_table.hpp"
#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox {

/// A block parameter word of the segment decoders.
struct DvBlockParameter {
  Mox32u word;
  constexpr int mode() const { return static_cast<int>(word >> 6 & 1); }
  constexpr int block_class() const { return static_cast<int>(word >> 4 & 3); }
  constexpr int qno() const { return static_cast<int>(word >> 16 & 15); }
};

/// [frequency]: the weights of a dimension, by the cosines c(m) of m pi / 16: 1, c4/(4 c7 c2), c4/(2 c6), 1/(2 c5),
/// 7/8, c4/c3, c4/c2, c4/c1. A coefficient was multiplied by half the product of its two.
inline constexpr double kDvWeights[8] = {1.0,   0.98078528040323043, 0.92387953251128674, 0.89997622313641557,
                                         0.875, 0.85043009476725644, 0.76536686473017956, 0.72095982200694791};

/// [mode][raster position]: 2^14 / product of the two weights, rounded. Rows of 2-4-8 blocks have every other vertical
/// frequency. The DC, which is none of these, has 2^14.
inline constexpr auto kDvReciprocals = make_table<2>([]<std::size_t Mode>() {
  return make_table<64>([]<std::size_t I>() {
    const double weight = kDvWeights[I % 8] * kDvWeights[Mode ? I / 8 % 4 * 2 : I / 8];
    return static_cast<Mox16s>(16384 / weight + 0.5);
  });
});

/// [level of quantisation][area]: the step is 2 to this number.
inline constexpr Mox8u kDvShifts[9][4] = {{3, 3, 4, 4}, {2, 3, 3, 4}, {2, 2, 3, 3}, {1, 2, 2, 3}, {1, 1, 2, 2},
                                          {0, 1, 1, 2}, {0, 0, 1, 1}, {0, 0, 0, 1}, {0, 0, 0, 0}};
/// The level of a block: steps fall with QNO, from where depends on the class. Class 3 has steps twice as long.
constexpr int dv_quantisation_level(DvBlockParameter parameter) {
  constexpr int kStart[4] = {6, 3, 0, 1};  // by class
  const int row = parameter.qno() + kStart[parameter.block_class()];
  return row < 15 ? row / 2 : 8;
}
/// The area of a scan position from 1 on.
constexpr int dv_area(int position) { return position < 6 ? 0 : position < 21 ? 1 : position < 43 ? 2 : 3; }

/// [mode][level of quantisation][raster position]: the step.
inline constexpr auto kDvSteps = [] {
  std::array<std::array<std::array<Mox16s, 64>, 9>, 2> steps{};
  for (int mode = 0; mode < 2; ++mode) {
    for (int level = 0; level < 9; ++level) {
      for (int i = 0; i < 64; ++i) {
        steps[mode][level][kDvScans[64 * mode + i]] = static_cast<Mox16s>(1 << kDvShifts[level][dv_area(i)]);
      }
    }
  }
  return steps;
}();
static_assert(kDvReciprocals[0][1] == 16705 && kDvReciprocals[0][63] == 31521 && kDvReciprocals[1][56] == 21407);
static_assert(kDvSteps[0][0][63] == 16 && kDvSteps[1][0][32] == 8 && dv_quantisation_level({0xF0000}) == 8);

/// [QNO]
inline constexpr Mox8u kDv100Steps[16] = {1, 1, 2, 3, 4, 5, 6, 7, 8, 16, 18, 20, 22, 24, 28, 52};

/// The kinds of DV100 blocks, in the order of the table: luma and chroma of 1080 lines, luma and chroma of 720.
inline constexpr int kDv100Kinds = 4;
/// [kind][scan position]: 32 times the weight; the DC's is not used.
inline constexpr Mox16s kDv100ScannedWeights[kDv100Kinds][64] = {
    {128, 16, 16, 17, 17, 17, 18, 18, 18, 18, 18,  18, 19, 18,  18,  19,  19,  19,  19,  19, 19, 42,
     38,  40, 40, 40, 38, 42, 44, 43, 41, 41, 41,  41, 43, 44,  45,  45,  42,  42,  42,  45, 45, 48,
     46,  43, 43, 46, 48, 49, 48, 44, 48, 49, 101, 98, 98, 101, 104, 109, 104, 116, 116, 123},
    {128, 16, 16, 17, 17, 17,  25,  25,  25,  25,  26,  25,  26,  25,  26,  26,  26,  27,  27,  26, 26, 42,
     38,  40, 40, 40, 38, 42,  44,  43,  41,  41,  41,  41,  43,  44,  91,  91,  84,  84,  84,  91, 91, 96,
     93,  86, 86, 93, 96, 197, 191, 177, 191, 197, 203, 197, 197, 203, 209, 219, 209, 232, 232, 246},
    {128, 16, 16, 17, 17, 17, 18, 18, 18, 18, 18,  18,  19,  18,  18,  19,  19,  19,  19,  19, 19, 42,
     38,  40, 40, 40, 38, 42, 44, 43, 41, 41, 41,  41,  43,  44,  68,  68,  63,  63,  63,  68, 68, 96,
     92,  86, 86, 92, 96, 98, 96, 88, 96, 98, 202, 196, 196, 202, 208, 218, 208, 232, 232, 246},
    {128, 24,  24,  26,  26,  26,  36,  36,  36,  36,  36,  36,  38,  36,  36,  38,  38,  38,  38,  38,  38,  84,
     76,  80,  80,  80,  76,  84,  88,  86,  82,  82,  82,  82,  86,  88,  182, 182, 168, 168, 168, 182, 182, 192,
     186, 192, 172, 186, 192, 394, 382, 354, 382, 394, 406, 394, 394, 406, 418, 438, 418, 464, 464, 492},
};
/// [kind][raster position]
inline constexpr auto kDv100Weights = [] {
  std::array<std::array<Mox16s, 64>, kDv100Kinds> weights{};
  for (int kind = 0; kind < kDv100Kinds; ++kind) {
    for (int i = 0; i < 64; ++i) weights[kind][kDvScans[i]] = kDv100ScannedWeights[kind][i];
  }
  return weights;
}();
static_assert(kDv100Weights[0][8] == 16 && kDv100Weights[3][63] == 492);

}  // namespace mox
