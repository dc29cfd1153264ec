#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <vector>

#include "moxvc.h"
#include "oracle/avs.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr Mox32u kNoLeft = 1, kNoAbove = 4, kNoCorner = 16, kNoAboveRight = 32;
constexpr int kModeOfChroma[] = {2, 1, 0, 5};

/// A macroblock or a chroma block in its plane, with the neighbours that its blocks can use, or with none.
class Scene {
 public:
  Scene(bool luma, Mox32u edges, Random& random)
      : luma_(luma),
        edges_(edges),
        margin_((edges & 53) == 53 ? 0 : 1),
        plane_(size() + 9 * margin_, size() + margin_, (random.chance(0.3) ? -1 : 1) * random(25, 60),
               random.chance(0.5) ? Placement::at_end() : Placement::at_start()) {
    fill(plane_.memory(), random.chance(0.7) ? Pattern::kRandom : Pattern::kAlternating, random);
  }
  int size() const { return luma_ ? 16 : 8; }
  int blocks() const { return luma_ ? 4 : 1; }
  bool luma() const { return luma_; }
  Mox32u edges() const { return edges_; }
  /// The sample at a column and a row of the macroblock.
  Mox8u& at(int x, int y) const { return plane_(margin_ + x, margin_ + y); }
  Mox8u* origin() const { return &at(0, 0); }
  int step() const { return plane_.step(); }
  std::vector<Mox8u> copy() const { return plane_.copy(); }
  void restore(const std::vector<Mox8u>& copy) const { std::copy(copy.begin(), copy.end(), plane_.memory().begin()); }

  oracle::AvsNeighbours neighbours(int block) const {
    const bool x = block & 1, y = block & 2, last = !luma_ || block == 1;
    const bool left = x || !(edges_ & kNoLeft), above = y || !(edges_ & kNoAbove);
    const bool corner = x || y ? (x ? above : left) : !(edges_ & kNoCorner);
    return {above, left, corner, last ? !(edges_ & kNoAboveRight) : above && block != 3, luma_ && block == 0 && left};
  }
  void predict(int block, int mode) const {
    const int x0 = 8 * (block & 1), y0 = 4 * (block & 2);
    const auto around = [&](int x, int y) { return at(x0 + x, y0 + y); };
    std::vector<int> samples;
    for (int i = 0; i < 64; ++i)
      samples.push_back(oracle::avs_predicted(mode, i % 8, i / 8, neighbours(block), around));
    for (int i = 0; i < 64; ++i) at(x0 + i % 8, y0 + i / 8) = static_cast<Mox8u>(samples[i]);
  }
  void add(int block, const Mox16s* levels, int qp) const {
    const auto residual = oracle::avs_residual(levels, qp);
    for (int i = 0; i < 64; ++i) {
      Mox8u& sample = at(8 * (block & 1) + i % 8, 4 * (block & 2) + i / 8);
      sample = static_cast<Mox8u>(std::clamp(sample + residual[i / 8][i % 8], 0.0, 255.0));
    }
  }

  /// A mode of the function's order for each block, as the oracle numbers it.
  int mode_of(Mox32u mode) const { return luma_ ? static_cast<int>(mode) : kModeOfChroma[mode]; }
  /// True if all blocks can be predicted in their modes.
  bool suits(const Mox32u* modes) const {
    for (int b = 0; b < blocks(); ++b) {
      const int mode = mode_of(modes[b]);
      const oracle::AvsNeighbours has = neighbours(b);
      if (mode == 2) continue;
      if ((mode != 1 && !has.above) || (mode != 0 && !has.left) || (mode > 3 && !has.corner)) return false;
    }
    return true;
  }

 private:
  bool luma_;
  Mox32u edges_;
  int margin_;
  Plane<Mox8u> plane_;
};

/// Denied neighbours: none, all, or any, with bits that mean nothing.
Mox32u random_edges(Random& random) { return random.chance(0.4) ? 0 : random.chance(0.2) ? 53 : random.bits(); }

struct Modes {
  Mox32u of[4];
  Modes(bool luma, Random& random) {
    for (Mox32u& mode : of) mode = static_cast<Mox32u>(random(0, luma ? 4 : 3));
  }
};

class AvsReconstruct : public PerGeneration {
 protected:
  MoxStatus intra(const Scene& s, const Mox16s* levels, const Modes& modes, Mox32u cbp, int qp) const {
    if (s.luma())
      return lib(MOX_FN(moxiReconstructLumaIntra_AVS_16s8u_C1R))(levels, s.origin(), s.step(), modes.of, cbp, qp,
                                                                 s.edges());
    return lib(MOX_FN(moxiReconstructChromaIntra_AVS_16s8u_C1R))(levels, s.origin(), s.step(), modes.of[0], cbp, qp,
                                                                 s.edges());
  }
  MoxStatus inter(const Scene& s, const Mox16s* levels, Mox32u cbp, int qp) const {
    const auto f = s.luma() ? lib(MOX_FN(moxiReconstructLumaInter_AVS_16s8u_C1R))
                            : lib(MOX_FN(moxiReconstructChromaInter_AVS_16s8u_C1R));
    return f(levels, s.origin(), s.step(), cbp, qp);
  }
};
MOX_INSTANTIATE_GENERATIONS(AvsReconstruct);

/// Levels as they occur, or as large as 16 bits are, so that every limit takes effect.
void fill_levels(const Guarded<Mox16s>& levels, int qp, Random& random) {
  const int kind = random(0, 4), largest = kind == 1 ? 9000 : 600;
  const int high = kind == 0 ? 32767 : std::max(1, static_cast<int>(largest / oracle::avs_step(qp)));
  const auto flat = static_cast<Mox16s>(random(-high, high));
  for (Mox16s& level : levels) {
    level = kind == 4 ? flat
                      : static_cast<Mox16s>(kind == 2 || random.chance(0.15) ? random(-high - (kind == 0), high) : 0);
  }
}

TEST_P(AvsReconstruct, EqualsOracle) {
  Random random;
  for (int round = 0; round < 6000; ++round) {
    const bool luma = random.chance(0.7), isIntra = random.chance(0.6);
    const Scene scene(luma, random_edges(random), random);
    const int qp = round % 64;
    const Guarded<Mox16s> levels(static_cast<std::size_t>(64 * scene.blocks()),
                                 random.chance(0.5) ? Placement::at_end() : Placement::aligned(2));
    fill_levels(levels, qp, random);
    const Mox32u cbp = random.bits();
    const Modes modes(luma, random);
    const auto before = scene.copy();
    const MoxStatus status =
        isIntra ? intra(scene, levels.data(), modes, cbp, qp) : inter(scene, levels.data(), cbp, qp);
    const auto result = scene.copy();
    scene.restore(before);
    const bool possible = !isIntra || scene.suits(modes.of);
    for (int b = 0; b < scene.blocks() && possible; ++b) {
      if (isIntra) scene.predict(b, scene.mode_of(modes.of[b]));
      if (cbp >> b & 1) scene.add(b, levels.data() + 64 * b, qp);
    }
    ASSERT_EQ(status, possible ? moxStsOk : moxStsEdgeUnavailable) << "edges " << scene.edges();
    ASSERT_EQ(result, scene.copy()) << "luma " << luma << ", intra " << isIntra << ", qp " << qp << ", edges "
                                    << scene.edges();
  }
}

/// By hand: a DC level of 8 at a step of 16 (qp 24: 32809 / 2048) is 128; 128 * 8 >> 3 is 128 again, and 128 * 8 >> 7
/// is
/// 8. One more of frequency 1 in a row makes a ramp of 10 9 6 2 -2 -6 -9 -10 times 128.
TEST_P(AvsReconstruct, LiteralResidual) {
  Mox16s levels[64] = {8, 8};
  std::vector<Mox8u> samples(64, 100);
  ASSERT_EQ(lib(MOX_FN(moxiReconstructChromaInter_AVS_16s8u_C1R))(levels, samples.data(), 8, 1, 24), moxStsOk);
  for (int y = 0; y < 8; ++y) {
    EXPECT_EQ(std::vector<Mox8u>(samples.begin() + 8 * y, samples.begin() + 8 * y + 8),
              (std::vector<Mox8u>{118, 117, 114, 110, 106, 102, 99, 98}));
  }
}

/// An encoder's macroblock: the levels are those of the difference to the prediction, and the plane is what a decoder
/// makes of them.
TEST_P(AvsReconstruct, DisassembledMacroblocksComeBack) {
  Random random;
  for (int round = 0; round < 2000; ++round) {
    const bool luma = random.chance(0.7);
    const Scene scene(luma, random_edges(random), random);
    const int size = scene.size(), qp = random(0, 63), rounding = random(0, 128);
    const Plane<Mox8u> source(size, size, -size - random(0, 9));
    fill(source.memory(), random.chance(0.5) ? Pattern::kRandom : Pattern::kRamp, random);
    const Guarded<Mox16s> levels(static_cast<std::size_t>(64 * scene.blocks()));
    const Modes modes(luma, random);
    Mox32u cbp = 77;
    const auto before = scene.copy();
    const auto run = [&](auto function, auto mode) {
      return function(source.at(0, 0), source.step(), scene.origin(), scene.step(), levels.data(), mode, &cbp, qp,
                      rounding, scene.edges());
    };
    const MoxStatus status = luma ? run(lib(MOX_FN(moxiDisassembleLumaIntra_AVS_16s8u_C1R)), modes.of)
                                  : run(lib(MOX_FN(moxiDisassembleChromaIntra_AVS_16s8u_C1R)), modes.of[0]);
    const auto result = scene.copy();
    scene.restore(before);
    if (!scene.suits(modes.of)) {
      ASSERT_EQ(status, moxStsEdgeUnavailable);
      ASSERT_TRUE(result == before && cbp == 77);
      continue;
    }
    ASSERT_EQ(status, moxStsOk);
    for (int b = 0; b < scene.blocks(); ++b) {
      scene.predict(b, scene.mode_of(modes.of[b]));
      Mox16s residual[64];
      for (int i = 0; i < 64; ++i) {
        const int x = 8 * (b & 1) + i % 8, y = 4 * (b & 2) + i / 8;
        residual[i] = static_cast<Mox16s>(source(x, y) - scene.at(x, y));
      }
      const auto expected = oracle::avs_levels(residual, qp, rounding);
      const std::vector<Mox16s> got(levels.begin() + 64 * b, levels.begin() + 64 * b + 64);
      ASSERT_EQ(got, expected) << "qp " << qp << ", rounding " << rounding;
      ASSERT_EQ(cbp >> b & 1, expected != std::vector<Mox16s>(64) ? 1u : 0u);
      scene.add(b, got.data(), qp);
    }
    ASSERT_EQ(cbp >> scene.blocks(), 0u);
    ASSERT_EQ(result, scene.copy()) << "qp " << qp;
  }
}

TEST_P(AvsReconstruct, ForwardTransform) {
  Random random;
  for (int round = 0; round < 2000; ++round) {
    const int qp = round % 64, rounding = random.chance(0.2) ? 128 * random(0, 1) : random(0, 128);
    const Guarded<Mox16s> residual(64, random.chance(0.5) ? Placement::at_end() : Placement::aligned(2));
    const int high = random.chance(0.2) ? 32767 : random.chance(0.5) ? 255 : 20;
    fill(std::span(residual.begin(), 64), kPatterns[random(0, 6)], random, -high - (high == 32767), high);
    const auto expected = oracle::avs_levels(residual.data(), qp, rounding);
    const bool inPlace = random.chance(0.3);
    const Guarded<Mox16s> other(64);
    Mox16s* const levels = inPlace ? residual.data() : other.data();
    Mox32s count = -1;
    ASSERT_EQ(lib(MOX_FN(moxiTransformQuant8x8Fwd_AVS_16s_C1))(residual.data(), levels, &count, qp, rounding),
              moxStsOk);
    ASSERT_EQ(std::vector<Mox16s>(levels, levels + 64), expected) << "qp " << qp << ", rounding " << rounding;
    ASSERT_EQ(count, 64 - std::count(expected.begin(), expected.end(), 0));
  }
}

TEST_P(AvsReconstruct, ArgumentOrder) {
  Mox16s levels[256] = {1};
  Mox8u source[256] = {}, plane[17 * 32] = {};
  const Mox32u modes[] = {2, 3, 0, 1}, bad[] = {2, 2, 5, 2};
  Mox32u cbp = 0;
  Mox32s count = 0;
  Mox8u* const first = plane + 33;
  const auto null = moxStsNullPointer;
  const auto range = moxStsOutOfRange, edge = moxStsEdgeUnavailable;
  Call{lib(MOX_FN(moxiReconstructLumaIntra_AVS_16s8u_C1R)), std::tuple{levels, first, 32, modes, 1u, 20, 0u}}
      .keeps(plane, sizeof plane)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<1>(nullptr)},
                     {null, set<3>(nullptr)},
                     {range, set<5>(64)},
                     {range, set<3>(bad)},
                     {edge, set<6>(4u)}});
  Call{lib(MOX_FN(moxiReconstructChromaIntra_AVS_16s8u_C1R)), std::tuple{levels, first, 32, 3u, 1u, 20, 0u}}
      .keeps(plane, sizeof plane)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<1>(nullptr)},
                     {range, set<5>(-1)},
                     {range, set<3>(4u)},
                     {edge, set<6>(16u)}});
  for (const auto symbol :
       {MOX_FN(moxiReconstructLumaInter_AVS_16s8u_C1R), MOX_FN(moxiReconstructChromaInter_AVS_16s8u_C1R)}) {
    Call{lib(symbol), std::tuple{levels, first, 32, 1u, 63}}
        .keeps(plane, sizeof plane)
        .expect_order({{null, set<0>(nullptr)}, {null, set<1>(nullptr)}, {range, set<4>(64)}});
  }
  Call{lib(MOX_FN(moxiTransformQuant8x8Fwd_AVS_16s_C1)), std::tuple{levels, levels + 64, &count, 63, 128}}
      .keeps(levels, sizeof levels)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<1>(nullptr)},
                     {null, set<2>(nullptr)},
                     {range, set<3>(64)},
                     {moxStsBadArg, set<4>(129)}});
  Call{lib(MOX_FN(moxiDisassembleLumaIntra_AVS_16s8u_C1R)),
       std::tuple{source, 16, first, 32, levels, modes, &cbp, 20, 85, 0u}}
      .keeps(plane, sizeof plane)
      .keeps(levels, sizeof levels)
      .keeps(&cbp, sizeof cbp)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<2>(nullptr)},
                     {null, set<4>(nullptr)},
                     {null, set<5>(nullptr)},
                     {null, set<6>(nullptr)},
                     {range, set<7>(64)},
                     {range, set<5>(bad)},
                     {moxStsBadArg, set<8>(-1)},
                     {edge, set<9>(4u)}});
  Call{lib(MOX_FN(moxiDisassembleChromaIntra_AVS_16s8u_C1R)),
       std::tuple{source, 16, first, 32, levels, 3u, &cbp, 20, 85, 0u}}
      .keeps(plane, sizeof plane)
      .keeps(levels, sizeof levels)
      .keeps(&cbp, sizeof cbp)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<2>(nullptr)},
                     {null, set<4>(nullptr)},
                     {null, set<6>(nullptr)},
                     {range, set<7>(-1)},
                     {range, set<5>(4u)},
                     {moxStsBadArg, set<8>(129)},
                     {edge, set<9>(16u)}});
}

}  // namespace
}  // namespace mox::test
