/// Changes of the quantiser in H.263, and the chroma quantiser of modified quantisation (ITU-T H.263 5.3.6, Annex T).
#pragma once

#include <array>
#include <cstdint>

namespace example {

/// By the two bits of DQUANT; the sum is limited to 1..31.
inline constexpr std::array<std::int8_t, 4> kH263QuantiserChange = {-1, -2, 1, 2};

/// With modified quantisation: [quantiser - 1][last bit of DQUANT 10 or 11], the new quantiser.
inline constexpr std::uint8_t kH263QuantiserStep[31][2] = {
    {3, 2},   {1, 3},   {2, 4},   {3, 5},   {4, 6},   {5, 7},   {6, 8},   {7, 9},   {8, 10},  {9, 11},  {9, 13},
    {10, 14}, {11, 15}, {12, 16}, {13, 17}, {14, 18}, {15, 19}, {16, 20}, {17, 21}, {18, 22}, {18, 24}, {19, 25},
    {20, 26}, {21, 27}, {22, 28}, {23, 29}, {24, 30}, {25, 31}, {26, 31}, {27, 31}, {28, 26}};

/// With modified quantisation: [quantiser - 1], the quantiser of chroma.
inline constexpr std::array<std::uint8_t, 31> kH263ChromaQuantiser = {
    1, 2, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 10, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 14, 14, 15, 15, 15, 15, 15};

}  // namespace example
