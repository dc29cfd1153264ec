/// Whole macroblocks in 4:2:0, composed of the oracles of prediction and transform. Blocks are found by their number's
/// bits, neighbours by asking who owns a sample and whether he is done.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "oracle/intra.hpp"
#include "oracle/inverse_transform.hpp"

namespace mox::oracle {

using Picture = std::function<unsigned char&(int x, int y)>;

/// What the blocks of a plane are dequantised with; flat if there is no scale.
struct Quantiser {
  int qp;
  const short* scale;
  bool lossless;
};

/// Packed coefficients. Blocks and DC values that a call puts in their place are written back.
struct Stream {
  std::vector<short> coeffs;
  std::size_t used = 0;

  Values take(int count) {
    used += static_cast<std::size_t>(count);
    return {coeffs.begin() + static_cast<int>(used) - count, coeffs.begin() + static_cast<int>(used)};
  }
  void put_back(const Values& values) {
    std::copy(values.begin(), values.end(), coeffs.begin() + static_cast<int>(used - values.size()));
  }
};

inline Values dequantised(const Quantiser& q, Values block) {
  const int per = q.qp / 6;
  for (std::size_t i = 0; i < block.size(); ++i) {
    const int position = static_cast<int>(i);
    if (!q.scale) {
      block[i] = keep(Rule::kWrap16, block[i] * step_size(q.qp, position));
    } else if (block.size() == 16) {
      block[i] = keep(Rule::kWrap16, rescaled(block[i], q.scale[i], per, 4));
    } else {
      block[i] = keep(per < 6 ? Rule::kSat16 : Rule::kWrap16, rescaled(block[i], q.scale[i], per, 6));
    }
  }
  return block;
}

inline Values luma_dc(const Quantiser& q, Values dc) {
  if (q.lossless) return dc;
  dc = flow_2d(kHadamard4, dc, q.scale ? Rule::kSat16 : Rule::kWrap16, false);
  for (long long& value : dc) {
    const int per = q.qp / 6;
    if (!q.scale) {
      value = keep(Rule::kWrap16, (value * step_size(q.qp, 0) + 2) >> 2);
    } else {
      value = keep(per < 6 ? Rule::kSat16 : Rule::kWrap16, rescaled(value, q.scale[0], per, 6));
    }
  }
  return dc;
}

inline Values chroma_dc(const Quantiser& q, const Values& dc) {
  if (q.lossless) return dc;
  Values sums = product(kH2, dc, kH2, 2, 2);
  for (long long& value : sums) {
    value = keep(Rule::kWrap16, value);
    value = q.scale ? rescaled(value, q.scale[0], q.qp / 6, 5, false) : (value * step_size(q.qp, 0)) >> 1;
    value = keep(Rule::kWrap16, value);
  }
  return sums;
}

/// Adds the residual of an n x n block at (x0, y0). A given dc replaces coefficient 0; without ac there is nothing
/// else.
inline void add_block(const Picture& at, int x0, int y0, int n, const Quantiser& q, Stream& stream, const long long* dc,
                      bool ac, bool stores_residual) {
  Values block(static_cast<std::size_t>(n * n), 0);
  if (ac) block = stream.take(n * n);
  if (q.lossless) {
    if (dc) block[0] = *dc;
  } else if (ac) {
    block = dequantised(q, block);
    if (dc) block[0] = *dc;
    block = residual(n == 4 ? kInverse4 : kInverse8, block, Rule::kSat16);
    if (stores_residual) stream.put_back(block);
  } else {
    for (long long& value : block) value = (*dc + 32) >> 6;
  }
  for (int i = 0; i < n * n; ++i) {
    unsigned char& sample = at(x0 + i % n, y0 + i / n);
    sample = static_cast<unsigned char>(std::clamp<long long>(sample + block[static_cast<std::size_t>(i)], 0, 255));
  }
}

struct Place {
  int x, y;
};
inline Place place(int n, int i) {
  return n == 8 ? Place{8 * (i & 1), 8 * (i >> 1)}
                : Place{4 * (i & 1) + 8 * (i >> 2 & 1), 4 * (i >> 1 & 1) + 8 * (i >> 3 & 1)};
}

/// Whether a sample outside of block i, of a macroblock with these denied neighbours, is there when the block is due.
inline bool usable(int x, int y, int n, int i, unsigned edge) {
  if (y < 0) return !(edge & (x < 0 ? 16 : x < 16 ? 4 : 32));
  if (x < 0) return !(edge & 1);
  for (int earlier = 0; earlier < i; ++earlier) {
    const Place p = place(n, earlier);
    if (x >= p.x && x < p.x + n && y >= p.y && y < p.y + n) return true;
  }
  return false;
}
inline Available neighbours(int n, int i, unsigned edge) {
  const auto [x, y] = place(n, i);
  return {usable(x, y - 1, n, i, edge), usable(x - 1, y, n, i, edge), usable(x - 1, y - 1, n, i, edge),
          usable(x + n, y - 1, n, i, edge)};
}

inline void luma_inter(const Picture& at, int n, unsigned coded, const Quantiser& q, Stream& stream) {
  for (int i = 0; i < 256 / (n * n); ++i) {
    if (coded >> i & 1) add_block(at, place(n, i).x, place(n, i).y, n, q, stream, nullptr, true, q.scale != nullptr);
  }
}

/// True if a 4x4 block was predicted from an edge that is not there. `half`: the rules of the flat half macroblock.
inline bool luma_intra(const Picture& at, int n, int blocks, const unsigned* modes, unsigned coded, unsigned edge,
                       const Quantiser& q, Stream& stream, bool half) {
  bool substituted = false;
  for (int i = 0; i < blocks; ++i) {
    const auto [x0, y0] = place(n, i);
    const int mode = static_cast<int>(modes[i]);
    Available a = neighbours(n, i, edge);
    if (half && i == 0) a.corner = a.corner && a.top && a.left;
    if (half && i == 5) a.right = a.right && a.top;
    const At p = [&, x = x0, y = y0](int dx, int dy) { return int{at(x + dx, y + dy)}; };
    std::vector<unsigned char> predicted;
    for (int k = 0; k < n * n; ++k) {
      const int sample = (n == 4 ? luma_4x4 : luma_8x8)(mode, k % n, k / n, p, a, 8);
      predicted.push_back(static_cast<unsigned char>(sample));
    }
    for (int k = 0; k < n * n; ++k) at(x0 + k % n, y0 + k / n) = predicted[static_cast<std::size_t>(k)];
    substituted |= n == 4 && substitutes(mode, a);
    if (coded >> i & 1) add_block(at, x0, y0, n, q, stream, nullptr, true, half || q.scale);
  }
  return substituted;
}

inline void luma_16x16(const Picture& at, int mode, unsigned coded, Available a, const Quantiser& q, Stream& stream) {
  for (int k = 0; k < 256; ++k) {
    at(k % 16, k / 16) = static_cast<unsigned char>(luma_16x16(mode, k % 16, k / 16, at, a, 8));
  }
  Values dc(16, 0);
  if (coded & 1) stream.put_back(dc = luma_dc(q, stream.take(16)));
  for (int i = 0; i < 16; ++i) {
    const auto [x, y] = place(4, i);
    const long long& own = dc[static_cast<std::size_t>(y + x / 4)];
    add_block(at, x, y, 4, q, stream, &own, coded >> (i + 1) & 1, q.scale != nullptr);
  }
}

/// The neighbours of the upper and of the lower half; mode below 0 for an inter macroblock.
inline void chroma(const Picture (&at)[2], int mode, unsigned coded, Available upper, Available lower,
                   const Quantiser (&q)[2], Stream& stream) {
  Values dc[2] = {Values(4, 0), Values(4, 0)};
  for (int plane = 0; plane < 2; ++plane) {
    if (mode >= 0) {
      for (int k = 0; k < 64; ++k) {
        const int sample = chroma(8, mode, k % 8, k / 8, at[plane], upper.top, upper.left, lower.left, 8);
        at[plane](k % 8, k / 8) = static_cast<unsigned char>(sample);
      }
    }
    if (coded >> (17 + plane) & 1) stream.put_back(dc[plane] = chroma_dc(q[plane], stream.take(4)));
  }
  for (int i = 0; i < 8; ++i) {
    const long long& own = dc[i / 4][static_cast<std::size_t>(i % 4)];
    add_block(at[i / 4], 4 * (i & 1), 4 * (i >> 1 & 1), 4, q[i / 4], stream, &own, coded >> (19 + i) & 1, true);
  }
}

}  // namespace mox::oracle
