/// moxenc: encodes a Y4M file as an H.264 byte stream.
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "moxdec/error.hpp"
#include "moxdec/file.hpp"
#include "moxdec/output.hpp"
#include "moxdec/program.hpp"
#include "moxdec/y4m.hpp"
#include "moxenc/encoder.hpp"

namespace moxenc {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kUsage =
    "usage: moxenc INPUT.y4m -o OUT.264 [--qp N | --bitrate KBITS] [--keyint N] [--recon FILE] [--frames N] "
    "[--quiet]\n";
constexpr const char* kHelp =
    "\n"
    "Encodes 8-bit 4:2:0 video as an H.264 byte stream of the Constrained Baseline profile.\n"
    "\n"
    "  -o OUT.264       the stream; - is standard output\n"
    "  --qp N           quantiser of all pictures, 0 (best) to 51; 26 if not given\n"
    "  --bitrate KBITS  choose quantisers so that a second takes KBITS thousand bits\n"
    "  --keyint N       an I picture every N frames, 250 if not given\n"
    "  --recon FILE     what a decoder makes of the stream: .yuv raw planes, .y4m, or .png a contact sheet\n"
    "  --frames N       stop after N frames\n"
    "  --quiet          no report\n"
    "  --help           this text\n"
    "\n"
    "Exit code: 0 done, 1 the input is broken or not supported or the output failed, 2 wrong usage.\n";

struct Options {
  std::string input, output, reconstruction;
  Settings settings;
  bool has_qp = false, quiet = false, help = false;
  int frames = std::numeric_limits<int>::max();
};

bool parse(Options& options, const std::string& option, moxdec::Arguments& arguments) {
  constexpr int kMost = 1000000;
  if (option == "-o") {
    options.output = arguments.value();
  } else if (option == "--recon") {
    options.reconstruction = arguments.value();
  } else if (option == "--qp") {
    options.settings.qp = arguments.number(0, 51);
    options.has_qp = true;
  } else if (option == "--bitrate") {
    options.settings.kbits = arguments.number(1, kMost);
  } else if (option == "--keyint") {
    options.settings.keyint = arguments.number(1, kMost);
  } else if (option == "--frames") {
    options.frames = arguments.number(1, kMost);
  } else if (option == "--quiet") {
    options.quiet = true;
  } else {
    return false;
  }
  return true;
}

void check(const Options& options) {
  if (options.output.empty()) throw moxdec::UsageError("no output: -o is missing");
  if (options.has_qp && options.settings.kbits > 0) throw moxdec::UsageError("--qp and --bitrate exclude each other");
}

struct Totals {
  int frames = 0;
  std::size_t bytes = 0;
  double seconds = 0;
};

void report(const Options& options, const Totals& totals, moxdec::FrameRate rate) {
  const double fps =
      rate.denominator > 0 ? static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator) : 25.0;
  std::fprintf(stderr, "%s: %d frames, %zu bytes, %.1f kbit/s at %.2f frames/s, coded in %.3f s, %.1f frames/s\n",
               options.input.c_str(), totals.frames, totals.bytes,
               8e-3 * static_cast<double>(totals.bytes) * fps / totals.frames, fps, totals.seconds,
               totals.frames / totals.seconds);
}

/// The outputs are opened with the first frame, so that a file that is no video leaves them as they were.
void run(const Options& options) {
  check(options);
  const std::vector<std::uint8_t> data = moxdec::read_file(options.input);
  moxdec::require(moxdec::is_y4m(data), "not a Y4M file");
  const auto reader = moxdec::open_y4m(data);
  std::unique_ptr<Encoder> encoder;
  std::unique_ptr<moxdec::OutputFile> output;
  std::unique_ptr<moxdec::FrameWriter> reconstruction;
  Totals totals;
  while (totals.frames < options.frames) {
    const auto frame = reader->next();
    if (!frame) break;
    if (!encoder) {
      encoder = std::make_unique<Encoder>(frame->format(), reader->frame_rate(), options.settings);
      output = std::make_unique<moxdec::OutputFile>(options.output);
      if (!options.reconstruction.empty()) reconstruction = moxdec::open_writer(options.reconstruction);
    }
    const auto start = Clock::now();
    const auto& units = encoder->encode(*frame);
    totals.seconds += std::chrono::duration<double>(Clock::now() - start).count();
    output->write(units.data(), units.size());
    if (reconstruction) reconstruction->write(encoder->reconstruction(), reader->frame_rate());
    ++totals.frames;
    totals.bytes += units.size();
  }
  moxdec::require(totals.frames > 0, "there are no frames");
  output->close();
  if (reconstruction) reconstruction->finish();
  if (!options.quiet) report(options, totals, reader->frame_rate());
}

}  // namespace
}  // namespace moxenc

int main(int argc, char** argv) {
  using namespace moxenc;
  return moxdec::run_program<Options>({"moxenc", kUsage, kHelp}, {argc, argv}, parse, run);
}
