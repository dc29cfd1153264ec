#include "motion_search/input.hpp"

#include <algorithm>
#include <vector>

#include "moxdec/error.hpp"
#include "moxdec/file.hpp"
#include "moxdec/y4m.hpp"

namespace motion_search {
FramePair read_frames(const std::string& path, int reference, int current) {
  const std::vector<std::uint8_t> data = moxdec::read_file(path);
  const auto decoder = moxdec::open_video(data, path);
  FramePair pair;
  for (int i = 0; i <= std::max(reference, current); ++i) {
    auto frame = decoder->next();
    if (!frame) throw moxdec::DecodeError("there is no frame " + std::to_string(i));
    if (i == reference) pair.reference = frame;
    if (i == current) pair.current = frame;
  }
  moxdec::require(pair.reference->format() == pair.current->format(), "the two frames differ in size or format");
  return pair;
}

}  // namespace motion_search
