/// Portable 8x8 discrete cosine transforms: sums of products, rows first, as the header states them.
#pragma once

#include <algorithm>
#include <array>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"

namespace mox {

/// 2^13.5 * cos(k * pi / 16), rounded; entry 0 is that of the constant, divided by the square root of 2.
inline constexpr Mox16s kDctCosine[8] = {8192, 11363, 10703, 9633, 8192, 6436, 4433, 2260};

/// [u][x]: sample x of the basis of frequency u.
inline constexpr auto kDctBasis = [] {
  std::array<std::array<Mox16s, 8>, 8> basis{};
  for (int u = 0; u < 8; ++u) {
    for (int x = 0; x < 8; ++x) {
      const int turn = (2 * x + 1) * u % 32;  // in steps of pi / 16; 8 and 24, where the cosine is 0, do not occur
      const int fold = turn > 16 ? 32 - turn : turn;
      basis[u][x] = static_cast<Mox16s>(fold > 8 ? -kDctCosine[16 - fold] : kDctCosine[fold]);
    }
  }
  return basis;
}();
static_assert(kDctBasis[4][1] == -8192 && kDctBasis[7][0] == 2260 && kDctBasis[1][7] == -11363);

/// Bits that a pass of a transform drops; both passes of a transform drop 29.
inline constexpr int kInverseRowShift = 10, kInverseColumnShift = 19;
inline constexpr int kForwardRowShift = 11, kForwardColumnShift = 18;

/// (value + half) >> shift, which is (value / 2^shift), halves upwards.
constexpr Mox32s round_shift(Mox32s value, int shift) { return (value + (1 << (shift - 1))) >> shift; }

/// What a block becomes that has a DC only: what the inverse transform gives for it, limited to a sample. The row pass
/// saturates at 32767, above which all is white anyway.
constexpr Mox8u dct_dc_sample(Mox16s dc) { return clip8((dc + 4) >> 3); }

}  // namespace mox

namespace mox::px {

/// One line of eight, `stride` values apart, of the inverse transform. |sum| < 61212 * 32768 + 2^18 < 2^31.
template <int Shift>
void inverse_line(const Mox16s* src, Mox16s* dst, int stride) {
  Mox16s line[8];
  for (int x = 0; x < 8; ++x) {
    Mox32s sum = 0;
    for (int u = 0; u < 8; ++u) sum += kDctBasis[u][x] * src[u * stride];
    line[x] = sat16(round_shift(sum, Shift));
  }
  for (int x = 0; x < 8; ++x) dst[x * stride] = line[x];
}

/// One line of the forward transform. Samples that mirror each other in the line, and in its half, are added or
/// subtracted first, with saturation: even frequencies take the sums, odd ones the differences.
template <int Shift>
void forward_line(const Mox16s* src, Mox16s* dst, int stride) {
  Mox16s folded[3][4];  // [for odd frequencies, for 2 and 6, for 0 and 4]
  for (int x = 0; x < 4; ++x) {
    const Mox16s near = src[x * stride], far = src[(7 - x) * stride];
    folded[0][x] = Sat16::sub(near, far), folded[2][x] = Sat16::add(near, far);
  }
  for (int x = 0; x < 2; ++x) {
    const Mox16s near = folded[2][x], far = folded[2][3 - x];
    folded[1][x] = Sat16::sub(near, far), folded[2][x] = Sat16::add(near, far);
  }
  for (int u = 0; u < 8; ++u) {
    const Mox16s* const terms = folded[u % 2 ? 0 : u % 4 ? 1 : 2];
    Mox32s sum = 0;
    for (int x = 0; x < (u % 2 ? 4 : 2); ++x) sum += kDctBasis[u][x] * terms[x];
    dst[u * stride] = sat16(round_shift(sum, Shift));
  }
}

/// A block of 64 coefficients to 64 samples; `kTransposed`: coefficient (u, v) is src[8 * u + v].
template <bool kTransposed>
void inverse_block(const Mox16s* src, Mox16s* block) {
  for (int i = 0; i < 64; ++i) block[i] = src[kTransposed ? i % 8 * 8 + i / 8 : i];
  for (int y = 0; y < 8; ++y) inverse_line<kInverseRowShift>(block + 8 * y, block + 8 * y, 1);
  for (int x = 0; x < 8; ++x) inverse_line<kInverseColumnShift>(block + x, block + x, 8);
}

/// 64 samples to coefficients, in place.
inline void forward_block(Mox16s* block) {
  for (int y = 0; y < 8; ++y) forward_line<kForwardRowShift>(block + 8 * y, block + 8 * y, 1);
  for (int x = 0; x < 8; ++x) forward_line<kForwardColumnShift>(block + x, block + x, 8);
}

inline MoxStatus dct_forward_16s(const Mox16s* src, Mox32s srcStep, Mox16s* dst) {
  Mox16s block[64];
  for (int y = 0; y < 8; ++y) std::copy_n(step_bytes(src, std::ptrdiff_t{y} * srcStep), 8, block + 8 * y);
  forward_block(block);
  std::copy_n(block, 64, dst);
  return moxStsOk;
}

/// kDistance: bytes from a sample to its right neighbour.
template <int kDistance = 1>
MoxStatus dct_forward_8u(const Mox8u* src, Mox32s srcStep, Mox16s* dst) {
  for (int y = 0; y < 8; ++y, src += srcStep) {
    for (int x = 0; x < 8; ++x) dst[8 * y + x] = src[kDistance * x];
  }
  forward_block(dst);
  return moxStsOk;
}

inline MoxStatus dct_forward_pair(const Mox8u* src, Mox32s srcStep, Mox16s* dstU, Mox16s* dstV) {
  dct_forward_8u<2>(src, srcStep, dstU);
  return dct_forward_8u<2>(src + 1, srcStep, dstV);
}

template <bool kTransposed>
MoxStatus dct_inverse_16s(const Mox16s* src, Mox16s* dst, Mox32s dstStep) {
  Mox16s block[64];
  inverse_block<kTransposed>(src, block);
  for (int y = 0; y < 8; ++y) std::copy_n(block + 8 * y, 8, step_bytes(dst, std::ptrdiff_t{y} * dstStep));
  return moxStsOk;
}

template <bool kTransposed>
MoxStatus dct_inverse_8u(const Mox16s* src, Mox8u* dst, Mox32s dstStep) {
  Mox16s block[64];
  inverse_block<kTransposed>(src, block);
  for (int y = 0; y < 8; ++y, dst += dstStep) std::transform(block + 8 * y, block + 8 * y + 8, dst, clip8);
  return moxStsOk;
}

inline MoxStatus dct_set_8u(Mox16s dc, Mox8u* dst, Mox32s dstStep) {
  for (int y = 0; y < 8; ++y, dst += dstStep) std::fill_n(dst, 8, dct_dc_sample(dc));
  return moxStsOk;
}

/// Two blocks to interleaved samples. A plane whose bit of `flat` is set (U 0, V 1) has a DC only.
template <bool kTransposed>
MoxStatus dct_inverse_pair_8u(const Mox16s* srcU, const Mox16s* srcV, Mox8u* dst, Mox32s dstStep, Mox32s flat) {
  Mox8u planes[2][64];
  const Mox16s* const sources[] = {srcU, srcV};
  for (int p = 0; p < 2; ++p) {
    if (flat >> p & 1) {
      dct_set_8u(*sources[p], planes[p], 8);
    } else {
      dct_inverse_8u<kTransposed>(sources[p], planes[p], 8);
    }
  }
  for (int y = 0; y < 8; ++y, dst += dstStep) {
    for (int i = 0; i < 16; ++i) dst[i] = planes[i % 2][8 * y + i / 2];
  }
  return moxStsOk;
}

inline MoxStatus dct_inverse_pair_16s(const Mox16s* srcU, const Mox16s* srcV, Mox16s* dst, Mox32s dstStep) {
  Mox16s planes[2][64];
  inverse_block<true>(srcU, planes[0]);
  inverse_block<true>(srcV, planes[1]);
  for (int y = 0; y < 8; ++y, dst = step_bytes(dst, dstStep)) {
    for (int i = 0; i < 16; ++i) dst[i] = planes[i % 2][8 * y + i / 2];
  }
  return moxStsOk;
}

}  // namespace mox::px
