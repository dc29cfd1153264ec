/// Slow oracle of H.264 forward transforms and quantisation: matrices where sums wrap, signal flows where they
/// saturate, and quotients of 64-bit numbers.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <span>

#include "oracle/inverse_transform.hpp"

namespace mox::oracle {

inline const Flow kForward4{4,
                            14,
                            {{4, 0, 0, +1, 3, 0},
                             {5, 1, 0, +1, 2, 0},
                             {6, 1, 0, -1, 2, 0},
                             {7, 0, 0, -1, 3, 0},
                             {8, 7, 0, +1, 7, 0},
                             {9, 6, 0, +1, 6, 0},
                             {10, 4, 0, +1, 5, 0},
                             {11, 6, 0, +1, 8, 0},
                             {12, 4, 0, -1, 5, 0},
                             {13, 7, 0, -1, 9, 0}}};
inline const Flow kHadamard2{2, 4, {{2, 0, 0, +1, 1, 0}, {3, 0, 0, -1, 1, 0}}};
/// Nodes 8 to 11 are the sums of mirrored values, 12 to 15 their differences, 16 to 19 the even part, 20 to 23 b4 to
/// b7, 24 is -b5, 25 to 32 the outputs.
inline const Flow kForward8{
    8, 33, {{8, 0, 0, +1, 7, 0},    {9, 1, 0, +1, 6, 0},    {10, 2, 0, +1, 5, 0},   {11, 3, 0, +1, 4, 0},
            {12, 0, 0, -1, 7, 0},   {13, 1, 0, -1, 6, 0},   {14, 2, 0, -1, 5, 0},   {15, 3, 0, -1, 4, 0},
            {16, 8, 0, +1, 11, 0},  {17, 9, 0, +1, 10, 0},  {18, 8, 0, -1, 11, 0},  {19, 9, 0, -1, 10, 0},
            {20, 12, 0, +1, 12, 1}, {20, 20, 0, +1, 13, 0}, {20, 20, 0, +1, 14, 0}, {21, 14, 0, +1, 14, 1},
            {21, 21, 0, -1, 12, 0}, {21, 21, 0, +1, 15, 0}, {22, 15, 0, +1, 12, 0}, {22, 22, 0, -1, 13, 0},
            {22, 22, 0, -1, 13, 1}, {23, 15, 0, +1, 15, 1}, {23, 23, 0, +1, 13, 0}, {23, 23, 0, -1, 14, 0},
            {24, 24, 0, -1, 21, 0}, {25, 16, 0, +1, 17, 0}, {26, 20, 0, +1, 23, 2}, {27, 18, 0, +1, 19, 1},
            {28, 22, 2, -1, 21, 0}, {29, 16, 0, -1, 17, 0}, {30, 22, 0, -1, 24, 2}, {31, 18, 1, -1, 19, 0},
            {32, 20, 2, -1, 23, 0}}};

inline Values kept(Rule rule, Values values) {
  for (long long& value : values) value = keep(rule, value);
  return values;
}

/// The 4x4 transform: by its matrix, or by its flow where sums saturate.
inline Values forward_4x4(const Values& block, Rule rule) {
  constexpr int kForward[] = {1, 1, 1, 1, 2, 1, -1, -2, 1, -1, -1, 1, 1, -2, 2, -1};
  if (rule == Rule::kSat16) return flow_2d(kForward4, block, rule, true);
  return kept(rule, product(kForward, block, transposed(kForward, 4), 4, 4));
}
/// The 8x8 transform by its matrix: exact where no shift drops a bit, as with multiples of 64.
inline Values forward_8x8_by_basis(const Values& block) {
  Values result = product(kBasis8, block, transposed(kBasis8, 8), 8, 8);
  for (long long& value : result) value /= 64;
  return result;
}
/// (H4 * M * H4) >> 1 with a cut after the columns.
inline Values luma_dc(const Values& block, Rule rule) {
  constexpr int kIdentity[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  Values f = product(kIdentity, kept(rule, product(kH4, block, kIdentity, 4, 4)), kH4, 4, 4);
  for (long long& value : f) value = keep(rule, keep(Rule::kWrap32, value) >> 1);
  return f;
}
inline Values chroma_dc_2x2(const Values& block, Rule rule) {
  if (rule == Rule::kSat16) return flow_2d(kHadamard2, block, rule, true);
  return kept(rule, product(kH2, block, kH2, 2, 2));
}

/// What one quantiser does: its unit is 2^shift, its rounding a third (intra) or a sixth of it, `rough` ones of 2048
/// parts; products wrap at 32 bits unless they are wide.
struct Unit {
  int shift;
  bool rough, intra;
  Rule store;
  bool wide = false;

  long long level(long long x, long long scale) const {
    const long long unit = 1LL << shift;
    const long long rounding = rough ? unit / 2048 * (intra ? 682 : 342) : unit / (intra ? 3 : 6);
    const long long sum = std::abs(x) * scale + rounding, value = wide ? sum : keep(Rule::kWrap32, sum);
    const long long magnitude = keep(store, (value - (value % unit + unit) % unit) / unit);
    return keep(wrapping(store), x < 0 ? -magnitude : magnitude);
  }
};

/// The default multiplier of a position, or the caller's.
template <class Scale>
long long forward_scale(const Scale* scales, int rem, int position) {
  return scales ? static_cast<long long>(scales[position]) : forward_multiplier(rem, position);
}

inline long long count_of(const Values& levels) {
  return static_cast<long long>(levels.size()) - std::count(levels.begin(), levels.end(), 0);
}
/// The largest place of a level.
inline long long last_of(const Values& levels, const short* places) {
  long long last = 0;
  for (std::size_t i = 0; i < levels.size(); ++i) last = std::max<long long>(last, levels[i] != 0 ? places[i] : 0);
  return last;
}

}  // namespace mox::oracle
