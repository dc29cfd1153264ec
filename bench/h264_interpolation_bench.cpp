#include <string>
#include <utility>
#include <vector>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

constexpr int kStep = 96;
const Mox8u* const kSource_8u = buffer<Mox8u>(kStep * kStep, 0, 255);
const Mox16u* const kSource_16u = buffer<Mox16u>(kStep * kStep, 0, 1023);
constexpr int kBlock = 32 * kStep + 32;  ///< the block in the middle of the source
Mox8u* const kDst_8u = buffer<Mox8u>(2 * 16 * 16, 0, 0);
Mox16u* const kDst_16u = buffer<Mox16u>(2 * 16 * 16, 0, 0);

std::string variant(int width, int height, int dx, int dy) {
  return std::to_string(width) + "x" + std::to_string(height) + " " + std::to_string(dx) + "," + std::to_string(dy);
}

/// Each kind of position, the diagonal from both ends; the others mirror these.
constexpr std::pair<int, int> kKinds[] = {{0, 0}, {1, 0}, {2, 0}, {0, 1}, {0, 2},
                                          {1, 1}, {2, 1}, {1, 2}, {2, 2}, {3, 3}};

const MoxiInterpRegion_16u* region(int dx, int dy, int size, int depth) {
  return new MoxiInterpRegion_16u{kSource_16u + kBlock, kStep, kDst_16u, 16, dx, dy, size, size, depth};
}

std::vector<Row> luma_rows() {
  std::vector<Row> rows;
  for (int size : {4, 8, 16}) {
    for (int position = 0; position < 16; ++position) {
      const int dx = position % 4, dy = position / 4;
      rows.push_back(call(MOX_FN(moxiInterpolateLuma_H264_8u_C1R), variant(size, size, dx, dy), kSource_8u + kBlock,
                          kStep, kDst_8u, 16, dx, dy, MoxiSize{size, size}));
    }
  }
  for (auto [size, depth] : {std::pair{8, 10}, {16, 10}, {16, 16}}) {
    for (auto [dx, dy] : kKinds) {
      rows.push_back(call(MOX_FN(moxiInterpolateLuma_H264_16u_C1R),
                          variant(size, size, dx, dy) + " depth " + std::to_string(depth),
                          region(dx, dy, size, depth)));
    }
  }
  return rows;
}

std::vector<Row> chroma_rows() {
  std::vector<Row> rows;
  for (int size : {2, 4, 8}) {
    for (auto [dx, dy] : {std::pair{0, 0}, {3, 0}, {0, 3}, {3, 5}}) {
      rows.push_back(call(MOX_FN(moxiInterpolateChroma_H264_8u_C1R), variant(size, size, dx, dy), kSource_8u + kBlock,
                          kStep, kDst_8u, 16, dx, dy, MoxiSize{size, size}));
    }
  }
  for (int size : {2, 4, 8}) {
    rows.push_back(call(MOX_FN(moxiInterpolateChroma_H264_8u_C2P2R), variant(size, size, 3, 5), kSource_8u + kBlock,
                        kStep, kDst_8u, kDst_8u + 256, 16, 3, 5, MoxiSize{size, size}));
  }
  for (int size : {2, 4, 8, 16}) {
    rows.push_back(call(MOX_FN(moxiInterpolateChroma_H264_16u_C1R), variant(size, size, 3, 5), region(3, 5, size, 10)));
  }
  return rows;
}

/// Blocks of which a quarter of the rows lies above or below the picture.
std::vector<Row> edge_rows() {
  std::vector<Row> rows;
  const auto add = [&rows](auto symbol_8u, auto symbol_16u, int size, int dx, int dy) {
    const int outside = size / 4;
    const std::string name = variant(size, size, dx, dy) + ", " + std::to_string(outside) + " rows outside";
    rows.push_back(
        call(symbol_8u, name, kSource_8u + kBlock, kStep, kDst_8u, 16, dx, dy, outside, MoxiSize{size, size}));
    rows.push_back(call(symbol_16u, name, region(dx, dy, size, 10), outside));
  };
  add(MOX_FN(moxiInterpolateLumaTop_H264_8u_C1R), MOX_FN(moxiInterpolateLumaTop_H264_16u_C1R), 16, 2, 2);
  add(MOX_FN(moxiInterpolateLumaBottom_H264_8u_C1R), MOX_FN(moxiInterpolateLumaBottom_H264_16u_C1R), 16, 2, 2);
  add(MOX_FN(moxiInterpolateChromaTop_H264_8u_C1R), MOX_FN(moxiInterpolateChromaTop_H264_16u_C1R), 8, 3, 5);
  add(MOX_FN(moxiInterpolateChromaBottom_H264_8u_C1R), MOX_FN(moxiInterpolateChromaBottom_H264_16u_C1R), 8, 3, 5);
  return rows;
}

std::vector<Row> block_rows() {
  std::vector<Row> rows;
  for (int x : {32, 80}) {  // inside the picture, and across its right edge
    const auto add = [&rows, x](auto symbol, auto block) {
      rows.push_back(call(symbol, x == 32 ? "inside" : "at the edge", new auto(block)));
    };
    add(MOX_FN(moxiInterpolateLumaBlock_H264_8u_P1R),
        MoxiInterpBlock_8u{{kSource_8u}, kStep, {kDst_8u}, 16, {kStep, kStep}, {16, 16}, {x, 40}, {6, 6}});
    add(MOX_FN(moxiInterpolateLumaBlock_H264_16u_P1R),
        MoxiInterpBlock_16u{{kSource_16u}, kStep, {kDst_16u}, 16, {kStep, kStep}, {16, 16}, {x, 40}, {6, 6}, 10});
    MoxiInterpBlock_8u chroma = {
        {kSource_8u, kSource_8u}, kStep, {kDst_8u, kDst_8u + 256}, 16, {88, 88}, {8, 8}, {x, 40}, {11, 5}};
    add(MOX_FN(moxiInterpolateChromaBlock_H264_8u_P2R), chroma);
    chroma.frameSize.width /= 2, chroma.blockPos.x /= 2;  // of pairs
    add(MOX_FN(moxiInterpolateChromaBlock_H264_8u_C2P2R), chroma);
    add(MOX_FN(moxiInterpolateChromaBlock_H264_16u_P2R),
        MoxiInterpBlock_16u{
            {kSource_16u, kSource_16u}, kStep, {kDst_16u, kDst_16u + 256}, 16, {88, 88}, {8, 8}, {x, 40}, {11, 5}, 10});
  }
  return rows;
}

const std::vector<Row> kLumaRows = luma_rows(), kChromaRows = chroma_rows(), kEdgeRows = edge_rows(),
                       kBlockRows = block_rows();
const Family kLuma("h264_luma_interpolation", kLumaRows);
const Family kChroma("h264_chroma_interpolation", kChromaRows);
const Family kEdges("h264_edge_interpolation", kEdgeRows);
const Family kBlocks("h264_block_interpolation", kBlockRows);

}  // namespace
}  // namespace mox::bench
