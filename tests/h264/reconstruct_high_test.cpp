#include "moxvc/h264_reconstruct_high.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "h264/macroblock_scene.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using Rec = MoxiReconstructHighRec;

class ReconstructHigh : public PerGeneration {
 protected:
  std::vector<Form> forms() const {
#define MOX_FORM(name, kind, n, blocks, family, ...)                                             \
  Form {                                                                                         \
    kind, n, blocks, family, #name,                                                              \
        [f = lib(MOX_FN(moxiReconstruct##name))](const Macroblock& m) { return f(__VA_ARGS__); } \
  }
#define MOX_LUMA(name, ...) MOX_FORM(Luma##name##_H264High_32s16u_IP1R, __VA_ARGS__)
#define MOX_422(name, kind, ...)                                                                                      \
  MOX_FORM(Chroma422##name##4x4_H264High_16s8u_IP2R, kind, 4, 8, kHigh, m.records, __VA_ARGS__ m.scale_u, m.scale_v), \
      MOX_FORM(Chroma422##name##4x4_H264High_32s16u_IP2R, kind, 4, 8, kWide, m.records, __VA_ARGS__ m.scale_u,        \
               m.scale_v)
    return {
        MOX_LUMA(Inter4x4, kInter, 4, 16, kWide, m.planes[0]),
        MOX_LUMA(Inter8x8, kInter, 8, 4, kWide, m.planes[0]),
        MOX_LUMA(Intra4x4, kIntra, 4, 16, kWide, m.planes[0], m.types, m.edge),
        MOX_LUMA(Intra8x8, kIntra, 8, 4, kWide, m.planes[0], m.types, m.edge),
        MOX_LUMA(IntraHalf4x4, kIntra, 4, 8, kWide, m.planes[0], m.types, m.edge),
        MOX_LUMA(IntraHalf8x8, kIntra, 8, 2, kWide, m.planes[0], m.types, m.edge),
        MOX_LUMA(Intra16x16, k16x16, 4, 16, kWide, m.planes[0], m.mode, m.edge),
        MOX_FORM(ChromaInter4x4_H264High_32s16u_IP2R, kChromaInter, 4, 4, kWide, m.records),
        MOX_FORM(ChromaIntra4x4_H264High_32s16u_IP2R, kChroma, 4, 4, kWide, m.records, m.mode, m.edge),
        MOX_FORM(ChromaIntraHalf4x4_H264High_32s16u_IP2R, kChromaHalves, 4, 4, kWide, m.records, m.mode, m.edge,
                 m.lower_edge),
        MOX_422(Inter, kChromaInter, ),
        MOX_422(Intra, kChroma, m.mode, m.edge, ),
        MOX_422(IntraHalf, kChromaHalves, m.mode, m.edge, m.lower_edge, ),
    };
#undef MOX_422
#undef MOX_LUMA
#undef MOX_FORM
  }
};

TEST_P(ReconstructHigh, LikeTheOracle) {
  Random random;
  for (const Form& form : forms()) {
    form.family == kWide ? expect_like_oracle<Mox32s>(form, random) : expect_like_oracle<Mox16s>(form, random);
    if (HasFatalFailure()) return;
  }
}

/// Cases worked out by hand, with scales of 16: at QP 24 a 4x4 coefficient x becomes 16 x.
TEST_P(ReconstructHigh, KnownResults) {
  Random random;
  const auto all = forms();
  const auto run = [&](const std::string& name, Mox32u cbp, int qp, Mox32u depth, std::vector<Mox32s> coeffs,
                       int before, Mox32u bypass = 0) {
    const auto form = std::ranges::find_if(all, [&](const Form& f) { return name == f.name; });
    Scene<Mox32s> scene(*form, random, cbp, 0, 0xFF);
    scene.fill_samples(static_cast<Mox16u>(before));
    for (int i = 0; i < 2; ++i) std::ranges::fill(scene.table(i), Mox16s{16});
    std::ranges::copy(coeffs, scene.stream().begin());
    scene.m.u.qp = qp, scene.m.u.bitDepth = depth, scene.m.u.bypass = bypass;
    scene.m.mode = 0, scene.m.scale_u = scene.m.scale_v = 16;
    EXPECT_EQ(form->run(scene.m), moxStsOk) << name;
    EXPECT_EQ(scene.used(), static_cast<std::ptrdiff_t>(scene.stream().size())) << name;
    return scene.samples(0);
  };
  const std::string inter4x4 = "LumaInter4x4_H264High_32s16u_IP1R", inter8x8 = "LumaInter8x8_H264High_32s16u_IP1R",
                    chroma = "ChromaInter4x4_H264High_32s16u_IP2R", dc = "ChromaIntra4x4_H264High_32s16u_IP2R",
                    chroma422 = "Chroma422Inter4x4_H264High_32s16u_IP2R";

  // 64 * 16 = 1024, (1024 + 32) >> 6 = 16; -64 gives -16, and a sum below 0 is 0 with and without AC coefficients.
  EXPECT_EQ(run(inter4x4, 1u << 5, 24, 10, {64}, 1000)[8], 1016);
  EXPECT_EQ(run(inter4x4, 1u << 5, 24, 10, {64}, 1010)[8], 1023);
  EXPECT_EQ(run(inter4x4, 1u << 5, 24, 10, {-64}, 10)[8], 0);
  EXPECT_EQ(run(inter4x4, 1u << 5, 24, 14, {40000}, 0)[8], 10000) << "a coefficient of more than 16 bits";
  EXPECT_EQ(run(inter8x8, 1, 36, 14, {40000}, 0)[0], 10000);
  // Sums of one value v are v; at QP 30 it becomes 16 v, at QP 33 in 4:2:2 as well: 16, (16 * 16 + 32) >> 6 = 4.
  EXPECT_EQ(run(chroma, 1, 30, 10, {16, 0, 0, 0}, 500), std::vector<int>(64, 504));
  EXPECT_EQ(run(chroma, 1, 30, 10, {-64, 0, 0, 0}, 10), std::vector<int>(64, 0));
  EXPECT_EQ(run(dc, 0, 30, 12, {}, 0), std::vector<int>(64, 2048)) << "no edge";
  EXPECT_EQ(run(chroma422, 1, 33, 10, {16, 0, 0, 0, 0, 0, 0, 0}, 500), std::vector<int>(128, 504));
  // One QP less: (15 * 16 + 1) >> 1 = 120, (120 + 32) >> 6 = 2.
  EXPECT_EQ(run(chroma422, 1, 32, 10, {15, 0, 0, 0, 0, 0, 0, 0}, 500), std::vector<int>(128, 502));
  // Lossless: each DC value in the corner of its block, limited to 14 bits.
  const auto corners = run(chroma422, 1, 0, 14, {1, 2, 3, 4, 5, 6, 7, 20000}, 100, 0x80000000);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(corners[i / 2 * 32 + i % 2 * 4], i < 7 ? 101 + i : 16383);
  EXPECT_EQ(std::ranges::count(corners, 100), 120);
  EXPECT_EQ(run(inter4x4, 2, 0, 14, {1, -101, 16284}, 100, 1)[2], 16383);
  EXPECT_EQ(run(inter4x4, 2, 1, 14, {3}, 100, 1)[0], 100) << "no QP of 0: (3 * 16 + 8) >> 4 = 3, (3 + 32) >> 6 = 0";
}

/// Every fault gives its status alone and with all that are tested after it; nothing is written, read or moved.
template <class Coeff>
void expect_order(const Form& form, Random& random) {
  struct Fault {
    MoxStatus status;
    std::function<void(Macroblock&)> spoil;
  };
  std::vector<Fault> faults;
  const auto add = [&](MoxStatus status, auto spoil) { faults.push_back({status, spoil}); };
  const auto in_planes = [&](MoxStatus status, auto member, auto value) {
    add(status, [=](Macroblock& m) { m.u.*member = value; });
    if (form.chroma()) add(status, [=](Macroblock& m) { m.v.*member = value; });
  };
  static Coeff* nothing = nullptr;
  if (form.chroma()) add(moxStsNullPointer, [](Macroblock& m) { m.records = nullptr; });
  for (int i = 0; i <= form.chroma(); ++i) add(moxStsNullPointer, [i](Macroblock& m) { m.planes[i] = nullptr; });
  in_planes(moxStsNullPointer, &Rec::ppSrcDstCoeff, nullptr);
  in_planes(moxStsNullPointer, &Rec::ppSrcDstCoeff, &nothing);
  in_planes(moxStsNullPointer, &Rec::pSrcDstPlane, nullptr);
  in_planes(moxStsNullPointer, &Rec::pQuantTable, nullptr);
  if (form.kind == kIntra) add(moxStsNullPointer, [](Macroblock& m) { m.types = nullptr; });
  in_planes(moxStsBadStep, &Rec::srcDstStep, 0);
  in_planes(moxStsBadStep, &Rec::srcDstStep, -64);
  const int top_qp = (form.chroma() ? 39 : 51) + (form.family == kWide ? 12 : 0);  // 10 bits: luma 63
  in_planes(moxStsOutOfRange, &Rec::qp, top_qp + 1);
  in_planes(moxStsOutOfRange, &Rec::qp, -1);
  for (Mox32u depth : {7u, 15u, 0u, 0xFFFFFFFFu}) {
    if (form.family == kWide) add(moxStsOutOfRange, [depth](Macroblock& m) { m.u.bitDepth = depth, m.u.qp = 0; });
  }
  if (form.kind == k16x16 || form.kind == kChroma) add(moxStsOutOfRange, [](Macroblock& m) { m.mode = 4; });
  if (form.kind >= k16x16 && form.intra()) add(moxStsEdgeUnavailable, [](Macroblock& m) { m.mode = 3; });

  for (std::size_t first = 0; first <= faults.size(); ++first) {
    for (std::size_t last : {std::min(first + 1, faults.size()), faults.size()}) {
      const bool good = first == faults.size();
      const Mox32u cbp = good ? 0 : 0xFFFFFFFF;
      Scene<Coeff> scene(form, random, cbp, cbp, 0xFF);
      scene.m.u.qp = scene.m.v.qp = top_qp, scene.m.mode = form.chroma() ? 0 : 2;
      std::ranges::fill(scene.m.modes, 2u);
      scene.m.u.bitDepth = form.family == kWide ? 10 : 0xFFFFFFFF;
      scene.keep();
      for (std::size_t i = last; i-- > first;) faults[i].spoil(scene.m);
      ASSERT_EQ(form.run(scene.m), good ? moxStsOk : faults[first].status) << form.name << ": fault " << first;
      if (!good || !form.intra()) scene.expect_same();
    }
  }
}

TEST_P(ReconstructHigh, ArgumentOrder) {
  Random random;
  for (const Form& form : forms()) {
    form.family == kWide ? expect_order<Mox32s>(form, random) : expect_order<Mox16s>(form, random);
    if (HasFatalFailure()) return;
  }
}

MOX_INSTANTIATE_GENERATIONS(ReconstructHigh);

}  // namespace
}  // namespace mox::test
