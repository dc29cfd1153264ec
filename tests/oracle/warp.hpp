/// Slow reference of MPEG-4 warping: rational positions of single samples, divided as a whole; weights of four samples.
#pragma once

#include <algorithm>
#include <array>
#include <vector>

#include "moxvc/mpeg4_warp.h"

namespace mox::oracle {

struct Warp {
  Mox32s points, type, accuracy, rounding, quarter, fcode;
  MoxiRect sprite, vop;
  std::array<Mox32s, 4> du{}, dv{};
};

__extension__ typedef __int128 Wide;
inline Wide floor_div(Wide a, Wide b) { return a / b - (a % b != 0 && (a < 0) != (b < 0)); }
/// Halves upwards, or away from zero.
inline Wide nearest_up(Wide a, Wide b) { return floor_div(2 * a + b, 2 * b); }
inline Wide nearest_away(Wide a, Wide b) { return (a < 0) == (b < 0) ? nearest_up(a, b) : -nearest_up(-a, b); }

inline Wide power_from(Wide size) {
  Wide power = 1;
  while (power < size) power *= 2;
  return power;
}

/// A direction of the warp. Lengths are in 1/unit samples, unit = 2, 4, 8, 16; virtual points in 1/16.
class Direction {
 public:
  /// The step of the VOP's width counts in x, that of its height in y.
  Direction(const Warp& w, bool isY)
      : w_(w), d_(isY ? w.dv : w.du), unit_(2 << w.accuracy), r_(16 / unit_), origin_(isY ? w.vop.y : w.vop.x) {
    const auto vertex = [&](int i) { return origin_ + (i == 1 ? !isY * w.vop.width : isY * w.vop.height); };
    first_ = unit_ / 2 * (2 * origin_ + d_[0]);
    const auto at = [&](int i, Wide size, bool mine) {
      const Wide power = power_from(size), moved = unit_ / 2 * (2 * vertex(i) + d_[0] + d_[i]);
      return 16 * (origin_ + mine * power) +
             nearest_away((size - power) * (r_ * first_ - 16 * origin_) + power * (r_ * moved - 16 * vertex(i)), size);
    };
    right_ = at(1, w.vop.width, !isY) - r_ * first_;
    down_ = at(2, w.vop.height, isY) - r_ * first_;
    const Wide width = 2 * w.vop.width * !isY, height = 2 * w.vop.height * isY, start = 2 * origin_ + d_[0];
    corners_ = {start, start + width + d_[1], start + height + d_[2], start + width + height + d_[1] + d_[2] + d_[3]};
    for (Wide& corner : corners_) corner *= unit_ / 2;
  }
  Wide first() const { return first_; }
  Wide right() const { return right_; }
  Wide down() const { return down_; }
  Wide unit() const { return unit_; }
  const std::array<Wide, 4>& corners() const { return corners_; }

  /// 0 and 1 points, in 1/16.
  Wide moved(Wide at, bool chroma) const {
    if (w_.points == 0) return 16 * at;
    if (!chroma) return 16 * (at - origin_) + r_ * first_;
    const Wide low = floor_div(first_, 2), high = -floor_div(-first_, 2);
    return 16 * (at - origin_ / 2) + r_ * (w_.type == 1 || low % 2 == 0 ? high : low);
  }

 private:
  const Warp& w_;
  const std::array<Mox32s, 4>& d_;
  Wide unit_, r_, origin_, first_, right_, down_;
  std::array<Wide, 4> corners_;
};

struct Place {
  Wide x, y;  ///< in 1/16 of a sample of the sprite's system
};

class Warper {
 public:
  explicit Warper(const Warp& w) : w_(w), x_(w, false), y_(w, true), unit_(x_.unit()) {}

  Place place(Wide x, Wide y, bool chroma) const {
    if (w_.points < 2) return {x_.moved(x, chroma), y_.moved(y, chroma)};
    const Wide dx = chroma ? 4 * x - 2 * w_.vop.x + 1 : x - w_.vop.x;
    const Wide dy = chroma ? 4 * y - 2 * w_.vop.y + 1 : y - w_.vop.y;
    const Wide r = 16 / unit_;
    if (w_.points == 4) return {r * projective(x_, dx, dy, chroma), r * projective(y_, dx, dy, chroma)};
    if (!chroma) return {r * (x_.first() + step(x_, dx, dy)), r * (y_.first() + step(y_, dx, dy))};
    const auto halved = [&](const Direction& d) {
      return r * nearest_up(turn(d, dx, dy) + scale() * (2 * r * d.first() - 16), 4 * scale() * r);
    };
    return {halved(x_), halved(y_)};
  }

  MoxiMotionVector vector(Wide x, Wide y) const {
    const auto part = [&](const Direction& d, bool isY) {
      Wide sum = 0, value = 0;
      for (int i = 0; i < 256; ++i) {
        const Wide column = x + i % 16, row = y + i / 16;
        sum += d.first() + step(d, column, row) - unit_ * (isY ? row : column);
      }
      const Wide perVector = 128 * unit_ / (w_.quarter ? 2 : 1);
      if (w_.points == 1) value = floor_div(d.first() * 2 * (w_.quarter ? 2 : 1), unit_);
      if (w_.points > 1) value = floor_div(sum - (sum < 0) + perVector / 2, perVector);
      const Wide limit = 16 << w_.fcode;
      return static_cast<Mox16s>(std::clamp<Wide>(value, -limit, limit - 1));
    };
    return {part(x_, false), part(y_, true)};
  }

 private:
  Wide scale() const { return power_from(w_.vop.width) * (w_.points == 3 ? power_from(w_.vop.height) : 1); }
  /// What (dx, dy) moves, times 16 * scale(); two points turn and stretch alike in both directions.
  Wide turn(const Direction& d, Wide dx, Wide dy) const {
    if (w_.points == 2) return &d == &x_ ? x_.right() * dx - y_.right() * dy : y_.right() * dx + x_.right() * dy;
    return d.right() * power_from(w_.vop.height) * dx + d.down() * power_from(w_.vop.width) * dy;
  }
  Wide step(const Direction& d, Wide dx, Wide dy) const { return nearest_up(turn(d, dx, dy), scale() * 16 / unit_); }

  Wide projective(const Direction& d, Wide dx, Wide dy, bool chroma) const {
    const auto &i = x_.corners(), &j = y_.corners(), &c = d.corners();
    const Wide W = w_.vop.width, H = w_.vop.height, p = i[0] - i[1] - i[2] + i[3], s = j[0] - j[1] - j[2] + j[3];
    const Wide g = (p * (j[2] - j[3]) - (i[2] - i[3]) * s) * H, h = ((i[1] - i[3]) * s - p * (j[1] - j[3])) * W;
    const Wide D = (i[1] - i[3]) * (j[2] - j[3]) - (i[2] - i[3]) * (j[1] - j[3]);
    const Wide a = D * (c[1] - c[0]) * H + g * c[1], b = D * (c[2] - c[0]) * W + h * c[2];
    const Wide up = a * dx + b * dy + D * c[0] * W * H * (chroma ? 2 : 1);
    const Wide below = g * dx + h * dy + D * W * H * (chroma ? 2 : 1);
    if (below == 0) return 0;
    return chroma ? nearest_away(2 * up - unit_ * below, 4 * below) : nearest_away(up, below);
  }

  const Warp& w_;
  Direction x_, y_;
  Wide unit_;
};

/// The sample at a place in 1/16, of samples that at(x, y) gives inside width x height.
template <class At>
int sample(const Warp& w, Place place, int width, int height, const At& at) {
  const Wide column = floor_div(place.x, 16), row = floor_div(place.y, 16);
  const int fx = static_cast<int>(place.x - 16 * column), fy = static_cast<int>(place.y - 16 * row);
  int sum = 128 - (w.type != 1 && w.rounding ? 8 >> w.accuracy : 0);
  for (int i = 0; i < 4; ++i) {
    const int weight = (i % 2 ? fx : 16 - fx) * (i / 2 ? fy : 16 - fy);
    sum += weight * at(static_cast<int>(std::clamp<Wide>(column + i % 2, 0, width - 1)),
                       static_cast<int>(std::clamp<Wide>(row + i / 2, 0, height - 1)));
  }
  return sum / 256;
}

}  // namespace mox::oracle
