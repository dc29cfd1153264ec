#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "moxvc.h"
#include "oracle/interpolation.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// The luma sample at (x + dx / 4, y + dy / 4) as an exact sum of full samples: along each axis a filter of six, from 2
/// samples before to 3 behind.
std::int64_t avs_luma_sample(const oracle::Picture<Mox8u>& p, std::int64_t x, std::int64_t y, int dx, int dy) {
  static constexpr int kFilters[4][6] = {
      {0, 0, 1, 0, 0, 0}, {-1, -2, 96, 42, -7, 0}, {0, -1, 5, 5, -1, 0}, {0, -7, 42, 96, -2, -1}};
  static constexpr int kSums[] = {1, 128, 8, 128};
  const bool diagonal = dx % 2 != 0 && dy % 2 != 0;
  const int across = diagonal ? 2 : dx, down = diagonal ? 2 : dy;
  std::int64_t sum = 0, scale = kSums[across] * kSums[down];
  for (int j = 0; j < 6; ++j) {
    for (int i = 0; i < 6; ++i) {
      const int weight = kFilters[across][i] * kFilters[down][j];
      if (weight != 0) sum += weight * p.at(x + i - 2, y + j - 2);
    }
  }
  // A diagonal position is the mean of the centre and the full sample in its corner.
  if (diagonal) sum += scale * p.at(x + (dx == 3), y + (dy == 3)), scale *= 2;
  const std::int64_t shifted = sum + scale / 2, quotient = shifted / scale - (shifted % scale < 0);
  return std::clamp<std::int64_t>(quotient, 0, 255);
}

using Function = MoxStatus(const MoxiInterpBlock_8u*);
struct Form {
  Symbol<Function> symbol;
  bool luma;
  std::vector<MoxiSize> sizes;
};
const Form kForms[] = {
    {MOX_FN(moxiInterpolateLumaBlock_AVS_8u_P1R), true, {{8, 8}, {16, 8}, {8, 16}, {16, 16}, {0, 8}, {24, 16}}},
    {MOX_FN(moxiInterpolateChromaBlock_AVS_8u_P2R), false, {{4, 4}, {8, 4}, {4, 8}, {8, 8}, {8, 16}}}};

/// What a footprint reads along an axis: the ends behind which the nearest sample is repeated, one only if both are
/// crossed.
std::pair<std::int64_t, std::int64_t> limits(std::int64_t start, std::int64_t end, int length) {
  if (start < 0) return {0, end > length ? oracle::kNoEdge : length - 1};
  return {-oracle::kNoEdge, length - 1};
}

class AvsInterpolation : public PerGeneration {
 protected:
  /// Interpolates a block at (x, y) of a frame and compares; `slack` columns and rows are readable behind the frame.
  void check(const Form& form, MoxiSize frame, MoxiSize size, MoxiPoint to, MoxiPoint fraction, Random& random,
             int slack = 0) const {
    const int unit = form.luma ? 4 : 8, width = form.luma ? (size.width < 16 ? 8 : 16) : size.width;
    const int columns = frame.width + slack, rows = frame.height + slack;
    const int step = (random.chance(0.3) ? -1 : 1) * (columns + random(0, 30));
    const auto placement = random.chance(0.5) ? Placement::at_end() : Placement::at_start();
    const Plane<Mox8u> planes[2] = {{columns, rows, step, placement}, {columns, rows, step, placement}};
    const Pattern pattern = random.chance(0.3) ? Pattern::kAlternating : Pattern::kRandom;
    for (const auto& plane : planes) {
      fill(plane.memory(), pattern, random);
      if (pattern != Pattern::kRandom)  // extremes in runs that the filters' signs follow
        for (Mox8u& v : plane.memory()) v = random.chance(0.1) ? static_cast<Mox8u>(255 - v) : v;
    }
    const Plane<Mox8u> results[2] = {{width, size.height, width + 3}, {width, size.height, width + 3}};
    MoxiInterpBlock_8u record = {};
    for (int i = 0; i < 2; ++i) record.pSrcPlane[i] = planes[i].at(0, 0), record.pDstPlane[i] = results[i].at(0, 0);
    if (form.luma) record.pSrcPlane[1] = nullptr, record.pDstPlane[1] = nullptr;
    record.srcStep = step, record.dstStep = width + 3, record.frameSize = frame, record.blockSize = size;
    record.blockPos = {random(0, 40), random(0, 40)};
    if (record.blockPos.x == to.x) ++record.blockPos.x;
    // A block that does not move is copied without a look at the frame.
    if (slack > 0 && std::clamp(to.x, 0, 20) == to.x && std::clamp(to.y, 0, 20) == to.y) record.blockPos = to;
    record.vector = {(to.x - record.blockPos.x) * unit + fraction.x, (to.y - record.blockPos.y) * unit + fraction.y};
    ASSERT_EQ(lib(form.symbol)(&record), moxStsOk);

    const bool moves = record.vector.x != 0 || record.vector.y != 0;
    for (int i = 0; i < (form.luma ? 1 : 2); ++i) {
      oracle::Picture<Mox8u> picture = {planes[i].at(0, 0), step};
      const auto ends = [&](int at, int length, int limit, bool split) {
        return limits(at - (split && form.luma ? 2 : 0), at + length + (split ? form.luma ? 3 : 1 : 0), limit);
      };
      if (moves) {
        std::tie(picture.firstX, picture.lastX) = ends(to.x, width, frame.width, fraction.x != 0);
        std::tie(picture.firstY, picture.lastY) = ends(to.y, size.height, frame.height, fraction.y != 0);
      }
      const Plane<Mox8u> expected(width, size.height, width + 3);
      for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < width; ++x) {
          expected(x, y) = static_cast<Mox8u>(
              form.luma ? avs_luma_sample(picture, to.x + x, to.y + y, fraction.x, fraction.y)
                        : oracle::chroma_sample(picture, to.x + x, to.y + y, fraction.x, fraction.y, 255));
        }
      }
      ASSERT_EQ(results[i].copy(), expected.copy())
          << form.symbol.name << " " << size.width << "x" << size.height << " at " << to.x << "," << to.y
          << " fraction " << fraction.x << "," << fraction.y << " frame " << frame.width << "x" << frame.height
          << " plane " << i;
    }
  }
};
MOX_INSTANTIATE_GENERATIONS(AvsInterpolation);

/// All positions with footprints inside, exactly at the edges, across them and far outside. Planes end with the frame.
TEST_P(AvsInterpolation, AllPositionsAroundTheEdges) {
  Random random;
  for (const Form& form : kForms) {
    const int unit = form.luma ? 4 : 8;
    const auto place = [&](int length, int limit) {
      return random.chance(0.4)   ? random(-4, 4)
             : random.chance(0.6) ? limit - length + random(-5, 5)
                                  : random(-300, 300);
    };
    for (MoxiSize size : form.sizes) {
      for (int round = 0; round < 12 * unit * unit; ++round) {
        const MoxiSize frame = {random(29, 45), random(22, 40)};
        const MoxiPoint to = {place(std::max(size.width, 8), frame.width), place(size.height, frame.height)};
        check(form, frame, size, to, {round % unit, round / unit % unit}, random);
        if (HasFatalFailure()) return;
      }
    }
  }
}

/// Pictures smaller than the footprint: readable samples behind the one end that counts are taken as they are.
TEST_P(AvsInterpolation, SmallPictures) {
  Random random;
  for (const Form& form : kForms) {
    const int unit = form.luma ? 4 : 8;
    for (int round = 0; round < 400; ++round) {
      const MoxiSize size = form.sizes[static_cast<std::size_t>(round % 4)];
      const MoxiPoint fraction =
          random.chance(0.3) ? MoxiPoint{0, 0} : MoxiPoint{random(0, unit - 1), random(0, unit - 1)};
      check(form, {random(1, 24), random(1, 24)}, size, {random(-30, 30), random(-30, 30)}, fraction, random, 36);
      if (HasFatalFailure()) return;
    }
  }
}

/// By hand: 0 | 255 as a vertical edge in front of column 8, at all horizontal fractions, and the same turned.
TEST_P(AvsInterpolation, LiteralEdge) {
  const Mox8u kExpected[4][4] = {{0, 0, 255, 255}, {0, 70, 255, 255}, {0, 128, 255, 255}, {0, 185, 255, 255}};
  for (bool turned : {false, true}) {
    for (int fraction = 0; fraction < 4; ++fraction) {
      const Plane<Mox8u> source(40, 40, 40), result(8, 8, 8);
      for (int i = 0; i < 1600; ++i) source(i % 40, i / 40) = (turned ? i / 40 : i % 40) < 12 ? 0 : 255;
      MoxiInterpBlock_8u record = {};
      record.pSrcPlane[0] = source.at(0, 0), record.srcStep = 40, record.pDstPlane[0] = result.at(0, 0),
      record.dstStep = 8;
      record.frameSize = {40, 40}, record.blockSize = {8, 8}, record.blockPos = {10, 10};
      record.vector = turned ? MoxiPoint{0, fraction} : MoxiPoint{fraction, 0};
      ASSERT_EQ(lib(kForms[0].symbol)(&record), moxStsOk);
      for (int i = 0; i < 4; ++i)
        EXPECT_EQ(turned ? result(5, i) : result(i, 5), kExpected[fraction][i]) << fraction << "," << i;
    }
  }
}

TEST_P(AvsInterpolation, Weighting) {
  Random random;
  for (int round = 0; round < 1500; ++round) {
    const int width = 4 * random(0, 7), written = width > 15 ? 16 : 8, height = 4 * random(1, 5);
    const auto scale = static_cast<Mox32u>(random.chance(0.8) ? random(0, 255) : static_cast<int>(random.bits()));
    const auto shift = static_cast<Mox32u>(random.chance(0.8) ? random(-128, 127) : static_cast<int>(random.bits()));
    const int step = (random.chance(0.3) ? -1 : 1) * (written + random(0, 9));
    const Plane<Mox8u> source(written, height, step), result(written, height, step), expected(written, height, step);
    random.fill(source.memory());
    const int factor = static_cast<int>((scale + 256) % 512) - 256,
              offset = static_cast<int>((shift + 32768) % 65536) - 32768;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < written; ++x) {
        const double product = std::floor(source(x, y) * factor / 32.0 + 0.5);
        expected(x, y) = static_cast<Mox8u>(std::clamp(product + offset, 0.0, 255.0));
      }
    }
    const bool inPlace = random.chance(0.3);
    if (inPlace) result.assign(source);
    ASSERT_EQ(lib(MOX_FN(moxiWeightPrediction_AVS_8u_C1R))((inPlace ? result : source).at(0, 0), step, result.at(0, 0),
                                                           step, scale, shift, {width, height}),
              moxStsOk);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < written; ++x)
        ASSERT_EQ(result(x, y), expected(x, y)) << width << ", scale " << scale << ", shift " << shift;
    }
  }
}

TEST_P(AvsInterpolation, ArgumentOrder) {
  Mox8u source[64 * 64] = {}, result[2][16 * 16] = {};
  using R = MoxiInterpBlock_8u;
  for (const Form& form : kForms) {
    R record = {{source, source}, 64, {result[0], result[1]}, 16, {64, 64}, {8, 8}, {8, 8}, {3, 3}};
    const auto without = [&](int source_plane, int plane) {
      return [=](auto& arguments, auto& keep) {
        auto spoiled = std::make_shared<R>(*std::get<0>(arguments));
        if (source_plane >= 0) spoiled->pSrcPlane[source_plane] = nullptr;
        if (plane >= 0) spoiled->pDstPlane[plane] = nullptr;
        std::get<0>(arguments) = spoiled.get();
        keep.push_back(std::move(spoiled));
      };
    };
    // A null record cannot be spoiled further: it comes by itself.
    EXPECT_EQ(lib(form.symbol)(nullptr), moxStsNullPointer);
    std::vector<Call<const R*>::Fault> faults = {{moxStsNullPointer, without(0, -1)},
                                                 {moxStsNullPointer, without(-1, 0)}};
    if (!form.luma)
      faults.insert(faults.end(), {{moxStsNullPointer, without(1, -1)}, {moxStsNullPointer, without(-1, 1)}});
    Call call(lib(form.symbol), std::tuple{static_cast<const R*>(&record)});
    call.keeps(result, sizeof result);
    for (MoxiSize bad :
         {MoxiSize{8, form.luma ? 4 : 6}, MoxiSize{form.luma ? 4 : 0, 8}, MoxiSize{32, 8}, MoxiSize{-8, 8}}) {
      auto all = faults;
      all.push_back({moxStsBadSize, set_field<0, R>(&R::blockSize, bad)});
      call.expect_order(all);
    }
  }
  Call{lib(MOX_FN(moxiWeightPrediction_AVS_8u_C1R)), std::tuple{source, 64, result[0], 16, 32u, 0u, MoxiSize{8, 8}}}
      .keeps(result, sizeof result)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsBadSize, set<6>(MoxiSize{32, 8})},
                     {moxStsBadSize, set<6>(MoxiSize{6, 8})},
                     {moxStsBadSize, set<6>(MoxiSize{8, 2})}});
}

}  // namespace
}  // namespace mox::test
