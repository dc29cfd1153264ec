/// Access to memory: rows by step, values at any alignment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "moxvc/types.h"

namespace mox {

/// pointer moved by a number of bytes.
template <class T>
T* step_bytes(T* pointer, std::ptrdiff_t bytes) {
  using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(pointer) + bytes);
}

/// The value at an address of any alignment.
template <class T>
T load(const void* address) {
  T value;
  std::memcpy(&value, address, sizeof value);
  return value;
}

/// Stores a value at an address of any alignment.
template <class T>
void store(void* address, T value) {
  std::memcpy(address, &value, sizeof value);
}

/// The 32 bits of four stream bytes, first byte most significant.
inline Mox32u load_be32(const Mox8u* bytes) {
  return Mox32u{bytes[0]} << 24 | Mox32u{bytes[1]} << 16 | Mox32u{bytes[2]} << 8 | Mox32u{bytes[3]};
}

/// The 64 bits of eight stream bytes, first byte most significant.
inline std::uint64_t load_be64(const Mox8u* bytes) { return __builtin_bswap64(load<std::uint64_t>(bytes)); }

/// Stores 32 bits as four stream bytes, the most significant first.
inline void store_be32(Mox8u* bytes, Mox32u value) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<Mox8u>(value >> (24 - 8 * i));
}

}  // namespace mox
