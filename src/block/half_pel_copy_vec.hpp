/// Vector kernels with an `acc` selector. Rows of 16 stay bytes; rows of 8 are one vector as words, which is as short
/// as two rows in a vector of bytes and needs no row out of order.
#pragma once

#include "block/half_pel_copy_px.hpp"
#include "block/half_pel_vec.hpp"

namespace mox::vec {

/// Prediction of one row of W bytes after the other, the upper half of the vector undefined where W is 8.
template <int W, HalfPel P, int kRc>
class RowSampler {
 public:
  RowSampler(const Mox8u* src, Mox32s srcStep) : sample_(src, srcStep, FixedRounding<kRc>()) {}
  MOX_INLINE simd::u8<1> operator()() {
    const auto words = simd::as<simd::s16>(sample_().template group<0>());
    return packus(words, words);
  }

 private:
  WordSampler<Columns<W>, P, FixedRounding<kRc>> sample_;
};
template <HalfPel P, int kRc>
class RowSampler<16, P, kRc> {
 public:
  RowSampler(const Mox8u* src, Mox32s srcStep) : rows_(src, srcStep, 1), sample_(rows_) {}
  MOX_INLINE simd::u8<1> operator()() { return sample_(rows_); }

 private:
  Rows<16, 1> rows_;
  Sampler<Rows<16, 1>, P, kRc> sample_;
};

template <int W, int H, HalfPel P, int kRc>
MoxStatus copy_half_pel(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  RowSampler<W, P, kRc> sample(src, srcStep);
  for (int y = 0; y < H; ++y, dst += dstStep) store_bytes<W>(sample(), dst);
  return moxStsOk;
}

template <int W, int H, HalfPel P, int kRc>
MoxStatus average_half_pel(const Mox8u* src, Mox32s srcStep, Mox8u* srcDst, Mox32s srcDstStep) {
  RowSampler<W, P, kRc> sample(src, srcStep);
  for (int y = 0; y < H; ++y, srcDst += srcDstStep) store_bytes<W>(avg(sample(), load_bytes<W>(srcDst)), srcDst);
  return moxStsOk;
}

/// The sum wraps, so this is a plain addition where motion compensation has a saturating one.
template <HalfPel P, int kRc>
MoxStatus add_half_pel(const Mox16s* res, Mox32s resStep, const Mox8u* ref, Mox32s refStep, Mox8u* dst,
                       Mox32s dstStep) {
  using R = Columns<8>;
  WordSampler<R, P, FixedRounding<kRc>> sample(ref, refStep, FixedRounding<kRc>());
  for (int y = 0; y < 8; ++y, dst += dstStep, res = step_bytes(res, resStep)) {
    R::store_clamped(combine(sample(), R::load_words(res, resStep), [](auto p, auto r) { return p + r; }), dst,
                     dstStep);
  }
  return moxStsOk;
}

template <int W, int H>
inline constexpr auto kHalfPelCopy = make_table<8>([]<std::size_t I>() -> HalfPelCopyKernel {
  return &copy_half_pel<W, H, acc_position(I), acc_rounding(I)>;
});
template <int W, int H>
inline constexpr auto kHalfPelAverage = make_table<8>([]<std::size_t I>() -> HalfPelCopyKernel {
  return &average_half_pel<W, H, acc_position(I), acc_rounding(I)>;
});

/// Index acc_index.
inline constexpr auto ownvc_Copy16x16HP_8u_C1R = kHalfPelCopy<16, 16>;
inline constexpr auto ownvc_Copy16x8HP_8u_C1R = kHalfPelCopy<16, 8>;
inline constexpr auto ownvc_Copy8x8HP_8u_C1R = kHalfPelCopy<8, 8>;
inline constexpr auto ownvc_Copy8x4HP_8u_C1R = kHalfPelCopy<8, 4>;
inline constexpr auto ownvc_InterpolateAverage16x16HP_8u_C1IR = kHalfPelAverage<16, 16>;
inline constexpr auto ownvc_InterpolateAverage16x8HP_8u_C1IR = kHalfPelAverage<16, 8>;
inline constexpr auto ownvc_InterpolateAverage8x8HP_8u_C1IR = kHalfPelAverage<8, 8>;
inline constexpr auto ownvc_InterpolateAverage8x4HP_8u_C1IR = kHalfPelAverage<8, 4>;
inline constexpr auto ownvc_Add8x8HP_16s8u_C1RS =
    make_table<8>([]<std::size_t I>() -> HalfPelAddKernel { return &add_half_pel<acc_position(I), acc_rounding(I)>; });

}  // namespace mox::vec
