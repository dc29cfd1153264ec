#include "moxvc/h264_reconstruct.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "h264/macroblock_scene.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

class Reconstruct : public PerGeneration {
 protected:
  static Mox16s** stream(const Macroblock& m) { return static_cast<Mox16s**>(m.u.ppSrcDstCoeff); }
  static Mox8u* samples(const MoxiReconstructHighRec& plane) { return static_cast<Mox8u*>(plane.pSrcDstPlane); }
  std::vector<Form> forms() const {
#define MOX_LUMA(name, kind, n, blocks, family, ...)                                                                   \
  Form {                                                                                                               \
    kind, n, blocks, family, #name, [f = lib(MOX_FN(moxiReconstruct##name##MB_H264_16s8u_C1R))](const Macroblock& m) { \
      return f(stream(m), samples(m.u), m.u.srcDstStep, __VA_ARGS__);                                                  \
    }                                                                                                                  \
  }
#define MOX_CHROMA(name, kind, family, ...)                                                                       \
  Form {                                                                                                          \
    kind, 4, 4, family, #name, [f = lib(MOX_FN(moxiReconstruct##name##MB_H264_16s8u_P2R))](const Macroblock& m) { \
      return f(stream(m), samples(m.u), samples(m.v), m.u.srcDstStep, __VA_ARGS__);                               \
    }                                                                                                             \
  }
    return {
        MOX_LUMA(LumaInter, kInter, 4, 16, kFlat, m.u.cbp, m.u.qp),
        MOX_LUMA(LumaIntra, kIntra, 4, 16, kFlat, m.modes, m.u.cbp, m.u.qp, m.edge),
        MOX_LUMA(LumaIntraHalf, kIntra, 4, 8, kFlat, m.modes, m.u.cbp, m.u.qp, m.edge),
        MOX_LUMA(LumaIntra16x16, k16x16, 4, 16, kFlat, m.mode, m.u.cbp, m.u.qp, m.edge),
        MOX_CHROMA(ChromaInter, kChromaInter, kFlat, m.u.cbp, m.u.qp),
        MOX_CHROMA(ChromaIntra, kChroma, kFlat, m.mode, m.u.cbp, m.u.qp, m.edge),
        MOX_CHROMA(ChromaIntraHalfs, kChromaHalves, kFlat, m.mode, m.u.cbp, m.u.qp, m.edge, m.lower_edge),
        MOX_CHROMA(ChromaIntraHalves, kChromaHalves, kFlat, m.mode, m.u.cbp, m.u.qp, m.edge, m.lower_edge),
        MOX_LUMA(LumaInter4x4, kInter, 4, 16, kScaled, m.u.cbp, m.u.qp, m.u.pQuantTable, m.bypass()),
        MOX_LUMA(LumaInter8x8, kInter, 8, 4, kScaled, m.u.cbp, m.u.qp, m.u.pQuantTable, m.bypass()),
        MOX_LUMA(LumaIntra4x4, kIntra, 4, 16, kScaled, m.modes, m.u.cbp, m.u.qp, m.edge, m.u.pQuantTable, m.bypass()),
        MOX_LUMA(LumaIntra8x8, kIntra, 8, 4, kScaled, m.modes, m.u.cbp, m.u.qp, m.edge, m.u.pQuantTable, m.bypass()),
        MOX_LUMA(LumaIntraHalf4x4, kIntra, 4, 8, kScaled, m.modes, m.u.cbp, m.u.qp, m.edge, m.u.pQuantTable,
                 m.bypass()),
        MOX_LUMA(LumaIntraHalf8x8, kIntra, 8, 2, kScaled, m.modes, m.u.cbp, m.u.qp, m.edge, m.u.pQuantTable,
                 m.bypass()),
        MOX_LUMA(LumaIntra_16x16, k16x16, 4, 16, kScaled, m.mode, m.u.cbp, m.u.qp, m.edge, m.u.pQuantTable, m.bypass()),
        MOX_CHROMA(ChromaInter4x4, kChromaInter, kScaled, m.u.cbp, m.u.qp, m.v.qp, m.u.pQuantTable, m.v.pQuantTable,
                   m.bypass()),
        MOX_CHROMA(ChromaIntra4x4, kChroma, kScaled, m.mode, m.u.cbp, m.u.qp, m.v.qp, m.edge, m.u.pQuantTable,
                   m.v.pQuantTable, m.bypass()),
        MOX_CHROMA(ChromaIntraHalfs4x4, kChromaHalves, kScaled, m.mode, m.u.cbp, m.u.qp, m.v.qp, m.edge, m.lower_edge,
                   m.u.pQuantTable, m.v.pQuantTable, m.bypass()),
        MOX_CHROMA(ChromaIntraHalves4x4, kChromaHalves, kScaled, m.mode, m.u.cbp, m.u.qp, m.v.qp, m.edge, m.lower_edge,
                   m.u.pQuantTable, m.v.pQuantTable, m.bypass()),
    };
#undef MOX_LUMA
#undef MOX_CHROMA
  }
  const Form& form(const std::string& name) {
    if (all_.empty()) all_ = forms();
    for (const Form& f : all_) {
      if (name == f.name) return f;
    }
    ADD_FAILURE() << "no form " << name;
    return all_[0];
  }

 private:
  std::vector<Form> all_;
};

TEST_P(Reconstruct, LikeTheOracle) {
  Random random;
  for (const Form& form : forms()) {
    expect_like_oracle<Mox16s>(form, random);
    if (HasFatalFailure()) return;
  }
}

/// Cases worked out by hand: flat multiplier 10 at QP 0, scale 16 at QP 24 (no shift), everything on samples of 100.
TEST_P(Reconstruct, KnownResults) {
  Random random;
  constexpr Mox32u kNothing = 0xFF;
  const auto run = [&](const char* name, Mox32u cbp, MoxStatus status, std::vector<Mox16s> coeffs, auto prepare) {
    const Form& f = form(name);
    auto scene = std::make_unique<Scene<Mox16s>>(f, random, cbp, 0, kNothing);
    scene->fill_samples(100);
    for (int i = 0; i < 2; ++i) std::ranges::fill(scene->table(i), Mox16s{16});
    std::copy(coeffs.begin(), coeffs.end(), scene->stream().begin());
    scene->m.lower_edge = kNothing;
    prepare(scene->m);
    EXPECT_EQ(f.run(scene->m), status) << name;
    EXPECT_EQ(scene->used(), status < 0 ? 0 : scene->stream().size()) << name;
    return scene;
  };
  const auto flat = [](int count, int value) { return std::vector<int>(static_cast<std::size_t>(count), value); };
  const auto as_is = [](Macroblock&) {};

  EXPECT_EQ(run("LumaInter", 1, moxStsOk, {}, as_is)->samples(0), flat(256, 100));
  // 64 * 10 = 640, (640 + 32) >> 6 = 10, in block 4, which lies at (8, 0).
  auto inter = run("LumaInter", 1u << 5, moxStsOk, {64}, as_is)->samples(0);
  EXPECT_EQ(inter[8], 110);
  EXPECT_EQ(inter[3 * 16 + 11], 110);
  EXPECT_EQ(std::count(inter.begin(), inter.end(), 110), 16);

  // Every DC sum of one value v is v; 64 * 10 >> 2 rounded is 160, (160 + 32) >> 6 = 3; AC blocks without DC.
  auto luma = run("LumaIntra16x16", 1, moxStsOk, {64}, [](Macroblock& m) { m.mode = 2; });
  EXPECT_EQ(luma->samples(0), flat(256, 131));
  EXPECT_EQ(luma->stream()[15], 160);
  auto ac = run("LumaIntra16x16", 2, moxStsOk, {4095}, [](Macroblock& m) { m.mode = 2; });
  EXPECT_EQ(ac->samples(0), flat(256, 128)) << "coefficient 0 of an AC block counts for nothing";

  // 64 * 10 >> 1 = 320, (320 + 32) >> 6 = 5.
  auto chroma = run("ChromaInter", 1u << 17, moxStsOk, {64, 0, 0, 0}, as_is);
  EXPECT_EQ(chroma->samples(0), flat(64, 105));
  EXPECT_EQ(chroma->samples(1), flat(64, 100));

  auto substituted = run("LumaIntra", 1u << 16, moxStsEdgeSubstituted, {64}, as_is)->samples(0);
  EXPECT_EQ(std::count(substituted.begin(), substituted.end(), 128), 240) << "vertical with nothing above";
  EXPECT_EQ(std::count(substituted.end() - 64, substituted.end(), 138), 16) << "the last block is done too";

  for (const char* name : {"ChromaIntraHalfs", "ChromaIntraHalves", "ChromaIntraHalfs4x4", "ChromaIntraHalves4x4"}) {
    for (Mox32u mode : {1u, 2u, 3u, 4u, 0xFFFFFFFFu}) {
      auto kept = run(name, 1u << 17, moxStsEdgeUnavailable, {64}, [mode](Macroblock& m) { m.mode = mode; });
      EXPECT_EQ(kept->samples(1), flat(64, 100));
    }
    const bool plain = form(name).family == kFlat;
    auto late = run(name, 1u << 17, moxStsOutOfRange, {64}, [](Macroblock& m) { m.u.qp = 40; });
    EXPECT_EQ(late->samples(1), flat(64, plain ? 128 : 100)) << "the plain form has predicted by then";
  }
  run("ChromaIntraHalfs", 1u << 17, moxStsOutOfRange, {64}, [](Macroblock& m) { m.mode = 1, m.u.qp = 52; });

  // QP 1: (5 * 16 + 8) >> 4 = 5, (5 + 32) >> 6 = 0. Lossless needs QP 0, and the low 8 bits of bypass.
  const auto lossless = [](int qp, Mox32u bypass) { return [=](Macroblock& m) { m.u.qp = qp, m.u.bypass = bypass; }; };
  for (const char* name : {"LumaInter4x4", "LumaInter8x8"}) {
    const Mox32u first = form(name).n == 4 ? 2 : 1;
    EXPECT_EQ(run(name, first, moxStsOk, {5}, lossless(1, 1))->samples(0), flat(256, 100));
    EXPECT_EQ(run(name, first, moxStsOk, {5}, lossless(0, 0x100))->samples(0), flat(256, 100));
    auto added = run(name, first, moxStsOk, {5, -101}, lossless(0, 1))->samples(0);
    EXPECT_EQ(added[0], 105);
    EXPECT_EQ(added[1], 0);
    EXPECT_EQ(added[2], 100);
  }
  auto dc = run("LumaIntra_16x16", 1, moxStsOk, {9, 7}, [](Macroblock& m) { m.mode = 2, m.u.bypass = 1; });
  auto bypassed = dc->samples(0);
  EXPECT_EQ(bypassed[0], 137);
  EXPECT_EQ(bypassed[4], 135);
  EXPECT_EQ(std::count(bypassed.begin(), bypassed.end(), 128), 254) << "of each block the first sample alone";
}

/// The plain half form tests each mode when its block is due; the others do something harmless.
TEST_P(Reconstruct, IllegalModes) {
  Random random;
  for (const char* name : {"LumaIntraHalf", "LumaIntra", "LumaIntra4x4", "LumaIntra8x8", "LumaIntraHalf4x4"}) {
    const Form& f = form(name);
    for (int n = 0; n < 64; ++n) {
      Scene<Mox16s> scene(f, random, 0xFFFFFFFF, 0, random.bits());
      scene.fill_in(random);
      const int bad = n % f.blocks;
      scene.m.modes[bad] = n < 16 ? 9u : n < 32 ? 0xFFFFFFFFu : random.bits() | 16;
      if (f.flat_half()) {
        scene.reconstruct(bad);
        ASSERT_EQ(f.run(scene.m), moxStsOutOfRange);
        scene.expect_same();
      } else {
        scene.reconstruct();
        ASSERT_GE(f.run(scene.m), moxStsOk);
        scene.expect_outside_untouched();
      }
      if (HasFatalFailure()) return;
    }
  }
}

MOX_INSTANTIATE_GENERATIONS(Reconstruct);

}  // namespace
}  // namespace mox::test
