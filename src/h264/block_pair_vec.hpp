/// The walk over two prediction blocks as vectors of bytes, several rows at a time where rows are short.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/generation.hpp"
#include "h264/block_pair.hpp"
#include "h264/row_blocks_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The rows from the first on, kRows at a time, then what is left of them by fewer. A rule that takes one vector reads
/// the first block alone.
template <int W, int kRows, class T, class Rule>
MOX_INLINE void combine_rows(BlockPair<T> at, int height, const Rule& rule) {
  constexpr int kSize = sizeof(T), kBytes = W * kSize, B = kBytes * kRows > 16 ? 2 : 1, kShort = kRows / B;
  const auto row = [](const T* p, std::ptrdiff_t step) {
    return load_row_blocks<simd::u8, B, kBytes, kShort>(p, step * kSize);
  };
  for (; height >= kRows; height -= kRows) {
    const auto first = row(at.src1, at.step1);
    simd::u8<B> result;
    if constexpr (requires { rule(first); })
      result = rule(first);
    else
      result = rule(first, row(at.src2, at.step2));
    store_row_blocks<kBytes, kShort>(result, at.dst, at.dstStep * kSize);
    at.src1 += kRows * at.step1, at.src2 += kRows * at.step2, at.dst += kRows * at.dstStep;
  }
  if constexpr (kRows > 1) combine_rows<W, kRows / 2>(at, height, rule);
}

/// The first W columns. `at` moves on behind them.
template <int W, class T, class Rule>
MOX_INLINE void combine_columns(BlockPair<T>& at, int height, const Rule& rule) {
  constexpr int kVector = 16 * simd::kBlocks, kSize = sizeof(T), kColumns = std::min(W, kVector / kSize);
  constexpr int kBytes = kColumns * kSize, kRows = (kBytes < 16 ? 16 : kVector) / kBytes;
  for (int x = 0; x < W; x += kColumns) {
    combine_rows<kColumns, kRows>(at, height, rule);
    at.src1 += kColumns, at.src2 += kColumns, at.dst += kColumns;
  }
}

/// Stores what the rule makes of each vector of samples of a block W wide. If W is 0, `size` tells the width, and a
/// last odd column is left: `at` moves on to it.
template <int W, class T, class Rule>
MOX_INLINE MoxStatus combine_block(BlockPair<T>& at, MoxiSize size, const Rule& rule) {
  if constexpr (W > 0) {
    combine_columns<W>(at, size.height, rule);
  } else if (size.width > 0) {
    for (int x = 16; x <= size.width; x += 16) combine_columns<16>(at, size.height, rule);
    if (size.width & 8) combine_columns<8>(at, size.height, rule);
    if (size.width & 4) combine_columns<4>(at, size.height, rule);
    if (size.width & 2) combine_columns<2>(at, size.height, rule);
  }
  return moxStsOk;
}

/// The mean of two blocks, halves upwards. A width or height of 0 is taken from `size`.
template <int W, int H, class T>
MoxStatus average_block(const BlockPair<T>& blocks, MoxiSize size) {
  const auto mean = []<int B>(simd::u8<B> a, simd::u8<B> b) {
    if constexpr (sizeof(T) == 1) return avg(a, b);
    return simd::as<simd::u8>(avg(simd::as<simd::u16>(a), simd::as<simd::u16>(b)));
  };
  BlockPair<T> at = blocks;
  if constexpr (H > 0) size.height = H;
  combine_block<W>(at, size, mean);
  if (W == 0 && size.width % 2 != 0) return px::average_block<1, 0>(at, size);
  return moxStsOk;
}

}  // namespace mox::vec
