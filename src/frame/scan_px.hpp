/// Portable kernels of the scan functions.
#pragma once

#include <algorithm>

#include "frame/scan_tables.hpp"
#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// The table of a selector: 1 alternate vertical, 2 alternate horizontal, else zigzag.
constexpr const ScanTable& scan_table(Mox32s scan) {
  return scan == 1 ? ownvc_AltScanV : scan == 2 ? ownvc_AltScanH : ownvc_Zigzag;
}

/// No scan: the positions of the array one by one.
inline constexpr ScanTable kNoScan = make_table<64>([]<std::size_t I>() { return static_cast<Mox8u>(I); });

/// The table of a selector: 0 zigzag, 1 alternate vertical, 2 alternate horizontal, else none.
constexpr const ScanTable& scan_or_none(Mox32s scan) {
  return scan == 0 ? ownvc_Zigzag : scan == 1 ? ownvc_AltScanV : scan == 2 ? ownvc_AltScanH : kNoScan;
}

/// From this count on, looking for the end costs more than copying the whole block.
inline constexpr Mox32s kCopyWholeBlock = 20;

inline MoxStatus scan_forward(const Mox16s* src, Mox16s* dst, Mox32s count, const ScanTable& table) {
  int end = 64;
  if (count < kCopyWholeBlock) {
    std::fill_n(dst, 64, Mox16s{0});
    for (end = 0; end < 64 && count > 0; ++end) count -= src[table[end]] != 0;
  }
  for (int i = 0; i < end; ++i) dst[i] = src[table[i]];
  return moxStsOk;
}

inline MoxStatus scan_inverse(const Mox16s* src, Mox16s* dst, Mox32s lastIndex, const ScanTable& table) {
  std::fill_n(dst, 64, Mox16s{0});
  for (int i = 0; i <= lastIndex; ++i) dst[table[i]] = src[i];
  return moxStsOk;
}

}  // namespace mox::px
