#include "motion_search/input.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "motion_search/y4m.hpp"
#include "moxdec/codec.hpp"
#include "moxdec/error.hpp"

namespace motion_search {
namespace {

std::vector<std::uint8_t> read_file(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) throw std::runtime_error(std::strerror(errno));
  std::vector<std::uint8_t> data;
  for (std::size_t got = 1; got > 0;) {
    constexpr std::size_t kChunk = 1 << 20;
    const std::size_t size = data.size();
    data.resize(size + kChunk);
    got = std::fread(data.data() + size, 1, kChunk, file.get());
    data.resize(size + got);
  }
  if (std::ferror(file.get())) throw std::runtime_error(std::strerror(errno));
  return data;
}

}  // namespace

FramePair read_frames(const std::string& path, int reference, int current) {
  const std::vector<std::uint8_t> data = read_file(path);
  const auto decoder = is_y4m(data) ? open_y4m(data) : moxdec::find_codec(data, path).open(data);
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
