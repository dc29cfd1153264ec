#include "moxvc/h264_reconstruct.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <memory>
#include <vector>

#include "oracle/reconstruct.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

enum Kind { kInter, kIntra, k16x16, kChromaInter, kChroma, kChromaHalves };

/// One macroblock: arguments, planes that end where the allowed neighbours end, and a stream that ends with its last
/// coefficient.
struct Macroblock {
  Mox32u cbp = 0, edge = 0, lower_edge = 0, mode = 0;
  Mox32s qp = 0, qp_v = 0, bypass = 0, step = 0;
  Mox32u modes[16] = {};
  Mox16s *table = nullptr, *table_v = nullptr, *next = nullptr;
  Mox8u *u = nullptr, *v = nullptr;  // u is luma too
};

/// A function under test. `blocks` of n x n samples are what it goes through.
struct Form {
  Kind kind;
  int n, blocks;
  bool scaled;
  const char* name;
  std::function<MoxStatus(Macroblock&)> run;

  bool chroma() const { return kind >= kChromaInter; }
  int width() const { return chroma() ? 8 : 16; }
  int height() const { return chroma() ? 8 : kind != kInter && kind != k16x16 && blocks * n * n == 128 ? 8 : 16; }
  bool flat_half() const { return kind == kIntra && blocks == 8 && !scaled; }
  int bits(Mox32u cbp, int first, int count) const { return std::popcount(cbp >> first & ((1u << count) - 1)); }
  /// Coefficients that the pattern announces.
  int coefficients(Mox32u cbp) const {
    if (chroma()) return 4 * bits(cbp, 17, 2) + 16 * bits(cbp, 19, 8);
    if (kind == k16x16) return 16 * bits(cbp, 0, 17);
    return n * n * bits(cbp, first_bit(), blocks);
  }
  /// Where the bits of the blocks start: behind bit 0, except in the patterns of their own.
  int first_bit() const { return n == 4 && blocks == 16 ? 1 : 0; }
};

class Reconstruct : public PerGeneration {
 protected:
  std::vector<Form> forms() const {
#define MOX_LUMA(name, kind, n, blocks, scaled, ...)                                                             \
  Form {                                                                                                         \
    kind, n, blocks, scaled, #name, [f = lib(MOX_FN(moxiReconstruct##name##MB_H264_16s8u_C1R))](Macroblock& m) { \
      return f(&m.next, m.u, m.step, __VA_ARGS__);                                                               \
    }                                                                                                            \
  }
#define MOX_CHROMA(name, kind, scaled, ...)                                                                 \
  Form {                                                                                                    \
    kind, 4, 8, scaled, #name, [f = lib(MOX_FN(moxiReconstruct##name##MB_H264_16s8u_P2R))](Macroblock& m) { \
      return f(&m.next, m.u, m.v, m.step, __VA_ARGS__);                                                     \
    }                                                                                                       \
  }
    return {
        MOX_LUMA(LumaInter, kInter, 4, 16, false, m.cbp, m.qp),
        MOX_LUMA(LumaIntra, kIntra, 4, 16, false, m.modes, m.cbp, m.qp, m.edge),
        MOX_LUMA(LumaIntraHalf, kIntra, 4, 8, false, m.modes, m.cbp, m.qp, m.edge),
        MOX_LUMA(LumaIntra16x16, k16x16, 4, 16, false, m.mode, m.cbp, m.qp, m.edge),
        MOX_CHROMA(ChromaInter, kChromaInter, false, m.cbp, m.qp),
        MOX_CHROMA(ChromaIntra, kChroma, false, m.mode, m.cbp, m.qp, m.edge),
        MOX_CHROMA(ChromaIntraHalfs, kChromaHalves, false, m.mode, m.cbp, m.qp, m.edge, m.lower_edge),
        MOX_CHROMA(ChromaIntraHalves, kChromaHalves, false, m.mode, m.cbp, m.qp, m.edge, m.lower_edge),
        MOX_LUMA(LumaInter4x4, kInter, 4, 16, true, m.cbp, m.qp, m.table, m.bypass),
        MOX_LUMA(LumaInter8x8, kInter, 8, 4, true, m.cbp, m.qp, m.table, m.bypass),
        MOX_LUMA(LumaIntra4x4, kIntra, 4, 16, true, m.modes, m.cbp, m.qp, m.edge, m.table, m.bypass),
        MOX_LUMA(LumaIntra8x8, kIntra, 8, 4, true, m.modes, m.cbp, m.qp, m.edge, m.table, m.bypass),
        MOX_LUMA(LumaIntraHalf4x4, kIntra, 4, 8, true, m.modes, m.cbp, m.qp, m.edge, m.table, m.bypass),
        MOX_LUMA(LumaIntraHalf8x8, kIntra, 8, 2, true, m.modes, m.cbp, m.qp, m.edge, m.table, m.bypass),
        MOX_LUMA(LumaIntra_16x16, k16x16, 4, 16, true, m.mode, m.cbp, m.qp, m.edge, m.table, m.bypass),
        MOX_CHROMA(ChromaInter4x4, kChromaInter, true, m.cbp, m.qp, m.qp_v, m.table, m.table_v, m.bypass),
        MOX_CHROMA(ChromaIntra4x4, kChroma, true, m.mode, m.cbp, m.qp, m.qp_v, m.edge, m.table, m.table_v, m.bypass),
        MOX_CHROMA(ChromaIntraHalfs4x4, kChromaHalves, true, m.mode, m.cbp, m.qp, m.qp_v, m.edge, m.lower_edge, m.table,
                   m.table_v, m.bypass),
        MOX_CHROMA(ChromaIntraHalves4x4, kChromaHalves, true, m.mode, m.cbp, m.qp, m.qp_v, m.edge, m.lower_edge,
                   m.table, m.table_v, m.bypass),
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

/// A macroblock with all that belongs to it, and the means to compare it with the oracle's.
class Scene {
 public:
  Scene(const Form& form, Random& random, Mox32u cbp, Mox32u edge)
      : form_(form),
        stream_(static_cast<std::size_t>(form.coefficients(cbp)), Placement::at_end()),
        table_(64, Placement::at_end()),
        table_v_(16, Placement::at_end()) {
    const bool intra = form.kind != kInter && form.kind != kChromaInter;
    const int right = intra && !form.chroma() && !(edge & 32) ? form.n : 0;
    x_ = intra && (edge & 17) != 17, y_ = intra && ((edge & 20) != 20 || right);
    const int width = x_ + form.width() + right, height = y_ + form.height();
    int steps[] = {width, width + 3, 3 * width, -width, -width - 5};
    const int step = steps[random(0, form.flat_half() ? 2 : 4)];
    for (auto* planes : {&planes_, &expected_}) {
      for (int i = 0; i < 2; ++i) {
        planes->push_back(std::make_unique<Plane<Mox8u>>(
            width, height, step, random.chance(0.5) ? Placement::at_end() : Placement::at_start()));
      }
    }
    m.cbp = cbp, m.edge = edge, m.step = step;
    m.u = planes_[0]->at(x_, y_), m.v = planes_[1]->at(x_, y_), m.next = stream_.data();
    m.table = table_.data(), m.table_v = table_v_.data();
  }

  void fill_in(Random& random) {
    for (auto& plane : planes_) fill(plane->memory(), kPatterns[random(0, 6)], random);
    const int amplitudes[] = {20, 300, 2063, 32767};
    const int amplitude = amplitudes[random(0, 3)];
    fill(std::span(stream_.begin(), stream_.size()), random.chance(0.5) ? Pattern::kSparse : kPatterns[random(0, 6)],
         random, -amplitude - 1, amplitude);
    for (auto* table : {&table_, &table_v_}) {
      const bool legal = random.chance(0.7);
      random.fill(std::span(table->begin(), table->size()), legal ? 10 : -32768, legal ? 29 * 255 : 32767);
    }
    const int top_qp = form_.chroma() ? 39 : 51;
    m.qp = random.chance(0.2) ? 0 : random(0, top_qp), m.qp_v = random.chance(0.2) ? 0 : random(0, top_qp);
    if (!form_.scaled) m.qp_v = m.qp;
    const int bypasses[] = {0, 1, 0x100, -1, 0x7F00, -256};
    m.bypass = bypasses[random(0, 5)];
    for (Mox32u& mode : m.modes) mode = static_cast<Mox32u>(random(0, 8));
    m.mode = static_cast<Mox32u>(random(0, 3));
  }

  /// The oracle's status, with its samples and its stream kept for expect_same().
  MoxStatus reconstruct() { return reconstruct(form_.blocks); }
  /// The first blocks of an Intra 4x4 or 8x8 macroblock alone.
  MoxStatus reconstruct(int blocks) {
    for (int i = 0; i < 2; ++i) expected_[i]->assign(*planes_[i]);
    after_ = {{stream_.begin(), stream_.end()}, 0};
    const oracle::Quantiser q[2] = {quantiser(m.qp, m.table), quantiser(m.qp_v, m.table_v)};
    const oracle::Picture at[2] = {picture(0), picture(1)};
    const auto of_edges = [](Mox32u e) { return oracle::Available{!(e & 4), !(e & 1), !(e & 16), false}; };
    const oracle::Available a = of_edges(m.edge);
    const int mode = static_cast<int>(m.mode), luma_mode = oracle::to_luma_order(mode);
    const unsigned coded = m.cbp >> form_.first_bit();
    switch (form_.kind) {
      case kInter: oracle::luma_inter(at[0], form_.n, coded, q[0], after_); break;
      case kIntra:
        return oracle::luma_intra(at[0], form_.n, blocks, m.modes, coded, m.edge, q[0], after_, form_.flat_half())
                   ? moxStsEdgeSubstituted
                   : moxStsOk;
      case k16x16:
        if (!oracle::possible(mode, a)) return moxStsEdgeUnavailable;
        oracle::luma_16x16(at[0], mode, m.cbp, a, q[0], after_);
        break;
      case kChromaInter: oracle::chroma(at, -1, m.cbp, a, a, q, after_); break;
      case kChroma:
        if (!oracle::possible(luma_mode, a)) return moxStsEdgeUnavailable;
        oracle::chroma(at, mode, m.cbp, a, a, q, after_);
        break;
      case kChromaHalves:
        if (mode % 2 || !oracle::possible(luma_mode, a)) return moxStsEdgeUnavailable;
        oracle::chroma(at, mode, m.cbp, a, of_edges(m.lower_edge), q, after_);
    }
    return moxStsOk;
  }
  void expect_same() const {
    for (int i = 0; i < 2; ++i) ASSERT_EQ(planes_[i]->copy(), expected_[i]->copy()) << "plane " << i;
    ASSERT_EQ(m.next - stream_.data(), static_cast<std::ptrdiff_t>(after_.used));
    // What a block of 8 x 8 coefficients holds afterwards is open.
    if (form_.n == 4 || lossless(m.qp)) {
      ASSERT_EQ(stream_.copy(), after_.coeffs);
    }
  }
  /// Samples outside the macroblock are what they were when the oracle started.
  void expect_outside_untouched() const {
    const auto was = picture(0);
    for (int y = 0; y < form_.height(); ++y) {
      for (int x = 0; x < form_.width(); ++x) was(x, y) = planes_[0]->at(x_, y_)[y * planes_[0]->step() + x];
    }
    ASSERT_EQ(planes_[0]->copy(), expected_[0]->copy());
  }
  bool lossless(Mox32s qp) const { return form_.scaled && qp == 0 && (m.bypass & 0xFF) != 0; }
  void fill_samples(Mox8u value) const {
    for (auto& plane : planes_) std::fill(plane->memory().begin(), plane->memory().end(), value);
  }
  std::vector<int> samples(int plane, int width, int height) const {
    std::vector<int> values;
    for (int i = 0; i < width * height; ++i) {
      values.push_back((*planes_[static_cast<std::size_t>(plane)])(x_ + i % width, y_ + i / width));
    }
    return values;
  }
  std::span<Mox16s> stream() const { return {stream_.begin(), stream_.size()}; }

  Macroblock m;

 private:
  oracle::Quantiser quantiser(Mox32s qp, const Mox16s* table) const {
    return {qp, form_.scaled ? table : nullptr, lossless(qp)};
  }
  oracle::Picture picture(int i) const {
    return
        [this, i](int x, int y) -> unsigned char& { return (*expected_[static_cast<std::size_t>(i)])(x_ + x, y_ + y); };
  }

  const Form& form_;
  int x_ = 0, y_ = 0;
  std::vector<std::unique_ptr<Plane<Mox8u>>> planes_, expected_;
  Guarded<Mox16s> stream_, table_, table_v_;
  oracle::Stream after_;
};

Mox32u any_pattern(Random& random) {
  const Mox32u patterns[] = {0,       random.bits(),      random.bits() & random.bits() & random.bits(), 1, 0xFFFFFFFF,
                             0x1FFFE, 1u << random(0, 26)};
  return patterns[random(0, 6)];
}

TEST_P(Reconstruct, LikeTheOracle) {
  Random random;
  for (const Form& form : forms()) {
    for (int n = 0; n < 300; ++n) {
      Scene scene(form, random, any_pattern(random), random.chance(0.3) ? random.bits() & ~53u : random.bits());
      scene.fill_in(random);
      // The left neighbours of the lower half are there if the plane has a column for them.
      const Mox32u lower = random.bits();
      scene.m.lower_edge = (scene.m.edge & 17) == 17 ? lower | 1 : lower;
      const MoxStatus expected = scene.reconstruct();
      SCOPED_TRACE(testing::Message() << form.name << " " << n << ": cbp " << scene.m.cbp << " edge " << scene.m.edge
                                      << " mode " << scene.m.mode << " qp " << scene.m.qp << " bypass "
                                      << scene.m.bypass);
      ASSERT_EQ(form.run(scene.m), expected);
      scene.expect_same();
      if (HasFatalFailure()) return;
    }
  }
}

/// Cases worked out by hand: flat multiplier 10 at QP 0, scale 16 at QP 24 (no shift), everything on samples of 100.
TEST_P(Reconstruct, KnownResults) {
  Random random;
  constexpr Mox32u kNothing = 0xFF;
  const auto run = [&](const char* name, Mox32u cbp, MoxStatus status, std::vector<Mox16s> coeffs, auto prepare) {
    const Form& f = form(name);
    auto scene = std::make_unique<Scene>(f, random, cbp, kNothing);
    scene->fill_samples(100);
    std::fill(scene->m.table, scene->m.table + 16, Mox16s{16});
    std::fill(scene->m.table_v, scene->m.table_v + 16, Mox16s{16});
    std::copy(coeffs.begin(), coeffs.end(), scene->stream().begin());
    scene->m.lower_edge = kNothing;
    prepare(scene->m);
    const Mox16s* const start = scene->m.next;
    EXPECT_EQ(f.run(scene->m), status) << name;
    EXPECT_EQ(scene->m.next - start, status < 0 ? 0 : f.coefficients(cbp)) << name;
    return scene;
  };
  const auto flat = [](int count, int value) { return std::vector<int>(static_cast<std::size_t>(count), value); };
  const auto as_is = [](Macroblock&) {};

  EXPECT_EQ(run("LumaInter", 1, moxStsOk, {}, as_is)->samples(0, 16, 16), flat(256, 100));
  // 64 * 10 = 640, (640 + 32) >> 6 = 10, in block 4, which lies at (8, 0).
  auto inter = run("LumaInter", 1u << 5, moxStsOk, {64}, as_is)->samples(0, 16, 16);
  EXPECT_EQ(inter[8], 110);
  EXPECT_EQ(inter[3 * 16 + 11], 110);
  EXPECT_EQ(std::count(inter.begin(), inter.end(), 110), 16);

  // Every DC sum of one value v is v; 64 * 10 >> 2 rounded is 160, (160 + 32) >> 6 = 3; AC blocks without DC.
  auto luma = run("LumaIntra16x16", 1, moxStsOk, {64}, [](Macroblock& m) { m.mode = 2; });
  EXPECT_EQ(luma->samples(0, 16, 16), flat(256, 131));
  EXPECT_EQ(luma->stream()[15], 160);
  auto ac = run("LumaIntra16x16", 2, moxStsOk, {4095}, [](Macroblock& m) { m.mode = 2; });
  EXPECT_EQ(ac->samples(0, 16, 16), flat(256, 128)) << "coefficient 0 of an AC block counts for nothing";

  // 64 * 10 >> 1 = 320, (320 + 32) >> 6 = 5.
  auto chroma = run("ChromaInter", 1u << 17, moxStsOk, {64, 0, 0, 0}, as_is);
  EXPECT_EQ(chroma->samples(0, 8, 8), flat(64, 105));
  EXPECT_EQ(chroma->samples(1, 8, 8), flat(64, 100));

  auto substituted = run("LumaIntra", 1u << 16, moxStsEdgeSubstituted, {64}, as_is)->samples(0, 16, 16);
  EXPECT_EQ(std::count(substituted.begin(), substituted.end(), 128), 240) << "vertical with nothing above";
  EXPECT_EQ(std::count(substituted.end() - 64, substituted.end(), 138), 16) << "the last block is done too";

  for (const char* name : {"ChromaIntraHalfs", "ChromaIntraHalves", "ChromaIntraHalfs4x4", "ChromaIntraHalves4x4"}) {
    for (Mox32u mode : {1u, 2u, 3u, 4u, 0xFFFFFFFFu}) {
      auto kept = run(name, 1u << 17, moxStsEdgeUnavailable, {64}, [mode](Macroblock& m) { m.mode = mode; });
      EXPECT_EQ(kept->samples(1, 8, 8), flat(64, 100));
    }
    const bool plain = !form(name).scaled;
    auto late = run(name, 1u << 17, moxStsOutOfRange, {64}, [](Macroblock& m) { m.qp = 40; });
    EXPECT_EQ(late->samples(1, 8, 8), flat(64, plain ? 128 : 100)) << "the plain form has predicted by then";
  }
  run("ChromaIntraHalfs", 1u << 17, moxStsOutOfRange, {64}, [](Macroblock& m) { m.mode = 1, m.qp = 52; });

  // QP 1: (5 * 16 + 8) >> 4 = 5, (5 + 32) >> 6 = 0. Lossless needs QP 0, and the low 8 bits of bypass.
  const auto lossless = [](int qp, int bypass) { return [=](Macroblock& m) { m.qp = qp, m.bypass = bypass; }; };
  for (const char* name : {"LumaInter4x4", "LumaInter8x8"}) {
    const Mox32u first = form(name).n == 4 ? 2 : 1;
    EXPECT_EQ(run(name, first, moxStsOk, {5}, lossless(1, 1))->samples(0, 16, 16), flat(256, 100));
    EXPECT_EQ(run(name, first, moxStsOk, {5}, lossless(0, 0x100))->samples(0, 16, 16), flat(256, 100));
    auto added = run(name, first, moxStsOk, {5, -101}, lossless(0, 1))->samples(0, 16, 16);
    EXPECT_EQ(added[0], 105);
    EXPECT_EQ(added[1], 0);
    EXPECT_EQ(added[2], 100);
  }
  auto dc = run("LumaIntra_16x16", 1, moxStsOk, {9, 7}, [](Macroblock& m) { m.mode = 2, m.bypass = 1; });
  auto bypassed = dc->samples(0, 16, 16);
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
      Scene scene(f, random, 0xFFFFFFFF, random.bits());
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
