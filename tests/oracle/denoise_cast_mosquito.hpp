/// Slow CAST and mosquito-noise filters for tests: pictures widened by the samples that stand for those outside, then
/// windows as lists.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "moxvc/types.h"
#include "support/guarded.hpp"

namespace mox::test::oracle {

/// A picture with `margin` more samples on all sides, and lists of the samples around a place.
class Widened {
 public:
  Widened(const Plane<Mox8u>& plane, int margin) : margin_(margin), rows_(plane.height()) {
    for (int y = 0; y < plane.height(); ++y) {
      rows_[y].assign(plane.at(0, y), plane.at(0, y) + plane.width());
      rows_[y].insert(rows_[y].begin(), margin, plane(0, y));
      rows_[y].insert(rows_[y].end(), margin, plane(plane.width() - 1, y));
    }
    rows_.insert(rows_.begin(), margin, std::vector<int>(rows_.front()));
    rows_.insert(rows_.end(), margin, std::vector<int>(rows_.back()));
  }
  int operator()(int x, int y) const { return rows_[y + margin_][x + margin_]; }
  /// Width x height samples from (x, y) on, row by row.
  std::vector<int> window(int x, int y, int width, int height) const {
    std::vector<int> samples;
    for (int row = y; row < y + height; ++row) {
      for (int column = x; column < x + width; ++column) samples.push_back((*this)(column, row));
    }
    return samples;
  }

 private:
  int margin_;
  std::vector<std::vector<int>> rows_;
};

inline int spread(std::vector<int> samples) {
  std::sort(samples.begin(), samples.end());
  return samples.back() - samples.front();
}

/// Sum of a window's samples by weights of its columns and rows; far ones are taken as the middle one. Over the sum of
/// all weights, halves upwards.
inline int mean_of_near(const std::vector<int>& samples, const std::vector<int>& weights, int farthest) {
  const std::size_t size = weights.size();
  double sum = 0, all = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const int middle = samples[samples.size() / 2], weight = weights[i / size] * weights[i % size];
    sum += weight * (middle + (std::abs(samples[i] - middle) > farthest ? 0 : samples[i] - middle));
    all += weight;
  }
  return static_cast<int>(std::floor(sum / all + 0.5));
}

/// Sixteenths: all of `most` up to half of `end`, none from `end` on.
inline int cast_sixteenths(int value, int end, int most) {
  if (value >= end) return 0;
  const double slope = std::ceil(4096.0 / (end / 2)), share = std::floor((end - value) * slope / 256.0);
  return static_cast<int>(std::floor(most * std::min(16.0, share) / 16.0));
}

inline int cast_filtered(const std::vector<int>& now, const std::vector<int>& before, int noise, int spatial,
                         int temporal) {
  int motion = 0;
  for (std::size_t i = 0; i < 9; ++i) motion += std::abs(now[i] - before[i]);
  const double a = cast_sixteenths(spread(now), 8 * noise, spatial) / 16.0;
  const double t = cast_sixteenths(motion, 24 * noise, temporal) / 16.0;
  const double in_space = std::floor(now[4] + a * (mean_of_near(now, {1, 2, 1}, 3 * noise) - now[4]) + 0.5);
  return static_cast<int>(std::floor(in_space + t * (before[4] - in_space) + 0.5));
}

/// Maps of a picture: which blocks are what, and the whole picture filtered.
struct Mosquito {
  int across, down;
  std::vector<bool> edge, texture, ringing;
  std::vector<std::vector<int>> filtered;

  Mosquito(const Plane<Mox8u>& plane, int edge_threshold, int flat)
      : across((plane.width() + 7) / 8), down((plane.height() + 7) / 8) {
    const Widened picture(plane, 2);
    const auto flat_at = [&](int x, int y) { return spread(picture.window(x - 1, y - 1, 3, 3)) < flat; };
    for (int b = 0; b < across * down; ++b) {
      const int x = b % across * 8, y = b / across * 8;
      const int width = std::min(8, plane.width() - x), height = std::min(8, plane.height() - y);
      int active = 0;
      for (int i = 0; i < width * height; ++i) active += !flat_at(x + i % width, y + i / width);
      edge.push_back(spread(picture.window(x, y, width, height)) >= edge_threshold);
      texture.push_back(active > 0.5 * width * height);
    }
    for (int b = 0; b < across * down; ++b) {
      bool near_edge = false;
      for (int other = 0; other < across * down; ++other) {
        near_edge |=
            edge[other] && std::abs(other % across - b % across) <= 1 && std::abs(other / across - b / across) <= 1;
      }
      ringing.push_back(near_edge && !texture[b]);
    }
    filtered.resize(plane.height());
    for (int y = 0; y < plane.height(); ++y) {
      for (int x = 0; x < plane.width(); ++x) {
        const bool smooth = ringing[y / 8 * across + x / 8] && flat_at(x, y);
        filtered[y].push_back(smooth ? mean_of_near(picture.window(x - 2, y - 2, 5, 5), {1, 2, 2, 2, 1}, flat - 1)
                                     : plane(x, y));
      }
    }
  }
};

}  // namespace mox::test::oracle
