/// Slow oracle of the 8x8 discrete cosine transforms: the definition in floating point, and the integer arithmetic of
/// the header as double sums over a block, with factors from the cosine function.
#pragma once

#include <array>
#include <cmath>
#include <numbers>

#include "oracle/inverse_transform.hpp"

namespace mox::oracle {

template <class T>
using Block64 = std::array<T, 64>;  // [8 * row + column]

/// C(u) cos((2x+1) u pi / 16).
inline double dct_factor(int u, int x) {
  return (u ? 0.5 : std::sqrt(0.125)) * std::cos((2 * x + 1) * u * std::numbers::pi / 16);
}

/// The definition: a sum for each row, then for each column.
inline Block64<double> dct(const Block64<double>& in, bool inverse) {
  static const auto factors = [] {
    Block64<double> f;
    for (int i = 0; i < 64; ++i) f[i] = dct_factor(i / 8, i % 8);
    return f;
  }();
  Block64<double> rows{}, out{};
  const auto factor = [&](int from, int to) { return inverse ? factors[8 * from + to] : factors[8 * to + from]; };
  for (int i = 0; i < 512; ++i) rows[i / 64 * 8 + i % 8] += in[i / 64 * 8 + i / 8 % 8] * factor(i / 8 % 8, i % 8);
  for (int i = 0; i < 512; ++i) out[i / 64 * 8 + i % 8] += rows[i / 8 % 8 * 8 + i % 8] * factor(i / 8 % 8, i / 64);
  return out;
}

inline long long floor_divide(long long value, long long divisor) {
  return static_cast<long long>(std::floor(static_cast<long double>(value) / static_cast<long double>(divisor)));
}
inline long long dct_weight(int u, int x) {
  static const auto weights = [] {
    Block64<long long> w;
    for (int i = 0; i < 64; ++i) w[i] = std::llround(std::exp2(14.5) * dct_factor(i / 8, i % 8));
    return w;
  }();
  return weights[8 * u + x];
}

/// A line of the inverse transform: each value is the sum of all products, rounded.
inline std::array<long long, 8> dct_line_inverse(const std::array<long long, 8>& line, int shift) {
  std::array<long long, 8> out;
  for (int x = 0; x < 8; ++x) {
    long long sum = 1LL << (shift - 1);
    for (int u = 0; u < 8; ++u) sum += dct_weight(u, x) * line[u];
    out[x] = keep(Rule::kSat16, floor_divide(sum, 1LL << shift));
  }
  return out;
}

/// A line of the forward transform as a signal flow of saturating sums, then one sum of products for each frequency.
inline std::array<long long, 8> dct_line_forward(const std::array<long long, 8>& line, int shift) {
  const auto kept = [](long long value) { return keep(Rule::kSat16, value); };
  std::array<long long, 8> out;
  for (int u = 0; u < 8; ++u) {
    const int outer = u % 2 ? -1 : 1, inner = u % 4 ? -1 : 1;
    std::array<long long, 4> terms;
    for (int x = 0; x < 4; ++x) terms[x] = kept(line[x] + outer * line[7 - x]);
    if (u % 2 == 0) terms = {kept(terms[0] + inner * terms[3]), kept(terms[1] + inner * terms[2]), 0, 0};
    long long sum = 1LL << (shift - 1);
    for (int x = 0; x < 4; ++x) sum += dct_weight(u, x) * terms[x];
    out[u] = kept(floor_divide(sum, 1LL << shift));
  }
  return out;
}

/// Rows, then columns, by a function of a line.
template <class Line>
Block64<long long> dct_exact(Block64<long long> block, Line line, int row_shift, int column_shift) {
  for (int pass = 0; pass < 2; ++pass) {
    const int along = pass ? 8 : 1, across = pass ? 1 : 8;
    for (int i = 0; i < 8; ++i) {
      std::array<long long, 8> values;
      for (int k = 0; k < 8; ++k) values[k] = block[across * i + along * k];
      values = line(values, pass ? column_shift : row_shift);
      for (int k = 0; k < 8; ++k) block[across * i + along * k] = values[k];
    }
  }
  return block;
}
inline Block64<long long> dct_inverse(const Block64<long long>& c) { return dct_exact(c, dct_line_inverse, 10, 19); }
inline Block64<long long> dct_forward(const Block64<long long>& s) { return dct_exact(s, dct_line_forward, 11, 18); }

}  // namespace mox::oracle
