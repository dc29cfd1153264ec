/// Decoded pictures: three planes of 8-bit or 16-bit samples, and the part of them that is shown.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace moxdec {

enum class Chroma : std::uint8_t { k420, k422, k411 };

/// log2 of the number of luma columns and rows for each chroma column and row.
constexpr int chroma_shift_x(Chroma chroma) { return chroma == Chroma::k411 ? 2 : 1; }
constexpr int chroma_shift_y(Chroma chroma) { return chroma == Chroma::k420 ? 1 : 0; }

/// What is shown: a size in luma samples and a kind of sample. Samples of more than 8 bits take 16.
struct FrameFormat {
  int width = 0;
  int height = 0;
  Chroma chroma = Chroma::k420;
  int bit_depth = 8;

  bool operator==(const FrameFormat&) const = default;
  int sample_bytes() const { return bit_depth > 8 ? 2 : 1; }
  int plane_width(int plane) const { return scaled(width, plane == 0 ? 0 : chroma_shift_x(chroma)); }
  int plane_height(int plane) const { return scaled(height, plane == 0 ? 0 : chroma_shift_y(chroma)); }

 private:
  static int scaled(int size, int shift) { return (size + (1 << shift) - 1) >> shift; }
};

/// What is stored, in luma samples: the coded size, the shown part's position in it, and a margin that a decoder may
/// use on all four sides. Chroma planes hold all of it divided by the chroma shifts.
struct FrameLayout {
  int width = 0;
  int height = 0;
  int left = 0;
  int top = 0;
  int margin = 0;

  bool operator==(const FrameLayout&) const = default;
};

class Frame {
 public:
  /// Samples start out undefined. Throws std::bad_alloc.
  Frame(const FrameFormat& format, const FrameLayout& layout);

  const FrameFormat& format() const { return format_; }
  const FrameLayout& layout() const { return layout_; }
  /// The first coded sample of a plane (0 luma, 1 and 2 chroma). `Sample` has the size that the format names.
  template <class Sample>
  Sample* samples(int plane) const {
    return reinterpret_cast<Sample*>(planes_[plane].coded);
  }
  /// Bytes from one row to the next; a multiple of 64.
  int step(int plane) const { return planes_[plane].step; }
  /// The same in samples.
  template <class Sample>
  int sample_step(int plane) const {
    return step(plane) / static_cast<int>(sizeof(Sample));
  }
  void fill_chroma(int value);
  /// Copies every other line, from line `first` (0 or 1) on, to the one below or above it.
  void repeat_lines(int first);
  /// The first shown sample of row `y` of the shown part.
  const std::byte* shown_row(int plane, int y) const {
    return planes_[plane].shown + std::ptrdiff_t{y} * planes_[plane].step;
  }

 private:
  struct Free {
    void operator()(std::byte* memory) const { std::free(memory); }
  };
  struct Plane {
    std::byte* coded;
    std::byte* shown;
    int step;
  };
  FrameFormat format_;
  FrameLayout layout_;
  std::unique_ptr<std::byte, Free> memory_;
  std::array<Plane, 3> planes_;
};

/// Frames of one shape, used again once nobody holds them.
class FramePool {
 public:
  /// Frames of another shape are given up; those still held live on with their holders.
  void configure(const FrameFormat& format, const FrameLayout& layout);
  std::shared_ptr<Frame> take();

 private:
  FrameFormat format_;
  FrameLayout layout_;
  std::vector<std::shared_ptr<Frame>> frames_;
};

}  // namespace moxdec
