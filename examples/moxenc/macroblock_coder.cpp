#include "moxenc/macroblock_coder.hpp"

#include <algorithm>
#include <limits>

#include "moxenc/inter.hpp"
#include "moxenc/intra.hpp"
#include "moxenc/macroblock_writer.hpp"
#include "moxenc/motion.hpp"
#include "moxenc/partitions.hpp"
#include "moxenc/residual.hpp"

namespace moxenc {
namespace {

constexpr int kNoLimit = 1 << 29;

/// From how many bits on the samples themselves may be cheaper.
constexpr std::size_t kManyBits = 2000;

/// The cost up to which a candidate is worth a closer look.
constexpr int near(int cost) { return cost + cost / 4; }

/// Squared differences of all planes.
int squared_error(const Planes& a, const Planes& b) {
  Mox32s sums[3];
  expect_ok(moxiSqrDiff16x16_8u32s(a.at[0], a.step[0], b.at[0], b.step[0], 0, &sums[0]));
  for (std::size_t i = 1; i < 3; ++i) {
    expect_ok(moxiSSD8x8_8u32s_C1R(a.at[i], a.step[i], b.at[i], b.step[i], &sums[i], 0));
  }
  return sums[0] + sums[1] + sums[2];
}

void copy(const Planes& from, const Planes& to) {
  expect_ok(moxiCopy16x16_8u_C1R(from.at[0], from.step[0], to.at[0], to.step[0]));
  for (std::size_t i = 1; i < 3; ++i) expect_ok(moxiCopy8x8_8u_C1R(from.at[i], from.step[i], to.at[i], to.step[i]));
}

}  // namespace

const Macroblock& MacroblockCoder::code(const Site& site) {
  mb_.x = site.x, mb_.y = site.y, mb_.qp = qp_;
  best_cost_ = std::numeric_limits<double>::infinity();
  best_bits_ = 0;
  refused_ = false;
  if (reference_) {
    if (try_skip(site)) return mb_;
    try_intra(site, try_inter(site));
  } else {
    try_intra(site, kNoLimit);
  }
  if (refused_ || best_bits_ >= kManyBits) try_pcm(site);
  copy(kept_.planes(), site.picture);
  return best_;
}

/// Whether the prediction of a skipped macroblock leaves nothing to code. If it leaves something, it is a candidate.
bool MacroblockCoder::try_skip(const Site& site) {
  mb_.kind = Kind::kInter;
  mb_.split = Split::kNone;
  mb_.residual.coded = 0;
  mb_.vectors.fill(predict_skip(site.state.motion, site.x, site.y));
  if (!limits_at(site).allow(mb_.vectors[0])) return false;
  predict_inter(mb_, site, *reference_);
  quantise_luma_inter(mb_, site.source, site.picture);
  const bool nothing =
      mb_.residual.coded == 0 && quantise_chroma(mb_, site.source, site.picture) && mb_.residual.coded == 0;
  if (nothing) return true;
  mb_.residual.coded = 0;
  consider(site);
  return false;
}

/// Returns the cost by SATD.
int MacroblockCoder::try_inter(const Site& site) {
  mb_.kind = Kind::kInter;
  mb_.residual.coded = 0;
  const int cost = choose_partitions(mb_, site, *reference_);
  predict_inter(mb_, site, *reference_);
  quantise_luma_inter(mb_, site.source, site.picture);
  reconstruct_luma(mb_, site.picture, 0);
  finish(site);
  return cost;
}

/// Candidates whose cost by SATD is not far above the limit and each other's.
void MacroblockCoder::try_intra(const Site& site, int limit) {
  const int cost_16x16 = choose_intra_16x16(mb_, site);
  if (cost_16x16 > near(near(limit))) return;
  mb_.kind = Kind::kIntra4x4;
  mb_.residual.coded = 0;
  const int limit_4x4 = near(std::min(limit, cost_16x16));
  const int cost_4x4 = code_intra_4x4(mb_, site, limit_4x4);
  if (cost_4x4 <= limit_4x4) {
    predict_intra_chroma(mb_, site);
    finish(site);
  }
  if (cost_16x16 > near(std::min(limit, cost_4x4))) return;
  mb_.kind = Kind::kIntra16x16;
  expect_ok(
      moxiPredictIntra_16x16_H264_8u_C1IR(site.picture.at[0], site.picture.step[0], mb_.luma_mode, site.available()));
  if (!quantise_luma_16x16(mb_, site.source, site.picture)) return refuse();
  reconstruct_luma(mb_, site.picture, site.unusable());
  predict_intra_chroma(mb_, site);
  finish(site);
}

/// Codes chroma, whose prediction is there.
void MacroblockCoder::finish(const Site& site) {
  if (!quantise_chroma(mb_, site.source, site.picture)) return refuse();
  reconstruct_chroma(mb_, site.picture);
  consider(site);
}

void MacroblockCoder::try_pcm(const Site& site) {
  mb_.kind = Kind::kPcm;
  mb_.residual.coded = 0;
  mb_.samples = site.source;
  copy(site.source, site.picture);
  consider(site);
}

/// The macroblock in work against the best one so far.
void MacroblockCoder::consider(const Site& site) {
  trial_.clear();
  MacroblockWriter(trial_, site.state, reference_ != nullptr, qp_).write(mb_);
  const std::size_t bits = trial_.size();
  const double cost = squared_error(site.source, site.picture) + site.lambda.squares * static_cast<double>(bits);
  if (bits > MacroblockWriter::kMostBits) return refuse();
  if (cost >= best_cost_) return;
  best_cost_ = cost, best_bits_ = bits;
  best_ = mb_;
  copy(site.picture, kept_.planes());
}

}  // namespace moxenc
