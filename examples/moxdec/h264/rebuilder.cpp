#include "moxdec/h264/rebuilder.hpp"

#include <string>

#include "moxdec/error.hpp"
#include "moxdec/h264/deblock.hpp"
#include "moxdec/h264/reconstruct.hpp"

namespace moxdec::h264 {
namespace {

/// How far reading may be ahead of rebuilding, in rows of macroblocks, and rebuilding of the filter.
constexpr std::size_t kRunsAhead = 6, kRowsAhead = 6;

}  // namespace

Rebuilder::Rebuilder(Picture& picture)
    : picture_(picture),
      filter_([this](std::size_t) { filter_row(); }),
      rebuilding_([this](std::size_t place) { rebuild(runs_[place]); }) {}

void Rebuilder::set_threads(int count) {
  if (count >= 3) filter_.start(kRowsAhead);
  if (count < 2) return;
  runs_.resize(kRunsAhead);
  rebuilding_.start(kRunsAhead);
}

void Rebuilder::begin_picture() {
  complete_ = ready_rows_ = filtered_rows_ = 0;
  const int in_run = runs_.size() > 1 ? picture_.mb_width : 1;
  for (Run& run : runs_) run.macroblocks.resize(static_cast<std::size_t>(in_run));
}

void Rebuilder::begin_slice(const Slice& slice, const ReferenceLists& lists, const ReferenceBuffer& references) {
  slice_ = &slice;
  if (slice.header.type != SliceType::kI) predictor_.begin_slice(slice.header, lists, references);
}

void Rebuilder::add(int address) {
  Run& run = runs_[place_];
  run.end = address + 1;
  if (++run.count == run.macroblocks.size()) hand_over();
}

void Rebuilder::hand_over() {
  place_ = rebuilding_.advance();
  runs_[place_].count = 0;
}

void Rebuilder::end_slice() {
  if (runs_[place_].count > 0) hand_over();
  wait();
}

void Rebuilder::end_picture() {
  complete_ = picture_.macroblock_count();
  filter_ready_rows();
  wait();
}

void Rebuilder::wait() {
  for (const auto& error : {rebuilding_.wait(), filter_.wait()}) {
    if (error) std::rethrow_exception(error);
  }
}

void Rebuilder::rebuild(Run& run) {
  const int first = run.end - static_cast<int>(run.count);
  for (int address = first; address < run.end; ++address) {
    try {
      rebuild(run.macroblocks[static_cast<std::size_t>(address - first)]);
    } catch (const DecodeError& error) {
      throw DecodeError("macroblock " + std::to_string(address) + ": " + error.what());
    }
  }
  // Slices may come in any order. The filter then waits for the end of the picture.
  if (first == complete_) complete_ = run.end;
  filter_ready_rows();
}

void Rebuilder::rebuild(Macroblock& mb) {
  if (mb.kind == MbKind::kInter) {
    predictor_.predict(picture_, mb);
    reconstruct_inter(picture_, *slice_, mb);
  } else {
    reconstruct_intra(picture_, *slice_, mb);
  }
}

void Rebuilder::filter_ready_rows() {
  const int unit = rows_at_once();
  const bool all = complete_ == picture_.macroblock_count();
  while (ready_rows_ < picture_.mb_height && (all || (ready_rows_ + 2 * unit) * picture_.mb_width <= complete_)) {
    ready_rows_ += unit;
    filter_.advance();
  }
}

void Rebuilder::filter_row() {
  deblock_rows(picture_, filtered_rows_);
  filtered_rows_ += rows_at_once();
}

}  // namespace moxdec::h264
