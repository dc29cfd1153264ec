#include "moxfilter/stage.hpp"

#include "moxdec/error.hpp"

namespace moxfilter {

FramePtr Stage::filter(const Window& window) {
  const auto result = blank_like(window.at(0));
  for (int plane = 0; plane < 3; ++plane) {
    try {
      filter_plane(window, *result, plane);
    } catch (const Refusal& refusal) {
      const moxdec::FrameFormat& format = result->format();
      throw moxdec::DecodeError(std::string(options_.filter->name) + " cannot filter a plane of " +
                                std::to_string(format.plane_width(plane)) + "x" +
                                std::to_string(format.plane_height(plane)) + " samples: " + refusal.what());
    }
  }
  last_ = result;
  return result;
}

void Stage::filter_plane(const Window& window, const Frame& result, int plane) {
  const auto samples = [plane](const Frame& frame) { return frame.samples<Mox8u>(plane); };
  Job job{};
  for (int i = 0; i < 5; ++i) job.sources[static_cast<std::size_t>(i)] = samples(window.at(i - Window::kReach));
  job.last_result = samples(last_ ? *last_ : window.at(0));
  job.result = samples(result);
  job.step = result.step(plane);
  job.size = {result.format().plane_width(plane), result.format().plane_height(plane)};
  PlaneFilter& filter = planes_[static_cast<std::size_t>(plane)];
  if (!filter) {
    filter =
        options_.filter->open({options_.filter->parameters, options_.values, options_.first, options_.kept, job.size});
  }
  require_ok(filter(job));
}

}  // namespace moxfilter
