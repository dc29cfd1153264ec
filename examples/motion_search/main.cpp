/// motion_search: finds how the blocks of a picture have moved since another one.
#include <cstdio>
#include <string>

#include "motion_search/field.hpp"
#include "motion_search/input.hpp"
#include "motion_search/report.hpp"
#include "moxdec/output.hpp"
#include "moxdec/program.hpp"

namespace motion_search {
namespace {

constexpr const char* kUsage = "usage: motion_search INPUT [--reference N] [--current N] [--range N] [-o OUT.png]\n";
constexpr const char* kHelp =
    "\n"
    "Predicts a picture from another one, block by block, and tells how well: with a full search, with a diamond\n"
    "search, and without motion.\n"
    "\n"
    "  INPUT          Y4M (8-bit 4:2:0), or a stream that moxdec decodes\n"
    "  --reference N  the frame to predict from, 0 (the first) if not given\n"
    "  --current N    the frame to predict, 1 if not given\n"
    "  --range N      search vectors of -N to N - 1 samples: a multiple of 4, 4 to 128, 16 if not given\n"
    "  -o OUT.png     draw the vectors of the full search over the picture: yellow one for 16x16, green four for 8x8,\n"
    "                 red where coding without prediction would be cheaper\n"
    "  --help         this text\n"
    "\n"
    "Exit code: 0 done, 1 the input is broken or not supported or the output failed, 2 wrong usage.\n";

struct Options {
  std::string input, output;
  int reference = 0, current = 1, range = 16;
  bool help = false;
};

bool parse(Options& options, const std::string& option, moxdec::Arguments& arguments) {
  constexpr int kMostFrames = 1000000, kMostRange = 128;
  if (option == "-o") {
    options.output = arguments.value();
  } else if (option == "--reference") {
    options.reference = arguments.number(0, kMostFrames);
  } else if (option == "--current") {
    options.current = arguments.number(0, kMostFrames);
  } else if (option == "--range") {
    options.range = arguments.number(kRangeUnit, kMostRange, kRangeUnit);
  } else {
    return false;
  }
  return true;
}

void run(const Options& options) {
  if (!options.output.empty() && !options.output.ends_with(".png"))
    throw moxdec::UsageError("the output must end in .png");
  const FramePair frames = read_frames(options.input, options.reference, options.current);
  const Picture reference(*frames.reference, margin_for(options.range)), current(*frames.current, 0);
  std::printf("%s: frame %d from frame %d, %dx%d, vectors of -%d to %d samples, library %s\n", options.input.c_str(),
              options.current, options.reference, current.width(), current.height(), options.range, options.range - 1,
              moxvcGetLibVersion()->name);
  constexpr struct {
    Method method;
    const char* name;
  } kMethods[] = {{Method::kFull, "full search"}, {Method::kDiamond, "diamond search"}, {Method::kZero, "no motion"}};
  for (const auto& [method, name] : kMethods) {
    const Field field = estimate(current, reference, method, options.range);
    std::fputs(describe(name, field, current, predict(field, reference)).c_str(), stdout);
    if (method == Method::kFull && !options.output.empty()) moxdec::write_png(draw(field, current), options.output);
  }
}

}  // namespace
}  // namespace motion_search

int main(int argc, char** argv) {
  using namespace motion_search;
  return moxdec::run_program<Options>({"motion_search", kUsage, kHelp}, {argc, argv}, parse, run);
}
