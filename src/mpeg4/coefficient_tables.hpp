/// The coefficient codes of MPEG-4 that are not reversible, and the codes of DC sizes.
#pragma once

#include "h263/coefficient_tables.hpp"

namespace mox {

/// Of intra blocks. Inter blocks have the codes of H.263, and so have both the escape.
inline constexpr LastRunLevelText kIntraTcoefRows = {
    {"10 110 1111 01101 01100 010101 010011 010010 0010111 00011111 00011110 00011101 000100101 000100100 000100011 "
     "000100001 0000100001 0000100000 0000001111 0000001110 00000000111 00000000110 00000100000 00000100001 "
     "000001010000 000001010001 000001010010,1110 010100 0010110 00011100 000100000 000011111 0000001101 00000100010 "
     "000001010011 000001010101,01011 0010101 000011110 0000001100 000001010110,010001 00011011 000011101 0000001011,"
     "010000 000100010 0000001010,001101 000011100 0000001000,0010010 000011011 000001010100,0010100 000011010 "
     "000001010111,00011001 0000001001,00011000 00000100011,00010111,000011001,000011000,0000000111,000001011000",
     "0111 001100 00010110 000010111 0000000110 00000000101 00000000100 000001011001,001111 000010110 0000000101,"
     "001110 0000000100,0010001 00000100100,0010000 00000100101,0010011 000001011010,00010101 000001011011,00010100,"
     "00010011,00011010,000010101,000010100,000010011,000010010,000010001,00000100110,00000100111,000001011100,"
     "000001011101,000001011110,000001011111"}};

/// For reading. The names count the look-ahead without the sign bit, that is 12 bits.
inline constexpr auto tableB16_512_5 = decode_table<1024, 8192, 6>(kIntraTcoefRows);
inline constexpr auto tableB16_128_2 = decode_table<256, 1024, 3>(kIntraTcoefRows);
inline constexpr auto tableB16_8 = decode_table<kLeastTcoef, kTcoefEscape << 6, 1>(kIntraTcoefRows);
static_assert(is_complete(tableB16_512_5) && is_complete(tableB16_128_2) && is_complete(tableB16_8));
inline constexpr auto& tableB17_512_5 = h263_coefTab0;
inline constexpr auto& tableB17_128_2 = h263_coefTab1;
inline constexpr auto& tableB17_8 = h263_coefTab2;

/// For writing.
inline constexpr auto vlc_TB16 = encode_table(kIntraTcoefRows);
inline constexpr TcoefOffsets vlc_TB16_offs = row_offsets(kIntraTcoefRows, 0);
inline constexpr TcoefOffsets vlc_TB16_offs_l = row_offsets(kIntraTcoefRows, 1);
inline constexpr TcoefEncodeTables mVLC_TB16 = {vlc_TB16.data(), {vlc_TB16_offs.data(), vlc_TB16_offs_l.data()}};
inline constexpr auto& mVLC_TB17 = h263_VLCParams;

/// What escapes add, [last flag][.]: by run the greatest level of the table, 0 if it has none; by level the greatest
/// run plus 1, 0 if it has none.
struct EscapeLimits {
  std::array<std::array<Mox8u, 64>, 2> LMAX, RMAX;
};
constexpr EscapeLimits escape_limits(const LastRunLevelText& text) {
  EscapeLimits limits{};
  for_each_code(text, [&](Mox32u last, Mox32u run, Mox32u level, Mox32u, Mox32u) {
    limits.LMAX[last][run] = static_cast<Mox8u>(level);
    limits.RMAX[last][level] = static_cast<Mox8u>(run + 1);
  });
  return limits;
}
inline constexpr EscapeLimits kIntraLimits = escape_limits(kIntraTcoefRows), kInterLimits = escape_limits(kTcoefRows);
static_assert(kIntraLimits.LMAX[0][0] == 27 && kIntraLimits.LMAX[1][6] == 2 && kIntraLimits.LMAX[1][21] == 0);
static_assert(kIntraLimits.RMAX[0][4] == 4 && kIntraLimits.RMAX[1][1] == 21 && kIntraLimits.RMAX[0][28] == 0);
static_assert(kInterLimits.LMAX[0][10] == 2 && kInterLimits.LMAX[1][40] == 1 && kInterLimits.LMAX[1][41] == 0);
static_assert(kInterLimits.RMAX[0][3] == 7 && kInterLimits.RMAX[1][2] == 2 && kInterLimits.RMAX[1][4] == 0);

/// All tables of a kind of block.
struct TextureTables {
  TcoefDecodeTables reading;
  const TcoefEncodeTables& writing;
  const EscapeLimits& limits;
};
inline constexpr TextureTables kIntraTexture = {
    {tableB16_512_5.data(), tableB16_128_2.data(), tableB16_8.data()}, mVLC_TB16, kIntraLimits};
inline constexpr TextureTables kInterTexture = {
    {tableB17_512_5.data(), tableB17_128_2.data(), tableB17_8.data()}, mVLC_TB17, kInterLimits};
static_assert(agree(kIntraTexture.writing, kIntraTexture.reading));

/// The greatest size in bits of a DC that a code stands for.
inline constexpr Mox32s kMostDcSize = 12;
/// Sizes above it are followed by a marker bit behind the value.
inline constexpr Mox32s kMostUnmarkedDcSize = 8;

/// [size]: codes of the sizes of luma and of chroma DCs. From 5 and from 3 up a code is a 1 behind zeros.
using DcSizeCodes = std::array<TcoefCode, kMostDcSize + 1>;
inline constexpr DcSizeCodes mVLC_DCSIZE_TB13 = {
    {{3, 3}, {3, 2}, {2, 2}, {2, 3}, {1, 3}, {1, 4}, {1, 5}, {1, 6}, {1, 7}, {1, 8}, {1, 9}, {1, 10}, {1, 11}}};
inline constexpr DcSizeCodes mVLC_DCSIZE_TB14 = {
    {{3, 2}, {2, 2}, {1, 2}, {1, 3}, {1, 4}, {1, 5}, {1, 6}, {1, 7}, {1, 8}, {1, 9}, {1, 10}, {1, 11}, {1, 12}}};

/// [first three bits]: the size that they begin, or decide. No bit pattern is left but zeros, which are counted.
constexpr std::array<Mox8u, 8> short_dc_sizes(const DcSizeCodes& codes) {
  std::array<Mox8u, 8> sizes{};
  for (Mox8u size = 0; size < codes.size(); ++size) {
    const int free = 3 - codes[size].length;
    if (free < 0) continue;
    for (int v = codes[size].bits << free; v < (codes[size].bits + 1) << free; ++v) sizes[v] = size;
  }
  return sizes;
}
inline constexpr std::array<Mox8u, 8> kShortLumaDcSizes = short_dc_sizes(mVLC_DCSIZE_TB13);
inline constexpr std::array<Mox8u, 8> kShortChromaDcSizes = short_dc_sizes(mVLC_DCSIZE_TB14);
static_assert(kShortLumaDcSizes == std::array<Mox8u, 8>{0, 4, 3, 0, 2, 2, 1, 1});
static_assert(kShortChromaDcSizes == std::array<Mox8u, 8>{0, 3, 2, 2, 1, 1, 0, 0});

}  // namespace mox
