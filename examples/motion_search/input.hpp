/// Frames of a file: Y4M, or any stream that moxdec decodes.
#pragma once

#include <memory>
#include <string>

#include "moxdec/frame.hpp"

namespace motion_search {

struct FramePair {
  std::shared_ptr<const moxdec::Frame> reference, current;
};

/// Two frames by their numbers in display order, from 0 on. Throws std::runtime_error.
FramePair read_frames(const std::string& path, int reference, int current);

}  // namespace motion_search
