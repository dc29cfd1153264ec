/// Vector VC-1 quantisers: 8 coefficients a block of the vector.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/generation.hpp"
#include "simd/vec.hpp"
#include "vc1/quantization_px.hpp"

namespace mox::vec {

using px::Vc1Block, px::Vc1Form, px::Vc1Steps;

/// A block W x H in vectors of B blocks, such that packing two neighbours to bytes gives all in raster order: a row a
/// block, 4 wide two. With B = 2, vectors hold rows 0 and 2, 1 and 3, and so on.
template <int W, int H>
struct Vc1Vectors {
  static constexpr int B = W == 8 ? simd::kBlocks : 1, kCount = W * H / (8 * B);
  simd::s16<B> v[kCount];

  static constexpr int row(int i) { return W == 4 ? 2 * i : B == 1 ? i : i / 2 * 4 + i % 2; }

  MOX_INLINE static Vc1Vectors load(const Mox16s* p, std::ptrdiff_t step) {
    Vc1Vectors block;
    for (int i = 0; i < kCount; ++i) {
      const Mox16s* const at = step_bytes(p, row(i) * step);
      if constexpr (W == 4)
        block.v[i] = simd::load8x2<simd::s16, 1>(at, step, simd::strips<1>(0));
      else
        block.v[i] = simd::load16<simd::s16, B>(at, simd::strips<B>(2 * step));
    }
    return block;
  }
  MOX_INLINE void store(Mox16s* p, std::ptrdiff_t step) const {
    for (int i = 0; i < kCount; ++i) {
      Mox16s* const at = step_bytes(p, row(i) * step);
      if constexpr (W == 4)
        store8x2(v[i], at, step, simd::strips<1>(0));
      else
        store16(v[i], at, simd::strips<B>(2 * step));
    }
  }
  /// Bit W * y + x is set if coefficient (x, y) is not 0. Saturation leaves no other value at 0.
  MOX_INLINE std::uint64_t coded() const {
    std::uint64_t zeros = 0;
    for (int i = 0; i < kCount; i += 2) {
      const auto bytes = packs(v[i], v[i + 1]);
      zeros |= std::uint64_t{top_bits(equal(bytes, simd::zero<simd::u8, B>()))} << (8 * B * i);
    }
    return ~zeros & (~std::uint64_t{0} >> (64 - W * H));
  }
  /// Takes over the first coefficient of another block.
  MOX_INLINE void keep_first(const Vc1Vectors& other) {
    alignas(16) static constexpr Mox16s kFirst[8 * B] = {-1};
    const auto first = simd::load_row<simd::s16, B>(kFirst);
    v[0] = (other.v[0] & first) | andnot(first, v[0]);
  }
};

/// The corner that holds all set bits of W columns.
template <int W>
MOX_INLINE MoxiSize vc1_corner(std::uint64_t coded) {
  const auto width = [](std::uint64_t bits) { return static_cast<Mox32s>(std::bit_width(bits)); };
  const Mox32s height = (width(coded) + W - 1) / W;
  for (int shift = 32; shift >= W; shift /= 2) coded |= coded >> shift;
  return {width(coded & ((1u << W) - 1)), height};
}

template <Vc1Form kForm, int B>
MOX_INLINE simd::s16<B> vc1_divided(simd::s16<B> x, simd::s16<B> m, int s) {
  const auto sign = simd::shr<15>(x);
  if constexpr (kForm == px::kA2) return shr(x + (sign & m), s);
  auto high = mulhi(x, m);
  if constexpr (kForm == px::kA1) high = high + x;  // m counts 65536 less
  return shr(high, s) - sign;
}

template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock, Vc1Form kForm>
MoxStatus vc1_quantize(Mox16s* block, Mox32s step, Mox32s doubleQuant) {
  constexpr int B = Vc1Vectors<W, H>::B;
  const px::Vc1Division& division = px::vc1_division(doubleQuant);
  const auto m = simd::splat<simd::s16, B>(division.m), half = simd::splat<simd::s16, B>(doubleQuant >> 1);
  const auto levels = Vc1Vectors<W, H>::load(block, step);
  auto result = levels;
  for (auto& x : result.v) {
    if constexpr (kSteps == Vc1Steps::kNonuniform) x = x - signed_by(half, x);
    x = vc1_divided<kForm>(x, m, division.s);
  }
  if constexpr (kBlock == Vc1Block::kIntra) result.keep_first(levels);
  result.store(block, step);
  return moxStsOk;
}

template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock>
MoxStatus vc1_dequantize(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep, Mox32s doubleQuant,
                         MoxiSize* corner) {
  constexpr int B = Vc1Vectors<W, H>::B;
  const auto scale = simd::splat<simd::s16, B>(doubleQuant), half = simd::splat<simd::s16, B>(doubleQuant >> 1);
  const auto levels = Vc1Vectors<W, H>::load(src, srcStep);
  auto result = levels;
  for (auto& x : result.v) {
    const auto offset = signed_by(half, x);
    x = x * scale;
    if constexpr (kSteps == Vc1Steps::kNonuniform) x = x + offset;
  }
  MoxiSize size = vc1_corner<W>(result.coded());
  if constexpr (kBlock == Vc1Block::kIntra) {
    size.height = std::max(size.height, 1);
    result.keep_first(levels);
  }
  result.store(dst, dstStep);
  store(corner, size);
  return moxStsOk;
}

/// The kernels of this generation, for the makers of tables.
struct Vc1VectorKernels {
  template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock, Vc1Form kForm>
  static constexpr px::Vc1QuantKernel quantize = &vc1_quantize<W, H, kSteps, kBlock, kForm>;
  template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock>
  static constexpr px::Vc1QuantInvKernel dequantize = &vc1_dequantize<W, H, kSteps, kBlock>;
};

inline constexpr auto moxiQuantIntraUniform_table8x8 = px::vc1_intra_table<Vc1VectorKernels, Vc1Steps::kUniform>();
inline constexpr auto moxiQuantIntraNonuniform_table8x8 =
    px::vc1_intra_table<Vc1VectorKernels, Vc1Steps::kNonuniform>();
inline constexpr auto moxiQuantInterUniform_tableNxN = px::vc1_inter_table<Vc1VectorKernels, Vc1Steps::kUniform>();
inline constexpr auto moxiQuantInterNonuniform_tableNxN =
    px::vc1_inter_table<Vc1VectorKernels, Vc1Steps::kNonuniform>();
inline constexpr auto moxiQuantInterInvUniform_tableNxN =
    px::vc1_inter_inv_table<Vc1VectorKernels, Vc1Steps::kUniform>();
inline constexpr auto moxiQuantInterInvNonuniform_tableNxN =
    px::vc1_inter_inv_table<Vc1VectorKernels, Vc1Steps::kNonuniform>();

}  // namespace mox::vec
