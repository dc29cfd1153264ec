/// moxdec: decodes a video stream to raw planes, a Y4M file or a contact sheet.
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxdec/output.hpp"
#include "moxdec/program.hpp"

namespace moxdec {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kUsage =
    "usage: moxdec INPUT [-o OUT.yuv|OUT.y4m|OUT.png] [--frames N] [--threads N] [--quiet]\n";
constexpr const char* kHelp =
    "\n"
    "Decodes a video stream: H.264 byte streams with CAVLC, 8 to 14 bits, monochrome, 4:2:0 and 4:2:2; MPEG-1 and\n"
    "MPEG-2 video, 4:2:0 and 4:2:2; MPEG-4 Part 2, simple and advanced simple; H.261; H.263 with the annexes D, F, I,\n"
    "J, K, S and T; AVS, Jizhun profile; DV25, DV50 and DV100.\n"
    "\n"
    "  -o OUT      .yuv  raw planes Y, U, V of each frame in display order, cropped (any other ending too)\n"
    "              .y4m  the same with headers\n"
    "              .png  a contact sheet with small copies of the frames\n"
    "              -     raw planes to standard output\n"
    "              Without -o the stream is decoded and nothing is written.\n"
    "  --frames N  stop after N frames\n"
    "  --threads N use N threads, 1 by default, for the same frames: two or three are faster with H.264, more do not\n"
    "              help; all else is decoded in one\n"
    "  --quiet     no report\n"
    "  --help      this text\n"
    "\n"
    "The report on standard error tells size, frames and the speed of decoding, writing left out.\n"
    "Exit code: 0 done, 1 the input is broken or not supported or the output failed, 2 wrong usage.\n";

struct Options {
  std::string input;
  std::string output;
  long long frames = std::numeric_limits<long long>::max();
  int threads = 1;
  bool quiet = false;
  bool expand = false;  // for tests, not in the help: references with margins
  bool help = false;
};

bool parse(Options& options, const std::string& option, Arguments& arguments) {
  if (option == "-o") {
    options.output = arguments.value();
  } else if (option == "--frames") {
    options.frames = arguments.number(1);
  } else if (option == "--threads") {
    options.threads = arguments.number(1);
  } else if (option == "--quiet") {
    options.quiet = true;
  } else if (option == "--expand") {
    options.expand = true;
  } else {
    return false;
  }
  return true;
}

double seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

/// A line on standard error that is written over now and then, on a terminal only.
class Progress {
 public:
  explicit Progress(bool wanted) : active_(wanted && isatty(STDERR_FILENO)) {}
  void update(long long frames) {
    if (!active_ || Clock::now() - shown_ < std::chrono::milliseconds(500)) return;
    shown_ = Clock::now();
    std::fprintf(stderr, "\r%lld frames, %.1f frames/s ", frames,
                 static_cast<double>(frames) / seconds(shown_ - start_));
    used_ = true;
  }
  void clear() {
    if (used_) std::fputs("\r\033[K", stderr);
    used_ = false;
  }

 private:
  bool active_;
  bool used_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point shown_ = start_;
};

struct Totals {
  long long frames = 0;
  int width = 0;
  int height = 0;
  double decoding = 0;  // seconds
};

void decode(Decoder& decoder, FrameWriter* writer, const Options& options, Totals& totals) {
  Progress progress(!options.quiet);
  const auto decode_all = [&] {
    while (totals.frames < options.frames) {
      const auto start = Clock::now();
      const auto frame = decoder.next();
      totals.decoding += seconds(Clock::now() - start);
      if (!frame) return;
      ++totals.frames;
      totals.width = frame->format().width;
      totals.height = frame->format().height;
      if (writer) writer->write(*frame, decoder.frame_rate());
      progress.update(totals.frames);
    }
  };
  try {
    decode_all();
  } catch (...) {
    progress.clear();
    throw;
  }
  progress.clear();
}

void run(const Options& options) {
  const std::vector<std::uint8_t> data = read_file(options.input);
  const Codec& codec = find_codec(data, options.input);
  const auto decoder = codec.open(data);
  if (options.expand) decoder->expand_references();
  decoder->set_threads(options.threads);
  const auto writer = options.output.empty() ? nullptr : open_writer(options.output);
  Totals totals;
  decode(*decoder, writer.get(), options, totals);
  if (writer) writer->finish();
  if (options.quiet) return;
  std::fprintf(stderr, "%s: %s, %dx%d, %lld frames, %.3f s, %.1f frames/s\n", options.input.c_str(),
               std::string(codec.name).c_str(), totals.width, totals.height, totals.frames, totals.decoding,
               static_cast<double>(totals.frames) / totals.decoding);
}

}  // namespace
}  // namespace moxdec

int main(int argc, char** argv) {
  using namespace moxdec;
  return run_program<Options>({"moxdec", kUsage, kHelp}, {argc, argv}, parse, run);
}
