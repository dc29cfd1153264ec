#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "moxvc.h"
#include "oracle/interpolation.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr int kFar = 2147483647;

template <class T>
struct RecordOf;
template <>
struct RecordOf<Mox8u> {
  using Type = MoxiInterpBlock_8u;
};
template <>
struct RecordOf<Mox16u> {
  using Type = MoxiInterpBlock_16u;
};
template <class T>
using Record = typename RecordOf<T>::Type;

/// A block form, and what the oracle needs to know of it.
template <class T>
struct BlockForm {
  Symbol<MoxStatus(const Record<T>*)> symbol;
  bool luma;
  int planes, channels;  ///< destinations, and samples of the source that make one position

  int fraction_bits() const { return luma ? 2 : 3; }
  int before() const { return luma ? 2 : 0; }
  int after() const { return luma ? 3 : 1; }
  int written(int width) const {
    if (sizeof(T) == 2) return width;
    if (luma) return width < 8 ? 4 : width < 16 ? 8 : 16;
    return width < 4 ? 2 : width < 8 ? 4 : 8;
  }
  std::vector<MoxiSize> sizes() const {
    if (luma) return {{4, 4}, {4, 8}, {8, 4}, {8, 8}, {8, 16}, {16, 8}, {16, 16}, {4, 16}, {12, 4}, {20, 8}, {28, 16}};
    return {{2, 2}, {2, 4}, {4, 2}, {4, 4}, {4, 8}, {8, 4}, {8, 8}, {8, 16}, {2, 6}, {6, 6}, {10, 2}, {14, 16}};
  }
};

struct BlockCase {
  MoxiSize frame, block;
  MoxiPoint position, vector;
  int depth = 8;
  int slack = 0;  ///< readable columns and rows behind the frame
  int rows = 0;   ///< that are written, if not all

  std::string name() const {
    std::string text;
    for (int n : {frame.width, frame.height, block.width, block.height, position.x, position.y, vector.x, vector.y})
      text.append(" ").append(std::to_string(n));
    return "frame, block, position, vector:" + text;
  }
};

/// What a footprint reads along an axis of `length` samples: the limits behind which the nearest sample is repeated. Of
/// a frame smaller than the footprint only one side has a limit.
std::pair<std::int64_t, std::int64_t> limits(std::int64_t start, std::int64_t end, int length) {
  if (start < 0) return {0, end > length ? oracle::kNoEdge : length - 1};
  return {-oracle::kNoEdge, length - 1};
}

template <class T>
void check(const Library& lib, const BlockForm<T>& form, const BlockCase& c, Random& random) {
  const int max = (1 << c.depth) - 1, width = form.written(c.block.width), bits = form.fraction_bits();
  const int dx = c.vector.x & ((1 << bits) - 1), dy = c.vector.y & ((1 << bits) - 1);
  const std::int64_t x = std::int64_t{c.position.x} + (c.vector.x >> bits),
                     y = std::int64_t{c.position.y} + (c.vector.y >> bits);
  const bool moves = c.vector.x != 0 || c.vector.y != 0;

  const int columns = form.channels * (c.frame.width + c.slack), rows = c.frame.height + c.slack;
  const auto placement = random.chance(0.5) ? Placement::at_end() : Placement::at_start();
  const int sign = random.chance(0.3) ? -1 : 1, step = sign * (columns + random(0, 40));
  const Plane<T> planes[2] = {{columns, rows, step, placement}, {columns, rows, step, placement}};
  for (const auto& plane : planes) random.fill(plane.memory(), 0, max);
  const Plane<T> results[2] = {{width, c.block.height, width + 5}, {width, c.block.height, width + 5}};

  Record<T> record = {};
  for (int i = 0; i < 2; ++i) record.pSrcPlane[i] = planes[i].at(0, 0), record.pDstPlane[i] = results[i].at(0, 0);
  record.srcStep = step, record.dstStep = width + 5;
  record.frameSize = c.frame, record.blockSize = c.block, record.blockPos = c.position, record.vector = c.vector;
  if constexpr (sizeof(T) == 2) record.bitDepth = c.depth;
  ASSERT_EQ(lib[form.symbol](&record), moxStsOk) << c.name();

  for (int i = 0; i < form.planes; ++i) {
    oracle::Picture<T> picture = {form.channels == 2 ? planes[0].at(i, 0) : planes[i].at(0, 0), step};
    picture.channels = form.channels;
    if (moves) {
      std::tie(picture.firstX, picture.lastX) =
          limits(x - (dx ? form.before() : 0), x + width + (dx ? form.after() : 0), c.frame.width);
      std::tie(picture.firstY, picture.lastY) =
          limits(y - (dy ? form.before() : 0), y + c.block.height + (dy ? form.after() : 0), c.frame.height);
    }
    const Plane<T> expected(width, c.block.height, width + 5);
    const auto sample = form.luma ? &oracle::luma_sample<T> : &oracle::chroma_sample<T>;
    for (int row = 0; row < (c.rows ? c.rows : c.block.height); ++row) {
      for (int column = 0; column < width; ++column)
        expected(column, row) = static_cast<T>(sample(picture, x + column, y + row, dx, dy, max));
    }
    ASSERT_EQ(results[i].copy(), expected.copy()) << form.symbol.name << " plane " << i << ", " << c.name();
  }
}

class InterpolationBlock : public PerGeneration {
 protected:
  /// Calls visit with each form.
  template <class Visit>
  static void each(Visit visit) {
    visit(BlockForm<Mox8u>{MOX_FN(moxiInterpolateLumaBlock_H264_8u_P1R), true, 1, 1});
    visit(BlockForm<Mox16u>{MOX_FN(moxiInterpolateLumaBlock_H264_16u_P1R), true, 1, 1});
    visit(BlockForm<Mox8u>{MOX_FN(moxiInterpolateChromaBlock_H264_8u_P2R), false, 2, 1});
    visit(BlockForm<Mox8u>{MOX_FN(moxiInterpolateChromaBlock_H264_8u_C2P2R), false, 2, 2});
    visit(BlockForm<Mox16u>{MOX_FN(moxiInterpolateChromaBlock_H264_16u_P2R), false, 2, 1});
  }
  /// Calls visit(form, case) for each form and size, with all bit depths of the form's samples in turn.
  template <class Visit>
  static void each_size(MoxiSize frame, Visit visit) {
    each([&]<class T>(const BlockForm<T>& form) {
      int count = 0;
      for (MoxiSize size : form.sizes())
        visit(form, BlockCase{frame, size, {}, {}, sizeof(T) == 1 ? 8 : 8 + count++ % 9});
    });
  }
};
MOX_INSTANTIATE_GENERATIONS(InterpolationBlock);

/// Footprints that start and end around each edge of the picture, with all fractions: the exact edge decides whether
/// the kernel runs in place.
TEST_P(InterpolationBlock, AroundTheEdges) {
  Random random;
  each_size({40, 36}, [&](const auto& form, BlockCase c) {
    const int unit = 1 << form.fraction_bits(), width = form.written(c.block.width);
    c.position = {8, 8};
    for (int dx = 0; dx < unit; ++dx) {
      for (int around = -5; around <= 5; ++around) {
        const int dy = random(0, unit - 1);
        const int lefts[] = {around, 40 - width + around}, tops[] = {around, 36 - c.block.height + around};
        for (bool far : {false, true}) {
          c.vector = {(lefts[far] - 8) * unit + dx, (tops[random(0, 1)] - 8) * unit + dy};
          check(library(), form, c, random);
          c.vector = {(lefts[random(0, 1)] - 8) * unit + dy, (tops[far] - 8) * unit + dx};
          check(library(), form, c, random);
          if (HasFatalFailure()) return;
        }
      }
    }
  });
}

/// Vectors and positions far outside on every side, up to the ends of their types.
TEST_P(InterpolationBlock, FarOutside) {
  Random random;
  each_size({33, 30}, [&](const auto& form, BlockCase c) {
    for (int x : {-kFar - 1, -100000, -701, -64, 0, 63, 655, 100001, kFar}) {
      for (int y : {-kFar - 1, -77777, -333, 5, 512, 99999, kFar}) {
        c.vector = {x, y};
        c.position = random.chance(0.5) ? MoxiPoint{random(0, 40), random(0, 40)}
                                        : MoxiPoint{random.chance(0.5) ? kFar : -kFar - 1, random(-kFar, kFar)};
        check(library(), form, c, random);
        if (HasFatalFailure()) return;
      }
    }
  });
}

/// Random vectors in pictures from one sample on. Where a picture is smaller than the footprint only one of two
/// opposite sides is repeated, and readable samples behind the picture are taken as they are.
TEST_P(InterpolationBlock, SmallPictures) {
  Random random;
  each_size({}, [&](const auto& form, BlockCase c) {
    c.slack = 36;
    for (int i = 0; i < 60; ++i) {
      c.frame = {random(1, 24), random(1, 24)};
      c.position = {random(-4, 24), random(-4, 24)};
      c.vector = {random(-200, 200), random(-200, 200)};
      check(library(), form, c, random);
      if (HasFatalFailure()) return;
    }
  });
}

/// A block that does not move is copied from where it stands, in the frame or behind it.
TEST_P(InterpolationBlock, ZeroVectorIsNotTestedAgainstTheFrame) {
  Random random;
  each_size({4, 4}, [&](const auto& form, BlockCase c) {
    c.slack = 40;
    c.position = {9, 11};
    check(library(), form, c, random);
  });
}

/// Calls that ask for a luma block of 0 columns give the 4 that are written, chroma 2; where the picture ends,
/// repeated.
TEST_P(InterpolationBlock, WidthOfZero) {
  Random random;
  each([&]<class T>(const BlockForm<T>& form) {
    for (int x = -12; x <= 24 && sizeof(T) == 1; ++x)
      check(library(), form, {{16, 16}, {0, 4}, {3, 3}, {x << form.fraction_bits() | (x & 1), 6}}, random);
  });
}

/// Of a block higher than the local buffers, 16 rows are written when it crosses an edge.
TEST_P(InterpolationBlock, HighBlocksStopAtTheLocalBuffer) {
  Random random;
  each([&]<class T>(const BlockForm<T>& form) {
    BlockCase c = {{16, 64}, {4, 40}, {4, 4}, {-99, 3}};
    c.rows = 16;
    check(library(), form, c, random);
    c.vector.x = 3, c.rows = 0;
    check(library(), form, c, random);
  });
}

template <class R>
auto spoil(std::function<void(R&)> change) {
  return [change](auto& arguments, auto& keep) {
    auto spoiled = std::make_shared<R>(*std::get<0>(arguments));
    change(*spoiled);
    std::get<0>(arguments) = spoiled.get();
    keep.push_back(std::move(spoiled));
  };
}

TEST_P(InterpolationBlock, ArgumentsAreTestedInOrder) {
  each([&]<class T>(const BlockForm<T>& form) {
    using R = Record<T>;
    const Guarded<T> source(32 * 32), result(128);
    R good = {};
    good.pSrcPlane[0] = good.pSrcPlane[1] = source.data();
    good.pDstPlane[0] = result.data(), good.pDstPlane[1] = result.data() + 64;
    good.srcStep = 32, good.dstStep = 8, good.frameSize = {16, 16}, good.blockSize = {4, 4}, good.vector = {3, 3};
    Call call{lib(form.symbol), std::tuple{static_cast<const R*>(&good)}};
    using Fault = typename decltype(call)::Fault;
    std::vector<Fault> faults = {{moxStsNullPointer, set<0>(nullptr)},
                                 {moxStsNullPointer, spoil<R>([](R& r) { r.pSrcPlane[0] = nullptr; })},
                                 {moxStsNullPointer, spoil<R>([](R& r) { r.pDstPlane[0] = nullptr; })}};
    if (form.planes == 2 && form.channels == 1) {
      faults.push_back({moxStsNullPointer, spoil<R>([](R& r) { r.pSrcPlane[1] = nullptr; })});
      faults.push_back({moxStsNullPointer, spoil<R>([](R& r) { r.pDstPlane[1] = nullptr; })});
    }
    faults.push_back({moxStsBadSize, spoil<R>([&](R& r) { r.blockSize.width = form.luma ? 6 : 5; })});
    faults.push_back({moxStsBadSize, spoil<R>([&](R& r) { r.blockSize.width = form.luma ? 32 : 16; })});
    faults.push_back({moxStsBadSize, spoil<R>([&](R& r) { r.blockSize.height = form.luma ? 6 : 5; })});
    call.keeps(result.data(), 128 * sizeof(T)).expect_order(faults);
  });
}

}  // namespace
}  // namespace mox::test
