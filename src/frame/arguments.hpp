/// Tests that exported functions make on their arguments.
#pragma once

namespace mox {

/// True if one of the pointers is null.
template <class... Pointer>
constexpr bool any_null(const Pointer*... pointers) {
  return (... || (pointers == nullptr));
}

/// True if value is none of low..high.
constexpr bool outside(long long value, long long low, long long high) { return value < low || value > high; }

}  // namespace mox
