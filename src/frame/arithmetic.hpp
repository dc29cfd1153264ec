/// Arithmetic rules by name. A cast never stands for a rule: what saturates, wraps or rounds says so.
#pragma once

#include <bit>

#include "moxvc/types.h"

namespace mox {

/// value limited to low..high.
constexpr Mox32s clip(Mox32s value, Mox32s low, Mox32s high) { return value < low ? low : value > high ? high : value; }
/// value limited to an 8-bit sample, 0..255.
constexpr Mox8u clip8(Mox32s value) { return static_cast<Mox8u>(clip(value, 0, 255)); }

/// -1, 0 or 1.
constexpr Mox32s sign_of(Mox32s value) { return (value > 0) - (value < 0); }

/// value limited to -32768..32767.
constexpr Mox16s sat16(Mox32s value) { return static_cast<Mox16s>(clip(value, -32768, 32767)); }
/// The low 16 bits of value as a signed number.
constexpr Mox16s wrap16(Mox32s value) { return static_cast<Mox16s>(value); }
/// The low 32 bits of value as a signed number.
constexpr Mox32s wrap32(long long value) { return static_cast<Mox32s>(value); }
/// The low bits of value that T holds, for templates over the type of an element.
template <class T>
constexpr T wrap_to(long long value) {
  return static_cast<T>(value);
}

/// 32-bit sums, differences, products and left shifts that wrap. Shift counts are 0 to 31.
constexpr Mox32s add32(Mox32s a, Mox32s b) {
  return static_cast<Mox32s>(static_cast<Mox32u>(a) + static_cast<Mox32u>(b));
}
constexpr Mox32s sub32(Mox32s a, Mox32s b) {
  return static_cast<Mox32s>(static_cast<Mox32u>(a) - static_cast<Mox32u>(b));
}
constexpr Mox32s mul32(Mox32s a, Mox32s b) {
  return static_cast<Mox32s>(static_cast<Mox32u>(a) * static_cast<Mox32u>(b));
}
constexpr Mox32s shl32(Mox32s a, int n) { return static_cast<Mox32s>(static_cast<Mox32u>(a) << n); }

/// Largest sample of a bit depth. Callers' depths are not tested: taken modulo 32, any of them gives some limit.
constexpr Mox32s sample_max(Mox32s depth) { return sub32(shl32(1, depth & 31), 1); }
/// value limited to a sample of `depth` bits.
constexpr Mox16u clip_depth(Mox32s value, Mox32s depth) {
  return static_cast<Mox16u>(clip(value, 0, sample_max(depth)));
}

/// Mean of two, halves upwards or downwards.
constexpr Mox32s avg_up(Mox32s a, Mox32s b) { return (a + b + 1) >> 1; }
constexpr Mox32s avg_down(Mox32s a, Mox32s b) { return (a + b) >> 1; }

/// Sums and differences of transforms: one policy for each way in which an intermediate value is kept.
struct Wrap16 {
  using Value = Mox16s;
  static constexpr Mox16s add(Mox32s a, Mox32s b) { return wrap16(a + b); }
  static constexpr Mox16s sub(Mox32s a, Mox32s b) { return wrap16(a - b); }
};
struct Sat16 {
  using Value = Mox16s;
  static constexpr Mox16s add(Mox32s a, Mox32s b) { return sat16(a + b); }
  static constexpr Mox16s sub(Mox32s a, Mox32s b) { return sat16(a - b); }
};
struct Wrap32 {
  using Value = Mox32s;
  static constexpr Mox32s add(Mox32s a, Mox32s b) { return add32(a, b); }
  static constexpr Mox32s sub(Mox32s a, Mox32s b) { return sub32(a, b); }
};

static_assert(sat16(40000) == 32767 && wrap16(40000) == -25536 && add32(0x7FFFFFFF, 1) == -0x7FFFFFFF - 1);

}  // namespace mox
