/// moxfilter: deinterlaces video or takes noise away, and shows what that does.
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "moxdec/error.hpp"
#include "moxdec/output.hpp"
#include "moxdec/program.hpp"
#include "moxfilter/report.hpp"
#include "moxfilter/stage.hpp"

namespace moxfilter {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kUsage =
    "usage: moxfilter INPUT --filter NAME [options of the filter] [-o OUT.y4m|OUT.yuv|OUT.png] [options]\n";
constexpr const char* kHelp =
    "\n"
    "Filters 8-bit video: Y4M (4:2:0), or a stream that moxdec decodes. Where it is known what should come out, tells\n"
    "how near the pictures are to it before and after.\n"
    "\n"
    "  --filter NAME     a filter of the list below; its own options follow it\n"
    "  -o OUT            .y4m  the filtered pictures\n"
    "                    .png  one picture before and after, and the original where it is known, side by side\n"
    "                    else  raw planes; - is standard output\n"
    "  --picture N       the picture of the .png, from 0 on, 1 if not given; the last one if there are fewer\n"
    "  --first FIELD     top or bottom: the field of an interlaced picture that comes first; top if not given\n"
    "  --keep FIELD      top or bottom: the field whose rows stay; the first one if not given\n"
    "  --interlace       weave the fields of pictures 0 and 1, 2 and 3 and so on, deinterlace, and compare with the\n"
    "                    one of the two whose field stays\n"
    "  --noise N         add noise of standard deviation N, 1 to 100, and compare with the input\n"
    "  --seed N          choose other noise\n"
    "  --original FILE   compare with the pictures of another file\n"
    "  --frames N        stop after N pictures\n"
    "  --quiet           no report\n"
    "  --help            this text\n"
    "\n"
    "Filters:\n";
constexpr const char* kExitCodes =
    "\n"
    "Exit code: 0 done, 1 the input is broken or not supported or the output failed, 2 wrong usage.\n";

struct Options {
  std::string input, output;
  ClipOptions clip;
  FilterOptions filter;
  std::optional<Field> first, kept;
  int picture = 1, frames = std::numeric_limits<int>::max();
  bool quiet = false, help = false;
};

void parse_filter(FilterOptions& options, const std::string& name) {
  options.filter = find_filter(name);
  if (!options.filter) throw moxdec::UsageError("there is no filter " + name);
  options.values = options.filter->standard_values();
}

Field parse_field(const std::string& option, const std::string& text) {
  if (text != "top" && text != "bottom") throw moxdec::UsageError(option + " takes top or bottom");
  return text == "top" ? kTop : kBottom;
}

/// An option of a filter.
bool parse_parameter(FilterOptions& options, const std::string& name, moxdec::Arguments& arguments) {
  if (!is_parameter(name)) return false;
  if (!options.filter) throw moxdec::UsageError(name + " must follow --filter");
  const int place = options.filter->find(name);
  if (place < 0) throw moxdec::UsageError(name + " is no option of " + std::string(options.filter->name));
  const auto i = static_cast<std::size_t>(place);
  const Parameter& parameter = options.filter->parameters[i];
  options.values[i] = arguments.number(parameter.low, parameter.high);
  return true;
}

bool parse(Options& options, const std::string& option, moxdec::Arguments& arguments) {
  constexpr int kMost = 1000000;
  if (option == "-o") {
    options.output = arguments.value();
  } else if (option == "--filter") {
    parse_filter(options.filter, arguments.value());
  } else if (option == "--picture") {
    options.picture = arguments.number(0, kMost);
  } else if (option == "--first") {
    options.first = parse_field(option, arguments.value());
  } else if (option == "--keep") {
    options.kept = parse_field(option, arguments.value());
  } else if (option == "--interlace") {
    options.clip.interlace = true;
  } else if (option == "--noise") {
    options.clip.noise = arguments.number(1, 100);
  } else if (option == "--seed") {
    options.clip.seed = arguments.number(0);
  } else if (option == "--original") {
    options.clip.original = arguments.value();
  } else if (option == "--frames") {
    options.frames = arguments.number(1, kMost);
  } else if (option == "--quiet") {
    options.quiet = true;
  } else {
    return parse_parameter(options.filter, option, arguments);
  }
  return true;
}

void check(const Options& options) {
  if (!options.filter.filter) throw moxdec::UsageError("no filter: --filter is missing");
  const ClipOptions& clip = options.clip;
  if (clip.interlace + (clip.noise > 0) + !clip.original.empty() > 1)
    throw moxdec::UsageError("--interlace, --noise and --original exclude each other");
  if (options.filter.filter->kind != Kind::kDeinterlacer && (clip.interlace || options.first || options.kept))
    throw moxdec::UsageError("--interlace, --first and --keep are for deinterlacers");
}

/// Where results go. Outputs are opened with the first one, so that a file that is no video leaves them as they were.
class Results {
 public:
  explicit Results(const Options& options) : options_(options), drawn_(options.output.ends_with(".png")) {}

  void add(const Pair& pair, const FramePtr& result, moxdec::FrameRate rate) {
    if (!drawn_ && !writer_ && !options_.output.empty()) writer_ = moxdec::open_writer(options_.output);
    if (writer_) writer_->write(*result, rate);
    if (count_++ <= options_.picture) shown_ = pair, shown_result_ = result;
    if (!pair.original) return;
    before_.add(*pair.input, *pair.original);
    after_.add(*result, *pair.original);
  }
  void finish() {
    moxdec::require(count_ > 0,
                    options_.clip.interlace ? "there are no two pictures to weave" : "there are no pictures");
    if (writer_) writer_->finish();
    if (drawn_) moxdec::write_png(side_by_side(shown_, *shown_result_), options_.output);
  }
  void report(double seconds) const {
    std::FILE* out = options_.output == "-" ? stderr : stdout;
    const moxdec::FrameFormat& format = shown_result_->format();
    std::fprintf(out, "%s: %s, %dx%d, %d picture%s, %.3f ms a picture, library %s\n", options_.input.c_str(),
                 std::string(options_.filter.filter->name).c_str(), format.width, format.height, count_,
                 count_ == 1 ? "" : "s", 1000 * seconds / count_, moxvcGetLibVersion()->name);
    if (!shown_.original) return;
    std::fprintf(out, "  before  %s\n  after   %s\n", before_.text().c_str(), after_.text().c_str());
  }
  int count() const { return count_; }

 private:
  const Options& options_;
  bool drawn_;
  std::unique_ptr<moxdec::FrameWriter> writer_;
  int count_ = 0;
  Pair shown_;
  FramePtr shown_result_;
  Quality before_, after_;
};

void filter_all(const Options& options) {
  Clip clip(options.clip);
  Window window(clip);
  Stage stage(options.filter);
  Results results(options);
  Clock::duration time{};
  while (results.count() < options.frames && window.advance()) {
    const auto start = Clock::now();
    const FramePtr result = stage.filter(window);
    time += Clock::now() - start;
    results.add(window.current(), result, clip.rate());
  }
  results.finish();
  if (!options.quiet) results.report(std::chrono::duration<double>(time).count());
}

void run(const Options& options) {
  check(options);
  Options complete = options;
  complete.clip.input = options.input;
  complete.clip.first = complete.filter.first = options.first.value_or(kTop);
  complete.clip.kept = complete.filter.kept = options.kept.value_or(complete.filter.first);
  filter_all(complete);
}

}  // namespace
}  // namespace moxfilter

int main(int argc, char** argv) {
  using namespace moxfilter;
  const std::string help = kHelp + describe_filters() + kExitCodes;
  return moxdec::run_program<Options>({"moxfilter", kUsage, help.c_str()}, {argc, argv}, parse, run);
}
