/// Tables of the VC-1 interpolation kernels of this build's generation.
#pragma once

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "vc1/interpolation_px.hpp"
#include "vc1/interpolation_vec.hpp"

namespace mox {

template <int W, int H>
inline constexpr auto kVC1Bicubic = make_table<16>([]<std::size_t I>() -> VC1InterpolationKernel {
  return &active::vc1_interpolate_bicubic<W, H, I / 4, I % 4>;
});
template <int W, int H, int kDistance>
inline constexpr auto kVC1Bilinear = make_table<16>([]<std::size_t I>() -> VC1InterpolationKernel {
  return &active::vc1_interpolate_bilinear<W, H, kDistance, I / 4, I % 4>;
});

/// Index vc1_position.
inline constexpr auto ownvc_Interpolate16x16QPBicubic_VC1_8u_C1R = kVC1Bicubic<16, 16>;
inline constexpr auto ownvc_Interpolate16x8QPBicubic_VC1_8u_C1R = kVC1Bicubic<16, 8>;
inline constexpr auto ownvc_Interpolate8x8QPBicubic_VC1_8u_C1R = kVC1Bicubic<8, 8>;
inline constexpr auto ownvc_Interpolate16x16QPBilinear_VC1_8u_C1R = kVC1Bilinear<16, 16, 1>;
inline constexpr auto ownvc_Interpolate8x8QPBilinear_VC1_8u_C1R = kVC1Bilinear<8, 8, 1>;
inline constexpr auto ownvc_Interpolate8x4QPBilinear_VC1_8u_C1R = kVC1Bilinear<8, 4, 1>;
inline constexpr auto ownvc_Interpolate4x4QPBilinear_VC1_8u_C1R = kVC1Bilinear<4, 4, 1>;
inline constexpr auto ownvc_Interpolate8x8QPBilinear_VC1_8u_C2R = kVC1Bilinear<16, 8, 2>;
inline constexpr auto ownvc_Interpolate8x4QPBilinear_VC1_8u_C2R = kVC1Bilinear<16, 4, 2>;
inline constexpr auto ownvc_Interpolate4x4QPBilinear_VC1_8u_C2R = kVC1Bilinear<8, 4, 2>;

}  // namespace mox
