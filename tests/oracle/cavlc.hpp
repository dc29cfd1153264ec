/// An encoder of CAVLC residual blocks that writes bits as text (ITU-T H.264 9.2).
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "common/h264_vlc_tables.hpp"
#include "support/bits.hpp"

namespace mox::test::oracle {

/// Code number `index` of a text such as "1 01 001".
inline std::string nth_code(std::string_view codes, int index) {
  for (; index > 0; --index) codes.remove_prefix(codes.find(' ') + 1);
  return std::string(codes.substr(0, codes.find(' ')));
}

inline std::string coeff_token(int nC, int total, int ones) {
  if (nC >= 8) return total == 0 ? "000011" : bits_of(total - 1, 4) + bits_of(ones, 2);
  const int table = nC == -2 ? 4 : nC == -1 ? 3 : nC >= 4 ? 2 : nC / 2;
  return nth_code(example::kCoeffTokenCodes[table], example::coeff_token_index(total, ones));
}

/// total_zeros of a block whose longest form has 16 (or 15), 8 or 4 coefficients.
inline std::string total_zeros(int longest, int total, int zeros) {
  const std::string_view codes = longest == 4   ? example::kTotalZeros2x2Codes[total - 1]
                                 : longest == 8 ? example::kTotalZeros2x4Codes[total - 1]
                                                : example::kTotalZerosCodes[total - 1];
  return nth_code(codes, zeros);
}

inline std::string run_before(int left, int run) {
  return nth_code(example::kRunBeforeCodes[std::min(left, 7) - 1], run);
}

/// level_prefix and level_suffix of a levelCode: the prefix whose range of codes, by the equations of 9.2.2.1, holds
/// it.
inline std::string level(long long levelCode, int suffixLength) {
  for (int prefix = 0;; ++prefix) {
    const int size = prefix == 14 && suffixLength == 0 ? 4 : prefix >= 15 ? prefix - 3 : suffixLength;
    const long long first = (std::min(15ll, 0ll + prefix) << suffixLength) +
                            (prefix >= 15 && suffixLength == 0 ? 15 : 0) +
                            (prefix >= 16 ? (1ll << (prefix - 3)) - 4096 : 0);
    if (levelCode >= first && levelCode < first + (1ll << size)) {
      return std::string(prefix, '0') + '1' + bits_of(levelCode - first, size);
    }
  }
}

/// A block in scan order; the vector's length is the most coefficients that its kind can have: 16, 15, 8 or 4.
inline std::string encode(const std::vector<int>& block, int nC) {
  const int longest = static_cast<int>(block.size());
  std::vector<int> levels, runs;  // from the highest frequency down; the zeros in front of each level
  for (int k = longest - 1; k >= 0; --k) {
    if (block[k] != 0) {
      levels.push_back(block[k]), runs.push_back(0);
    } else if (!runs.empty()) {
      ++runs.back();
    }
  }
  const int total = static_cast<int>(levels.size());
  int ones = 0, zeros = 0;
  while (ones < std::min(3, total) && std::abs(levels[ones]) == 1) ++ones;
  for (int run : runs) zeros += run;

  std::string bits = coeff_token(nC, total, ones);
  int suffixLength = total > 10 && ones < 3 ? 1 : 0;
  for (int i = 0; i < total; ++i) {
    if (i < ones) {
      bits += levels[i] < 0 ? '1' : '0';
      continue;
    }
    const int magnitude = std::abs(levels[i]);
    bits += level(2 * magnitude - 2 + (levels[i] < 0) - (i == ones && ones < 3 ? 2 : 0), suffixLength);
    suffixLength = std::max(suffixLength, 1);
    if (magnitude > 3 << (suffixLength - 1) && suffixLength < 6) ++suffixLength;
  }
  if (total > 0 && total < longest) bits += total_zeros(longest, total, zeros);
  for (int i = 0; i + 1 < total && zeros > 0; zeros -= runs[i++]) bits += run_before(zeros, runs[i]);
  return bits;
}

}  // namespace mox::test::oracle
