/// Damaged copies of the bundled streams: each must end, soon, in an error or in decoded pictures, and touch no memory
/// that is not its own, which the sanitizers see. MOXVC_CORRUPT sets the number of copies for each stream.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "moxdec/decoding.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// What pictures begin with, if a search finds it; an H.264 unit may be one of several slices of a picture.
Stream picture_start(const Vector& vector) {
  if (vector.codec() == "H.264") return {0, 0, 1};
  if (vector.codec() == "MPEG-1/2") return {0, 0, 1, 0};
  if (vector.codec() == "MPEG-4" || vector.codec() == "AVS") return {0, 0, 1, 0xB6};
  return {};
}

/// The units that lie in the first 48,000 bytes, which leaves whole pictures of the longer streams.
void shorten(Stream& stream, const Stream& start) {
  constexpr std::size_t kLongest = 48000;
  if (stream.size() <= kLongest || start.empty()) return;
  stream.erase(std::find_end(stream.begin(), stream.begin() + kLongest, start.begin(), start.end()), stream.end());
}

/// One way to do damage.
using Damage = void (*)(Stream&, Random&);

std::size_t place(const Stream& stream, Random& random) {
  return static_cast<std::size_t>(random(0, static_cast<int>(stream.size()) - 1));
}
void flip(Stream& stream, std::size_t byte, Random& random) {
  stream[byte] = static_cast<std::uint8_t>(stream[byte] ^ 1 << random(0, 7));
}

constexpr Damage kDamages[] = {
    [](Stream& stream, Random& random) { stream.resize(place(stream, random)); },
    [](Stream& stream, Random& random) { flip(stream, place(stream, random), random); },
    [](Stream& stream, Random& random) {
      for (int i = random(2, 40); i > 0; --i) flip(stream, place(stream, random), random);
    },
    // The parameter sets and the first slice header.
    [](Stream& stream, Random& random) {
      for (int i = random(1, 3); i > 0; --i) flip(stream, place(stream, random) % 60, random);
    },
    // A run of zeros, as escaped bytes or not, or of ones.
    [](Stream& stream, Random& random) {
      const std::size_t at = place(stream, random),
                        end = std::min(stream.size(), at + static_cast<std::size_t>(random(1, 300)));
      const std::uint8_t third = random.chance(0.5) ? 3 : 0, value = random.chance(0.7) ? 0 : 255;
      for (std::size_t i = at; i < end; ++i) stream[i] = value == 0 && (i - at) % 3 == 2 ? third : value;
    },
    // A part that is missing, or that comes twice.
    [](Stream& stream, Random& random) {
      const std::size_t at = place(stream, random),
                        end = std::min(stream.size(), at + static_cast<std::size_t>(random(1, 3000)));
      const auto from = stream.begin() + static_cast<std::ptrdiff_t>(at),
                 to = stream.begin() + static_cast<std::ptrdiff_t>(end);
      const Stream part(from, to);
      if (random.chance(0.5)) {
        stream.erase(from, to);
      } else {
        stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(place(stream, random)), part.begin(), part.end());
      }
    },
};

struct Count {
  int copies = 0, errors = 0, frames = 0;
  double longest = 0;
};

/// With several threads the same frames must come out, and the same error.
void decode_damaged(const Stream& stream, bool threads_too, Count& count) {
  const auto start = std::chrono::steady_clock::now();
  const Decoded decoded = decode_all(stream);
  count.longest =
      std::max(count.longest, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  ++count.copies;
  count.errors += !decoded.error.empty();
  count.frames += static_cast<int>(decoded.frames.size());
  EXPECT_TRUE(!decoded.error.empty() || !decoded.frames.empty());
  // A picture takes a slice header and one bit for each macroblock at least.
  EXPECT_LE(decoded.frames.size(), stream.size() / 4);
  if (!threads_too) return;
  const int threads = 2 + count.copies % 2;
  expect_equal(decode_all(stream, References::kPlain, threads), decoded, std::to_string(threads) + " threads");
}

TEST(Corrupt, EndsInAnErrorOrInPictures) {
  const char* wanted = std::getenv("MOXVC_CORRUPT");
  const int copies = wanted ? std::atoi(wanted) : 300;
  ASSERT_GT(copies, 0);
  Random random;
  for (const Vector& vector : manifest()) {
    Stream stream = read_file(vector_path(vector.file));
    shorten(stream, picture_start(vector));
    Count count;
    for (int i = 0; i < copies; ++i) {
      Stream damaged = stream;
      for (int j = random.chance(0.8) ? 1 : 2; j > 0 && !damaged.empty(); --j) {
        kDamages[random(0, static_cast<int>(std::size(kDamages)) - 1)](damaged, random);
      }
      decode_damaged(damaged, vector.is_h264(), count);
    }
    std::printf("%s: %d damaged copies, %d with an error, %d frames, the slowest took %.3f s\n", vector.file.c_str(),
                count.copies, count.errors, count.frames, count.longest);
    EXPECT_GT(count.errors, copies / 4);
    EXPECT_GT(count.frames, 0);
    EXPECT_LT(count.longest, 10);
  }
}

/// Short streams cut everywhere.
TEST(Corrupt, TruncatedAtEachByte) {
  for (const std::string name : {"h264_tiny_i.264", "mpeg2_mix_pictures.m2v"}) {
    const Stream stream = read_file(vector_path(name));
    const bool is_h264 = name.ends_with(".264");
    Count count;
    for (std::size_t size = 0; size < stream.size(); ++size) {
      decode_damaged(Stream(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size)), is_h264, count);
    }
    EXPECT_EQ(count.copies, static_cast<int>(stream.size()));
    EXPECT_GT(count.errors, count.copies / 2);
  }
}

}  // namespace
}  // namespace mox::test
