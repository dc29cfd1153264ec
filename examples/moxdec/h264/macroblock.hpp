/// The syntax of macroblocks: from bits to modes, quantiser and coefficients.
#pragma once

#include <array>
#include <cstdint>

#include "moxdec/h264/cavlc.hpp"
#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// Bits of `Macroblock::coded`, in the library's order: which blocks the coefficients hold.
inline constexpr Mox32u kCodedLumaDc = 1;
constexpr Mox32u coded_luma(int block) { return 2u << block; }  // in coding order
constexpr Mox32u coded_chroma_dc(int plane) { return 1u << (17 + plane); }
constexpr Mox32u coded_chroma_ac(int plane, int block) { return 1u << (19 + 4 * plane + block); }

/// Bits of `Macroblock::denied`, in the library's order: neighbours that intra prediction may not use.
inline constexpr Mox32u kDenyLeft = 1, kDenyTop = 4, kDenyTopLeft = 16, kDenyTopRight = 32;

/// A macroblock as it came from the stream, ready to be rebuilt.
struct Macroblock {
  static constexpr int kRawBytes = 384;

  int x = 0;  // in macroblocks
  int y = 0;
  MbKind kind = MbKind::kIntra4x4;
  int qp = 0;
  Mox32u denied = 0;
  std::array<Mox32u, 16> intra_modes;  // in coding order
  Mox32u intra_16x16_mode = 0;
  Mox32u chroma_mode = 0;
  Mox32u coded = 0;
  /// Packed: blocks of 16 values (chroma DC: 4) in the order luma DC, luma, chroma DC, chroma AC.
  alignas(64) std::array<Mox16s, 16 + 16 * 16 + 2 * 4 + 8 * 16> coefficients;
  std::array<std::uint8_t, kRawBytes> raw;
};

/// Reads the macroblocks of one slice.
class MacroblockReader {
 public:
  MacroblockReader(BitReader& bits, const CavlcTables& tables, const SliceHeader& slice)
      : bits_(bits), tables_(tables), qp_(slice.qp) {}

  /// Reads an intra macroblock. `info` gets all but the slice. Throws DecodeError.
  void read_intra(Macroblock& mb, MbInfo& info, const Neighbours& neighbours);

 private:
  void read_raw(Macroblock& mb, MbInfo& info);
  void read_intra_modes(Macroblock& mb, MbInfo& info, const Neighbours& neighbours);
  void read_qp_delta();
  void read_luma(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int quarters, Mox16s** out);
  void read_chroma(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int part, Mox16s** out);

  BitReader& bits_;
  const CavlcTables& tables_;
  int qp_;  // of the macroblock before
};

}  // namespace moxdec::h264
