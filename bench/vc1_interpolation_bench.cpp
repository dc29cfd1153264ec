#include <string>
#include <vector>

#include "support/bench.hpp"

namespace mox::bench {
namespace {

Mox8u* const kReference = picture<Mox8u>(0, 255);
Mox8u* const kBlock = buffer<Mox8u>(16 * 32, 0, 0);
const Mox8u* const kTable = buffer<Mox8u>(256, 0, 255);

/// The records live as long as the rows that are given their addresses.
template <class Record>
const Record* keep(const Record& record) {
  return new Record(record);
}

void add_qp(std::vector<Row>& rows, Symbol<MoxStatus(const MoxiVC1InterpolationParams*)> symbol, MoxiSize size) {
  for (auto [dx, dy] : {std::pair{0, 0}, {2, 0}, {0, 2}, {2, 2}, {1, 0}, {0, 3}, {1, 1}, {2, 1}}) {
    const auto name =
        std::to_string(size.width) + "x" + std::to_string(size.height) + " " + std::to_string(dx) + std::to_string(dy);
    rows.push_back(
        call(symbol, name, keep(MoxiVC1InterpolationParams{kReference, kPictureStep, kBlock, 32, dx, dy, size, 1})));
  }
}

/// Blocks in the plane, over its corner, and with tables, of an 8 x 8 block.
void add_block(std::vector<Row>& rows, Symbol<MoxStatus(const MoxiVC1ICInterpolationParams*)> symbol) {
  MoxiVC1ICInterpolationParams a = {};
  a.pSrc = kReference, a.srcStep = kPictureStep, a.pDst = kBlock, a.dstStep = 32;
  a.frameSize = {24, 32}, a.blockSize = {8, 8}, a.blockPos = {4, 4}, a.dx = 1, a.dy = 1;
  rows.push_back(call(symbol, "inside", keep(a)));
  a.blockPos = {-4, -4};
  rows.push_back(call(symbol, "over a corner", keep(a)));
  a.blockPos = {4, 4}, a.pLUTTop = a.pLUTBottom = kTable;
  rows.push_back(call(symbol, "inside, with tables", keep(a)));
}

const std::vector<Row> kRows = [] {
  std::vector<Row> rows;
  for (MoxiSize size : {MoxiSize{16, 16}, {16, 8}, {8, 8}})
    add_qp(rows, MOX_FN(moxiInterpolateQPBicubic_VC1_8u_C1R), size);
  for (MoxiSize size : {MoxiSize{16, 16}, {8, 8}, {8, 4}, {4, 4}})
    add_qp(rows, MOX_FN(moxiInterpolateQPBilinear_VC1_8u_C1R), size);
  for (MoxiSize size : {MoxiSize{8, 8}, {8, 4}, {4, 4}})
    add_qp(rows, MOX_FN(moxiInterpolateQPBilinear_VC1_8u_C2R), size);
  add_block(rows, MOX_FN(moxiInterpolateICBicubicBlock_VC1_8u_C1R));
  add_block(rows, MOX_FN(moxiInterpolateICBilinearBlock_VC1_8u_C1R));
  add_block(rows, MOX_FN(moxiInterpolateICBilinearBlock_VC1_8u_C2R));
  return rows;
}();
const Family kInterpolation("vc1_interpolation", kRows);

}  // namespace
}  // namespace mox::bench
