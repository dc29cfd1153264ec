/// The vector layer: one inline function per instruction, for vectors of B blocks of 16 bytes.
///
/// B is 1 (SSE4.1) or 2 (AVX2); kBlocks is the largest of the build. No operation crosses a block, so a kernel that
/// gives each block a strip of rows or columns of its own (Strips) is one source for all builds. B is a template
/// argument of each kernel, chosen by measurement. Types name what a register holds; `as<T>` reads it otherwise.
/// This is the one file with intrinsics and with a test of the instruction set.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstring>

#include "moxvc/types.h"

#define MOX_INLINE inline __attribute__((always_inline))

namespace mox::simd {

#if defined(__AVX2__)
inline constexpr int kBlocks = 2;
#define MOX_WIDE(...) __VA_ARGS__
#else
inline constexpr int kBlocks = 1;
#define MOX_WIDE(...)
#endif

template <int B>
struct RawOf;
template <>
struct RawOf<1> {
  using Type = __m128i;
};
MOX_WIDE(template <> struct RawOf<2> { using Type = __m256i; };)
template <int B>
using Raw = typename RawOf<B>::Type;

template <int Blocks>
struct u8 {
  Raw<Blocks> r;
  static constexpr int B = Blocks;
};  ///< 16 unsigned bytes a block
template <int Blocks>
struct s16 {
  Raw<Blocks> r;
  static constexpr int B = Blocks;
};  ///< 8 signed words a block
template <int Blocks>
struct u16 {
  Raw<Blocks> r;
  static constexpr int B = Blocks;
};  ///< 8 unsigned words a block
template <int Blocks>
struct s32 {
  Raw<Blocks> r;
  static constexpr int B = Blocks;
};  ///< 4 signed doublewords a block

/// The same bits as another type.
template <template <int> class To, template <int> class From, int B>
MOX_INLINE To<B> as(From<B> v) {
  return {v.r};
}

// One instruction a line.
// clang-format off
// name(A, A) -> R by one instruction.
#define MOX_OP2(name, R, A, instruction)                                         \
  MOX_INLINE R<1> name(A<1> a, A<1> b) { return {_mm_##instruction(a.r, b.r)}; } \
  MOX_WIDE(MOX_INLINE R<2> name(A<2> a, A<2> b) { return {_mm256_##instruction(a.r, b.r)}; })
// name(A) -> R by one instruction.
#define MOX_OP1(name, R, A, instruction)                            \
  MOX_INLINE R<1> name(A<1> a) { return {_mm_##instruction(a.r)}; } \
  MOX_WIDE(MOX_INLINE R<2> name(A<2> a) { return {_mm256_##instruction(a.r)}; })
// name<N>(A) -> A by one instruction with an immediate.
#define MOX_OPI(name, A, instruction)                                                   \
  template <int N> MOX_INLINE A<1> name(A<1> a) { return {_mm_##instruction(a.r, N)}; } \
  MOX_WIDE(template <int N> MOX_INLINE A<2> name(A<2> a) { return {_mm256_##instruction(a.r, N)}; })
// name<N>(A, A) -> A by one instruction with an immediate.
#define MOX_OP2I(name, A, instruction)                                                               \
  template <int N> MOX_INLINE A<1> name(A<1> a, A<1> b) { return {_mm_##instruction(a.r, b.r, N)}; } \
  MOX_WIDE(template <int N> MOX_INLINE A<2> name(A<2> a, A<2> b) { return {_mm256_##instruction(a.r, b.r, N)}; })
#define MOX_LOGIC(name, A, instruction)                                                  \
  MOX_INLINE A<1> name(A<1> a, A<1> b) { return {_mm_##instruction##_si128(a.r, b.r)}; } \
  MOX_WIDE(MOX_INLINE A<2> name(A<2> a, A<2> b) { return {_mm256_##instruction##_si256(a.r, b.r)}; })
#define MOX_COMMON(A, bits)               \
  MOX_OP2(operator+, A, A, add_epi##bits) \
  MOX_OP2(operator-, A, A, sub_epi##bits) \
  MOX_LOGIC(operator&, A, and)            \
  MOX_LOGIC(operator|, A, or)             \
  MOX_LOGIC(operator^, A, xor)            \
  MOX_LOGIC(andnot, A, andnot) /* ~a & b */ \
  MOX_OP2(equal, A, A, cmpeq_epi##bits)

MOX_COMMON(u8, 8)
MOX_COMMON(s16, 16)
MOX_COMMON(u16, 16)
MOX_COMMON(s32, 32)

// Bytes.
MOX_OP2(avg, u8, u8, avg_epu8)  // halves up
MOX_OP2(adds, u8, u8, adds_epu8)
MOX_OP2(subs, u8, u8, subs_epu8)
MOX_OP2(min, u8, u8, min_epu8)
MOX_OP2(max, u8, u8, max_epu8)
MOX_OP2(sad, s32, u8, sad_epu8)  // two sums of eight a block, in elements 0 and 2
MOX_OP2(lookup, u8, u8, shuffle_epi8)
MOX_OP2I(align, u8, alignr_epi8)  // bytes N.. of b followed by those of a
MOX_OP2(lo8, u8, u8, unpacklo_epi8)
MOX_OP2(hi8, u8, u8, unpackhi_epi8)
/// Even byte * even signed byte + odd byte * odd signed byte, saturated.
MOX_OP2(maddubs, s16, u8, maddubs_epi16)
// Words.
MOX_OP2(adds, s16, s16, adds_epi16)
MOX_OP2(subs, s16, s16, subs_epi16)
MOX_OP2(adds, u16, u16, adds_epu16)
MOX_OP2(subs, u16, u16, subs_epu16)
MOX_OP2(min, s16, s16, min_epi16)
MOX_OP2(max, s16, s16, max_epi16)
MOX_OP2(min, u16, u16, min_epu16)
MOX_OP2(max, u16, u16, max_epu16)
MOX_OP2(avg, u16, u16, avg_epu16)
MOX_OP2(operator*, s16, s16, mullo_epi16)
MOX_OP2(operator*, u16, u16, mullo_epi16)
MOX_OP2(mulhi, s16, s16, mulhi_epi16)
MOX_OP2(mulhi, u16, u16, mulhi_epu16)
MOX_OP2(mulhrs, s16, s16, mulhrs_epi16)  // (a * b + 2^14) >> 15
MOX_OP2(madd, s32, s16, madd_epi16)
MOX_OP2(greater, s16, s16, cmpgt_epi16)
MOX_OP2(hadd, s16, s16, hadd_epi16)
MOX_OP1(abs, s16, s16, abs_epi16)
MOX_OPI(shr, s16, srai_epi16)
MOX_OPI(shl, s16, slli_epi16)
MOX_OPI(shr, u16, srli_epi16)
MOX_OPI(shl, u16, slli_epi16)
MOX_OP2(lo16, s16, s16, unpacklo_epi16)
MOX_OP2(hi16, s16, s16, unpackhi_epi16)
MOX_OP2(lo32, s16, s16, unpacklo_epi32)
MOX_OP2(hi32, s16, s16, unpackhi_epi32)
MOX_OP2(lo64, s16, s16, unpacklo_epi64)
MOX_OP2(hi64, s16, s16, unpackhi_epi64)
MOX_OP2(lo64, u8, u8, unpacklo_epi64)
MOX_OP2(hi64, u8, u8, unpackhi_epi64)
MOX_OP2I(blend, s16, blend_epi16)  // word i of b where bit i of N is set
MOX_OP2(packus, u8, s16, packus_epi16)
MOX_OP2(packs, u8, s16, packs_epi16)
// Doublewords.
MOX_OP2(operator*, s32, s32, mullo_epi32)
MOX_OP2(min, s32, s32, min_epi32)
MOX_OP2(max, s32, s32, max_epi32)
MOX_OP2(greater, s32, s32, cmpgt_epi32)
MOX_OP2(hadd, s32, s32, hadd_epi32)
MOX_OP1(abs, s32, s32, abs_epi32)
MOX_OPI(shr, s32, srai_epi32)
MOX_OPI(shru, s32, srli_epi32)
MOX_OPI(shl, s32, slli_epi32)
MOX_OP2(packs, s16, s32, packs_epi32)
MOX_OP2(packus, u16, s32, packus_epi32)
MOX_OP2(lo32, s32, s32, unpacklo_epi32)
MOX_OP2(hi32, s32, s32, unpackhi_epi32)
MOX_OP2(lo64, s32, s32, unpacklo_epi64)
MOX_OP2(hi64, s32, s32, unpackhi_epi64)
MOX_OPI(permute, s32, shuffle_epi32)
// Pairs of doublewords as quadwords, the lower one first.
MOX_OP2(mul_even, s32, s32, mul_epi32)  // products of doublewords 0 and 2
MOX_OP2(add64, s32, s32, add_epi64)
MOX_OPI(shru64, s32, srli_epi64)
// clang-format on

// Constants: one value in all elements.
template <template <int> class V, int B>
MOX_INLINE V<B> zero();
template <template <int> class V, int B>
MOX_INLINE V<B> splat(int value);
// clang-format off
#define MOX_CONSTANTS(V, name)                                                            \
  template <> MOX_INLINE V<1> zero<V, 1>() { return {_mm_setzero_si128()}; }              \
  template <> MOX_INLINE V<1> splat<V, 1>(int value) { return {_mm_set1_##name}; }        \
  MOX_WIDE(template <> MOX_INLINE V<2> zero<V, 2>() { return {_mm256_setzero_si256()}; }  \
           template <> MOX_INLINE V<2> splat<V, 2>(int value) { return {_mm256_set1_##name}; })
// clang-format on
MOX_CONSTANTS(u8, epi8(static_cast<char>(value)))
MOX_CONSTANTS(s16, epi16(static_cast<short>(value)))
MOX_CONSTANTS(u16, epi16(static_cast<short>(value)))
MOX_CONSTANTS(s32, epi32(value))

/// Bytes of the lower or upper half of each block as words.
template <int B>
MOX_INLINE s16<B> wide_lo(u8<B> v) {
  return as<s16>(lo8(v, zero<u8, B>()));
}
template <int B>
MOX_INLINE s16<B> wide_hi(u8<B> v) {
  return as<s16>(hi8(v, zero<u8, B>()));
}
/// Words of the lower or upper half of each block as doublewords, zero-extended or sign-extended.
template <int B>
MOX_INLINE s32<B> wide_lo(u16<B> v) {
  return as<s32>(lo16(as<s16>(v), zero<s16, B>()));
}
template <int B>
MOX_INLINE s32<B> wide_hi(u16<B> v) {
  return as<s32>(hi16(as<s16>(v), zero<s16, B>()));
}
template <int B>
MOX_INLINE s32<B> wide_lo(s16<B> v) {
  return shr<16>(as<s32>(lo16(v, v)));
}
template <int B>
MOX_INLINE s32<B> wide_hi(s16<B> v) {
  return shr<16>(as<s32>(hi16(v, v)));
}

/// Words and doublewords shifted by any number of bits.
MOX_INLINE s16<1> shr(s16<1> v, int n) { return {_mm_sra_epi16(v.r, _mm_cvtsi32_si128(n))}; }
MOX_WIDE(MOX_INLINE s16<2> shr(s16<2> v, int n) { return {_mm256_sra_epi16(v.r, _mm_cvtsi32_si128(n))}; })
MOX_INLINE s16<1> shl(s16<1> v, int n) { return {_mm_sll_epi16(v.r, _mm_cvtsi32_si128(n))}; }
MOX_WIDE(MOX_INLINE s16<2> shl(s16<2> v, int n) { return {_mm256_sll_epi16(v.r, _mm_cvtsi32_si128(n))}; })
MOX_INLINE s32<1> shl(s32<1> v, int n) { return {_mm_sll_epi32(v.r, _mm_cvtsi32_si128(n))}; }
MOX_WIDE(MOX_INLINE s32<2> shl(s32<2> v, int n) { return {_mm256_sll_epi32(v.r, _mm_cvtsi32_si128(n))}; })
MOX_INLINE s32<1> shr(s32<1> v, int n) { return {_mm_sra_epi32(v.r, _mm_cvtsi32_si128(n))}; }
MOX_WIDE(MOX_INLINE s32<2> shr(s32<2> v, int n) { return {_mm256_sra_epi32(v.r, _mm_cvtsi32_si128(n))}; })

MOX_INLINE s32<1> shru64(s32<1> v, int n) { return {_mm_srl_epi64(v.r, _mm_cvtsi32_si128(n))}; }
MOX_WIDE(MOX_INLINE s32<2> shru64(s32<2> v, int n) { return {_mm256_srl_epi64(v.r, _mm_cvtsi32_si128(n))}; })
MOX_INLINE s32<1> shl64(s32<1> v, int n) { return {_mm_sll_epi64(v.r, _mm_cvtsi32_si128(n))}; }
MOX_WIDE(MOX_INLINE s32<2> shl64(s32<2> v, int n) { return {_mm256_sll_epi64(v.r, _mm_cvtsi32_si128(n))}; })

/// The same by a number that is known once the call is inlined.
MOX_INLINE s16<1> operator>>(s16<1> v, int n) { return {_mm_srai_epi16(v.r, n)}; }
MOX_WIDE(MOX_INLINE s16<2> operator>>(s16<2> v, int n) { return {_mm256_srai_epi16(v.r, n)}; })
MOX_INLINE s32<1> operator>>(s32<1> v, int n) { return {_mm_srai_epi32(v.r, n)}; }
MOX_WIDE(MOX_INLINE s32<2> operator>>(s32<2> v, int n) { return {_mm256_srai_epi32(v.r, n)}; })

// Blocks: B single blocks to one vector, and one block out of it.
template <int B>
MOX_INLINE Raw<B> join(const __m128i* blocks);
template <>
MOX_INLINE __m128i join<1>(const __m128i* blocks) {
  return blocks[0];
}
MOX_WIDE(template <> MOX_INLINE __m256i join<2>(const __m128i* blocks) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(blocks[0]), blocks[1], 1);
})
template <int I>
MOX_INLINE __m128i block(__m128i v) {
  return v;
}
MOX_WIDE(template <int I> MOX_INLINE __m128i block(__m256i v) {
  if constexpr (I == 0)
    return _mm256_castsi256_si128(v);
  else
    return _mm256_extracti128_si256(v, 1);
})
/// The first blocks of a and of b, or the second ones.
MOX_WIDE(template <template <int> class V> MOX_INLINE V<2> first_blocks(V<2> a, V<2> b) {
  return {_mm256_permute2x128_si256(a.r, b.r, 0x20)};
})
MOX_WIDE(template <template <int> class V> MOX_INLINE V<2> second_blocks(V<2> a, V<2> b) {
  return {_mm256_permute2x128_si256(a.r, b.r, 0x31)};
})
/// The first B of the vectors as one.
template <template <int> class V, int B>
MOX_INLINE V<B> joined(const V<1>* vectors) {
  __m128i blocks[B];
  for (int i = 0; i < B; ++i) blocks[i] = vectors[i].r;
  return {join<B>(blocks)};
}
/// Block I as a vector of one block.
template <int I, template <int> class V, int B>
MOX_INLINE V<1> part(V<B> v) {
  return {block<I>(v.r)};
}

/// Where the blocks of a vector lie in memory: block i is read from, or written to, p + at[i] bytes.
template <int B>
struct Strips {
  std::ptrdiff_t at[B];
};
/// Strips `distance` bytes apart.
template <int B>
MOX_INLINE Strips<B> strips(std::ptrdiff_t distance) {
  Strips<B> s{};
  for (int i = 0; i < B; ++i) s.at[i] = i * distance;
  return s;
}

// Loads. No alignment is needed; nothing is read but the bytes named.
MOX_INLINE __m128i raw16(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
MOX_INLINE __m128i raw8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
MOX_INLINE __m128i raw4(const void* p) {
  int v;
  std::memcpy(&v, p, 4);
  return _mm_cvtsi32_si128(v);
}
MOX_INLINE __m128i raw2(const void* p) {
  Mox16u v;
  std::memcpy(&v, p, 2);
  return _mm_cvtsi32_si128(v);
}
/// 8 bytes twice.
MOX_INLINE __m128i raw8_twice(const void* p) {
  double v;  // loaded and repeated in one instruction
  std::memcpy(&v, p, 8);
  return _mm_castpd_si128(_mm_set1_pd(v));
}
/// 4 or 8 bytes, repeated all over.
MOX_WIDE(MOX_INLINE __m256i all4(const void* p) {
  int v;
  std::memcpy(&v, p, 4);
  return _mm256_set1_epi32(v);
})
MOX_WIDE(MOX_INLINE __m256i all8(const void* p) {
  long long v;
  std::memcpy(&v, p, 8);
  __m256i all = _mm256_set1_epi64x(v);
  __asm__("" : "+x"(all));  // stays the load it is; merged with a blend it would become two dearer shuffles
  return all;
})
template <template <int> class V, int B, class Load>
MOX_INLINE V<B> gather(const void* p, const Strips<B>& s, Load load) {
  __m128i blocks[B];
  for (int i = 0; i < B; ++i) blocks[i] = load(static_cast<const Mox8u*>(p) + s.at[i]);
  return {join<B>(blocks)};
}
/// 16 bytes a block.
template <template <int> class V, int B>
MOX_INLINE V<B> load16(const void* p, const Strips<B>& s) {
  return gather<V, B>(p, s, raw16);
}
/// 8 bytes a block, the upper half zero.
template <template <int> class V, int B>
MOX_INLINE V<B> load8(const void* p, const Strips<B>& s) {
  return gather<V, B>(p, s, raw8);
}
/// Two rows of 8 bytes a block, `gap` bytes apart.
template <template <int> class V, int B>
MOX_INLINE V<B> load8x2(const void* p, std::ptrdiff_t gap, const Strips<B>& s) {
  return gather<V, B>(p, s, [gap](const Mox8u* q) { return _mm_unpacklo_epi64(raw8(q), raw8(q + gap)); });
}
/// Four rows of 4 bytes a block, `step` bytes apart.
template <template <int> class V, int B>
MOX_INLINE V<B> load4x4(const void* p, std::ptrdiff_t step, const Strips<B>& s) {
  return gather<V, B>(p, s, [step](const Mox8u* q) {
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(raw4(q), raw4(q + step)),
                              _mm_unpacklo_epi32(raw4(q + 2 * step), raw4(q + 3 * step)));
  });
}
/// The same 16 bytes in every block.
template <template <int> class V, int B>
MOX_INLINE V<B> table(const void* p) {
  return load16<V, B>(p, strips<B>(0));
}
/// The same two rows of 8 bytes, `gap` bytes apart, in every block.
template <template <int> class V, int B>
MOX_INLINE V<B> table8x2(const void* p, std::ptrdiff_t gap) {
  if constexpr (B == 1) return load8x2<V, B>(p, gap, strips<B>(0));
  MOX_WIDE(else return {_mm256_blend_epi32(all8(p), all8(static_cast<const Mox8u*>(p) + gap), 0xCC)};)
}
/// Two rows of 4 bytes, `gap` bytes apart, in both halves of the block.
MOX_INLINE u8<1> load4x2_twice(const void* p, std::ptrdiff_t gap) {
  const void* const lower = static_cast<const Mox8u*>(p) + gap;
#if defined(__AVX2__)
  return {_mm_blend_epi32(_mm256_castsi256_si128(all4(p)), _mm256_castsi256_si128(all4(lower)), 0xA)};
#else
  const __m128i rows = _mm_unpacklo_epi32(raw4(p), raw4(lower));
  return {_mm_unpacklo_epi64(rows, rows)};
#endif
}
/// The same four rows of 4 bytes in every block, the second and the fourth `gap` bytes after the one before, the third
/// `middle` bytes after the first.
template <template <int> class V, int B>
MOX_INLINE V<B> table4x4(const void* p, std::ptrdiff_t gap, std::ptrdiff_t middle) {
  const Mox8u *const upper = static_cast<const Mox8u*>(p), *const lower = upper + middle;
  if constexpr (B == 1) {
    return {_mm_unpacklo_epi64(_mm_unpacklo_epi32(raw4(upper), raw4(upper + gap)),
                               _mm_unpacklo_epi32(raw4(lower), raw4(lower + gap)))};
  }
  MOX_WIDE(else {
    return {_mm256_blend_epi32(_mm256_blend_epi32(all4(upper), all4(upper + gap), 0xAA),
                               _mm256_blend_epi32(all4(lower), all4(lower + gap), 0xAA), 0xCC)};
  })
}
/// 8 bytes a block as words.
template <int B>
MOX_INLINE s16<B> load8_wide(const void* p, const Strips<B>& s) {
  return gather<s16, B>(p, s, [](const Mox8u* q) { return _mm_cvtepu8_epi16(raw8(q)); });
}
/// 8 bytes a block as doublewords, sign-extended from words.
template <int B>
MOX_INLINE s32<B> load8_doublewords(const void* p, const Strips<B>& s) {
  return gather<s32, B>(p, s, [](const Mox8u* q) { return _mm_cvtepi16_epi32(raw8(q)); });
}

/// The four quadwords of two blocks in the order 0, 2, 1, 3: lower halves of both blocks, then upper halves. One block
/// stays as it is: after packing this is the order of rows that run on.
template <template <int> class V>
MOX_INLINE V<1> regroup(V<1> v) {
  return v;
}
MOX_WIDE(template <template <int> class V> MOX_INLINE V<2> regroup(V<2> v) {
  return {_mm256_permute4x64_epi64(v.r, 0xD8)};
})

// Rows that run on from block to block: 16 B consecutive bytes, or 8 B as words.
template <template <int> class V, int B>
MOX_INLINE V<B> load_row(const void* p) {
  if constexpr (B == 1) return {raw16(p)};
  MOX_WIDE(else return {_mm256_loadu_si256(static_cast<const __m256i*>(p))};)
}
template <int B>
MOX_INLINE u16<B> load_row_wide(const void* p) {
  if constexpr (B == 1) return {_mm_cvtepu8_epi16(raw8(p))};
  MOX_WIDE(else return {_mm256_cvtepu8_epi16(raw16(p))};)
}
/// 4 B words, zero-extended or sign-extended by the type of the element.
template <int B>
MOX_INLINE s32<B> load_row_wide(const Mox16u* p) {
  if constexpr (B == 1) return {_mm_cvtepu16_epi32(raw8(p))};
  MOX_WIDE(else return {_mm256_cvtepu16_epi32(raw16(p))};)
}
template <int B>
MOX_INLINE s32<B> load_row_wide(const Mox16s* p) {
  if constexpr (B == 1) return {_mm_cvtepi16_epi32(raw8(p))};
  MOX_WIDE(else return {_mm256_cvtepi16_epi32(raw16(p))};)
}
template <template <int> class V, int B>
MOX_INLINE void store_row(V<B> v, void* p) {
  if constexpr (B == 1) _mm_storeu_si128(static_cast<__m128i*>(p), v.r);
  MOX_WIDE(else _mm256_storeu_si256(static_cast<__m256i*>(p), v.r);)
}
/// 4 B consecutive words as doublewords.
template <int B>
MOX_INLINE s32<B> load_row_doublewords(const void* p) {
  if constexpr (B == 1) return {_mm_cvtepu16_epi32(raw8(p))};
  MOX_WIDE(else return {_mm256_cvtepu16_epi32(raw16(p))};)
}
/// 8 B consecutive bytes, 8 a block, in both halves of it.
template <int B>
MOX_INLINE u8<B> load_row8_twice(const void* p) {
  if constexpr (B == 1) return {raw8_twice(p)};
  MOX_WIDE(else return {_mm256_permute4x64_epi64(_mm256_castsi128_si256(raw16(p)), 0x50)};)
}
/// The lower 8 bytes as words.
MOX_INLINE u16<1> wide_low(u8<1> v) { return {_mm_cvtepu8_epi16(v.r)}; }

/// Several short rows in one block, `step` bytes apart: kRows of 2, 4 or 8 bytes, 16 bytes at most, the rest zero.
template <int kBytes, int kRows>
MOX_INLINE u8<1> load_rows(const void* p, std::ptrdiff_t step) {
  static_assert(kBytes * kRows <= 16);
  if constexpr (kRows > 1) {
    const __m128i upper = load_rows<kBytes, kRows / 2>(p, step).r;
    const void* const middle = static_cast<const Mox8u*>(p) + kRows / 2 * step;
    const __m128i lower = load_rows<kBytes, kRows / 2>(middle, step).r;
    if constexpr (kBytes * kRows == 4) return {_mm_unpacklo_epi16(upper, lower)};
    if constexpr (kBytes * kRows == 8) return {_mm_unpacklo_epi32(upper, lower)};
    if constexpr (kBytes * kRows == 16) return {_mm_unpacklo_epi64(upper, lower)};
  } else if constexpr (kBytes == 8) {
    return {raw8(p)};
  } else if constexpr (kBytes == 4) {
    return {raw4(p)};
  } else {
    return {raw2(p)};
  }
}

/// Word i is word(i): samples that lie anywhere.
template <class Word>
MOX_INLINE u16<1> collect_words(Word word) {
  const auto at = [&](int i) { return static_cast<short>(word(i)); };
  return {_mm_setr_epi16(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7))};
}

// Stores of the same shapes.
MOX_INLINE void raw_store16(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
MOX_INLINE void raw_store8(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }
/// The upper 8 bytes.
MOX_INLINE void raw_store8_upper(void* p, __m128i v) {
  const __m128d upper = _mm_castsi128_pd(_mm_unpackhi_epi64(v, v));
  const double first = _mm_cvtsd_f64(upper);  // stored in one instruction
  std::memcpy(p, &first, 8);
}
MOX_INLINE void raw_store4(void* p, __m128i v) {
  const int low = _mm_cvtsi128_si32(v);
  std::memcpy(p, &low, 4);
}
template <int I = 0, int B, class Store>
MOX_INLINE void scatter(Raw<B> v, void* p, const Strips<B>& s, Store put) {
  put(static_cast<Mox8u*>(p) + s.at[I], block<I>(v));
  if constexpr (I + 1 < B) scatter<I + 1, B>(v, p, s, put);
}
template <template <int> class V, int B>
MOX_INLINE void store16(V<B> v, void* p, const Strips<B>& s) {
  scatter<0, B>(v.r, p, s, raw_store16);
}
template <template <int> class V, int B>
MOX_INLINE void store8(V<B> v, void* p, const Strips<B>& s) {
  scatter<0, B>(v.r, p, s, raw_store8);
}
template <template <int> class V, int B>
MOX_INLINE void store8x2(V<B> v, void* p, std::ptrdiff_t gap, const Strips<B>& s) {
  scatter<0, B>(v.r, p, s, [gap](Mox8u* q, __m128i one) {
    raw_store8(q, one);
    raw_store8_upper(q + gap, one);
  });
}
/// Several short rows out of one block: kRows of 2, 4 or 8 bytes, `step` bytes apart, written in order.
template <int kBytes, int kRows, int I = 0>
MOX_INLINE void store_rows(u8<1> v, void* p, std::ptrdiff_t step) {
  if constexpr (kBytes == 8) {
    if constexpr (I == 0) raw_store8(p, v.r);
    if constexpr (I == 1) raw_store8_upper(p, v.r);
  } else if constexpr (kBytes == 4) {
    const int row = _mm_extract_epi32(v.r, I);
    std::memcpy(p, &row, 4);
  } else {
    const auto row = static_cast<Mox16u>(_mm_extract_epi16(v.r, I));
    std::memcpy(p, &row, 2);
  }
  if constexpr (I + 1 < kRows) store_rows<kBytes, kRows, I + 1>(v, static_cast<Mox8u*>(p) + step, step);
}

// What distances need.
MOX_OP2(signed_by, s16, s16, sign_epi16)  // a where b is above 0, -a where it is below, 0 where it is 0
MOX_OP2(signed_by, s32, s32, sign_epi32)
/// Sums of absolute differences of the four bytes of b at 4 (N & 3) and the four bytes of a at offset + i, for words i
/// of 0 to 7; the offset is 4 if bit 2 of N is set, else 0.
template <int N>
MOX_INLINE u16<1> sliding_sad(u8<1> a, u8<1> b) {
  return {_mm_mpsadbw_epu8(a.r, b.r, N)};
}
MOX_WIDE(template <int N> MOX_INLINE u16<2> sliding_sad(u8<2> a, u8<2> b) {
  return {_mm256_mpsadbw_epu8(a.r, b.r, N | N << 3)};
})
/// Doublewords 0 and 2, or 1 and 3, of a and then of b.
MOX_INLINE s32<1> even32(s32<1> a, s32<1> b) {
  return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.r), _mm_castsi128_ps(b.r), 0x88))};
}
MOX_INLINE s32<1> odd32(s32<1> a, s32<1> b) {
  return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.r), _mm_castsi128_ps(b.r), 0xDD))};
}
MOX_WIDE(MOX_INLINE s32<2> even32(s32<2> a, s32<2> b) {
  return {_mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a.r), _mm256_castsi256_ps(b.r), 0x88))};
})
MOX_WIDE(MOX_INLINE s32<2> odd32(s32<2> a, s32<2> b) {
  return {_mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a.r), _mm256_castsi256_ps(b.r), 0xDD))};
})
/// The first 12 bytes at p, the rest zero.
MOX_INLINE u8<1> load12(const void* p) {
  int last;
  std::memcpy(&last, static_cast<const Mox8u*>(p) + 8, 4);
  return {_mm_insert_epi32(raw8(p), last, 2)};
}
/// The smallest word, and the index of the first such.
struct Smallest {
  Mox32s value, index;
};
MOX_INLINE Smallest smallest(u16<1> v) {
  const int both = _mm_cvtsi128_si32(_mm_minpos_epu16(v.r));
  return {both & 0xFFFF, both >> 16};
}
/// v with another first element.
MOX_INLINE s16<1> with_first_word(s16<1> v, int word) { return {_mm_insert_epi16(v.r, word, 0)}; }
MOX_INLINE s32<1> with_first_doubleword(s32<1> v, int value) { return {_mm_insert_epi32(v.r, value, 0)}; }
/// v with another element I.
template <int I>
MOX_INLINE u8<1> with_byte(u8<1> v, Mox8u byte) {
  return {_mm_insert_epi8(v.r, byte, I)};
}
template <int I>
MOX_INLINE s16<1> with_word(s16<1> v, Mox16u word) {
  return {_mm_insert_epi16(v.r, word, I)};
}
/// True if no bit is set.
MOX_INLINE bool is_zero(u16<1> v) { return _mm_testz_si128(v.r, v.r); }
MOX_WIDE(MOX_INLINE bool is_zero(u16<2> v) { return _mm256_testz_si256(v.r, v.r); })
/// Doubleword I.
template <int I>
MOX_INLINE Mox32s element(s32<1> v) {
  if constexpr (I == 0) return _mm_cvtsi128_si32(v.r);
  return _mm_extract_epi32(v.r, I);
}
/// The sum of elements 0 and 2 of each block: all that `sad` leaves.
MOX_INLINE Mox32s total_of_sad(s32<1> v) { return element<0>(v + permute<0x4E>(v)); }
MOX_WIDE(MOX_INLINE Mox32s total_of_sad(s32<2> v) { return total_of_sad(part<0>(v) + part<1>(v)); })

/// The sum of all elements, wrapping.
MOX_INLINE Mox32s total(s32<1> v) {
  v = v + permute<0x4E>(v);
  v = v + permute<0xB1>(v);
  return _mm_cvtsi128_si32(v.r);
}
MOX_WIDE(MOX_INLINE Mox32s total(s32<2> v) { return total(part<0>(v) + part<1>(v)); })

/// Bit i is the top bit of byte i.
MOX_INLINE Mox32u top_bits(u8<1> v) { return static_cast<Mox32u>(_mm_movemask_epi8(v.r)); }
MOX_WIDE(MOX_INLINE Mox32u top_bits(u8<2> v) { return static_cast<Mox32u>(_mm256_movemask_epi8(v.r)); })
/// 8 pairs of bytes, each at its own offset from p.
MOX_INLINE u8<1> load_pairs(const Mox8u* p, const Mox32s* offsets) {
  const auto pair = [=](int i) {
    Mox16u bytes;
    std::memcpy(&bytes, p + offsets[i], 2);
    return bytes;
  };
  __m128i v = _mm_cvtsi32_si128(pair(0));
  v = _mm_insert_epi16(v, pair(1), 1);
  v = _mm_insert_epi16(v, pair(2), 2);
  v = _mm_insert_epi16(v, pair(3), 3);
  v = _mm_insert_epi16(v, pair(4), 4);
  v = _mm_insert_epi16(v, pair(5), 5);
  v = _mm_insert_epi16(v, pair(6), 6);
  return {_mm_insert_epi16(v, pair(7), 7)};
}

/// 4 floats a block, in a register of the others' type.
template <int Blocks>
struct f32 {
  Raw<Blocks> r;
  static constexpr int B = Blocks;
};
MOX_INLINE f32<1> to_float(s32<1> v) { return {_mm_castps_si128(_mm_cvtepi32_ps(v.r))}; }
MOX_INLINE f32<1> operator*(f32<1> a, f32<1> b) {
  return {_mm_castps_si128(_mm_mul_ps(_mm_castsi128_ps(a.r), _mm_castsi128_ps(b.r)))};
}
MOX_INLINE f32<1> operator/(f32<1> a, f32<1> b) {
  return {_mm_castps_si128(_mm_div_ps(_mm_castsi128_ps(a.r), _mm_castsi128_ps(b.r)))};
}
/// Towards zero; what 32 bits cannot hold becomes the least integer.
MOX_INLINE s32<1> truncate(f32<1> v) { return {_mm_cvttps_epi32(_mm_castsi128_ps(v.r))}; }
MOX_WIDE(MOX_INLINE f32<2> to_float(s32<2> v) { return {_mm256_castps_si256(_mm256_cvtepi32_ps(v.r))}; })
MOX_WIDE(MOX_INLINE f32<2> operator*(f32<2> a, f32<2> b) {
  return {_mm256_castps_si256(_mm256_mul_ps(_mm256_castsi256_ps(a.r), _mm256_castsi256_ps(b.r)))};
})
MOX_WIDE(MOX_INLINE s32<2> truncate(f32<2> v) { return {_mm256_cvttps_epi32(_mm256_castsi256_ps(v.r))}; })

}  // namespace mox::simd
