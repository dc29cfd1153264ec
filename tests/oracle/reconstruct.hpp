/// Whole macroblocks of any depth in 4:2:0 and 4:2:2, composed of the oracles of prediction and transform. Blocks are
/// found by their number's bits, neighbours by asking who owns a sample and whether he is done.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "oracle/intra.hpp"
#include "oracle/inverse_transform.hpp"

namespace mox::oracle {

template <class Sample>
using Picture = std::function<Sample&(int x, int y)>;

/// What the blocks of a plane are dequantised with; flat if there is no scale. The rule is that of 16-bit coefficients
/// with a scale, kSat16, or of 32-bit ones.
struct Quantiser {
  int qp;
  const short* scale;
  bool lossless;
  Rule rule = Rule::kSat16;
  int depth = 8;
  long long scale_of_422_dc = 0;
};

/// Packed coefficients. Blocks and DC values that a call puts in their place are written back.
struct Stream {
  Values coeffs;
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
      block[i] = keep(wrapping(q.rule), rescaled(block[i], q.scale[i], per, 4));
    } else {
      block[i] = keep(per < 6 ? q.rule : wrapping(q.rule), rescaled(block[i], q.scale[i], per, 6));
    }
  }
  return block;
}

inline Values luma_dc(const Quantiser& q, Values dc) {
  if (q.lossless) return dc;
  if (q.scale) return luma_dc(dc, q.qp, q.scale[0], q.rule);
  dc = flow_2d(kHadamard4, dc, Rule::kWrap16, false);
  for (long long& value : dc) value = keep(Rule::kWrap16, (value * step_size(q.qp, 0) + 2) >> 2);
  return dc;
}

inline Values chroma_dc(const Quantiser& q, const Values& dc) {
  if (q.lossless) return dc;
  if (dc.size() == 8) return chroma_dc_422(dc, q.qp + 3, q.scale_of_422_dc, q.rule);
  if (q.scale) return chroma_dc_420(dc, q.qp, q.scale[0], wrapping(q.rule));
  Values sums = product(kH2, dc, kH2, 2, 2);
  for (long long& value : sums) {
    value = keep(Rule::kWrap16, (keep(Rule::kWrap16, value) * step_size(q.qp, 0)) >> 1);
  }
  return sums;
}

/// Adds the residual of an n x n block at (x0, y0). A given dc replaces coefficient 0; without ac there is nothing
/// else.
template <class Sample>
void add_block(const Picture<Sample>& at, int x0, int y0, int n, const Quantiser& q, Stream& stream,
               const long long* dc, bool ac, bool stores_residual) {
  Values block(static_cast<std::size_t>(n * n), 0);
  if (ac) block = stream.take(n * n);
  if (q.lossless) {
    if (dc) block[0] = *dc;
  } else if (ac) {
    block = dequantised(q, block);
    if (dc) block[0] = *dc;
    block = residual(n == 4 ? kInverse4 : kInverse8, block, q.rule);
    if (stores_residual) stream.put_back(block);
  } else {
    for (long long& value : block) value = keep(Rule::kWrap32, *dc + 32) >> 6;
  }
  for (int i = 0; i < n * n; ++i) {
    Sample& sample = at(x0 + i % n, y0 + i / n);
    const long long sum = keep(Rule::kWrap32, sample + block[static_cast<std::size_t>(i)]);
    sample = static_cast<Sample>(std::clamp<long long>(sum, 0, (1 << q.depth) - 1));
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

template <class Sample>
void luma_inter(const Picture<Sample>& at, int n, unsigned coded, const Quantiser& q, Stream& stream) {
  for (int i = 0; i < 256 / (n * n); ++i) {
    if (coded >> i & 1) add_block(at, place(n, i).x, place(n, i).y, n, q, stream, nullptr, true, q.scale != nullptr);
  }
}

/// True if a 4x4 block was predicted from an edge that is not there. `half`: the rules of the flat half macroblock.
template <class Sample>
bool luma_intra(const Picture<Sample>& at, int n, int blocks, const unsigned* modes, unsigned coded, unsigned edge,
                const Quantiser& q, Stream& stream, bool half) {
  bool substituted = false;
  for (int i = 0; i < blocks; ++i) {
    const auto [x0, y0] = place(n, i);
    const int mode = static_cast<int>(modes[i]);
    Available a = neighbours(n, i, edge);
    if (half && i == 0) a.corner = a.corner && a.top && a.left;
    if (half && i == 5) a.right = a.right && a.top;
    const At p = [&, x = x0, y = y0](int dx, int dy) { return int{at(x + dx, y + dy)}; };
    std::vector<Sample> predicted;
    for (int k = 0; k < n * n; ++k) {
      const int sample = (n == 4 ? luma_4x4 : luma_8x8)(mode, k % n, k / n, p, a, q.depth);
      predicted.push_back(static_cast<Sample>(sample));
    }
    for (int k = 0; k < n * n; ++k) at(x0 + k % n, y0 + k / n) = predicted[static_cast<std::size_t>(k)];
    substituted |= n == 4 && substitutes(mode, a);
    if (coded >> i & 1) add_block(at, x0, y0, n, q, stream, nullptr, true, half || q.scale);
  }
  return substituted;
}

template <class Sample>
void luma_16x16(const Picture<Sample>& at, int mode, unsigned coded, Available a, const Quantiser& q, Stream& stream) {
  for (int k = 0; k < 256; ++k) {
    at(k % 16, k / 16) = static_cast<Sample>(luma_16x16(mode, k % 16, k / 16, at, a, q.depth));
  }
  Values dc(16, 0);
  if (coded & 1) stream.put_back(dc = luma_dc(q, stream.take(16)));
  for (int i = 0; i < 16; ++i) {
    const auto [x, y] = place(4, i);
    const long long& own = dc[static_cast<std::size_t>(y + x / 4)];
    add_block(at, x, y, 4, q, stream, &own, coded >> (i + 1) & 1, q.scale != nullptr);
  }
}

/// Both chroma planes of height h. The neighbours are those of the upper and of the lower half; mode below 0 for an
/// inter macroblock. Patterns have bit 0 for the DC block, bit i + 1 for block i; the streams may be one.
template <class Sample>
void chroma(const Picture<Sample> (&at)[2], int h, int mode, const unsigned (&coded)[2], Available upper,
            Available lower, const Quantiser (&q)[2], Stream* const (&streams)[2]) {
  const int blocks = h / 2;
  Values dc[2];
  for (int plane = 0; plane < 2; ++plane) {
    for (int k = 0; mode >= 0 && k < 8 * h; ++k) {
      const int sample = chroma(h, mode, k % 8, k / 8, at[plane], upper.top, upper.left, lower.left, q[0].depth);
      at[plane](k % 8, k / 8) = static_cast<Sample>(sample);
    }
    dc[plane].assign(static_cast<std::size_t>(blocks), 0);
    if (coded[plane] & 1) streams[plane]->put_back(dc[plane] = chroma_dc(q[plane], streams[plane]->take(blocks)));
  }
  for (int i = 0; (coded[0] | coded[1]) && i < 2 * blocks; ++i) {
    const int plane = i / blocks, block = i % blocks;
    const long long& own = dc[plane][static_cast<std::size_t>(block)];
    add_block(at[plane], 4 * (block & 1), 4 * (block >> 1), 4, q[plane], *streams[plane], &own,
              coded[plane] >> (block + 1) & 1, true);
  }
}

}  // namespace mox::oracle
