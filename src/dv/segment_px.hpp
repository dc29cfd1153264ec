/// Portable decoding of DV video segments, in three passes over their blocks.
#pragma once

#include <algorithm>
#include <cstdint>

#include "dv/code_table.hpp"
#include "frame/access.hpp"

namespace mox::px {

inline constexpr int kDvPositions = 64, kDvMacroblocks = 5, kDvMacroblockBytes = 80;

/// Where the blocks of a macroblock lie in its 80 bytes, and how many bits each of them has.
struct DvLayout {
  int blocks;
  Mox8u offset[8], bits[8];
  bool scan_by_mode;  ///< else the 8-8 scan throughout
};
inline constexpr DvLayout kDvSixBlocks = {6, {4, 18, 32, 46, 60, 70}, {112, 112, 112, 112, 80, 80}, true};
inline constexpr DvLayout kDvEightBlocks = {
    8, {4, 14, 24, 34, 44, 54, 64, 72}, {80, 80, 80, 80, 80, 80, 64, 64}, false};

/// A block in work. One that waits for bits has its carry alone. One that has bits to spare has its carry, which are
/// the last bits of the byte in front of pData, and whole bytes from there on.
struct DvBlockState {
  const Mox8u* pData;   ///< the block's bytes, then the next unread byte
  Mox16s* pCoef;        ///< its 64 coefficients
  DvBlockState* pNext;  ///< in a list
  Mox32u carryBits;     ///< bits read but unused
  Mox8u bitsLeft;       ///< first the block's budget, later all unused bits
  Mox8u carryCount;     ///< how many of them are in carryBits
  Mox8u position;       ///< scan position reached
  Mox8u scanOffset;     ///< 0 or 64; bit 0 is set once the block has met its end code

  /// Records that the last `left` bits are unused.
  void spare(int left) {
    pData += ((bitsLeft - carryCount) >> 3) - (left >> 3);
    bitsLeft = static_cast<Mox8u>(left);
    carryCount = left & 7;
    carryBits = pData[-1] & ((1u << carryCount) - 1);
  }
};

/// Bits in hand, from the top of `word` down with zeros behind them, and whole bytes in memory that follow. What uses
/// it is inlined whatever its size: a function that is not would keep it in memory.
struct DvBits {
  std::uint64_t word = 0;
  int held = 0;
  const Mox8u* next = nullptr;
  int behind = 0;  ///< bits in memory, a multiple of 8

  int left() const { return held + behind; }
  [[gnu::always_inline]] void append(Mox32u bits, int count) {
    word |= std::uint64_t{bits} << (63 - held - count) << 1;
    held += count;
  }
  /// Goes on with the bits of a block that has some to spare. 15 bits are held at most.
  [[gnu::always_inline]] void append(const DvBlockState& block) {
    append(block.carryBits, block.carryCount);
    next = block.pData, behind = block.bitsLeft - block.carryCount;
    refill();
  }
  /// Takes as many bytes from memory as there is room for. Reads 8 bytes.
  [[gnu::always_inline]] void refill() {
    const int taken = std::min(behind, (63 - held) & ~7);
    word |= (load_be64(next) & ~std::uint64_t{1} << (63 - taken)) >> held;
    held += taken, next += taken >> 3, behind -= taken;
  }
};

/// The code at the top of a word.
[[gnu::always_inline]] inline DvCodeEntry dv_code(std::uint64_t word) {
  const auto index = static_cast<unsigned>(word >> (64 - kDvShortBits));
  if (index < kDvLongCodes) [[likely]]
    return kDvCodeTable[index];
  if (index < kDvEscape) return kDvCodeTable[word >> (64 - kDvLongBits) & 1023];
  const int magnitude = static_cast<int>(word >> 49 & 255) * 64;
  return {kDvEscapeBits, 1, static_cast<Mox16s>(word >> 48 & 1 ? -magnitude : magnitude)};
}

/// Decodes codes from scan position block.position on as long as they fit the bits. True if the block has ended: it has
/// met its end code, or come to `limit`. Whether a code fits follows from the bits that are there: what stands behind
/// them can change the code that is found, but not make it as short as they are.
[[gnu::always_inline]] inline bool dv_decode_codes(DvBits& source, DvBlockState& block, int limit) {
  DvBits bits = source;  // in registers
  const Mox8u* const scan = kDvScans.data() + block.scanOffset;
  Mox16s* const coefficients = block.pCoef;
  int position = block.position;
  bool ended = false;
  for (;;) {
    const DvCodeEntry code = dv_code(bits.word);
    if (code.length > bits.held) [[unlikely]] {
      if (bits.behind == 0) break;
      bits.refill();
      continue;
    }
    const int reached = position + code.advance;
    const std::uint64_t word = bits.word;
    bits.word <<= code.length;
    bits.held -= code.length;
    if (reached >= limit) {
      ended = true;
      block.scanOffset |= dv_ends_block(static_cast<unsigned>(word >> (64 - kDvShortBits)));
      break;
    }
    position = reached;
    coefficients[scan[position]] = code.level;
  }
  block.position = static_cast<Mox8u>(position);
  source = bits;
  return ended;
}

/// A chain of blocks through pNext.
struct DvBlockList {
  DvBlockState* first = nullptr;
  DvBlockState* last = nullptr;

  bool empty() const { return first == nullptr; }
  void append(const DvBlockList& list) {
    if (list.empty()) return;
    (empty() ? first : last->pNext) = list.first;
    last = list.last;
  }
  void append(DvBlockState& block) { append(DvBlockList{&block, &block}); }
};

/// First pass: the block's own bits. 1: it has ended and has bits to spare, 0: it has ended with its last bit, -1: it
/// needs more bits.
inline int dv_decode_own_bits(DvBlockState& block, int limit) {
  DvBits bits{load_be64(block.pData) << 12, 52, block.pData + 8, block.bitsLeft - 64};
  block.pCoef[0] = static_cast<Mox16s>((block.pData[0] << 8 | block.pData[1]) & 0xFF80);
  if (dv_decode_codes(bits, block, limit)) {
    block.spare(bits.left());
    return block.bitsLeft > 0;
  }
  block.carryBits = static_cast<Mox32u>(bits.word >> 1 >> (63 - bits.held));
  block.bitsLeft = static_cast<Mox8u>(bits.held);
  return -1;
}

/// Goes on with the blocks that need bits, in the order of their list, with the bits that others have to spare, in the
/// order of theirs. Both lists then begin with the block at which it stopped. 1: all have ended, and bits are left of
/// the first spare block; 0: all have ended, and none are left of it; -1: there are no more bits.
inline int ownDvDecodeACSequence(DvBlockList& needList, DvBlockList& spareList) {
  for (;;) {
    DvBlockState& block = *needList.first;
    DvBits bits;
    bits.append(block.carryBits, block.bitsLeft);
    bits.append(*spareList.first);
    while (!dv_decode_codes(bits, block, kDvPositions)) {
      if (!spareList.first->pNext) {
        block.carryBits = static_cast<Mox32u>(bits.word >> 1 >> (63 - bits.held));
        block.bitsLeft = static_cast<Mox8u>(bits.held);
        return -1;
      }
      spareList.first = spareList.first->pNext;
      bits.append(*spareList.first);
    }
    // A carry is the beginning of a code, so what is left is all the spare block's own.
    spareList.first->spare(bits.left());
    needList.first = block.pNext;
    if (needList.empty()) return spareList.first->bitsLeft > 0;
  }
}

/// The lists of a segment.
struct DvSegmentLists {
  DvBlockList need, spare;

  /// Second pass: lets the blocks of a macroblock share its bits, and keeps what is then still open.
  void add_macroblock(DvBlockList needed, DvBlockList spared) {
    if (!needed.empty() && !spared.empty()) {
      const int result = ownDvDecodeACSequence(needed, spared);
      if (result >= 0) needed = {};
      if (result == 0) spared.first = spared.first->pNext;
      if (result < 0) spared = {};
    }
    need.append(needed);
    spare.append(spared);
  }
};

template <const DvLayout& kLayout>
class DvSegment {
 public:
  DvSegment(const Mox8u* pStream, Mox16s* pDst, Mox32u* pBlockParam) {
    __builtin_prefetch(pStream + kDvMacroblocks * kDvMacroblockBytes);  // where the next segment lies, as a rule
    for (int i = 0; i < kCount; ++i) {
      const Mox8u* const macroblock = pStream + i / kLayout.blocks * kDvMacroblockBytes;
      const int b = i % kLayout.blocks;
      const Mox8u* const data = macroblock + kLayout.offset[b];
      const Mox32u mode = data[1] & 0x70;
      pBlockParam[i] = mode | (macroblock[3] & 15u) << 16;
      blocks_[i] = {.pData = data,
                    .pCoef = pDst + 64 * i,
                    .pNext = nullptr,
                    .carryBits = 0,
                    .bitsLeft = kLayout.bits[b],
                    .carryCount = 0,
                    .position = 0,
                    .scanOffset = static_cast<Mox8u>(kLayout.scan_by_mode ? mode & 64 : 0)};
    }
  }

  void decode() {
    DvSegmentLists segment;
    for (int m = 0; m < kDvMacroblocks; ++m) {
      DvBlockList need, spare;
      for (int b = 0; b < kLayout.blocks; ++b) {
        DvBlockState& block = blocks_[m * kLayout.blocks + b];
        const int result = dv_decode_own_bits(block, kDvPositions);
        if (result != 0) (result < 0 ? need : spare).append(block);
      }
      segment.add_macroblock(need, spare);
    }
    if (!segment.need.empty() && !segment.spare.empty()) ownDvDecodeACSequence(segment.need, segment.spare);
  }
  void decode_own_bits(int limit) {
    for (DvBlockState& block : blocks_) dv_decode_own_bits(block, limit);
  }
  MoxStatus store(Mox32u* pBlockParam) const {
    for (int i = 0; i < kCount; ++i) pBlockParam[i] |= (blocks_[i].scanOffset & 1u) | blocks_[i].position << 8;
    return moxStsOk;
  }

 private:
  static constexpr int kCount = kDvMacroblocks * kLayout.blocks;
  DvBlockState blocks_[kCount];
};

template <const DvLayout& kLayout>
MoxStatus dv_decode_segment(const Mox8u* pStream, Mox16s* pDst, Mox32u* pBlockParam) {
  DvSegment<kLayout> segment(pStream, pDst, pBlockParam);
  segment.decode();
  return segment.store(pBlockParam);
}

inline MoxStatus dv_decode_segment_one_pass(const Mox8u* pStream, Mox16s* pDst, Mox32u* pBlockParam, Mox32s numCoeffs) {
  DvSegment<kDvSixBlocks> segment(pStream, pDst, pBlockParam);
  segment.decode_own_bits(std::min(numCoeffs, kDvPositions));
  return segment.store(pBlockParam);
}

}  // namespace mox::px
