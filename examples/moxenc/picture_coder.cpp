#include "moxenc/picture_coder.hpp"

#include "moxenc/deblock.hpp"
#include "moxenc/inter.hpp"
#include "moxenc/intra.hpp"
#include "moxenc/motion.hpp"
#include "moxenc/partitions.hpp"
#include "moxenc/residual.hpp"

namespace moxenc {
namespace {

class MacroblockCoder {
 public:
  MacroblockCoder(const PictureTask& task, const Site& site, int qp) : task_(task), site_(site) {
    mb_.x = site.x, mb_.y = site.y, mb_.qp = qp;
    mb_.residual.coded = 0;
  }
  /// False if a level cannot be written at this QP.
  bool code() {
    if (!task_.reference) return code_intra(1 << 30);
    if (try_skip()) return true;
    mb_.kind = Kind::kInter;
    const int cost = choose_partitions(mb_, site_, *task_.reference);
    return prefers_intra(cost) ? code_intra(cost) : code_inter();
  }
  const Macroblock& macroblock() const { return mb_; }

 private:
  /// Whether the prediction of a skipped macroblock leaves nothing to code.
  bool try_skip() {
    mb_.kind = Kind::kInter;
    mb_.split = Split::kNone;
    mb_.vectors.fill(predict_skip(site_.state.motion, site_.x, site_.y));
    if (!limits_at(site_).allow(mb_.vectors[0])) return false;
    predict_inter(mb_, site_, *task_.reference);
    quantise_luma_inter(mb_, site_.source, site_.picture);
    return mb_.residual.coded == 0 && quantise_chroma(mb_, site_.source, site_.picture) && mb_.residual.coded == 0;
  }
  bool prefers_intra(int inter_cost) {
    intra_16x16_cost_ = choose_intra_16x16(mb_, site_);
    return intra_16x16_cost_ < inter_cost + inter_cost / 4;
  }
  bool code_intra(int limit) {
    if (!task_.reference) intra_16x16_cost_ = choose_intra_16x16(mb_, site_);
    mb_.kind = Kind::kIntra4x4;
    const int most = std::min(limit, intra_16x16_cost_);
    if (code_intra_4x4(mb_, site_, most) >= most) {
      if (intra_16x16_cost_ > limit) return code_inter();
      mb_.kind = Kind::kIntra16x16;
      if (!code_luma_16x16()) return false;
    }
    predict_intra_chroma(mb_, site_);
    return code_chroma();
  }
  bool code_luma_16x16() {
    expect_ok(moxiPredictIntra_16x16_H264_8u_C1IR(site_.picture.at[0], site_.picture.step[0], mb_.luma_mode,
                                                  site_.available()));
    if (!quantise_luma_16x16(mb_, site_.source, site_.picture)) return false;
    reconstruct_luma(mb_, site_.picture, site_.unusable());
    return true;
  }
  bool code_inter() {
    mb_.kind = Kind::kInter;
    predict_inter(mb_, site_, *task_.reference);
    quantise_luma_inter(mb_, site_.source, site_.picture);
    reconstruct_luma(mb_, site_.picture, 0);
    return code_chroma();
  }
  bool code_chroma() {
    if (!quantise_chroma(mb_, site_.source, site_.picture)) return false;
    reconstruct_chroma(mb_, site_.picture);
    return true;
  }

  const PictureTask& task_;
  const Site& site_;
  Macroblock mb_;
  int intra_16x16_cost_ = 0;
};

}  // namespace

void code_picture(const PictureTask& task, CodingState& state, BitWriter& bits) {
  constexpr int kHalfTheLevels = 6;
  const Lambda lambda(task.qp);
  MacroblockWriter writer(bits, state, task.reference != nullptr, task.qp);
  state.begin_picture();
  for (int y = 0; y < state.rows; ++y) {
    for (int x = 0; x < state.columns; ++x) {
      const Site site{x, y, macroblock_at(task.source, x, y), macroblock_at(task.picture, x, y), state, lambda};
      for (int qp = task.qp;; qp += kHalfTheLevels) {
        MacroblockCoder coder(task, site, qp);
        if (!coder.code()) continue;
        writer.write(coder.macroblock());
        break;
      }
    }
  }
  writer.finish();
  deblock(task.picture, state);
}

}  // namespace moxenc
