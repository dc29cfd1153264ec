#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "moxvc.h"
#include "oracle/mpeg4_filter.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::PostAcross;

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(5)};

/// A plane of exactly the samples that the filter of an edge touches.
struct Edge {
  bool vertical;
  Plane<Mox8u> plane;

  Edge(bool isVertical, int extra, Placement placement)
      : vertical(isVertical),
        plane(vertical ? 10 : 8, vertical ? 8 : 10,
              extra < 0 ? extra - (vertical ? 10 : 8) : extra + (vertical ? 10 : 8), placement) {}
  Mox8u& sample(int position, int tap) const { return vertical ? plane(tap, position) : plane(position, tap); }
  Mox8u* first() const { return &sample(0, 5); }
  PostAcross read(int position) const {
    PostAcross across;
    for (int tap = 0; tap < 10; ++tap) across[static_cast<std::size_t>(tap)] = sample(position, tap);
    return across;
  }
  void write(int position, const PostAcross& across) const {
    for (int tap = 0; tap < 10; ++tap)
      sample(position, tap) = static_cast<Mox8u>(across[static_cast<std::size_t>(tap)]);
  }
};

/// Samples that reach all ways of the filter: any, extremes, and levels on both sides of the edge with steps around 2.
PostAcross random_across(int kind, int qp, Random& random) {
  PostAcross v;
  int level = random(20, 230);
  for (std::size_t n = 0; n < 10; ++n) {
    if (n == 5) level += random(-2 * qp, 2 * qp);
    if (n == 1 || n == 9) level += random(0, 2) ? 0 : random(-qp - 1, qp + 1);
    const int near = kind == 2 ? random(-3, 3) : random(-12, 12);
    v[n] = kind == 0 ? random(0, 255) : kind == 1 ? 255 * random(0, 1) : std::clamp(level + near, 0, 255);
    if (kind == 2) level = v[n];
  }
  return v;
}

class Mpeg4Filter : public PerGeneration {
 protected:
  decltype(&moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR) deblock(bool vertical) const {
    return vertical ? lib(MOX_FN(moxiFilterDeblocking8x8VerEdge_MPEG4_8u_C1IR))
                    : lib(MOX_FN(moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR));
  }
};

TEST_P(Mpeg4Filter, DeblockingEqualsOracle) {
  Random random;
  int ways[3] = {};
  for (const bool vertical : {false, true}) {
    for (int round = 0; round < 6000; ++round) {
      const int extras[] = {0, 3, 500, -1, -9}, extra = extras[random.bits() % 5], qp = round % 31 + 1;
      const Placement placement = kPlacements[random.bits() % 3];
      const Edge edge(vertical, extra, placement), expected(vertical, extra, placement);
      for (int i = 0; i < 8; ++i) {
        const PostAcross v = random_across(random(0, 3), qp, random), out = oracle::post_deblocked(v, qp);
        edge.write(i, v);
        expected.write(i, out);
        ++ways[v == out ? 0 : oracle::flat(v) ? 1 : 2];
      }
      ASSERT_EQ(deblock(vertical)(edge.first(), edge.plane.step(), qp), moxStsOk);
      ASSERT_EQ(edge.plane.copy(), expected.plane.copy()) << (vertical ? "VerEdge" : "HorEdge") << ", QP " << qp;
    }
  }
  for (const int way : ways) EXPECT_GT(way, 3000);
}

/// By hand: quantiser, v0 to v9, and v1 to v8 as they become.
TEST_P(Mpeg4Filter, LiteralDeblocking) {
  struct Case {
    int qp;
    PostAcross old;
    std::array<int, 8> filtered;
  };
  constexpr Case kCases[] = {
      // Flat; a step of 16 in the middle: sums of weights 1 2 4 6 | 10 12 14 15 of 16 on the other side.
      {9, {0, 0, 0, 0, 0, 16, 16, 16, 16, 16}, {1, 2, 4, 6, 10, 12, 14, 15}},
      {8, {0, 0, 0, 0, 0, 16, 16, 16, 16, 16}, {0, 0, 0, 0, 16, 16, 16, 16}},  // 16 is not below 2 QP
      {9, {8, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {3, 2, 1, 1, 0, 0, 0, 0}},           // 6, 4, 2 and 1 sixteenths of v0
      {8, {8, 0, 0, 0, 0, 0, 0, 0, 0, 8}, {0, 0, 0, 0, 0, 0, 0, 0}},           // 8 is not below QP
      // 4 steps of up to 2: not flat. a0 = (2 * 0 + 5 * 20 - 2 * 20) // 8 = 60 // 8 = 8, a1 = -8 // 8, a2 as a1.
      {9, {0, 4, 0, 0, 0, 20, 20, 20, 16, 20}, {4, 0, 0, 4, 16, 20, 20, 16}},
      {8, {0, 4, 0, 0, 0, 20, 20, 20, 16, 20}, {4, 0, 0, 0, 20, 20, 20, 16}},  // |a0| is not below QP
      // a0 = 55 // 8 = 7, a1 = 0: d = -35 // 8 = -4, but (100 - 103) / 2 = -1. And the same from behind.
      {8, {50, 50, 90, 110, 100, 103, 90, 70, 40, 40}, {50, 90, 110, 101, 102, 90, 70, 40}},
      {8, {40, 40, 70, 90, 103, 100, 110, 90, 50, 50}, {40, 70, 90, 102, 101, 110, 90, 50}},
  };
  for (const bool vertical : {false, true}) {
    for (const Case& c : kCases) {
      const Edge edge(vertical, 0, Placement::at_end());
      for (int i = 0; i < 8; ++i) edge.write(i, c.old);
      EXPECT_EQ(deblock(vertical)(edge.first(), edge.plane.step(), c.qp), moxStsOk);
      PostAcross filtered = c.old;
      std::copy(c.filtered.begin(), c.filtered.end(), filtered.begin() + 1);
      for (int i = 0; i < 8; ++i) EXPECT_EQ(edge.read(i), filtered) << "case " << &c - kCases << ", position " << i;
    }
  }
}

/// Source and destination of a picture of whole macroblocks, planes of no more than its samples.
struct Picture {
  MoxiSize size;
  std::vector<std::unique_ptr<Plane<Mox8u>>> src, dst;
  Plane<Mox8u> qp;

  Picture(int across, int down, int extra, Placement placement)
      : size{16 * across, 16 * down}, qp(across, down, across + 3, placement) {
    for (const int unit : {16, 8, 8}) {
      const int width = unit * across, step = extra < 0 ? extra - width : extra + width;
      src.push_back(std::make_unique<Plane<Mox8u>>(width, unit * down, step, placement));
      dst.push_back(std::make_unique<Plane<Mox8u>>(width, unit * down, -step, placement));
    }
  }
  MoxStatus dering(decltype(&moxiFilterDeringingThreshold_MPEG4_8u_P3R) function) const {
    return function(src[0]->at(0, 0), src[0]->step(), src[1]->at(0, 0), src[1]->step(), src[2]->at(0, 0),
                    src[2]->step(), dst[0]->at(0, 0), dst[0]->step(), dst[1]->at(0, 0), dst[1]->step(),
                    dst[2]->at(0, 0), dst[2]->step(), size, qp.at(0, 0), qp.step());
  }
  /// The samples of an 8x8 block of a plane.
  std::vector<int> block(std::size_t plane, int bx, int by) const {
    std::vector<int> samples;
    for (int i = 0; i < 64; ++i) samples.push_back((*src[plane])(8 * bx + i % 8, 8 * by + i / 8));
    return samples;
  }
  int threshold(std::size_t plane, int bx, int by) const {
    if (plane != 0) {
      const auto samples = block(plane, bx, by);
      const auto [least, greatest] = std::minmax_element(samples.begin(), samples.end());
      return oracle::nearest((*least + *greatest) / 2.0);
    }
    const int x = bx & ~1, y = by & ~1;
    return oracle::dering_thresholds({block(0, x, y), block(0, x + 1, y), block(0, x, y + 1),
                                      block(0, x + 1, y + 1)})[static_cast<std::size_t>(2 * (by & 1) + (bx & 1))];
  }
  int expected(std::size_t plane, int x, int y, int threshold) const {
    const Plane<Mox8u>& p = *src[plane];
    std::array<int, 9> window;
    for (int i = 0; i < 9; ++i) {
      window[static_cast<std::size_t>(i)] =
          p(std::clamp(x + i % 3 - 1, 0, p.width() - 1), std::clamp(y + i / 3 - 1, 0, p.height() - 1));
    }
    const int unit = plane == 0 ? 16 : 8;
    return oracle::deringed(window, threshold, qp(x / unit, y / unit));
  }
};

TEST_P(Mpeg4Filter, DeringingEqualsOracle) {
  Random random;
  constexpr int kSpreads[] = {0, 6, 15, 16, 17, 31, 32, 33, 63, 64, 65, 120, 255};
  for (int round = 0; round < 120; ++round) {
    const int extras[] = {0, 5, 300, -1, -70};
    const Picture picture(random(1, 3), random(1, 3), extras[round % 5], kPlacements[round % 3]);
    for (Mox8u& qp : picture.qp.memory()) qp = static_cast<Mox8u>(random(0, 3) ? random(0, 31) : random(0, 255));
    // Each block has its own spread, levels that differ or not, and soft or hard contents.
    for (const auto& plane : picture.src) {
      for (int b = 0; b < plane->width() * plane->height() / 64; ++b) {
        const int spread = kSpreads[random.bits() % std::size(kSpreads)], low = b % 3 ? random(0, 255 - spread) : 0;
        const int kind = random(0, 2), x = b * 8 % plane->width(), y = b * 8 / plane->width() * 8;
        for (int i = 0; i < 64; ++i) {
          const int value = kind == 0   ? random(0, spread)
                            : kind == 1 ? (i % 8 > 3) * spread
                                        : std::min(spread, i / 8 * spread / 7 + random(0, 3));
          (*plane)(x + i % 8, y + i / 8) = static_cast<Mox8u>(low + value);
        }
      }
    }
    ASSERT_EQ(picture.dering(lib(MOX_FN(moxiFilterDeringingThreshold_MPEG4_8u_P3R))), moxStsOk);
    for (std::size_t p = 0; p < 3; ++p) {
      const Plane<Mox8u>& dst = *picture.dst[p];
      const Plane<Mox8u> expected(dst.width(), dst.height(), dst.step());
      for (int by = 0; by < dst.height() / 8; ++by) {
        for (int bx = 0; bx < dst.width() / 8; ++bx) {
          const int threshold = picture.threshold(p, bx, by);
          for (int i = 0; i < 64; ++i) {
            const int x = 8 * bx + i % 8, y = 8 * by + i / 8;
            expected(x, y) = static_cast<Mox8u>(picture.expected(p, x, y, threshold));
          }
        }
      }
      ASSERT_EQ(dst.copy(), expected.copy()) << "plane " << p << ", round " << round;
    }
  }
}

/// By hand: one sample of the first luma block is lifted, another block may have an edge of 50 and 200.
TEST_P(Mpeg4Filter, LiteralDeringing) {
  struct Case {
    int qp, lift, x, y;
    bool edge;
    std::array<int, 3> smoothed;  ///< at the sample, right of it, and right of it and below
  };
  constexpr Case kCases[] = {
      {31, 8, 5, 5, false, {102, 101, 101}},   // (1640, 1624, 1616) >> 4; little in any block
      {2, 8, 5, 5, false, {107, 101, 101}},    // no further than 1
      {1, 8, 5, 5, false, {108, 100, 100}},    //
      {31, 15, 0, 0, false, {108, 103, 101}},  // the corner counts for 9, 3 and 1 of 16
      {31, 16, 5, 5, false, {116, 100, 100}},  // across its own threshold of 108
      {31, 16, 5, 5, true, {104, 102, 101}},   // below the threshold of the block with the edge: 125
  };
  for (const Case& c : kCases) {
    const Picture picture(1, 1, 0, Placement::at_end());
    for (const auto& plane : picture.src) std::fill(plane->memory().begin(), plane->memory().end(), Mox8u{100});
    for (int i = 0; c.edge && i < 64; ++i) (*picture.src[0])(8 + i % 8, 8 + i / 8) = i % 8 < 4 ? 50 : 200;
    (*picture.src[0])(c.x, c.y) = static_cast<Mox8u>(100 + c.lift);
    (*picture.src[1])(4, 4) = 110;  // across its own threshold of 105, whatever luma has
    picture.qp(0, 0) = static_cast<Mox8u>(c.qp);
    ASSERT_EQ(picture.dering(lib(MOX_FN(moxiFilterDeringingThreshold_MPEG4_8u_P3R))), moxStsOk);
    const Plane<Mox8u>& luma = *picture.dst[0];
    EXPECT_EQ((std::array<int, 3>{luma(c.x, c.y), luma(c.x + 1, c.y), luma(c.x + 1, c.y + 1)}), c.smoothed)
        << "case " << &c - kCases;
    if (c.edge) {
      EXPECT_EQ(luma(11, 12) + luma(12, 12), 250);
    }
    EXPECT_EQ((*picture.dst[1])(4, 4), 110);
    EXPECT_EQ((*picture.dst[1])(5, 4) + (*picture.dst[2])(5, 4), 200);
  }
}

TEST_P(Mpeg4Filter, Arguments) {
  std::vector<Mox8u> samples(32 * 32, 200), out(3 * 512, 1);
  std::fill_n(samples.begin(), 512, Mox8u{190});
  for (const bool vertical : {false, true}) {
    for (const int bad : {0, 32, -1, 1 << 30}) {
      Call(deblock(vertical), std::tuple{&samples[16 * 32 + 16], 32, 31})
          .keeps(samples.data(), samples.size())
          .expect_order({{moxStsNullPointer, set<0>(nullptr)}, {moxStsBadQp, set<2>(bad)}});
    }
  }
  const Mox8u* const src = samples.data();
  for (const MoxiSize bad : {MoxiSize{0, 16}, MoxiSize{16, -16}, MoxiSize{24, 16}, MoxiSize{16, 17}}) {
    Call(lib(MOX_FN(moxiFilterDeringingThreshold_MPEG4_8u_P3R)),
         std::tuple{src, 32, src, 32, src, 32, out.data(), 32, &out[512], 32, &out[1024], 32, MoxiSize{16, 16}, src, 1})
        .keeps(out.data(), out.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsNullPointer, set<6>(nullptr)},
                       {moxStsNullPointer, set<8>(nullptr)},
                       {moxStsNullPointer, set<10>(nullptr)},
                       {moxStsNullPointer, set<13>(nullptr)},
                       {moxStsBadSize, set<12>(bad)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(Mpeg4Filter);

}  // namespace
}  // namespace mox::test
