#include "moxdec/codec.hpp"

#include <algorithm>
#include <cctype>
#include <string>

#include "moxdec/avs/decoder.hpp"
#include "moxdec/dv/decoder.hpp"
#include "moxdec/error.hpp"
#include "moxdec/h261/decoder.hpp"
#include "moxdec/h263/decoder.hpp"
#include "moxdec/h264/decoder.hpp"
#include "moxdec/mpeg12/decoder.hpp"
#include "moxdec/mpeg4/decoder.hpp"

namespace moxdec {
namespace {

constexpr const Codec* kCodecs[] = {&avs::kCodec,  &dv::kCodec,     &h261::kCodec, &h263::kCodec,
                                    &h264::kCodec, &mpeg12::kCodec, &mpeg4::kCodec};

bool has_extension(const Codec& codec, std::string_view file_name) {
  const auto point = file_name.rfind('.');
  if (point == std::string_view::npos) return false;
  std::string extension(file_name.substr(point + 1));
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::ranges::find(codec.extensions, extension) != codec.extensions.end();
}

}  // namespace

const Codec& find_codec(Bytes data, std::string_view file_name) {
  const Codec* best = nullptr;
  int best_score = 0;
  for (const Codec* codec : kCodecs) {
    const int score = 2 * codec->probe(data) + (has_extension(*codec, file_name) ? 1 : 0);
    if (score > best_score) best = codec, best_score = score;
  }
  if (!best) throw DecodeError("not a stream of a known kind");
  return *best;
}

}  // namespace moxdec
