#include "moxenc/intra.hpp"

#include <limits>

#include "moxenc/macroblock_writer.hpp"
#include "moxenc/residual.hpp"

namespace moxenc {
namespace {

/// The neighbours that a mode cannot do without.
constexpr int kAll = Site::kAbove | Site::kLeft | Site::kCorner;
constexpr int kNeeds4x4[9] = {Site::kAbove, Site::kLeft, 0, Site::kAbove, kAll, kAll, kAll, Site::kAbove, Site::kLeft};
constexpr int kNeeds16x16[4] = {Site::kAbove, Site::kLeft, 0, kAll};
constexpr int kNeedsChroma[4] = {0, Site::kLeft, Site::kAbove, kAll};

/// Calls `work` with each mode that the neighbours allow.
template <std::size_t N, class Work>
void for_each_mode(const int (&needs)[N], int available, Work work) {
  for (int mode = 0; mode < static_cast<int>(N); ++mode) {
    if ((needs[mode] & ~available) == 0) work(mode);
  }
}

/// Whether the block above and right of a 4x4 block has been coded; those of the macroblock's own in coding order.
bool has_above_right(const Site& site, int x, int y) {
  if (y == 0) return x < 3 ? site.has_above() : site.has_above_right();
  return x < 3 && example::kBlockRaster[static_cast<std::size_t>(4 * y - 3 + x)] <
                      example::kBlockRaster[static_cast<std::size_t>(4 * y + x)];
}

int available_to_block(const Site& site, int x, int y) {
  const bool above = y > 0 || site.has_above(), left = x > 0 || site.has_left();
  return (above ? Site::kAbove : 0) | (left ? Site::kLeft : 0) | (above && left ? Site::kCorner : 0) |
         (has_above_right(site, x, y) ? Site::kAboveRight : 0);
}

struct Best {
  int cost = std::numeric_limits<int>::max();
  int mode = 0;
};

/// The modes of a 4x4 block of a macroblock.
struct BlockModes {
  BlockModes(const Site& place, int block_x, int block_y)
      : site(place),
        x(block_x),
        y(block_y),
        source(site.source.at[0] + std::ptrdiff_t{4 * y} * site.source.step[0] + 4 * x),
        picture(site.picture.at[0] + std::ptrdiff_t{4 * y} * site.picture.step[0] + 4 * x),
        available(available_to_block(site, x, y)),
        predicted(predict_mode(site.state.modes, 4 * site.x + x, 4 * site.y + y)) {}

  /// Leaves the prediction in the picture.
  Best choose() {
    Best best;
    int last = 0;
    for_each_mode(kNeeds4x4, available, [&](int mode) {
      const int cost = cost_of(mode);
      if (cost < best.cost) best = {cost, mode};
      last = mode;
    });
    if (last != best.mode) predict(best.mode);
    return best;
  }

  const Site& site;
  int x, y;  ///< in blocks

 private:
  void predict(int mode) {
    expect_ok(moxiPredictIntra_4x4_H264_8u_C1IR(picture, site.picture.step[0], mode, available));
  }
  int cost_of(int mode) {
    constexpr int kBitsPredicted = 1, kBitsOther = 4;
    predict(mode);
    Mox32s satd;
    expect_ok(moxiSATD4x4_8u32s_C1R(source, site.source.step[0], picture, site.picture.step[0], &satd));
    return satd + site.lambda.satd * (mode == predicted ? kBitsPredicted : kBitsOther);
  }

  const Mox8u* source;
  Mox8u* picture;
  int available, predicted;
};

}  // namespace

int choose_intra_16x16(Macroblock& mb, const Site& site) {
  const Planes &source = site.source, &picture = site.picture;
  int best = std::numeric_limits<int>::max();
  for_each_mode(kNeeds16x16, site.available(), [&](int mode) {
    expect_ok(moxiPredictIntra_16x16_H264_8u_C1IR(picture.at[0], picture.step[0], mode, site.available()));
    Mox32s satd;
    expect_ok(moxiSATD16x16_8u32s_C1R(source.at[0], source.step[0], picture.at[0], picture.step[0], &satd));
    const int cost = satd + site.lambda.satd * ue_length(static_cast<std::uint32_t>(mode + 1));
    if (cost < best) best = cost, mb.luma_mode = static_cast<std::uint8_t>(mode);
  });
  return best;
}

int code_intra_4x4(Macroblock& mb, const Site& site, int limit) {
  int total = site.lambda.satd;
  for (const std::size_t block : example::kBlockRaster) {
    BlockModes modes(site, static_cast<int>(block % 4), static_cast<int>(block / 4));
    const Best best = modes.choose();
    total += best.cost;
    if (total > limit) return total;
    mb.modes[block] = static_cast<std::uint8_t>(best.mode);
    site.state.modes.at(4 * site.x + modes.x, 4 * site.y + modes.y) = static_cast<std::int8_t>(best.mode);
    code_block(mb, block, site.source, site.picture);
  }
  return total;
}

void predict_intra_chroma(Macroblock& mb, const Site& site) {
  const Planes &source = site.source, &picture = site.picture;
  const auto predict = [&](int mode) {
    for (std::size_t plane = 1; plane < 3; ++plane) {
      expect_ok(moxiPredictIntraChroma8x8_H264_8u_C1IR(picture.at[plane], picture.step[plane], mode, site.available()));
    }
  };
  int best = std::numeric_limits<int>::max(), last_mode = 0;
  for_each_mode(kNeedsChroma, site.available(), [&](int mode) {
    predict(mode);
    int cost = site.lambda.satd * ue_length(static_cast<std::uint32_t>(mode));
    for (std::size_t plane = 1; plane < 3; ++plane) {
      Mox32s satd;
      expect_ok(
          moxiSATD8x8_8u32s_C1R(source.at[plane], source.step[plane], picture.at[plane], picture.step[plane], &satd));
      cost += satd;
    }
    if (cost < best) best = cost, mb.chroma_mode = static_cast<std::uint8_t>(mode);
    last_mode = mode;
  });
  if (last_mode != mb.chroma_mode) predict(mb.chroma_mode);
}

}  // namespace moxenc
