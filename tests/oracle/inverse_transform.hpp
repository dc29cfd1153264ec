/// Slow oracle of H.264 dequantisation and inverse transforms: 64-bit values, transforms as signal flows and matrices
/// held as data, and one rule for what becomes of a value that does not fit.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

namespace mox::oracle {

using Values = std::vector<long long>;

enum class Rule { kWrap16, kSat16, kWrap32 };

inline long long keep(Rule rule, long long value) {
  if (rule == Rule::kSat16) return std::clamp(value, -32768LL, 32767LL);
  const long long unit = rule == Rule::kWrap16 ? 1LL << 16 : 1LL << 32;
  const long long low = (value % unit + unit) % unit;
  return low < unit / 2 ? low : low - unit;
}
/// The wrapping rule of the same width.
inline Rule wrapping(Rule rule) { return rule == Rule::kSat16 ? Rule::kWrap16 : rule; }

/// One sum of a signal flow: node `to` = (node a >> a_shift) + sign * (node b >> b_shift).
struct Sum {
  int to, a, a_shift, sign, b, b_shift;
};
/// Nodes 0.. are the inputs, the last as many nodes the outputs.
struct Flow {
  int inputs, nodes;
  std::vector<Sum> sums;
};

inline const Flow kInverse4{4,
                            12,
                            {{4, 0, 0, +1, 2, 0},
                             {5, 0, 0, -1, 2, 0},
                             {6, 1, 1, -1, 3, 0},
                             {7, 1, 0, +1, 3, 1},
                             {8, 4, 0, +1, 7, 0},
                             {9, 5, 0, +1, 6, 0},
                             {10, 5, 0, -1, 6, 0},
                             {11, 4, 0, -1, 7, 0}}};
inline const Flow kHadamard4{4,
                             12,
                             {{4, 0, 0, +1, 3, 0},
                              {5, 1, 0, +1, 2, 0},
                              {6, 0, 0, -1, 3, 0},
                              {7, 1, 0, -1, 2, 0},
                              {8, 4, 0, +1, 5, 0},
                              {9, 6, 0, +1, 7, 0},
                              {10, 4, 0, -1, 5, 0},
                              {11, 6, 0, -1, 7, 0}}};
/// 8.5.13: nodes 8 to 15 are e, 16 to 23 f, 24 to 31 the outputs; sums of four terms run through their own node.
inline const Flow kInverse8{
    8, 32, {{8, 0, 0, +1, 4, 0},    {9, 5, 0, -1, 3, 0},    {9, 9, 0, -1, 7, 0},    {9, 9, 0, -1, 7, 1},
            {10, 0, 0, -1, 4, 0},   {11, 1, 0, +1, 7, 0},   {11, 11, 0, -1, 3, 0},  {11, 11, 0, -1, 3, 1},
            {12, 2, 1, -1, 6, 0},   {13, 7, 0, -1, 1, 0},   {13, 13, 0, +1, 5, 0},  {13, 13, 0, +1, 5, 1},
            {14, 2, 0, +1, 6, 1},   {15, 3, 0, +1, 5, 0},   {15, 15, 0, +1, 1, 0},  {15, 15, 0, +1, 1, 1},
            {16, 8, 0, +1, 14, 0},  {17, 9, 0, +1, 15, 2},  {18, 10, 0, +1, 12, 0}, {19, 11, 0, +1, 13, 2},
            {20, 10, 0, -1, 12, 0}, {21, 11, 2, -1, 13, 0}, {22, 8, 0, -1, 14, 0},  {23, 15, 0, -1, 9, 2},
            {24, 16, 0, +1, 23, 0}, {25, 18, 0, +1, 21, 0}, {26, 20, 0, +1, 19, 0}, {27, 22, 0, +1, 17, 0},
            {28, 22, 0, -1, 17, 0}, {29, 20, 0, -1, 19, 0}, {30, 18, 0, -1, 21, 0}, {31, 16, 0, -1, 23, 0}}};

/// Every line of a square block through the flow: rows first or columns first.
inline Values flow_2d(const Flow& flow, Values block, Rule rule, bool rows_first) {
  const int n = flow.inputs;
  for (int pass = 0; pass < 2; ++pass) {
    const bool rows = (pass == 0) == rows_first;
    for (int line = 0; line < n; ++line) {
      const auto at = [&](int i) -> long long& { return block[rows ? line * n + i : i * n + line]; };
      Values node(flow.nodes);
      for (int i = 0; i < n; ++i) node[i] = at(i);
      for (const Sum& s : flow.sums) {
        node[s.to] = keep(rule, (node[s.a] >> s.a_shift) + s.sign * (node[s.b] >> s.b_shift));
      }
      for (int i = 0; i < n; ++i) at(i) = node[flow.nodes - n + i];
    }
  }
  return block;
}

/// Inverse 4x4 or 8x8 transform with its final rounding.
inline Values residual(const Flow& flow, Values block, Rule rule) {
  block = flow_2d(flow, std::move(block), rule, true);
  for (long long& value : block) value = keep(rule, value + 32) >> 6;
  return block;
}

/// Left * M * Right, exact. Left is rows x rows, M rows x columns, Right columns x columns.
inline Values product(std::span<const int> left, const Values& m, std::span<const int> right, int rows, int columns) {
  Values result(m.size());
  for (int i = 0; i < rows * rows * columns * columns; ++i) {
    const int x = i % columns, k = i / columns % columns, y = i / columns / columns % rows;
    const int l = i / columns / columns / rows;
    result[y * columns + x] += left[y * rows + l] * m[l * columns + k] * right[k * columns + x];
  }
  return result;
}
inline constexpr int kH2[] = {1, 1, 1, -1};
inline constexpr int kH4[] = {1, 1, 1, 1, 1, 1, -1, -1, 1, -1, -1, 1, 1, -1, 1, -1};

inline std::vector<int> transposed(std::span<const int> matrix, int n) {
  std::vector<int> result(matrix.size());
  for (int i = 0; i < n * n; ++i) result[i] = matrix[i % n * n + i / n];
  return result;
}

/// H4 * M * H2 of four rows of two: `pairs` rules the sums and differences of the outer and of the inner two values of
/// a column, the wrapping rule of that width what is made of them.
inline Values hadamard_2x4(const Values& c, Rule pairs) {
  Values terms(8);
  for (int i = 0; i < 8; ++i) {
    const int x = i % 2, outer_or_inner = i / 2 % 2, sign = i < 4 ? 1 : -1;
    terms[i] = keep(pairs, c[2 * outer_or_inner + x] + sign * c[2 * (3 - outer_or_inner) + x]);
  }
  constexpr int kCombine[] = {1, 1, 0, 0, 0, 0, 1, 1, 1, -1, 0, 0, 0, 0, 1, -1};
  Values f = product(kCombine, terms, kH2, 4, 2);
  for (long long& v : f) v = keep(wrapping(pairs), v);
  return f;
}

/// Rows of the inverse transforms, times 2 and times 8.
inline constexpr int kBasis4[] = {2, 2, 2, 2, 2, 1, -1, -2, 2, -2, -2, 2, 1, -2, 2, -1};
inline constexpr int kBasis8[] = {8, 8,  8,  8,  8,  8,  8,  8, 12, 10,  6,   3,   -3,  -6,  -10, -12,
                                  8, 4,  -4, -8, -8, -4, 4,  8, 10, -3,  -12, -6,  6,   12,  3,   -10,
                                  8, -8, -8, 8,  8,  -8, -8, 8, 6,  -12, 3,   10,  -10, -3,  12,  -6,
                                  4, -8, 8,  -4, -4, 8,  -8, 4, 3,  -6,  10,  -12, 12,  -10, 6,   -3};

/// The inverse transform by its basis, final rounding included: exact if no shift on the way drops a bit, as with
/// coefficients that are multiples of 4 (4x4) or 64 (8x8).
inline Values residual_by_basis(const Values& block, int n) {
  const std::span<const int> basis = n == 4 ? std::span<const int>(kBasis4) : std::span<const int>(kBasis8);
  Values result = product(transposed(basis, n), block, basis, n, n);
  for (long long& value : result) value = (value / (basis[0] * basis[0]) + 32) >> 6;
  return result;
}

/// Inverse multiplier of rem and a raster position of a 4x4 block.
inline long long multiplier(int rem, int position) {
  constexpr int kEven[] = {10, 11, 13, 14, 16, 18}, kOdd[] = {16, 18, 20, 23, 25, 29},
                kMixed[] = {13, 14, 16, 18, 20, 23};
  const int odd = position % 2 + position / 4 % 2;
  return (odd == 0 ? kEven : odd == 2 ? kOdd : kMixed)[rem];
}
/// Forward multiplier, likewise.
inline long long forward_multiplier(int rem, int position) {
  constexpr int kEven[] = {13107, 11916, 10082, 9362, 8192, 7282}, kOdd[] = {5243, 4660, 4194, 3647, 3355, 2893},
                kMixed[] = {8066, 7490, 6554, 5825, 5243, 4559};
  const int odd = position % 2 + position / 4 % 2;
  return (odd == 0 ? kEven : odd == 2 ? kOdd : kMixed)[rem];
}
/// Inverse multiplier of a QP without a scaling list.
inline long long step_size(int qp, int position) { return multiplier(qp % 6, position) << (qp / 6); }

/// The given scale of a position, or that of a flat scaling list.
inline long long scale_at(const short* scales, int rem, int position) {
  return scales ? scales[position] : 16 * multiplier(rem, position);
}

/// x * scale with `fraction` bits dropped and per doublings, rounded if asked; the product wraps at 32 bits.
inline long long rescaled(long long x, long long scale, int per, int fraction, bool rounded = true) {
  const long long half = rounded ? (1LL << fraction) >> (per + 1) : 0;
  return (keep(Rule::kWrap32, x * scale + half) * (1LL << per)) >> fraction;
}

/// Quantised with the multipliers of qs and back: the step that SP and SI blocks share.
inline long long requantised(long long t, int qs, int position, int extra_shift) {
  const int shift = 15 + extra_shift + qs / 6;
  const long long magnitude = keep(Rule::kWrap32, t < 0 ? -t : t);
  const long long scaled = magnitude * forward_multiplier(qs % 6, position) + (1LL << shift) / 2;
  const long long value = (keep(Rule::kWrap32, scaled) >> shift) * step_size(qs, position);
  return t < 0 ? -value : value;
}

}  // namespace mox::oracle
