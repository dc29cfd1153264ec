/// Vector kernels of the MPEG-4 deblocking post filter: the 8 positions of an edge side by side as words.
#pragma once

#include <array>
#include <cstddef>

#include "frame/generation.hpp"
#include "mpeg4/filter_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// v0 to v9 of 8 positions.
using PostWords = std::array<simd::s16<1>, 10>;

MOX_INLINE simd::s16<1> post_word(int value) { return simd::splat<simd::s16, 1>(value); }
/// a where the mask is set, else b.
MOX_INLINE simd::s16<1> post_select(simd::s16<1> mask, simd::s16<1> a, simd::s16<1> b) {
  return (a & mask) | andnot(mask, b);
}

MOX_INLINE simd::s16<1> flat_positions(const PostWords& v) {
  auto steps = simd::zero<simd::s16, 1>();  // less 1 for each
  for (std::size_t n = 0; n < 9; ++n) steps = steps + greater(post_word(kFlatStep + 1), abs(v[n] - v[n + 1]));
  return greater(post_word(1 - kFlatSteps), steps);
}

/// Flat positions whose samples differ by little enough.
MOX_INLINE simd::s16<1> calm_positions(const PostWords& v, simd::s16<1> flat, Mox32s qp) {
  auto least = v[1], greatest = v[1];
  for (std::size_t n = 2; n < 9; ++n) least = min(least, v[n]), greatest = max(greatest, v[n]);
  return flat & greater(post_word(2 * qp), greatest - least);
}

/// What v4 gains and v5 loses where a position is not flat.
MOX_INLINE simd::s16<1> step_change(const PostWords& v, Mox32s qp) {
  using simd::s16, simd::shl, simd::shr;
  const auto component = [&](std::size_t n) {  // -1785..1785
    const auto inner = v[n + 2] - v[n + 1];
    return shl<1>(v[n] - v[n + 3]) + shl<2>(inner) + inner;
  };
  const auto eighths = [](s16<1> size) { return shr<3>(size + post_word(4)); };
  const auto middle = component(3), size = eighths(abs(middle));
  const auto least = min(size, min(eighths(abs(component(1))), eighths(abs(component(5)))));
  const auto more = size - least, step = v[5] - v[4];
  const auto change = min(eighths(shl<2>(more) + more), shr<1>(abs(step)));
  const auto applies = greater(signed_by(middle, step), simd::zero<s16, 1>()) & greater(post_word(qp), size);
  return signed_by(change & applies, step);
}

/// The wide filter as sums of 9 and of 5 samples about the middle one, which itself counts twice more.
MOX_INLINE void smooth_calm(PostWords& v, simd::s16<1> calm, Mox32s qp) {
  using simd::shl, simd::shr;
  const auto limit = post_word(qp);
  const auto before = post_select(greater(limit, abs(v[1] - v[0])), v[0], v[1]);
  const auto behind = post_select(greater(limit, abs(v[8] - v[9])), v[9], v[8]);
  const PostWords old = v;
  const auto sample = [&](int m) { return m < 1 ? before : m > 8 ? behind : old[static_cast<std::size_t>(m)]; };
  auto nine =
      shl<2>(before) + before + old[1] + old[2] + old[3] + old[4] + post_word(8);  // about place 0, rounding too
  auto five = shl<1>(before) + before + old[1] + old[2];
  for (int n = 1; n <= 8; ++n) {
    nine = nine + sample(n + 4) - sample(n - 5);
    five = five + sample(n + 2) - sample(n - 3);
    const auto smoothed = shr<4>(nine + five + shl<1>(sample(n)));  // the sum is 4088 at most
    v[static_cast<std::size_t>(n)] = post_select(calm, smoothed, sample(n));
  }
}

MOX_INLINE void post_deblock(PostWords& v, Mox32s qp) {
  using simd::as, simd::u16;
  const auto flat = flat_positions(v), calm = calm_positions(v, flat, qp);
  const auto change = andnot(flat, step_change(v, qp));
  if (!is_zero(as<u16>(calm))) smooth_calm(v, calm, qp);
  v[4] = v[4] + change;
  v[5] = v[5] - change;
}

inline MoxStatus ownFilterDeblocking8x8_MPEG4_H(Mox8u* edge, Mox32s step, Mox32s qp) {
  const auto row = [=](int n) { return edge + (n - 5) * std::ptrdiff_t{step}; };
  PostWords v;
  for (int n = 0; n < 10; ++n) v[static_cast<std::size_t>(n)] = simd::as<simd::s16>(simd::load_row_wide<1>(row(n)));
  post_deblock(v, qp);
  for (int n = 1; n < 9; n += 2) {
    const auto two = packus(v[static_cast<std::size_t>(n)], v[static_cast<std::size_t>(n) + 1]);
    store8x2(two, row(n), step, simd::strips<1>(0));
  }
  return moxStsOk;
}

/// 8 rows of 8 bytes, two in a vector, become 8 columns, two in a vector.
MOX_INLINE std::array<simd::u8<1>, 4> transposed8x8(const std::array<simd::u8<1>, 4>& rows) {
  using simd::as, simd::s16, simd::s32, simd::u8;
  const auto couple = [&](std::size_t i) { return as<s16>(lo8(rows[i], hi64(rows[i], rows[i]))); };
  const auto r01 = couple(0), r23 = couple(1), r45 = couple(2), r67 = couple(3);
  const auto upper_left = as<s32>(lo16(r01, r23)), upper_right = as<s32>(hi16(r01, r23));
  const auto lower_left = as<s32>(lo16(r45, r67)), lower_right = as<s32>(hi16(r45, r67));
  return {as<u8>(lo32(upper_left, lower_left)), as<u8>(hi32(upper_left, lower_left)),
          as<u8>(lo32(upper_right, lower_right)), as<u8>(hi32(upper_right, lower_right))};
}

inline MoxStatus ownFilterDeblocking8x8_MPEG4_V(Mox8u* edge, Mox32s step, Mox32s qp) {
  using simd::as, simd::s16, simd::u16, simd::u8;
  std::array<u8<1>, 4> rows;
  for (std::size_t i = 0; i < 4; ++i) {
    rows[i] = simd::load8x2<u8, 1>(edge - 5 + 2 * static_cast<std::ptrdiff_t>(i) * step, step, simd::strips<1>(0));
  }
  const auto columns = transposed8x8(rows);
  PostWords v;
  for (std::size_t i = 0; i < 4; ++i) v[2 * i] = wide_lo(columns[i]), v[2 * i + 1] = wide_hi(columns[i]);
  const auto last = as<u16>(simd::load_rows<2, 8>(edge + 3, step));
  v[8] = as<s16>(last & simd::splat<u16, 1>(0xFF));
  v[9] = as<s16>(simd::shr<8>(last));
  post_deblock(v, qp);
  const auto out = transposed8x8({packus(v[1], v[2]), packus(v[3], v[4]), packus(v[5], v[6]), packus(v[7], v[8])});
  for (std::size_t i = 0; i < 4; ++i) {
    store8x2(out[i], edge - 4 + 2 * static_cast<std::ptrdiff_t>(i) * step, step, simd::strips<1>(0));
  }
  return moxStsOk;
}

}  // namespace mox::vec
