/// Portable kernels of the H.264 CAVLC analysis.
#pragma once

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Where a block's results go; the order is that of the exported functions' arguments.
template <class Coefficient>
struct CavlcResults {
  Mox8u* pTrailingOnes;
  Mox8u* pTrailingOneSigns;
  Mox8u* pNumOutCoeffs;
  Mox8u* pTotalZeros;
  Coefficient* pLevels;
  Mox8u* pRuns;
};

/// The way from a block's highest scan position to its lowest.
template <class Coefficient>
class CavlcWalk {
 public:
  explicit CavlcWalk(const CavlcResults<Coefficient>& results) : results_(results) {}

  void visit(Coefficient c) {
    if (c == 0) {
      ++zeros_;
      return;
    }
    if (trailing_ && (c == 1 || c == -1)) {
      signs_ = signs_ << 1 | (c < 0);
      trailing_ = ++ones_ < 3;
    } else {
      results_.pLevels[count_ - ones_] = c;
      trailing_ = false;
    }
    if (count_ > 0) {
      results_.pRuns[count_ - 1] = static_cast<Mox8u>(zeros_);
      total_zeros_ += zeros_;
    }
    ++count_;
    zeros_ = 0;
  }

  /// The zeros below the last coefficient count too, and so do those of a block that has none.
  MoxStatus finish() const {
    *results_.pTrailingOnes = static_cast<Mox8u>(ones_);
    *results_.pTrailingOneSigns = static_cast<Mox8u>(signs_);
    *results_.pNumOutCoeffs = static_cast<Mox8u>(count_);
    *results_.pTotalZeros = static_cast<Mox8u>(total_zeros_ + zeros_);
    return moxStsOk;
  }

 private:
  CavlcResults<Coefficient> results_;
  int ones_ = 0, signs_ = 0, count_ = 0, zeros_ = 0, total_zeros_ = 0;
  bool trailing_ = true;
};

/// Scan positions lastPos down to firstPos.
template <class Coefficient>
MoxStatus analyse_scanned(const Coefficient* pSrc, Mox32s firstPos, const Mox32s* pScan, Mox32s lastPos,
                          const CavlcResults<Coefficient>& results) {
  CavlcWalk<Coefficient> walk(results);
  for (Mox32s k = lastPos; k >= firstPos; --k) walk.visit(pSrc[pScan[k]]);
  return walk.finish();
}

/// The positions listed.
template <int... Positions, class Coefficient>
MoxStatus analyse_positions(const Coefficient* pSrc, const CavlcResults<Coefficient>& results) {
  CavlcWalk<Coefficient> walk(results);
  (walk.visit(pSrc[Positions]), ...);
  return walk.finish();
}

template <class Coefficient>
MoxStatus analyse_2x2(const Coefficient* pSrc, const CavlcResults<Coefficient>& results) {
  return analyse_positions<3, 2, 1, 0>(pSrc, results);
}

/// Four rows of two in the scan of 4:2:2 chroma DC, backwards.
template <class Coefficient>
MoxStatus analyse_2x4(const Coefficient* pSrc, const CavlcResults<Coefficient>& results) {
  return analyse_positions<7, 5, 3, 6, 4, 1, 2, 0>(pSrc, results);
}

}  // namespace mox::px
