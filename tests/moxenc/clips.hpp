/// Small clips made of formulas.
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <string>

#include "moxdec/decoding.hpp"

namespace mox::test {

/// Samples by frame, plane, column and row; their low 8 bits count.
using Formula = std::function<int(int frame, int plane, int x, int y)>;

inline std::shared_ptr<moxdec::Frame> make_frame(int width, int height, int number, const Formula& formula) {
  const auto frame =
      std::make_shared<moxdec::Frame>(moxdec::FrameFormat{width, height}, moxdec::FrameLayout{width, height, 0, 0, 0});
  for (int plane = 0; plane < 3; ++plane) {
    for (int y = 0; y < frame->format().plane_height(plane); ++y) {
      auto* row = frame->samples<std::uint8_t>(plane) + y * frame->step(plane);
      for (int x = 0; x < frame->format().plane_width(plane); ++x) {
        row[x] = static_cast<std::uint8_t>(formula(number, plane, x, y));
      }
    }
  }
  return frame;
}

/// A number of 0 to 255 without pattern.
inline int hash(int a, int b, int c, int d) {
  auto h = static_cast<std::uint32_t>(a) * 0x9E3779B1u ^ static_cast<std::uint32_t>(b) * 0x85EBCA77u ^
           static_cast<std::uint32_t>(c) * 0xC2B2AE3Du ^ static_cast<std::uint32_t>(d) * 0x27D4EB2Fu;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  return static_cast<int>((h ^ h >> 13) >> 7 & 255);
}

namespace formulas {

inline int noise(int t, int plane, int x, int y) { return hash(t, plane, x, y); }
/// Noise, but for steps of 3 between the macroblocks of a row, which a filter would smooth.
inline int steps(int t, int plane, int x, int y) {
  return plane == 0 && (x + 2) % 16 < 4 ? 100 + x / 16 % 2 * 3 : noise(t, plane, x, y);
}
/// Whole macroblocks change from black to white and back: the largest levels there are.
inline int flips(int t, int plane, int x, int y) {
  const int size = plane == 0 ? 16 : 8;
  return (x / size + y / size + t) % 2 ? 255 : 0;
}
inline int still(int, int plane, int x, int y) { return (x * x + y * y * 3) / (4 + plane) + hash(0, plane, x, y) / 16; }
/// Noise of blocks, which moves by 4 samples to the left and 2 up in each frame.
inline int pan(int t, int plane, int x, int y) {
  const int size = plane == 0 ? 1 : 2;
  return 128 + hash(9, plane, (size * x + 4 * t) / 6, (size * y + 2 * t) / 6) / 3;
}
/// Grey waves of about five samples, which move by 5 quarters of a sample to the left and 3 down in each frame.
inline int waves(int t, int plane, int x, int y) {
  const int u = 4 * x + 5 * t, v = 4 * y - 3 * t;
  return plane == 0 ? static_cast<int>(128 + 50 * std::sin(0.3 * u) + 50 * std::sin(0.27 * v + 0.13 * u)) : 128;
}
/// Two scenes of four frames each, over and over.
inline int cuts(int t, int plane, int x, int y) { return t / 4 % 2 ? pan(t, plane, x, y) : still(t, plane, y, x) + t; }

}  // namespace formulas
}  // namespace mox::test
