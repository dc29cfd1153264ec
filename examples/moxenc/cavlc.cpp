#include "moxenc/cavlc.hpp"

#include <array>
#include <string_view>
#include <utility>

#include "common/h264_tables.hpp"
#include "common/h264_vlc_tables.hpp"
#include "moxenc/macroblock.hpp"

namespace moxenc {
namespace {

using example::VlcCode;

template <std::size_t N, std::size_t Count>
constexpr auto codes_of(const std::array<std::string_view, N>& texts) {
  std::array<std::array<VlcCode, Count>, N> tables{};
  for (std::size_t table = 0; table < N; ++table) {
    const example::VlcCodes codes(texts[table]);
    for (int i = 0; i < codes.count; ++i) tables[table][static_cast<std::size_t>(i)] = codes[i];
  }
  return tables;
}
constexpr auto kCoeffToken = codes_of<5, 62>(example::kCoeffTokenCodes);
constexpr auto kTotalZeros = codes_of<15, 16>(example::kTotalZerosCodes);
constexpr auto kTotalZerosChroma = codes_of<3, 4>(example::kTotalZeros2x2Codes);
constexpr auto kRunBefore = codes_of<7, 15>(example::kRunBeforeCodes);

constexpr auto kZigzag = [] {
  std::array<Mox32s, 16> scan{};
  for (std::size_t i = 0; i < 16; ++i) scan[i] = example::kZigzag4x4[i];
  return scan;
}();

void put(BitWriter& bits, const VlcCode& code) { bits.put(code.bits, code.length); }

/// What the library finds in a block.
struct Analysis {
  Mox8u trailing_ones, signs, count, total_zeros;
  std::array<Mox16s, 16> levels;  ///< the others, from the highest frequency down
  std::array<Mox8u, 16> runs;
};

/// coeff_token tables are for counts of 0 and 1, 2 and 3, 4 to 7, and chroma DC; from 8 on the code has 6 fixed bits.
constexpr std::size_t kChromaDcToken = 3;
void put_token(BitWriter& bits, int nc, int count, int trailing_ones) {
  if (nc >= 8) return bits.put(static_cast<std::uint32_t>(count == 0 ? 3 : (count - 1) << 2 | trailing_ones), 6);
  put(bits, kCoeffToken[nc < 2   ? 0
                        : nc < 4 ? 1
                                 : 2][static_cast<std::size_t>(example::coeff_token_index(count, trailing_ones))]);
}

/// level_prefix zeros, a one, and the suffix.
void put_level(BitWriter& bits, std::uint32_t code, int suffix_length) {
  const auto escape = static_cast<std::uint32_t>(suffix_length == 0 ? 30 : 15 << suffix_length);
  if (code >= escape) {
    bits.put(1, 16);
    bits.put(code - escape, 12);
  } else if (suffix_length == 0) {
    if (code < 14) return bits.put(1, static_cast<int>(code) + 1);
    bits.put(1, 15);
    bits.put(code - 14, 4);
  } else {
    bits.put(1, static_cast<int>(code >> suffix_length) + 1);
    bits.put(code & ((1u << suffix_length) - 1), suffix_length);
  }
}

void put_levels(BitWriter& bits, const Analysis& block) {
  bits.put(block.signs, block.trailing_ones);
  int suffix_length = block.count > 10 && block.trailing_ones < 3 ? 1 : 0;
  // With fewer than three trailing ones the first level after them cannot be another one.
  std::uint32_t below = block.trailing_ones < 3 ? 2 : 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(block.count - block.trailing_ones); ++i) {
    const int level = block.levels[i], magnitude = std::abs(level);
    put_level(bits, static_cast<std::uint32_t>(2 * magnitude - (level > 0 ? 2 : 1)) - below, suffix_length);
    below = 0;
    if (suffix_length == 0) suffix_length = 1;
    if (magnitude > 3 << (suffix_length - 1) && suffix_length < 6) ++suffix_length;
  }
}

void put_runs(BitWriter& bits, const Analysis& block) {
  int left = block.total_zeros;
  for (std::size_t i = 0; left > 0 && i + 1 < block.count; ++i) {
    put(bits, kRunBefore[static_cast<std::size_t>(std::min(left, 7) - 1)][block.runs[i]]);
    left -= block.runs[i];
  }
}

constexpr auto kInverseZigzag = [] {
  std::array<Mox16s, 16> positions{};
  for (std::size_t i = 0; i < 16; ++i) positions[example::kZigzag4x4[i]] = static_cast<Mox16s>(i);
  return positions;
}();

}  // namespace

const Mox16s* scan_positions() { return kInverseZigzag.data(); }

int write_block(BitWriter& bits, const Mox16s* levels, int first, int last, int nc) {
  Analysis block;
  expect_ok(moxiEncodeCoeffsCAVLC_H264_16s(levels, first, kZigzag.data(), last, &block.trailing_ones, &block.signs,
                                           &block.count, &block.total_zeros, block.levels.data(), block.runs.data()));
  put_token(bits, nc, block.count, block.trailing_ones);
  if (block.count == 0) return 0;
  put_levels(bits, block);
  if (block.count < 16 - first) put(bits, kTotalZeros[block.count - 1u][block.total_zeros]);
  put_runs(bits, block);
  return block.count;
}

void write_chroma_dc(BitWriter& bits, const Mox16s* levels) {
  Analysis block;
  expect_ok(moxiEncodeChromaDcCoeffsCAVLC_H264_16s(levels, &block.trailing_ones, &block.signs, &block.count,
                                                   &block.total_zeros, block.levels.data(), block.runs.data()));
  put(bits, kCoeffToken[kChromaDcToken]
                       [static_cast<std::size_t>(example::coeff_token_index(block.count, block.trailing_ones))]);
  if (block.count == 0) return;
  put_levels(bits, block);
  if (block.count < 4) put(bits, kTotalZerosChroma[block.count - 1u][block.total_zeros]);
  put_runs(bits, block);
}

void write_empty_block(BitWriter& bits, int nc) { put_token(bits, nc, 0, 0); }

void write_empty_chroma_dc(BitWriter& bits) { put(bits, kCoeffToken[kChromaDcToken][0]); }

}  // namespace moxenc
