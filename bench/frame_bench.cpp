#include "support/bench.hpp"

namespace mox::bench {
namespace {

/// A block as it comes out of a quantiser: `count` small coefficients among the first of the scan.
const Mox16s* sparse_block(int count) {
  Mox16s* block = buffer<Mox16s>(64, 0, 0);
  for (int i = 0; i < count; ++i) block[i / 4 * 8 + i % 4] = static_cast<Mox16s>(i % 2 ? -i : i + 1);
  return block;
}

Mox16s* const kDst = buffer<Mox16s>(64, 0, 0);

const Row kRows[] = {
    call(MOX_FN(moxiScanFwd_16s_C1), "count 4", sparse_block(4), kDst, 4, 0),
    call(MOX_FN(moxiScanFwd_16s_C1), "count 12", sparse_block(12), kDst, 12, 0),
    call(MOX_FN(moxiScanFwd_16s_C1), "count 64", sparse_block(12), kDst, 64, 0),
    call(MOX_FN(moxiScanInv_16s_C1), "last 5", sparse_block(6), kDst, 5, 1),
    call(MOX_FN(moxiScanInv_16s_C1), "last 63", sparse_block(12), kDst, 63, 1),
};
const Family kScan("scan", kRows);

}  // namespace
}  // namespace mox::bench
