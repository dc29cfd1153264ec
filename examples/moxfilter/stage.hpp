/// A filter at work on pictures of three planes.
#pragma once

#include "moxfilter/clip.hpp"
#include "moxfilter/filter.hpp"

namespace moxfilter {

struct FilterOptions {
  const Filter* filter = nullptr;
  std::vector<int> values;
  Field first = kTop, kept = kTop;
};

class Stage {
 public:
  explicit Stage(FilterOptions options) : options_(std::move(options)) {}
  /// The result for the picture that the window is at. Throws moxdec::DecodeError.
  FramePtr filter(const Window& window);

 private:
  void filter_plane(const Window& window, const Frame& result, int plane);

  FilterOptions options_;
  std::array<PlaneFilter, 3> planes_;
  FramePtr last_;
};

}  // namespace moxfilter
