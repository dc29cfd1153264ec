/// Blocks of coefficients from bits to samples, through the library.
#pragma once

#include <array>
#include <vector>

#include "moxdec/mpeg4/intra.hpp"

namespace moxdec::mpeg4 {

/// The library's records for a layer's inverse quantisers.
class Quantisers {
 public:
  Quantisers() = default;
  explicit Quantisers(const Layer& layer);
  const MoxiQuantInvState* intra() const { return record(0); }
  const MoxiQuantInvState* inter() const { return record(1); }

 private:
  const MoxiQuantInvState* record(int i) const { return reinterpret_cast<const MoxiQuantInvState*>(memory_[i].data()); }

  std::array<std::vector<Mox8u>, 2> memory_;
};

/// Of a block, by scan index.
using Levels = std::array<Mox16s, 64>;

class Texture {
 public:
  Texture(const Picture& picture, const Quantisers& quantisers, IntraPredictor& intra)
      : picture_(picture), quantisers_(quantisers), intra_(intra) {}

  /// All blocks of an intra macroblock; its state is known to its neighbours.
  void decode_intra(ByteReader& bits, const Place& place, const Macroblock& mb);
  /// Adds the coded blocks of a macroblock to its prediction.
  void add_residual(ByteReader& bits, const Place& place, const Macroblock& mb);

  static Mox16s read_dc(ByteReader& bits, int block);
  /// `dc` is its level if that has codes of its own, else 0.
  void decode_intra_block(ByteReader& bits, const Place& place, const Macroblock& mb, int block, Mox16s dc);
  /// The same of levels that have been read.
  void set_intra_block(const Place& place, const Macroblock& mb, int block, Mox16s dc, const Levels& levels);
  void add_block(const Place& place, const Macroblock& mb, int block, const Levels& levels);

 private:
  struct Target {
    Mox8u* samples;
    int step;
  };
  Target target(const Place& place, const Macroblock& mb, int block) const;
  int scan(const IntraSource& source, const Macroblock& mb) const;
  int scan() const;
  void finish_intra_block(const Place& place, const Macroblock& mb, int block, const IntraSource& source, Mox16s dc,
                          bool ac_is_zero);
  void add_residual_block(const Place& place, const Macroblock& mb, int block);

  const Picture& picture_;
  const Quantisers& quantisers_;
  IntraPredictor& intra_;
  alignas(32) std::array<Mox16s, 64> block_{};
};

}  // namespace moxdec::mpeg4
