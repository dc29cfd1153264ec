#include "frame/bytes.hpp"

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/arguments.hpp"
#include "moxcore.h"

namespace mox {
namespace {

constexpr std::int64_t kAskForCacheSize = 524288;

/// A fill that does not bring the destination into the caches.
void stream_fill(Mox8u value, Mox8u* destination, std::int64_t length) {
  const std::int64_t head = -static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(destination)) & 15;
  const std::int64_t first = head < length ? head : length;
  std::memset(destination, value, static_cast<std::size_t>(first));
  const __m128i sixteen = _mm_set1_epi8(static_cast<char>(value));
  std::int64_t at = first;
  for (; at + 16 <= length; at += 16) _mm_stream_si128(reinterpret_cast<__m128i*>(destination + at), sixteen);
  std::memset(destination + at, value, static_cast<std::size_t>(length - at));
}

void plain_fill(Mox8u value, Mox8u* destination, std::int64_t length) {
  std::memset(destination, value, static_cast<std::size_t>(length));
}

bool exceeds_cache(std::int64_t bytes) {
  int cache = 0;
  return bytes > kAskForCacheSize && moxGetMaxCacheSizeB(&cache) == 0 && bytes >= cache;
}

}  // namespace

void moxsCopy_8u(const Mox8u* source, Mox8u* destination, Mox32s length) {
  if (length > 0) std::memcpy(destination, source, static_cast<std::size_t>(length));
}

void moxsCopy_16s(const Mox16s* source, Mox16s* destination, Mox32s length) {
  if (length > 0) std::memcpy(destination, source, 2 * static_cast<std::size_t>(length));
}

void moxsSet_8u(Mox8u value, Mox8u* destination, Mox32s length) {
  if (length > 0) std::memset(destination, value, static_cast<std::size_t>(length));
}

void moxsZero_8u(Mox8u* destination, Mox32s length) { moxsSet_8u(0, destination, length); }

MoxStatus moxiCopy_8u_C1R(const Mox8u* source, Mox32s sourceStep, Mox8u* destination, Mox32s destinationStep,
                          MoxiSize size) {
  if (any_null(source, destination)) return moxStsNullPointer;
  if (size.width < 1 || size.height < 1) return moxStsBadSize;
  for (std::ptrdiff_t y = 0; y < size.height; ++y) {
    moxsCopy_8u(source + y * sourceStep, destination + y * destinationStep, size.width);
  }
  return moxStsOk;
}

MoxStatus moxiSet_8u_C1R(Mox8u value, Mox8u* destination, Mox32s step, MoxiSize size) {
  if (any_null(destination)) return moxStsNullPointer;
  if (size.width < 1 || size.height < 1) return moxStsBadSize;
  const bool one_run = step == size.width;
  const std::int64_t bytes = std::int64_t{size.width} * size.height;
  const std::int64_t run = one_run ? bytes : size.width;
  const std::int64_t runs = one_run ? 1 : size.height;
  const bool streamed = exceeds_cache(bytes);
  for (std::int64_t y = 0; y < runs; ++y) (streamed ? stream_fill : plain_fill)(value, destination + y * step, run);
  if (streamed) _mm_sfence();
  return moxStsOk;
}

}  // namespace mox
