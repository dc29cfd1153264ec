/// One run of a plane filter against its oracle, in memory of exactly the rows that it may touch.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "moxvc.h"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace mox::test {

/// Rows first..end - 1 of a picture.
struct RowSpan {
  int first, end;
};

class Rows {
 public:
  Rows(int width, RowSpan rows, int step, Placement placement = {})
      : first_(rows.first), plane_(width, rows.end - rows.first, step, placement) {}
  Mox8u& operator()(int x, int y) const { return plane_(x, y - first_); }
  /// Row 0, which need not be one of the plane's.
  Mox8u* origin() const { return plane_.at(0, 0) - std::ptrdiff_t{first_} * plane_.step(); }
  const Plane<Mox8u>& plane() const { return plane_; }

 private:
  int first_;
  Plane<Mox8u> plane_;
};

/// Samples of several frames: of any value, extremes, or near each other from frame to frame, also near white.
inline void fill_frames(const std::deque<Rows>& frames, Random& random) {
  const int kind = random(0, 4), noise = random(0, 5);
  const auto base = frames.front().plane().copy();
  for (const Rows& frame : frames) {
    const auto samples = frame.plane().memory();
    random.fill(samples);
    for (std::size_t i = 0; i < samples.size() && kind > 0; ++i) {
      const int near = kind == 2 ? base[i] : kind == 3 ? 225 + base[i] % 31 : 100 + base[i] / 16;
      samples[i] =
          static_cast<Mox8u>(kind == 1 ? (samples[i] & 1) * 255 : std::clamp(near + random(-noise, noise), 0, 255));
    }
  }
}

/// How many threads this process has.
inline int threads_of_this_process() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

using Look = std::function<int(int frame, int x, int y)>;

/// Widths around those of a block, a wide block and both.
inline constexpr int kWidths[] = {1, 2, 3, 4, 15, 16, 17, 18, 19, 31, 32, 33, 34, 35, 47, 50, 66};

/// Fills `count` frames, calls the filter on them and compares what it has written with expected(look, x, y), nullopt
/// being a sample that it must leave alone. Steps are random, and row 0 is what the filter gets.
struct Filtering {
  int count, width;
  RowSpan source, destination;
  int sourceExtra = 0;       ///< columns of memory behind the width, in which expected may look, too
  int destinationWidth = 0;  ///< if it is another one
  bool upright = false;      ///< no negative steps

  template <class Call, class Expected>
  void run(Random& random, Call call, Expected expected) const {
    const int all = width + sourceExtra, extra = sourceExtra > 0 ? 0 : random(0, 2) * 7;
    const int outWidth = destinationWidth > 0 ? destinationWidth : all;
    const int way = upright || sourceExtra > 0 || random.chance(0.7) ? 1 : -1, step = way * (all + extra);
    const Placement placement = random.chance(0.5) ? Placement::at_end() : Placement::at_start();
    std::deque<Rows> frames;
    for (int i = 0; i < count; ++i) frames.emplace_back(all, source, step, placement);
    fill_frames(frames, random);
    std::vector<const Mox8u*> origins;
    for (const Rows& frame : frames) origins.push_back(frame.origin());
    const Rows out(outWidth, destination, way * (outWidth + random(0, 1) * 3), placement);
    const Rows wanted(outWidth, destination, out.plane().step(), placement);
    ASSERT_EQ(call(origins.data(), step, out.origin(), out.plane().step()), moxStsOk);
    const Look look = [&](int frame, int x, int y) { return frames[static_cast<std::size_t>(frame)](x, y); };
    for (int y = destination.first; y < destination.end; ++y) {
      for (int x = 0; x < outWidth; ++x) {
        if (const std::optional<int> value = expected(look, x, y)) wanted(x, y) = static_cast<Mox8u>(*value);
      }
    }
    ASSERT_EQ(out.plane().copy(), wanted.plane().copy()) << width << " columns, rows to " << destination.end;
  }
};

}  // namespace mox::test
