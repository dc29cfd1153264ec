/// Chooses how a macroblock is coded.
#pragma once

#include "moxenc/bit_writer.hpp"
#include "moxenc/site.hpp"

namespace moxenc {

/// Searches good candidates of each kind by SATD, codes them in full, and keeps the one whose squared error plus its
/// bits at their price is least.
class MacroblockCoder {
 public:
  /// For one picture. `reference` has margins, and is null in an I picture.
  explicit MacroblockCoder(const moxdec::Frame* reference) : reference_(reference) {}

  /// Leaves the reconstruction in the picture and returns the macroblock, which stays until the next call. Null if no
  /// kind has only levels that can be written at this QP. `last_qp` is that of the macroblock before.
  const Macroblock* code(const Site& site, int qp, int last_qp);

 private:
  bool try_skip(const Site& site);
  int try_inter(const Site& site);
  void try_intra(const Site& site, int limit);
  void finish(const Site& site);
  void consider(const Site& site);

  const moxdec::Frame* reference_;
  int last_qp_ = 0;
  Macroblock mb_;  ///< in work, its reconstruction in the picture
  Macroblock best_;
  double best_cost_ = 0;
  bool any_coded_ = false;
  struct Samples {
    alignas(16) std::array<Mox8u, 16 * 16> luma;
    alignas(16) std::array<std::array<Mox8u, 8 * 8>, 2> chroma;
    Planes planes() { return {{luma.data(), chroma[0].data(), chroma[1].data()}, {16, 8, 8}}; }
  } kept_;  ///< the reconstruction of the best one
  BitWriter trial_;
};

}  // namespace moxenc
