/// The read step as vectors: a shuffle of 16 bytes repeats the nearest samples of a row.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/boundary_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The bytes of a vector of elements, `left` of them before the first one loaded, or `right` elements further on:
/// elements before the first are that one, those behind the last are that one.
template <int kBytes>
MOX_INLINE simd::u8<1> nearest_elements(int left, int right) {
  using simd::u8;
  static constexpr auto kElements =
      make_table<16>([]<std::size_t I>() { return static_cast<Mox8u>(I / std::size_t{kBytes}); });
  const auto elements = simd::load_row<u8, 1>(kElements.data());
  const auto wanted = subs(adds(elements, simd::splat<u8, 1>(right)), simd::splat<u8, 1>(left));
  const auto nearest = simd::min(wanted, simd::splat<u8, 1>(16 / kBytes - 1));
  if constexpr (kBytes == 1) return nearest;
  return nearest + nearest + simd::as<u8>(simd::splat<simd::u16, 1>(0x0100));
}

/// Fills the local buffer pDst with extWidth x extHeight elements from (x, y) of the plane pSrc on, and the rest of
/// each row up to a multiple of 16 bytes. Reads whole vectors of the plane's rows: planes narrower than these, or than
/// the footprint, are left to the portable kernel.
template <class T, int kChannels, unsigned kFlags>
MoxStatus read_data_through_boundary(const MoxiInterpBoundaryArgs<T>& a) {
  constexpr int kBytes = int{sizeof(T)} * kChannels, kElements = 16 / kBytes;
  if (kFlags == 0 || a.frameWidth < std::max(kElements, a.extWidth))
    return px::read_data_through_boundary<T, kChannels, kFlags>(a);
  const px::Repeat vertical = px::repeated_end(kFlags & kTop, kFlags & kBottom, a.y);
  using Limits = std::numeric_limits<std::ptrdiff_t>;
  const std::ptrdiff_t first = vertical == px::Repeat::kFirst ? 0 : Limits::min();
  const std::ptrdiff_t last = vertical == px::Repeat::kLast ? a.frameHeight - std::ptrdiff_t{1} : Limits::max();
  for (int i = 0; i < a.extWidth; i += kElements) {
    const std::ptrdiff_t column = a.x + i, start = std::clamp<std::ptrdiff_t>(column, 0, a.frameWidth - kElements);
    const auto away = static_cast<int>(std::clamp<std::ptrdiff_t>(column - start, -kElements, kElements));
    const auto where = nearest_elements<kBytes>(std::max(-away, 0), std::max(away, 0));
    const T* const from = a.pSrc + start * kChannels;
    T* to = a.pDst + i * kChannels;
    for (std::ptrdiff_t y = a.y; y < a.y + a.extHeight; ++y, to += a.dstStep) {
      const auto row = simd::load_row<simd::u8, 1>(from + std::clamp(y, first, last) * a.srcStep);
      simd::store_row(lookup(row, where), to);
    }
  }
  return moxStsOk;
}

/// [edge flags]
inline constexpr auto read_data_through_boundary_table_8u_pxmx =
    make_table<16>([]<std::size_t I>() -> BoundaryRead<Mox8u> { return &read_data_through_boundary<Mox8u, 1, I>; });
inline constexpr auto read_data_through_boundary_table_16u_pxmx =
    make_table<16>([]<std::size_t I>() -> BoundaryRead<Mox16u> { return &read_data_through_boundary<Mox16u, 1, I>; });
inline constexpr auto read_data_through_boundary_table_nv12_8u_pxmx =
    make_table<16>([]<std::size_t I>() -> BoundaryRead<Mox8u> { return &read_data_through_boundary<Mox8u, 2, I>; });

}  // namespace mox::vec

namespace mox {

inline MoxStatus moxiReadDataBlockThroughBoundary_8u(unsigned flags, const MoxiInterpBoundaryArgs<Mox8u>& args) {
  return active::read_data_through_boundary_table_8u_pxmx[flags](args);
}
inline MoxStatus moxiReadDataBlockThroughBoundary_16u(unsigned flags, const MoxiInterpBoundaryArgs<Mox16u>& args) {
  return active::read_data_through_boundary_table_16u_pxmx[flags](args);
}
inline MoxStatus moxiReadDataBlockThroughBoundary_NV12_8u(unsigned flags, const MoxiInterpBoundaryArgs<Mox8u>& args) {
  return active::read_data_through_boundary_table_nv12_8u_pxmx[flags](args);
}

}  // namespace mox
