#include "moxdec/mpeg12/code_tables.hpp"

#include "common/mpeg12_tables.hpp"
#include "common/mpeg12_vlc_tables.hpp"

namespace moxdec::mpeg12 {
namespace {

CodeTable run_levels(const MoxVlcSpec* spec) { return CodeTable(spec, moxiHuffmanRunLevelTableInitAlloc_32s); }

/// What the library's scan does, as a list: it moves value i of the scan order to the i-th raster position.
std::array<Mox32s, 64> scan_positions(int scan) {
  std::array<Mox16s, 64> order, raster;
  for (int i = 0; i < 64; ++i) order[i] = static_cast<Mox16s>(i);
  require(moxiScanInv_16s_C1(order.data(), raster.data(), 63, scan) == moxStsOk, "a scan cannot be built");
  std::array<Mox32s, 64> positions{};
  for (int i = 0; i < 64; ++i) positions[raster[i]] = i;
  return positions;
}
constexpr int kZigzagScan = 0, kAlternateVerticalScan = 1;

}  // namespace

CodeTable::CodeTable(const MoxVlcSpec* spec, Build build) {
  MoxVlcTable* table = nullptr;
  require(build(spec, &table) == moxStsOk, "a code table cannot be built");
  table_.reset(table);
}

CodeTables::CodeTables()
    : address_increment(example::kAddressIncrementSpec.data()),
      coded_block_pattern(example::kCodedBlockPatternSpec.data()),
      motion_code(example::kMotionCodeSpec.data()),
      dmvector(example::kDmvectorSpec.data()),
      types{CodeTable(example::kMacroblockTypeSpecI.data()), CodeTable(example::kMacroblockTypeSpecP.data()),
            CodeTable(example::kMacroblockTypeSpecB.data())},
      dc_size{CodeTable(example::kDcSizeLumaSpec.data()), CodeTable(example::kDcSizeChromaSpec.data())},
      coefficients{run_levels(example::kDctCoefZeroSpec.data()), run_levels(example::kDctCoefOneSpec.data())},
      scans{scan_positions(kZigzagScan), scan_positions(kAlternateVerticalScan)} {}

}  // namespace moxdec::mpeg12
