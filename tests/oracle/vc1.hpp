/// Slow oracle of the VC-1 transforms and quantisers and of the Hadamard transform: 64-bit integers, weights by the
/// angle of their cosine, and one rule for what becomes of a value that does not fit.
#pragma once

#include <cmath>
#include <cstdlib>

#include "oracle/inverse_transform.hpp"

namespace mox::oracle {

/// The weight of coefficient k in sample j of n: its cosine's angle in steps of pi / 16, folded into the first quarter,
/// selects the magnitude.
inline long long vc1_weight(bool forward, int n, int k, int j) {
  static const long long magnitudes[2][2][8] = {
      {{17, 0, 22, 0, 17, 0, 10, 0}, {12, 16, 16, 15, 12, 9, 6, 4}},
      {{15420, 0, 19751, 0, 15420, 0, 8978, 0}, {21845, 29026, 28728, 27212, 21845, 16327, 10773, 7257}}};
  const int turn = (2 * j + 1) * k * (8 / n) % 32, fold = turn > 16 ? 32 - turn : turn;
  const auto& magnitude = magnitudes[forward][n / 8];
  return fold > 8 ? -magnitude[16 - fold] : magnitude[fold];
}

/// A pass over the lines of a block: line(values) gives the new values of one.
template <class Line>
Values vc1_pass(const Values& block, int n, int stride, int lines, int distance, Line line) {
  Values result(block.size());
  for (int i = 0; i < lines; ++i) {
    Values values;
    for (int k = 0; k < n; ++k) values.push_back(block[i * distance + k * stride]);
    values = line(values);
    for (int k = 0; k < n; ++k) result[i * distance + k * stride] = values[k];
  }
  return result;
}

/// `narrow`: what becomes of coefficient 0 plus or minus coefficient n / 2 in a column.
inline Values vc1_inverse(int w, int h, const Values& block, Rule narrow = Rule::kWrap16) {
  const auto line = [](const Values& in, int rounding, int late, int shift, Rule rule) {
    const int n = static_cast<int>(in.size());
    Values out;
    for (int j = 0; j < n; ++j) {
      long long sum = rounding + (j >= 4 ? late : 0);
      for (int k = 0; k < n; ++k) sum += vc1_weight(false, n, k, j) * in[k];
      const long long pair = in[0] + (vc1_weight(false, n, n / 2, j) > 0 ? in[n / 2] : -in[n / 2]);
      sum += vc1_weight(false, n, 0, j) * (keep(rule, pair) - pair);
      out.push_back(keep(Rule::kSat16, sum >> shift));
    }
    return out;
  };
  const Values rows = vc1_pass(block, w, 1, h, w, [&](const Values& v) { return line(v, 4, 0, 3, Rule::kWrap32); });
  return vc1_pass(rows, h, w, w, 1, [&](const Values& v) { return line(v, 64, 1, 7, narrow); });
}

/// `sums`: what becomes of a sum of products.
inline Values vc1_forward(int w, int h, const Values& block, Rule sums = Rule::kWrap32) {
  const auto line = [sums](const Values& in, int shift) {
    const int n = static_cast<int>(in.size());
    Values out;
    for (int k = 0; k < n; ++k) {
      long long sum = 1LL << (shift - 1);
      for (int j = 0; j < n; ++j) sum += vc1_weight(true, n, k, j) * in[j];
      if (sums == Rule::kWrap32) sum = keep(sums, sum);
      out.push_back(keep(Rule::kSat16, sum >> shift));
    }
    return out;
  };
  const Values rows = vc1_pass(block, w, 1, h, w, [&](const Values& v) { return line(v, w == 8 ? 12 : 11); });
  return vc1_pass(rows, h, w, w, 1, [&](const Values& v) { return line(v, h == 8 ? 20 : 19); });
}

/// Both halves first, then their sum and their difference.
inline Values hadamard_line(const Values& in, Rule rule) {
  const auto half = in.size() / 2;
  if (half == 0) return in;
  Values low = hadamard_line({in.begin(), in.begin() + half}, rule);
  Values high = hadamard_line({in.begin() + half, in.end()}, rule), out = low;
  for (std::size_t i = 0; i < half; ++i) out[i] = keep(rule, low[i] + high[i]);
  for (std::size_t i = 0; i < half; ++i) out.push_back(keep(rule, low[i] - high[i]));
  return out;
}
inline Values hadamard_8x8(const Values& block, Rule rule = Rule::kSat16) {
  const auto line = [rule](const Values& v) { return hadamard_line(v, rule); };
  return vc1_pass(vc1_pass(block, 8, 1, 8, 8, line), 8, 8, 8, 1, line);
}
/// The sum of magnitudes of v, kept to 16 bits at each level of a tree.
inline long long hadamard_tree(const Values& v) {
  if (v.size() == 1) return keep(Rule::kSat16, std::llabs(v[0]));
  const auto half = v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2);
  return keep(Rule::kSat16, hadamard_tree({v.begin(), half}) + hadamard_tree({half, v.end()}));
}

/// The division of a forward quantiser, by the list of its exceptions.
inline long long vc1_quotient(long long x, int d) {
  const long long quotient = x / d, rest = std::llabs(x % d);
  const bool low = d == 19 || d == 21 || d == 27 || d == 41 || d == 55;
  const bool nearer = low && ((x != 0 && rest == 0) || (d == 55 && rest == 1 && std::llabs(quotient) >= 341));
  return quotient - (nearer ? (x > 0) - (x < 0) : 0);
}
inline long long vc1_quantized(long long x, int d, bool uniform) {
  return vc1_quotient(uniform ? x : x - ((x > 0) - (x < 0)) * (d / 2), d);
}
inline long long vc1_dequantized(long long x, long long d, bool uniform) {
  const long long half = uniform ? 0 : static_cast<long long>(std::floor(static_cast<double>(d) / 2));
  return keep(Rule::kWrap16, x * d + ((x > 0) - (x < 0)) * half);
}

}  // namespace mox::oracle
