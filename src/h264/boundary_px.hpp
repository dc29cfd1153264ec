/// The read step: copies the footprint of a block that crosses the edges of a plane, samples outside the plane taken
/// from the nearest one in it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "frame/table.hpp"
#include "h264/interpolation.hpp"

namespace mox {

/// Edges of the plane that a footprint crosses, one bit each.
enum EdgeFlag : unsigned { kLeft = 1, kRight = 2, kTop = 4, kBottom = 8 };

/// The flags of a footprint; none if it lies in the plane.
constexpr unsigned edge_flags(Span columns, Span rows, MoxiSize plane) {
  return (columns.start < 0 ? kLeft : 0u) | (plane.width < columns.start + columns.size ? kRight : 0u) |
         (rows.start < 0 ? kTop : 0u) | (plane.height < rows.start + rows.size ? kBottom : 0u);
}

}  // namespace mox

namespace mox::px {

/// The end of an axis whose sample is repeated.
enum class Repeat { kNone, kFirst, kLast };

/// Of two ends only one is treated, by the sign of the start: a plane smaller than the footprint is read past its end.
constexpr Repeat repeated_end(bool first, bool last, std::ptrdiff_t start) {
  if (first && last) return start < 0 ? Repeat::kFirst : Repeat::kLast;
  return first ? Repeat::kFirst : last ? Repeat::kLast : Repeat::kNone;
}

/// Copies one row of `count` elements of kChannels samples, from element x of `row` on.
template <int kChannels, class T>
void read_row(const T* row, std::ptrdiff_t x, std::ptrdiff_t count, Repeat end, std::ptrdiff_t last, T* to) {
  const std::ptrdiff_t before = end == Repeat::kFirst ? std::clamp<std::ptrdiff_t>(-x, 0, count) : 0;
  const std::ptrdiff_t after = end == Repeat::kLast ? std::clamp<std::ptrdiff_t>(x + count - 1 - last, 0, count) : 0;
  const auto repeat = [&to](const T* element, std::ptrdiff_t times) {
    for (; times > 0; --times, to += kChannels) std::copy_n(element, kChannels, to);
  };
  repeat(row, before);
  const std::ptrdiff_t inner = (count - before - after) * kChannels;
  if (inner > 0) to = std::copy_n(row + (x + before) * kChannels, inner, to);
  repeat(row + last * kChannels, after);
}

/// Fills the local buffer pDst with extWidth x extHeight elements from (x, y) of the plane pSrc on.
template <class T, int kChannels, unsigned kFlags>
MoxStatus read_data_through_boundary(const MoxiInterpBoundaryArgs<T>& a) {
  if constexpr (kFlags != 0) {
    const Repeat horizontal = repeated_end(kFlags & kLeft, kFlags & kRight, a.x);
    const Repeat vertical = repeated_end(kFlags & kTop, kFlags & kBottom, a.y);
    for (int i = 0; i < a.extHeight; ++i) {
      std::ptrdiff_t y = a.y + i;
      if (vertical == Repeat::kFirst) y = std::max<std::ptrdiff_t>(y, 0);
      if (vertical == Repeat::kLast) y = std::min<std::ptrdiff_t>(y, a.frameHeight - std::ptrdiff_t{1});
      read_row<kChannels>(a.pSrc + y * a.srcStep, a.x, a.extWidth, horizontal, a.frameWidth - std::ptrdiff_t{1},
                          a.pDst + i * a.dstStep);
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

}  // namespace mox::px
