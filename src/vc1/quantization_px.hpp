/// Portable VC-1 quantisers. Addresses need no alignment.
#pragma once

#include <algorithm>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "vc1/quantization_tables.hpp"

namespace mox::px {

/// Whether the first coefficient of a block is one like the others; intra blocks keep it.
enum class Vc1Block { kInter, kIntra };
enum class Vc1Steps { kUniform, kNonuniform };

/// x towards 0 by half a step where steps are not uniform. For doubleQuant up to 62, this stays within 16 bits.
template <Vc1Steps kSteps>
constexpr Mox16s vc1_moved(Mox16s x, Mox32s doubleQuant) {
  return kSteps == Vc1Steps::kUniform ? x : wrap16(x - sign_of(x) * (doubleQuant >> 1));
}
static_assert(vc1_moved<Vc1Steps::kNonuniform>(1, 10) == -4);

template <Vc1Form kForm>
constexpr Mox16s vc1_divided(Mox16s x, const Vc1Division& d) {
  if constexpr (kForm == kA2) return static_cast<Mox16s>((x + (x < 0 ? d.m : 0)) >> d.s);
  return static_cast<Mox16s>((x * d.m >> 16 >> d.s) + (x < 0));  // |x * m| < 2^31
}

template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock, Vc1Form kForm>
MoxStatus vc1_quantize(Mox16s* block, Mox32s step, Mox32s doubleQuant) {
  const Vc1Division& division = vc1_division(doubleQuant);
  for (int i = kBlock == Vc1Block::kIntra; i < W * H; ++i) {
    Mox16s* const place = step_bytes(block, std::ptrdiff_t{i / W} * step) + i % W;
    store(place, vc1_divided<kForm>(vc1_moved<kSteps>(load<Mox16s>(place), doubleQuant), division));
  }
  return moxStsOk;
}

/// Products and sums wrap at 16 bits.
template <Vc1Steps kSteps>
constexpr Mox16s vc1_dequantized(Mox16s x, Mox32s doubleQuant) {
  const Mox32s half = kSteps == Vc1Steps::kUniform ? 0 : sign_of(x) * (doubleQuant >> 1);
  return wrap16(add32(mul32(x, doubleQuant), half));
}

/// Also tells the corner outside of which all is 0. The first coefficient of an intra block is kept; it counts for the
/// columns as what it would have become, and for the rows in any case.
template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock>
MoxStatus vc1_dequantize(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep, Mox32s doubleQuant,
                         MoxiSize* corner) {
  constexpr bool kIntra = kBlock == Vc1Block::kIntra;
  MoxiSize size{0, kIntra};
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) {
      const Mox16s level = load<Mox16s>(step_bytes(src, std::ptrdiff_t{y} * srcStep) + x);
      const Mox16s value = vc1_dequantized<kSteps>(level, doubleQuant);
      if (value != 0) size = {std::max(size.width, x + 1), y + 1};
      store(step_bytes(dst, std::ptrdiff_t{y} * dstStep) + x, kIntra && x + y == 0 ? level : value);
    }
  }
  store(corner, size);
  return moxStsOk;
}

using Vc1QuantKernel = MoxStatus (*)(Mox16s* block, Mox32s step, Mox32s doubleQuant);
using Vc1QuantInvKernel = MoxStatus (*)(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep,
                                        Mox32s doubleQuant, MoxiSize* corner);

/// The kernels of a generation, for the makers of tables.
struct Vc1PortableKernels {
  template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock, Vc1Form kForm>
  static constexpr Vc1QuantKernel quantize = &vc1_quantize<W, H, kSteps, kBlock, kForm>;
  template <int W, int H, Vc1Steps kSteps, Vc1Block kBlock>
  static constexpr Vc1QuantInvKernel dequantize = &vc1_dequantize<W, H, kSteps, kBlock>;
};

/// [form]
template <class Kernels, Vc1Steps kSteps>
constexpr auto vc1_intra_table() {
  return make_table<3>([]<std::size_t I>() {
    return Kernels::template quantize<8, 8, kSteps, Vc1Block::kIntra, static_cast<Vc1Form>(I)>;
  });
}
/// [vc1_quant_index]; the fourth place of each size is empty.
template <class Kernels, Vc1Steps kSteps>
constexpr auto vc1_inter_table() {
  return make_table<16>([]<std::size_t I>() -> Vc1QuantKernel {
    constexpr int kWidth = 4 << (I >> 3), kHeight = 4 << (I >> 2 & 1);
    if constexpr (I % 4 == 3) {
      return nullptr;
    } else {
      return Kernels::template quantize<kWidth, kHeight, kSteps, Vc1Block::kInter, static_cast<Vc1Form>(I % 4)>;
    }
  });
}
/// [vc1_quant_inv_index]
template <class Kernels, Vc1Steps kSteps>
constexpr auto vc1_inter_inv_table() {
  return make_table<4>([]<std::size_t I>() {
    return Kernels::template dequantize<4 << (I & 1), 4 << (I >> 1), kSteps, Vc1Block::kInter>;
  });
}

inline constexpr auto moxiQuantIntraUniform_table8x8 = vc1_intra_table<Vc1PortableKernels, Vc1Steps::kUniform>();
inline constexpr auto moxiQuantIntraNonuniform_table8x8 = vc1_intra_table<Vc1PortableKernels, Vc1Steps::kNonuniform>();
inline constexpr auto moxiQuantInterUniform_tableNxN = vc1_inter_table<Vc1PortableKernels, Vc1Steps::kUniform>();
inline constexpr auto moxiQuantInterNonuniform_tableNxN = vc1_inter_table<Vc1PortableKernels, Vc1Steps::kNonuniform>();
inline constexpr auto moxiQuantInterInvUniform_tableNxN = vc1_inter_inv_table<Vc1PortableKernels, Vc1Steps::kUniform>();
inline constexpr auto moxiQuantInterInvNonuniform_tableNxN =
    vc1_inter_inv_table<Vc1PortableKernels, Vc1Steps::kNonuniform>();

}  // namespace mox::px
