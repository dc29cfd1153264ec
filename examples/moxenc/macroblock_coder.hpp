/// Chooses how a macroblock is coded.
#pragma once

#include "moxenc/bit_writer.hpp"
#include "moxenc/site.hpp"

namespace moxenc {

/// Searches good candidates of each kind by SATD, codes them in full, and keeps the one whose squared error plus its
/// bits at their price is least. Candidates with levels that have no code, or with too many bits, fall out.
class MacroblockCoder {
 public:
  /// For one picture. `reference` has margins, and is null in an I picture.
  MacroblockCoder(const moxdec::Frame* reference, int qp) : reference_(reference), qp_(qp) {}

  /// Leaves the reconstruction in the picture and returns the macroblock, which stays until the next call.
  const Macroblock& code(const Site& site);

 private:
  bool try_skip(const Site& site);
  int try_inter(const Site& site);
  void try_intra(const Site& site, int limit);
  void try_pcm(const Site& site);
  void finish(const Site& site);
  void consider(const Site& site);
  void refuse() { refused_ = true; }

  const moxdec::Frame* reference_;
  int qp_;
  Macroblock mb_;  ///< in work, its reconstruction in the picture
  Macroblock best_;
  double best_cost_ = 0;
  std::size_t best_bits_ = 0;
  bool refused_ = false;  ///< a candidate has fallen out
  struct Samples {
    alignas(16) std::array<Mox8u, 16 * 16> luma;
    alignas(16) std::array<std::array<Mox8u, 8 * 8>, 2> chroma;
    Planes planes() { return {{luma.data(), chroma[0].data(), chroma[1].data()}, {16, 8, 8}}; }
  } kept_;  ///< the reconstruction of the best one
  BitWriter trial_;
};

}  // namespace moxenc
