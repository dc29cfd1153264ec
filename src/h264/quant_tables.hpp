/// Constant tables of the H.264 quantisers: multipliers, roundings and how a QP splits into a shift and a row.
///
/// A position's multiplier depends on its class alone, so every larger table is made from the values of the classes.
/// Tables with a row for each raster position are for kernels that multiply a block by a row.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox {

template <class T>
using Raster4x4 = std::array<T, 16>;
template <class T>
using Raster8x8 = std::array<T, 64>;

/// [qp] for 0 to 89, the QP of 14-bit samples and 4:2:2 chroma DC included: qp / 6 and qp % 6.
inline constexpr auto h264_qp6 = make_table<90>([]<std::size_t Qp>() { return static_cast<Mox8u>(Qp / 6); });
inline constexpr auto h264_qp_rem = make_table<90>([]<std::size_t Qp>() { return static_cast<Mox8u>(Qp % 6); });
/// [qp][0] is qp / 6, [qp][1] is qp % 6.
inline constexpr auto moxH264QpDevide = make_table<90>([]<std::size_t Qp>() {
  return std::array{h264_qp6[Qp], h264_qp_rem[Qp]};
});
static_assert(h264_qp6[51] == 8 && h264_qp_rem[51] == 3 && moxH264QpDevide[89] == std::array<Mox8u, 2>{14, 5});

/// Class of each raster position of a 4x4 block: 0 both coordinates even, 1 both odd, 2 the rest.
inline constexpr Raster4x4<Mox8u> QuantIndex = {0, 2, 0, 2, 2, 1, 2, 1, 0, 2, 0, 2, 2, 1, 2, 1};
/// Class of each raster position of an 8x8 block, by (y % 4, x % 4): 0 (0,0); 1 both odd; 2 (2,2); 3 one 0, one odd;
/// 4 (0,2) and (2,0); 5 one 2, one odd.
inline constexpr auto kQuantIndex8x8 = make_table<64>([]<std::size_t I>() {
  constexpr Mox8u kClass[4][4] = {{0, 3, 4, 3}, {3, 1, 5, 1}, {4, 5, 2, 5}, {3, 1, 5, 1}};
  return kClass[I / 8 % 4][I % 4];
});

/// The values of the classes, [qp % 6][class].
inline constexpr std::array<std::array<Mox16s, 3>, 6> FwdQuantTable = {{{13107, 5243, 8066},
                                                                        {11916, 4660, 7490},
                                                                        {10082, 4194, 6554},
                                                                        {9362, 3647, 5825},
                                                                        {8192, 3355, 5243},
                                                                        {7282, 2893, 4559}}};
inline constexpr std::array<std::array<Mox16s, 3>, 6> kInvMultiplier4x4 = {
    {{10, 16, 13}, {11, 18, 14}, {13, 20, 16}, {14, 23, 18}, {16, 25, 20}, {18, 29, 23}}};
inline constexpr std::array<std::array<Mox16s, 6>, 6> kFwdMultiplier8x8 = {{{13107, 11428, 20972, 12222, 16777, 15481},
                                                                            {11916, 10826, 19174, 11058, 14980, 14290},
                                                                            {10082, 8943, 15978, 9675, 12710, 11985},
                                                                            {9362, 8228, 14913, 8931, 11984, 11259},
                                                                            {8192, 7346, 13159, 7740, 10486, 9777},
                                                                            {7282, 6428, 11570, 6830, 9118, 8640}}};
inline constexpr std::array<std::array<Mox16s, 6>, 6> kInvMultiplier8x8 = {{{20, 18, 32, 19, 25, 24},
                                                                            {22, 19, 35, 21, 28, 26},
                                                                            {26, 23, 42, 24, 33, 31},
                                                                            {28, 25, 45, 26, 35, 33},
                                                                            {32, 28, 51, 30, 40, 38},
                                                                            {36, 32, 58, 34, 46, 43}}};

/// The value of each raster position: index[i] is the class of position i.
template <class T, std::size_t N, class Values>
constexpr std::array<T, N> expand_classes(const Values& values, const std::array<Mox8u, N>& index, int factor = 1) {
  std::array<T, N> raster{};
  for (std::size_t i = 0; i < N; ++i) raster[i] = static_cast<T>(values[index[i]] * factor);
  return raster;
}

/// Forward multipliers, [qp % 6][raster position].
inline constexpr auto FwdQuantTable_16s =
    make_table<6>([]<std::size_t Rem>() { return expand_classes<Mox16s>(FwdQuantTable[Rem], QuantIndex); });
inline constexpr auto moxH264FwdQuant_32s =
    make_table<6>([]<std::size_t Rem>() { return expand_classes<Mox32s>(FwdQuantTable[Rem], QuantIndex); });
inline constexpr const auto& moxH264FwdQuant_16s = FwdQuantTable_16s;
inline constexpr const auto& QuantCoef = moxH264FwdQuant_32s;
inline constexpr auto LevelScale_8x8_default =
    make_table<6>([]<std::size_t Rem>() { return expand_classes<Mox16s>(kFwdMultiplier8x8[Rem], kQuantIndex8x8); });
static_assert(QuantCoef[2][5] == 4194 && moxH264FwdQuant_16s[5][14] == 4559 && FwdQuantTable_16s[3][10] == 9362);
static_assert(LevelScale_8x8_default[0][18] == 20972 && LevelScale_8x8_default[5][63] == 6428);

/// Inverse multipliers, [qp % 6][raster position]: bare, and times 16, which a flat scaling list of 16 gives. The 8x8
/// table is bare.
inline constexpr auto InvQuantTable_def =
    make_table<6>([]<std::size_t Rem>() { return expand_classes<Mox16s>(kInvMultiplier4x4[Rem], QuantIndex); });
inline constexpr auto InvLevelScale_4x4_default =
    make_table<6>([]<std::size_t Rem>() { return expand_classes<Mox16s>(kInvMultiplier4x4[Rem], QuantIndex, 16); });
inline constexpr auto InvLevelScale_8x8_default =
    make_table<6>([]<std::size_t Rem>() { return expand_classes<Mox16s>(kInvMultiplier8x8[Rem], kQuantIndex8x8); });
static_assert(InvQuantTable_def[0] ==
              Raster4x4<Mox16s>{10, 13, 10, 13, 13, 16, 13, 16, 10, 13, 10, 13, 13, 16, 13, 16});
static_assert(InvLevelScale_4x4_default[5][5] == 464 && InvLevelScale_4x4_default[1][0] == 176);
static_assert(InvLevelScale_8x8_default[0][18] == 32 && InvLevelScale_8x8_default[0][17] == 24 &&
              InvLevelScale_8x8_default[4][8] == 30 && InvLevelScale_8x8_default[2][36] == 26 &&
              InvLevelScale_8x8_default[3][2] == 35 && InvLevelScale_8x8_default[5][9] == 32);

/// Inverse multipliers of a QP, shift included and no scaling list: [qp][class] for 0 to 51.
inline constexpr auto InvQuantTable = make_table<52>([]<std::size_t Qp>() {
  const auto& row = kInvMultiplier4x4[h264_qp_rem[Qp]];
  const int per = h264_qp6[Qp];
  return std::array<Mox32s, 3>{row[0] << per, row[1] << per, row[2] << per};
});
/// The same by raster position, [qp][position]; every value fits 16 bits.
inline constexpr auto InvQuantTable_16s =
    make_table<52>([]<std::size_t Qp>() { return expand_classes<Mox16s>(InvQuantTable[Qp], QuantIndex); });
/// Multipliers of the luma DC values: below QP 12 the class 0 multiplier with its shift still to be done (right by 2,
/// from QP 6 by 1), above it the shift less 2.
inline constexpr auto InvQuantLuma16x16DCTable = make_table<52>([]<std::size_t Qp>() -> Mox32s {
  const int bare = kInvMultiplier4x4[h264_qp_rem[Qp]][0];
  return bare << std::max(h264_qp6[Qp] - 2, 0);
});
/// The shift to the right that goes with an entry of InvQuantLuma16x16DCTable.
constexpr Mox32s luma_dc_shift(Mox32s qp) { return qp < 6 ? 2 : qp < 12 ? 1 : 0; }
static_assert(InvQuantTable[51] == std::array<Mox32s, 3>{3584, 5888, 4608} && InvQuantTable[47][1] == 3712);
static_assert(InvQuantTable_16s[51][5] == 5888 && InvQuantTable_16s[0] == InvQuantTable_def[0]);
static_assert(InvQuantLuma16x16DCTable[5] == 18 && InvQuantLuma16x16DCTable[11] == 18 &&
              InvQuantLuma16x16DCTable[12] == 10 && InvQuantLuma16x16DCTable[51] == 896);

/// Weights of the re-quantisation of SP pictures, by raster position.
inline constexpr Raster4x4<Mox8u> MATR = {16, 20, 16, 20, 20, 25, 20, 25, 16, 20, 16, 20, 20, 25, 20, 25};

/// dividend / divisor, 0 for a divisor of 0.
constexpr std::size_t quotient(std::size_t dividend, std::size_t divisor) { return divisor ? dividend / divisor : 0; }

/// Reciprocals of scaling-list values, for the generators of scales: 16384 / w.
inline constexpr auto Int_16s =
    make_table<256>([]<std::size_t W>() { return static_cast<Mox16u>(quotient(16384, W)); });
/// 65536 / w, limited to 16 bits; 255 has none and reads 0, although 257 would fit.
inline constexpr auto reciprocal65536 = make_table<256>([]<std::size_t W>() {
  return static_cast<Mox16u>(W == 255 ? 0 : std::min<std::size_t>(quotient(65536, W), 65535));
});
static_assert(Int_16s[0] == 0 && Int_16s[1] == 16384 && Int_16s[255] == 64);
static_assert(reciprocal65536[1] == 65535 && reciprocal65536[2] == 32768 && reciprocal65536[254] == 258 &&
              reciprocal65536[255] == 0 && reciprocal65536[0] == 0);

/// Rounding of the quantisers, a sixth of the unit, [qp / 6]; an intra block takes the next entry, a third. The names
/// mislead: Def, 2^(11 + i) / 6, serves a caller's table, and Given, 2^(15 + i) / 6, the default one.
inline constexpr auto moxH264QuantResid_RoundValDef_32s =
    make_table<16>([]<std::size_t I>() -> Mox32s { return (1 << (11 + I)) / 6; });
inline constexpr auto moxH264QuantResid_RoundValGiven_32s =
    make_table<16>([]<std::size_t I>() -> Mox32s { return (1 << (15 + I)) / 6; });
/// Rounding of the DC quantisers: [qp / 6] a sixth, [9 + qp / 6] a third of 2^(16 + qp / 6).
inline constexpr auto dc_rounds =
    make_table<18>([]<std::size_t I>() -> Mox32s { return (1 << (16 + I % 9)) / (I < 9 ? 6 : 3); });
static_assert(moxH264QuantResid_RoundValDef_32s[0] == 341 && moxH264QuantResid_RoundValDef_32s[15] == 11184810);
static_assert(moxH264QuantResid_RoundValGiven_32s[0] == 5461 && moxH264QuantResid_RoundValGiven_32s[15] == 178956970);
static_assert(dc_rounds[0] == 10922 && dc_rounds[8] == 2796202 && dc_rounds[9] == 21845 && dc_rounds[17] == 5592405);

/// The largest magnitude of a level that the entropy coder of the 8-bit family can write.
inline constexpr Mox32s MoxH264LevelLimit = 2063;

}  // namespace mox
