/// How VC-1 quantisers divide, and the order of their tables.
#pragma once

#include <array>

#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Forms of the division of x.
enum Vc1Form {
  kA0,  ///< ((x * m >> 16) >> s) + (x < 0), m below 32768
  kA1,  ///< the same with an m of 32768 and more, which no signed word holds
  kA2,  ///< (x + (x < 0 ? m : 0)) >> s, by 2^s
};

struct Vc1Division {
  Vc1Form form;
  Mox16u m;
  Mox8u s;
};

inline constexpr Mox32s kVc1LeastDoubleQuant = 2, kVc1MostDoubleQuant = 62;

/// [doubleQuant - 2]. Those of 19, 21, 27, 41 and 55 are reciprocals rounded downwards, all others upwards: encoders
/// rely on it.
inline constexpr std::array<Vc1Division, 61> kVc1Divisions = {
    {{kA2, 1, 1},     {kA0, 21846, 0}, {kA2, 3, 2},     {kA0, 26215, 1}, {kA0, 10923, 0}, {kA1, 37450, 2},
     {kA2, 7, 3},     {kA0, 14564, 1}, {kA0, 26215, 2}, {kA0, 11916, 1}, {kA0, 10923, 1}, {kA0, 20165, 2},
     {kA0, 18725, 2}, {kA1, 34953, 3}, {kA2, 15, 4},    {kA0, 30841, 3}, {kA0, 3641, 0},  {kA0, 13797, 2},
     {kA0, 26215, 3}, {kA0, 12483, 2}, {kA0, 2979, 0},  {kA1, 45591, 4}, {kA0, 10923, 2}, {kA0, 20972, 3},
     {kA0, 20165, 3}, {kA0, 19418, 3}, {kA0, 18725, 3}, {kA1, 36158, 4}, {kA1, 34953, 4}, {kA1, 33826, 4},
     {kA2, 31, 5},    {kA0, 15888, 3}, {kA0, 30841, 4}, {kA1, 59919, 5}, {kA0, 3641, 1},  {kA1, 56680, 5},
     {kA1, 55189, 5}, {kA1, 53774, 5}, {kA0, 26215, 4}, {kA0, 25575, 4}, {kA1, 49933, 5}, {kA0, 12193, 3},
     {kA0, 2979, 1},  {kA1, 46604, 5}, {kA1, 45591, 5}, {kA1, 44621, 5}, {kA0, 10923, 3}, {kA0, 21400, 4},
     {kA0, 5243, 2},  {kA1, 41121, 5}, {kA0, 20165, 4}, {kA0, 19785, 4}, {kA1, 38837, 5}, {kA0, 2383, 1},
     {kA0, 18725, 4}, {kA1, 36793, 5}, {kA0, 18079, 4}, {kA0, 17773, 4}, {kA1, 34953, 5}, {kA0, 17190, 4},
     {kA0, 16913, 4}}};

/// [doubleQuant - 2]: the form.
inline constexpr auto indArr =
    make_table<kVc1Divisions.size()>([]<std::size_t I>() -> Mox32s { return kVc1Divisions[I].form; });
constexpr const Vc1Division& vc1_division(Mox32s doubleQuant) {
  return kVc1Divisions[doubleQuant - kVc1LeastDoubleQuant];
}
constexpr Mox32s vc1_form(Mox32s doubleQuant) { return indArr[doubleQuant - kVc1LeastDoubleQuant]; }
static_assert(vc1_division(19).m == 13797 && vc1_division(62).m == 16913 && vc1_form(2) == kA2 && vc1_form(51) == kA1);

/// Index of a forward quantiser of non-intra blocks: 4x4, 4x8, 8x4, 8x8, four places each, one for each form.
constexpr int vc1_quant_index(MoxiSize size, Mox32s doubleQuant) {
  return size.height + 2 * size.width + vc1_form(doubleQuant) - 12;
}
static_assert(vc1_quant_index({4, 8}, 2) == 4 + kA2 && vc1_quant_index({8, 8}, 3) == 12);

/// Index of an inverse quantiser of non-intra blocks: 4x4, 8x4, 4x8, 8x8.
constexpr int vc1_quant_inv_index(MoxiSize size) { return size.height / 2 + size.width / 4 - 3; }
static_assert(vc1_quant_inv_index({4, 4}) == 0 && vc1_quant_inv_index({8, 4}) == 1 && vc1_quant_inv_index({8, 8}) == 3);

}  // namespace mox::px
