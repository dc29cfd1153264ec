#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "moxvc/h264_reconstruct.h"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

/// Faults: argument I is null, out of range, an illegal step, or a mode whose edges are denied.
template <std::size_t I>
auto null() {
  return std::pair{moxStsNullPointer, set<I>(nullptr)};
}
template <std::size_t I, class Value>
auto range(Value value) {
  return std::pair{moxStsOutOfRange, set<I>(value)};
}
template <std::size_t I>
auto step(Mox32s value) {
  return std::pair{moxStsBadStep, set<I>(value)};
}
template <std::size_t I>
auto denied(Mox32u mode) {
  return std::pair{moxStsEdgeUnavailable, set<I>(mode)};
}

constexpr Mox32u kNoBlock = 0, kNoEdge = 0xFF, kDC = 2, kChromaDC = 0, kPlane = 3;

class ReconstructArguments : public PerGeneration {
 protected:
  /// The stream, what it points to, then the faults given, in this order. A failing call writes nothing; a good one,
  /// without a coded block, leaves the stream where it is.
  template <class... Parameters, class Good, class... Fault>
  void check(MoxStatus (*function)(Parameters...), const Good& good, Fault... faults) {
    static Mox16s* const nothing = nullptr;
    Mox16s** const holds_null = const_cast<Mox16s**>(&nothing);
    Call{function, good}
        .keeps(plane.memory().data(), plane.memory().size())
        .keeps(&next, sizeof next)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<0>(holds_null)},
                       {faults.first, faults.second}...});
    EXPECT_EQ(next, coeffs.data());
  }

  Plane<Mox8u> plane{40, 16, 40};
  Guarded<Mox16s> coeffs{16}, table{64};
  Mox16s* next = coeffs.data();
  Mox16s** stream = &next;
  Mox8u *y = plane.at(0, 0), *u = y, *v = plane.at(20, 0);
  const Mox16s* scales = table.data();
  const Mox32u modes[16] = {2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2};
  const Mox32u* types = modes;
};

TEST_P(ReconstructArguments, FlatLuma) {
  check(lib(MOX_FN(moxiReconstructLumaInterMB_H264_16s8u_C1R)), std::tuple{stream, y, 40, kNoBlock, 51}, null<1>(),
        range<4>(52), range<4>(-1));
  check(lib(MOX_FN(moxiReconstructLumaIntraMB_H264_16s8u_C1R)), std::tuple{stream, y, 40, types, kNoBlock, 0, kNoEdge},
        null<1>(), null<3>(), range<5>(52), range<5>(-1));
  check(lib(MOX_FN(moxiReconstructLumaIntraHalfMB_H264_16s8u_C1R)),
        std::tuple{stream, y, 40, types, kNoBlock, 51, kNoEdge}, null<1>(), null<3>(), range<5>(52), range<5>(-1),
        step<2>(0), step<2>(-40));
  check(lib(MOX_FN(moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R)),
        std::tuple{stream, y, 40, kDC, kNoBlock, 51, kNoEdge}, null<1>(), range<5>(52), range<5>(-1), range<3>(4u),
        denied<3>(kPlane));
}

TEST_P(ReconstructArguments, FlatChroma) {
  check(lib(MOX_FN(moxiReconstructChromaInterMB_H264_16s8u_P2R)), std::tuple{stream, u, v, 40, kNoBlock, 39}, null<1>(),
        null<2>(), range<5>(40), range<5>(-1));
  check(lib(MOX_FN(moxiReconstructChromaIntraMB_H264_16s8u_P2R)),
        std::tuple{stream, u, v, 40, kChromaDC, kNoBlock, 39, kNoEdge}, null<1>(), null<2>(), range<6>(40),
        range<6>(-1), range<4>(4u), denied<4>(kPlane));
  for (auto* half : {lib(MOX_FN(moxiReconstructChromaIntraHalfsMB_H264_16s8u_P2R)),
                     lib(MOX_FN(moxiReconstructChromaIntraHalvesMB_H264_16s8u_P2R))}) {
    check(half, std::tuple{stream, u, v, 40, kChromaDC, kNoBlock, 39, kNoEdge, kNoEdge}, null<1>(), null<2>(),
          range<6>(52), range<6>(-1), denied<4>(4u));
  }
}

TEST_P(ReconstructArguments, ScaledLuma) {
  for (auto* inter : {lib(MOX_FN(moxiReconstructLumaInter4x4MB_H264_16s8u_C1R)),
                      lib(MOX_FN(moxiReconstructLumaInter8x8MB_H264_16s8u_C1R))}) {
    check(inter, std::tuple{stream, y, 40, kNoBlock, 51, scales, 0}, null<1>(), null<5>(), range<4>(52), range<4>(-1));
  }
  for (auto* intra : {lib(MOX_FN(moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R)),
                      lib(MOX_FN(moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R)),
                      lib(MOX_FN(moxiReconstructLumaIntraHalf4x4MB_H264_16s8u_C1R)),
                      lib(MOX_FN(moxiReconstructLumaIntraHalf8x8MB_H264_16s8u_C1R))}) {
    check(intra, std::tuple{stream, y, 40, types, kNoBlock, 51, kNoEdge, scales, 0}, null<1>(), null<3>(), null<7>(),
          range<5>(52), range<5>(-1));
  }
  check(lib(MOX_FN(moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R)),
        std::tuple{stream, y, 40, kDC, kNoBlock, 51, kNoEdge, scales, 0}, null<1>(), null<7>(), range<5>(52),
        range<5>(-1), range<3>(4u), denied<3>(kPlane));
}

TEST_P(ReconstructArguments, ScaledChroma) {
  check(lib(MOX_FN(moxiReconstructChromaInter4x4MB_H264_16s8u_P2R)),
        std::tuple{stream, u, v, 40, kNoBlock, 39, 39, scales, scales, 0}, null<1>(), null<2>(), null<7>(), null<8>(),
        range<5>(40), range<5>(-1), range<6>(40), range<6>(-1));
  check(lib(MOX_FN(moxiReconstructChromaIntra4x4MB_H264_16s8u_P2R)),
        std::tuple{stream, u, v, 40, kChromaDC, kNoBlock, 39, 39, kNoEdge, scales, scales, 0}, null<1>(), null<2>(),
        null<9>(), null<10>(), range<6>(40), range<6>(-1), range<7>(40), range<7>(-1), range<4>(4u), denied<4>(kPlane));
  for (auto* half : {lib(MOX_FN(moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R)),
                     lib(MOX_FN(moxiReconstructChromaIntraHalves4x4MB_H264_16s8u_P2R))}) {
    check(half, std::tuple{stream, u, v, 40, kChromaDC, kNoBlock, 39, 39, kNoEdge, kNoEdge, scales, scales, 0},
          null<1>(), null<2>(), null<10>(), null<11>(), range<6>(40), range<6>(-1), range<7>(40), range<7>(-1),
          denied<4>(4u));
  }
}

MOX_INSTANTIATE_GENERATIONS(ReconstructArguments);

}  // namespace
}  // namespace mox::test
