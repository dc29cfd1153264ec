/// The directional intra predictors of H.264 in registers, one set of formulas for 4x4 and 8x8 blocks of either sample
/// type.
///
/// The rows of a mode are windows of one or two lines of samples, each made from the neighbours in one go: a row begins
/// a fixed number of samples before or behind the row above it.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/intra_directions_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// A register of 16 bytes, whatever the samples in it.
using IntraBytes = simd::u8<1>;

/// Up to 32 samples. What no row needs is never computed.
template <class Pixel>
struct IntraLine {
  static constexpr int kBytes = sizeof(Pixel), kEach = 16 / kBytes, kRegisters = 32 / kEach;
  IntraBytes r[kRegisters];
};

/// The first four samples of a, then those of b.
template <class Pixel>
MOX_INLINE IntraBytes fours(IntraBytes a, IntraBytes b) {
  const simd::s16<1> x{a.r}, y{b.r};
  return {sizeof(Pixel) == 1 ? lo32(x, y).r : lo64(x, y).r};
}

/// N samples in a row, 4 to 16 bytes, the rest zero.
template <int N, class Pixel>
MOX_INLINE IntraBytes load_neighbours(const Pixel* p) {
  constexpr int kBytes = N * int{sizeof(Pixel)};
  static_assert(kBytes == 4 || kBytes == 8 || kBytes == 16);
  return {kBytes == 4 ? simd::raw4(p) : kBytes == 8 ? simd::raw8(p) : simd::raw16(p)};
}
template <int N, class Pixel>
MOX_INLINE void store_predicted(IntraBytes v, Pixel* p) {
  constexpr int kBytes = N * int{sizeof(Pixel)};
  if constexpr (kBytes == 4) simd::raw_store4(p, v.r);
  if constexpr (kBytes == 8) simd::raw_store8(p, v.r);
  if constexpr (kBytes == 16) simd::raw_store16(p, v.r);
}
/// N samples, `stride` apart, the rest zero. Halves are collected side by side.
template <int N, int I = 0, class Pixel>
MOX_INLINE IntraBytes load_column(const Pixel* p, std::ptrdiff_t stride) {
  if constexpr (N == 8) {
    return fours<Pixel>(load_column<4>(p, stride), load_column<4>(p + 4 * stride, stride));
  } else if constexpr (I == N) {
    return IntraBytes{};
  } else {
    const auto others = load_column<N, I + 1>(p, stride);
    if constexpr (sizeof(Pixel) == 1) return simd::with_byte<I>(others, p[I * stride]);
    if constexpr (sizeof(Pixel) == 2) return {simd::with_word<I>(simd::s16<1>{others.r}, p[I * stride]).r};
  }
}
template <class Pixel>
MOX_INLINE IntraBytes all_samples(Pixel value) {
  if constexpr (sizeof(Pixel) == 1) return simd::splat<simd::u8, 1>(value);
  return simd::as<simd::u8>(simd::splat<simd::u16, 1>(value));
}

/// The line from sample I on.
template <int I, class Pixel>
MOX_INLINE IntraLine<Pixel> from(const IntraLine<Pixel>& v) {
  using Line = IntraLine<Pixel>;
  constexpr int kWhole = I / Line::kEach, kRest = I % Line::kEach * Line::kBytes;
  Line result = {};
  for (int i = 0; i + kWhole < Line::kRegisters; ++i) {
    const auto next = i + kWhole + 1 < Line::kRegisters ? v.r[i + kWhole + 1] : IntraBytes{};
    result.r[i] = align<kRest>(next, v.r[i + kWhole]);
  }
  return result;
}
/// The first N samples of a followed by b. Where they do not fill halves of registers, the rest of a is zero.
template <int N, class Pixel>
MOX_INLINE IntraLine<Pixel> joined(const IntraLine<Pixel>& a, const IntraLine<Pixel>& b) {
  using Line = IntraLine<Pixel>;
  constexpr int kWhole = N / Line::kEach, kRest = N % Line::kEach * Line::kBytes;
  Line result = a;
  if constexpr (kRest == 0) {
    for (int i = kWhole; i < Line::kRegisters; ++i) result.r[i] = b.r[i - kWhole];
  } else {
    const auto last = a.r[kWhole];
    result.r[kWhole] = kRest == 8 ? lo64(last, b.r[0]) : last | align<16 - kRest>(b.r[0], IntraBytes{});
    for (int i = kWhole + 1; i < Line::kRegisters; ++i) {
      result.r[i] = align<16 - kRest>(b.r[i - kWhole], b.r[i - kWhole - 1]);
    }
  }
  return result;
}
/// One sample, which all of `before` are, followed by v.
template <class Pixel>
MOX_INLINE IntraLine<Pixel> preceded(IntraBytes before, const IntraLine<Pixel>& v) {
  using Line = IntraLine<Pixel>;
  Line result = {};
  for (int i = 0; i < Line::kRegisters; ++i) {
    result.r[i] = align<16 - Line::kBytes>(v.r[i], i == 0 ? before : v.r[i - 1]);
  }
  return result;
}
/// Sample I everywhere.
template <int I, class Pixel>
MOX_INLINE IntraBytes repeated(const IntraLine<Pixel>& v) {
  using Line = IntraLine<Pixel>;
  constexpr int kByte = I % Line::kEach * Line::kBytes;
  const auto which = simd::splat<simd::u16, 1>(kByte * 0x101 + (Line::kBytes == 1 ? 0 : 0x100));
  return lookup(v.r[I / Line::kEach], simd::as<simd::u8>(which));
}
/// All samples but the first N those of `after`.
template <int N, class Pixel>
MOX_INLINE IntraLine<Pixel> ended(const IntraLine<Pixel>& v, IntraBytes after) {
  IntraLine<Pixel> end;
  for (auto& r : end.r) r = after;
  return joined<N>(v, end);
}

template <class Pixel>
using IntraLanes = std::conditional_t<sizeof(Pixel) == 1, simd::u8<1>, simd::u16<1>>;

/// Sample i is the mean of samples i and i + 1.
template <class Pixel>
MOX_INLINE IntraLine<Pixel> means(const IntraLine<Pixel>& v) {
  using Lanes = IntraLanes<Pixel>;
  const auto next = from<1>(v);
  IntraLine<Pixel> result;
  for (int i = 0; i < IntraLine<Pixel>::kRegisters; ++i) {
    result.r[i] = {avg(Lanes{v.r[i].r}, Lanes{next.r[i].r}).r};
  }
  return result;
}
/// Weights 1, 2, 1: the mean of b and of that mean of a and c which is rounded down.
template <class Pixel>
MOX_INLINE IntraLine<Pixel> smooth(const IntraLine<Pixel>& a, const IntraLine<Pixel>& b, const IntraLine<Pixel>& c) {
  using Lanes = IntraLanes<Pixel>;
  const Lanes one{all_samples(Pixel{1}).r};
  IntraLine<Pixel> result;
  for (int i = 0; i < IntraLine<Pixel>::kRegisters; ++i) {
    const Lanes x{a.r[i].r}, y{b.r[i].r}, z{c.r[i].r};
    result.r[i] = {avg(avg(x, z) - ((x ^ z) & one), y).r};
  }
  return result;
}
/// Sample i is made of samples i, i + 1 and i + 2.
template <class Pixel>
MOX_INLINE IntraLine<Pixel> smooth(const IntraLine<Pixel>& v) {
  return smooth(v, from<1>(v), from<2>(v));
}
/// Samples of a and b in turns, as many as a line holds.
template <class Pixel>
MOX_INLINE IntraLine<Pixel> in_turns(const IntraLine<Pixel>& a, const IntraLine<Pixel>& b) {
  IntraLine<Pixel> result;
  for (int i = 0; i < IntraLine<Pixel>::kRegisters / 2; ++i) {
    if constexpr (sizeof(Pixel) == 1) {
      result.r[2 * i] = lo8(a.r[i], b.r[i]);
      result.r[2 * i + 1] = hi8(a.r[i], b.r[i]);
    } else {
      const simd::s16<1> x{a.r[i].r}, y{b.r[i].r};
      result.r[2 * i] = {lo16(x, y).r};
      result.r[2 * i + 1] = {hi16(x, y).r};
    }
  }
  return result;
}

/// Stores row(y), a line, as the N samples of each row y = Y... of an N x N block.
template <int N, int Y = 0, class Pixel, class Row>
MOX_INLINE void store_lines(px::Block<Pixel> block, Row row) {
  store_predicted<N>(row.template operator()<Y>().r[0], &block(0, Y));
  if constexpr (Y + 1 < N) store_lines<N, Y + 1>(block, row);
}

/// The upper samples of a register: every second one of another, as many as there are before sample kEnd, which is odd
/// or even as they are.
template <int kEnd, class Pixel>
MOX_INLINE IntraBytes every_second_before(IntraBytes v) {
  static constexpr auto kFrom = make_table<16>([]<std::size_t I>() {
    constexpr int kBytes = sizeof(Pixel), kSample = kEnd - 2 * ((16 - int{I} + kBytes - 1) / kBytes);
    return static_cast<Mox8u>(kSample < 0 ? 0x80 : kSample * kBytes + int{I} % kBytes);
  });
  return lookup(v, simd::load_row<simd::u8, 1>(kFrom.data()));
}

// The modes. `top` is the row above and what follows it, 2 N samples, the last one repeated behind them.

template <int N, class Pixel>
MOX_INLINE void predict_down_left(px::Block<Pixel> block, const IntraLine<Pixel>& top) {
  const auto line = smooth(top);
  store_lines<N>(block, [&]<int Y>() { return from<Y>(line); });
}

template <int N, class Pixel>
MOX_INLINE void predict_vertical_left(px::Block<Pixel> block, const IntraLine<Pixel>& top) {
  const auto even = means(top), odd = smooth(top);
  store_lines<N>(block, [&]<int Y>() { return from<Y / 2>(Y % 2 == 0 ? even : odd); });
}

/// `left` is the column downwards, the last one repeated behind it.
template <int N, class Pixel>
MOX_INLINE void predict_horizontal_up(px::Block<Pixel> block, const IntraLine<Pixel>& left) {
  const auto line = in_turns(means(left), smooth(left));
  store_lines<N>(block, [&]<int Y>() { return from<2 * Y>(line); });
}

// `around` is the column upwards, the corner and the row above: the corner is sample N.

template <int N, class Pixel>
MOX_INLINE void predict_down_right(px::Block<Pixel> block, const IntraLine<Pixel>& around) {
  const auto line = smooth(around);
  store_lines<N>(block, [&]<int Y>() { return from<N - 1 - Y>(line); });
}

/// Even rows are means, odd ones smooth samples; those that come in from the left are every second smooth one.
template <int N, class Pixel>
MOX_INLINE void predict_vertical_right(px::Block<Pixel> block, const IntraLine<Pixel>& around) {
  using Line = IntraLine<Pixel>;
  const auto line = smooth(around);
  const Line even{every_second_before<N, Pixel>(line.r[0]), from<N>(means(around)).r[0]};
  const Line odd{every_second_before<N - 1, Pixel>(line.r[0]), from<N - 1>(line).r[0]};
  store_lines<N>(block, [&]<int Y>() { return from<Line::kEach - Y / 2>(Y % 2 == 0 ? even : odd); });
}

template <int N, class Pixel>
MOX_INLINE void predict_horizontal_down(px::Block<Pixel> block, const IntraLine<Pixel>& around) {
  const auto smoothed = smooth(around);
  const auto line = joined<2 * N>(in_turns(means(around), smoothed), from<N>(smoothed));
  store_lines<N>(block, [&]<int Y>() { return from<2 * (N - 1 - Y)>(line); });
}

/// Modes 0, 1 and 3 to 8. Edges has the lines top(), left() and around(), and reads what it is asked for.
template <int N, class Pixel, class Edges>
MOX_INLINE void predict_from(px::Block<Pixel> block, Mox32u mode, const Edges& edges) {
  switch (mode) {
    case kVertical: {
      const auto row = edges.top();
      return store_lines<N>(block, [&]<int>() { return row; });
    }
    case kHorizontal: {
      const auto left = edges.left();
      return store_lines<N>(block, [&]<int Y>() { return IntraLine<Pixel>{repeated<Y>(left)}; });
    }
    case kDiagonalDownLeft: return predict_down_left<N>(block, edges.top());
    case kDiagonalDownRight: return predict_down_right<N>(block, edges.around());
    case kVerticalRight: return predict_vertical_right<N>(block, edges.around());
    case kHorizontalDown: return predict_horizontal_down<N>(block, edges.around());
    case kVerticalLeft: return predict_vertical_left<N>(block, edges.top());
    default: return predict_horizontal_up<N>(block, edges.left());
  }
}

}  // namespace mox::vec
