/// Filters that keep the rows of one field and make those of the other. Pictures are filtered whole, so there are no
/// rows above the first one and below the last one.
#include <cstring>
#include <memory>

#include "moxfilter/filter.hpp"

namespace moxfilter {
namespace {

void copy_row(const Job& job, int from, int to) {
  std::memcpy(job.result + std::ptrdiff_t{to} * job.step, job.source() + std::ptrdiff_t{from} * job.step,
              static_cast<std::size_t>(job.size.width));
}

/// The filter sees one field only; the program weaves its rows with the ones that it makes.
PlaneFilter open_edge(const Setup& setup) {
  return [kept = setup.kept](const Job& job) -> MoxStatus {
    const int height = job.size.height, missing = 1 - kept;
    for (int y = kept; y < height; y += 2) copy_row(job, y, y);
    // With an odd height the top field has one more row, so that each row of a bottom field lies between two.
    const bool odd = height % 2 != 0, border = !(odd && kept == kTop);
    const MoxStatus status =
        moxiDeinterlaceEdgeDetect_8u_C1R(job.source() + kept * job.step, 2 * job.step, job.result + missing * job.step,
                                         2 * job.step, {job.size.width, height / 2}, missing, border);
    if (status == moxStsOk && odd && kept == kBottom) copy_row(job, height - 2, height - 1);
    return status;
  };
}

PlaneFilter open_triangle(const Setup& setup) {
  return [weight = static_cast<Mox32u>(setup.value("--centre"))](const Job& job) {
    constexpr Mox32s kWholePicture = 0;
    return moxiDeinterlaceFilterTriangle_8u_C1R(job.source(), job.step, job.result, job.step, job.size, weight,
                                                kWholePicture);
  };
}

PlaneFilter open_median(const Setup& setup) {
  return [threshold = setup.value("--threshold"), filtered = 1 - setup.kept](const Job& job) {
    return moxiDeinterlaceMedianThreshold_8u_C1R(job.source(), job.step, job.result, job.step, job.size, threshold,
                                                 filtered, 1);
  };
}

PlaneFilter open_motion(const Setup& setup) {
  return [threshold = setup.value("--threshold"), protect = setup.value("--protect"), first = setup.first,
          kept = setup.kept](const Job& job) -> MoxStatus {
    // The picture itself is to be the second of the four for the first field, and the third for the second one.
    const int start = kept == first ? -1 : -2;
    const Mox8u* sources[4];
    for (int i = 0; i < 4; ++i) sources[i] = job.source(start + i);
    const MoxStatus status = moxiDeinterlaceMotionAdaptive_8u_C1(sources, job.step, job.result, job.step, job.size,
                                                                 threshold, first, kept, 1, protect);
    // The one row that the filter may leave out.
    if (status == moxStsOk && job.size.height % 2 != 0) copy_row(job, job.size.height - 1, job.size.height - 1);
    return status;
  };
}

PlaneFilter open_blend(const Setup& setup) {
  Mox32s motion[2] = {setup.value("--motion-low"), setup.value("--motion-high")};
  double weights[2] = {setup.value("--weight-low") / 100.0, setup.value("--weight-high") / 100.0};
  MoxiDeinterlaceBlendState* state = nullptr;
  const MoxStatus status = moxiDeinterlaceBlendInitAlloc_8u_C1(setup.size, motion, weights, &state);
  const std::shared_ptr<MoxiDeinterlaceBlendState> owned(state, [](auto* s) { moxiDeinterlaceBlendFree_8u_C1(s); });
  require_ok(status);
  return [owned, first = setup.first, kept = setup.kept](const Job& job) {
    const Mox8u* sources[3] = {job.source(-1), job.source(), job.source(1)};
    return moxiDeinterlaceBlend_8u_C1(sources, job.step, job.result, job.step, job.size, first, kept, 1, owned.get());
  };
}

}  // namespace

std::span<const Filter> deinterlacers() {
  static const Filter kFilters[] = {
      {"edge", "interpolates along edges, from one field alone", Kind::kDeinterlacer, {}, open_edge},
      {"triangle",
       "softens both fields vertically",
       Kind::kDeinterlacer,
       {{"--centre", 0, 256, 128, "weight of a sample itself, in 256ths"}},
       open_triangle},
      {"median",
       "median of three rows where they differ enough",
       Kind::kDeinterlacer,
       {{"--threshold", 0, 256, 4, "distance from which on the median replaces a sample"}},
       open_median},
      {"motion",
       "the other field where four pictures are still, else the mean where it combs",
       Kind::kDeinterlacer,
       {{"--threshold", 0, 256, 10, "differences below it count as still"},
        {"--protect", 0, 1, 0, "1 tests still samples for combing too"}},
       open_motion},
      {"blend",
       "a mean of edge value and median, weighted by the motion of three pictures",
       Kind::kDeinterlacer,
       {{"--motion-low", 0, 255, 10, "motion with the lower weight"},
        {"--motion-high", 0, 255, 40, "motion with the higher weight"},
        {"--weight-low", -1000, 1000, 0, "lower weight of the edge value, in hundredths"},
        {"--weight-high", -1000, 1000, 100, "higher weight of the edge value, in hundredths"}},
       open_blend},
  };
  return kFilters;
}

}  // namespace moxfilter
