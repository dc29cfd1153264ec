/// Filters that take noise away.
#include <memory>
#include <vector>

#include "moxfilter/filter.hpp"

namespace moxfilter {
namespace {

PlaneFilter open_adaptive(const Setup& setup) {
  const MoxiSize mask{setup.value("--mask-width"), setup.value("--mask-height")};
  MoxiDenoiseAdaptiveState* state = nullptr;
  const MoxStatus status = moxiFilterDenoiseAdaptiveInitAlloc_8u_C1(&state, setup.size, mask);
  const std::shared_ptr<MoxiDenoiseAdaptiveState> owned(state,
                                                        [](auto* s) { moxiFilterDenoiseAdaptiveFree_8u_C1(s); });
  require_ok(status);
  return [owned, mask, threshold = setup.value("--threshold"), flags = setup.value("--temporal")](const Job& job) {
    const Mox8u* sources[3] = {job.source(-1), job.source(), job.source(1)};
    return moxiFilterDenoiseAdaptive_8u_C1R(sources, job.step, job.result, job.step, job.size, mask, {0, 0}, job.size,
                                            threshold, flags, owned.get());
  };
}

PlaneFilter open_smooth(const Setup& setup) {
  const auto bytes = 2 * (static_cast<std::size_t>(setup.size.width) + 3) * (static_cast<std::size_t>(setup.size.height) + 3);
  return [threshold = setup.value("--threshold"), buffer = std::vector<Mox8u>(bytes)](const Job& job) mutable {
    return moxiFilterDenoiseSmooth_8u_C1R(job.source(), job.step, job.result, job.step, job.size, threshold, {0, 0},
                                          job.size, buffer.data());
  };
}

}  // namespace

std::span<const Filter> denoisers() {
  static const Filter kFilters[] = {
      {"adaptive",
       "mean of a window, with near samples of the pictures before and after",
       Kind::kDenoiser,
       {{"--mask-width", 1, 100, 1, "columns of the window to the left and to the right"},
        {"--mask-height", 1, 100, 1, "rows of the window above and below"},
        {"--threshold", 0, 256, 24, "differences below it count as near"},
        {"--temporal", 0, 3, 3, "1 with the picture before, 2 with the one after, 3 with both, 0 with none"}},
       open_adaptive},
      {"smooth",
       "mean of the 3x3 samples around, but for edges",
       Kind::kDenoiser,
       {{"--threshold", 0, 256, 10, "step of the mean from which on there is an edge"}},
       open_smooth},
  };
  return kFilters;
}

}  // namespace moxfilter
