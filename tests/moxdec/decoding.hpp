/// Decoding in the test's own process and by the program.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxdec/error.hpp"

namespace mox::test {

using Stream = std::vector<std::uint8_t>;

inline Stream read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string vector_path(const std::string& name) { return std::string(MOXVC_VECTORS "/") + name; }

/// What came out of a stream: its frames, and the message of the error that ended it.
struct Decoded {
  std::vector<std::shared_ptr<const moxdec::Frame>> frames;
  std::string error;

  /// The first luma sample of each frame.
  std::vector<int> shades() const {
    std::vector<int> values;
    for (const auto& frame : frames) values.push_back(std::to_integer<int>(*frame->shown_row(0, 0)));
    return values;
  }
};

/// The bytes of the shown samples of all planes.
inline Stream raw_planes(const moxdec::Frame& frame) {
  Stream samples;
  for (int plane = 0; plane < 3; ++plane) {
    for (int y = 0; y < frame.format().plane_height(plane); ++y) {
      const auto* row = reinterpret_cast<const std::uint8_t*>(frame.shown_row(plane, y));
      samples.insert(samples.end(), row, row + frame.format().plane_width(plane) * frame.format().sample_bytes());
    }
  }
  return samples;
}

enum class References { kPlain, kExpanded };

inline Decoded decode_all(const Stream& stream, References references = References::kPlain, int threads = 1) {
  Decoded result;
  try {
    const auto decoder = moxdec::find_codec(stream, "stream.264").open(stream);
    if (references == References::kExpanded) decoder->expand_references();
    decoder->set_threads(threads);
    while (auto frame = decoder->next()) result.frames.push_back(std::move(frame));
  } catch (const moxdec::DecodeError& error) {
    result.error = error.what();
    EXPECT_NE(result.error, "");
  }
  return result;
}

inline void expect_equal(const Decoded& decoded, const Decoded& expected, const std::string& what) {
  EXPECT_EQ(decoded.error, expected.error) << what;
  ASSERT_EQ(decoded.frames.size(), expected.frames.size()) << what;
  for (std::size_t i = 0; i < expected.frames.size(); ++i) {
    ASSERT_TRUE(raw_planes(*decoded.frames[i]) == raw_planes(*expected.frames[i])) << what << " frame " << i;
  }
}

/// One vector of the manifest.
struct Vector {
  std::string file, md5;
  int frames, width, height;
  bool is_h264() const { return file.ends_with(".264"); }
  /// As the program calls it.
  std::string codec() const {
    static const std::map<std::string, std::string> kCodecs = {
        {".261", "H.261"}, {".263", "H.263"},    {".264", "H.264"},    {".avs", "AVS"},
        {".dv", "DV"},     {".m1v", "MPEG-1/2"}, {".m2v", "MPEG-1/2"}, {".m4v", "MPEG-4"}};
    return kCodecs.at(file.substr(file.find('.')));
  }
};
inline std::vector<Vector> manifest() {
  std::ifstream file(vector_path("manifest.csv"));
  std::vector<Vector> vectors;
  std::string line, field;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::vector<std::string> fields;
    for (std::istringstream row(line); std::getline(row, field, ',');) fields.push_back(field);
    vectors.push_back(
        {fields.at(0), fields.at(2), std::stoi(fields.at(1)), std::stoi(fields.at(3)), std::stoi(fields.at(4))});
  }
  return vectors;
}

/// What a shell command gave.
struct Ran {
  int code;
  std::string out, err;
};
inline Ran run(const std::string& command) {
  const std::string out = testing::TempDir() + "moxdec_out", err = testing::TempDir() + "moxdec_err";
  const std::string id = std::to_string(getpid());
  const int status = std::system(("( " + command + " ) >'" + out + id + "' 2>'" + err + id + "'").c_str());
  const auto text = [](const std::string& path) {
    const auto bytes = read_file(path);
    std::remove(path.c_str());
    return std::string(bytes.begin(), bytes.end());
  };
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 256, text(out + id), text(err + id)};
}
inline const std::string kMoxdec = "'" MOXVC_BIN_DIR "/moxdec' ";

}  // namespace mox::test
