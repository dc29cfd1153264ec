/// Setup of MPEG-4 warping: from displaced points to the coefficients of the record.
#pragma once

#include <bit>

#include "mpeg4/warp_px.hpp"

namespace mox {

/// Displacements of the warping points, in half samples.
struct Displacements {
  const Mox32s *x, *y;
};

/// numerator / divisor to the nearest, halves away from zero; the sum may wrap.
constexpr Mox32s divide_nearest(Mox32s numerator, Mox32s divisor) {
  const Mox32s half = divisor >> 1;
  return (numerator < 0 ? sub32(numerator, half) : add32(numerator, half)) / divisor;
}
static_assert(divide_nearest(-5, 2) == -3 && divide_nearest(5, 2) == 3 && divide_nearest(7, 5) == 1);

/// The logarithm of the smallest power of 2 not below size.
constexpr Mox32s log_of_power_from(Mox32s size) { return std::bit_width(static_cast<Mox32u>(size) - 1); }
static_assert(log_of_power_from(1) == 0 && log_of_power_from(2) == 1 && log_of_power_from(5) == 3);

/// Where the vertex of a VOP goes, were the VOP `power` samples long in the vertex's direction: its position less that
/// of the VOP's first sample before the warp. `first` displaces the first sample, `vertex` the vertex besides.
constexpr Mox32s virtual_displacement(Mox32s first, Mox32s vertex, Mox32s size, Mox32s power) {
  const Mox32s kept = mul32(mul32(8, first), sub32(size, power));
  return divide_nearest(add32(kept, mul32(mul32(8, add32(first, vertex)), power)), size);
}

/// What a step of `power` samples towards the vertex changes in one direction; `along` says that it is that of the
/// step.
constexpr Mox32s step_of_power(Mox32s first, Mox32s vertex, Mox32s size, Mox32s power, bool along) {
  const Mox32s moved = sub32(virtual_displacement(first, vertex, size, power), mul32(8, first));
  return along ? add32(moved, mul32(16, power)) : moved;
}

inline void set_linear(MoxiWarpSpec& spec, Displacements d, MoxiSize vop) {
  const Mox32s logWidth = log_of_power_from(vop.width), width = shl32(1, logWidth);
  spec.logScale = logWidth;
  spec.right = {step_of_power(d.x[0], d.x[1], vop.width, width, true),
                step_of_power(d.y[0], d.y[1], vop.width, width, false)};
  spec.down = {sub32(0, spec.right.y), spec.right.x};
  if (spec.points == 2) return;
  const Mox32s logHeight = log_of_power_from(vop.height), height = shl32(1, logHeight);
  spec.logScale = std::max(logWidth, logHeight);
  const Mox32s more = spec.logScale - logWidth, moreDown = spec.logScale - logHeight;
  spec.right = {shl32(spec.right.x, more), shl32(spec.right.y, more)};
  spec.down = {shl32(step_of_power(d.x[0], d.x[2], vop.height, height, false), moreDown),
               shl32(step_of_power(d.y[0], d.y[2], vop.height, height, true), moreDown)};
}

/// Four points in units of the accuracy, i in x and j in y.
struct Quadrangle {
  std::array<Mox32s, 4> i, j;
};

inline Quadrangle quadrangle(const MoxiWarpSpec& spec, Displacements d, MoxiSize vop) {
  const auto along = [&](Mox32s start, Mox32s toRight, Mox32s toBottom, const Mox32s* displacement) {
    const Mox32s first = add32(mul32(2, start), displacement[0]);
    const Mox32s right = add32(add32(first, mul32(2, toRight)), displacement[1]);
    const Mox32s bottom = add32(add32(first, mul32(2, toBottom)), displacement[2]);
    const Mox32s last = add32(sub32(add32(right, bottom), first), displacement[3]);
    return std::array{shl32(first, spec.accuracy), shl32(right, spec.accuracy), shl32(bottom, spec.accuracy),
                      shl32(last, spec.accuracy)};
  };
  return {along(spec.vop.x, vop.width, 0, d.x), along(spec.vop.y, 0, vop.height, d.y)};
}

inline void set_projective(MoxiWarpSpec& spec, Displacements d, MoxiSize vop) {
  const auto [i, j] = quadrangle(spec, d, vop);
  const auto excess = [](const std::array<Mox32s, 4>& at) { return sub32(add32(at[3], at[0]), add32(at[1], at[2])); };
  const auto cross = [](Mox32s a, Mox32s b, Mox32s c, Mox32s e) { return sub32(mul32(a, b), mul32(c, e)); };
  const Mox32s p = excess(i), q = sub32(j[2], j[3]), r = sub32(i[2], i[3]);
  const Mox32s s = excess(j), t = sub32(i[1], i[3]), u = sub32(j[1], j[3]);
  const double right = mul32(cross(p, q, r, s), vop.height), down = mul32(cross(s, t, p, u), vop.width);
  const double determinant = cross(q, t, r, u), width = vop.width, height = vop.height;
  const auto numerator = [&](const std::array<Mox32s, 4>& at) {
    return MoxiWarpSpec::Numerator{determinant * sub32(at[1], at[0]) * height + right * at[1],
                                   determinant * sub32(at[2], at[0]) * width + down * at[2],
                                   determinant * at[0] * width * height};
  };
  spec.x = numerator(i);
  spec.y = numerator(j);
  spec.divisor = {right, down, determinant * width * height};
}

/// The position of chroma for one point: half of luma's, rounded upwards for a static sprite, else to the odd one.
constexpr Mox32s chroma_origin(Mox32s luma, Mox32s spare, bool isStatic) {
  const Mox32s units = luma >> spare;
  return shl32(isStatic ? add32(units, 1) >> 1 : (units >> 1) | (units & 1), spare);
}

inline void set_points(MoxiWarpSpec& spec, Displacements d, MoxiSize vop, bool isStatic) {
  if (spec.points == 4) return set_projective(spec, d, vop);
  spec.origin = {add32(mul32(16, spec.vop.x), mul32(8, d.x[0])), add32(mul32(16, spec.vop.y), mul32(8, d.y[0]))};
  const Mox32s spare = px::spare_bits(spec);
  spec.chromaOrigin = {chroma_origin(spec.origin.x, spare, isStatic), chroma_origin(spec.origin.y, spare, isStatic)};
  if (spec.points > 1) set_linear(spec, d, vop);
}

}  // namespace mox
