/// Tests that exported functions make on their arguments.
#pragma once

namespace mox {

/// True if one of the pointers is null. Each is said to be unlikely, so that they are tested one by one: clang joins
/// equally likely tests to one of vectors, which waits for pointers of a record that the caller has only just written.
template <class First, class... Rest>
constexpr bool any_null(const First* first, const Rest*... rest) {
  if (first == nullptr) [[unlikely]]
    return true;
  if constexpr (sizeof...(rest) > 0) return any_null(rest...);
  return false;
}

/// True if value is none of low..high.
constexpr bool outside(long long value, long long low, long long high) { return value < low || value > high; }

}  // namespace mox
