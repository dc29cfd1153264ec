/// The syntax of macroblocks: from bits to modes, quantiser and coefficients.
#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

#include "common/h264_tables.hpp"
#include "moxdec/h264/cavlc.hpp"
#include "moxdec/h264/direct.hpp"
#include "moxdec/h264/neighbours.hpp"
#include "moxdec/h264/picture.hpp"
#include "moxdec/h264/references.hpp"

namespace moxdec::h264 {

/// Bits of `Macroblock::coded` and `coded_chroma`: which blocks the coefficients hold. Blocks in coding order.
inline constexpr Mox32u kCodedDc = 1;
constexpr Mox32u coded_block(int block) { return 2u << block; }

/// Bits of `Macroblock::denied`, in the library's order: neighbours that intra prediction may not use.
inline constexpr Mox32u kDenyLeft = 1, kDenyTop = 4, kDenyTopLeft = 16, kDenyTopRight = 32;

using example::Split;

/// The coefficients that go with a type of samples.
template <class Sample>
using CoeffOf = std::conditional_t<sizeof(Sample) == 1, Mox16s, Mox32s>;

/// Packed: blocks of 16 values (8x8: 64, 4:2:0 chroma DC: 4, 4:2:2 chroma DC: 8) in the order luma DC, luma, chroma DC,
/// U, V.
template <class Coeff>
using Coefficients = std::array<Coeff, 16 + 16 * 16 + 2 * 8 + 2 * 8 * 16>;

/// A macroblock as it came from the stream, ready to be rebuilt.
struct Macroblock {
  int x = 0;  // in macroblocks
  int y = 0;
  bool field = false;
  MbKind kind = MbKind::kIntra4x4;
  int qp = 0;
  Mox32u denied = 0;  // of the whole macroblock
  /// Of its upper and its lower half, which differ where only one of their two left neighbours may be used.
  std::array<Mox32u, 2> denied_halves = {0, 0};
  std::array<Mox32u, 16> intra_modes;  // in coding order; of 8x8 blocks the first 4
  Mox32u intra_16x16_mode = 0;
  Mox32u chroma_mode = 0;
  Split split = Split::kNone;  // inter macroblocks; with kQuarters each quadrant is split on its own
  std::array<Split, 4> quarter_splits;
  bool has_split_left() const { return ((denied_halves[0] ^ denied_halves[1]) & kDenyLeft) != 0; }
  bool transform_8x8 = false;
  Mox32u coded = 0;                                  // luma
  Mox32u coded_8x8 = 0;                              // bits 0 to 3: luma blocks of the 8x8 transform
  std::array<Mox32u, 2> coded_chroma = {0, 0};       // U, V
  alignas(64) Coefficients<Mox16s> coefficients_16;  // of 8-bit samples
  alignas(64) Coefficients<Mox32s> coefficients_32;  // of deeper ones
  std::array<Mox16u, 16 * 16 * 2> raw;               // samples, plane by plane

  template <class Coeff>
  Coeff* coefficients() {
    if constexpr (sizeof(Coeff) == 2) {
      return coefficients_16.data();
    } else {
      return coefficients_32.data();
    }
  }
};

/// What inter prediction needs to know of a slice.
struct InterSlice {
  ReferenceLists lists;
  DirectPredictor direct;
};

/// Reads the macroblocks of one slice.
class MacroblockReader {
 public:
  MacroblockReader(BitReader& bits, const CavlcTables& tables, const SliceHeader& slice, const InterSlice& inter,
                   Picture& picture)
      : bits_(bits), tables_(tables), slice_(slice), inter_(inter), picture_(picture), qp_(slice.qp) {}

  /// Reads a macroblock, whose position and kind, frame or field, are set. Its place in the picture gets all but the
  /// slice. Throws DecodeError.
  void read(Macroblock& mb, std::int32_t slice_index);
  /// Derives a macroblock of which the slice only says that it is skipped.
  void skip(Macroblock& mb, std::int32_t slice_index);

 private:
  struct Part {
    BlockRect rect;
    std::uint8_t lists;  // bit 0, bit 1; 0 for direct prediction
    Split split = Split::kNone;
  };
  struct Parts {
    std::array<Part, 4> part;
    int count = 0;
    bool first_references = false;  // all are 0 and not written
  };

  void read_intra(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int type);
  void read_raw(Macroblock& mb, MbInfo& info);
  void read_intra_modes(Macroblock& mb, MbInfo& info, const Neighbours& neighbours);
  void read_qp_delta();
  int read_pattern(bool inter);
  void read_residual(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int pattern);
  template <class Coeff>
  void read_blocks(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int pattern);
  template <class Coeff>
  void read_luma(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int quarters, Coeff** out);
  template <class Coeff>
  void read_luma_8x8(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int quarters, Coeff** out);
  template <int Rows, class Coeff>
  void read_chroma(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, bool has_ac, Coeff** out);

  void read_inter(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int type);
  static void clear_residual(Macroblock& mb, MbInfo& info);
  void begin_inter(Macroblock& mb, MbInfo& info, const Neighbours& neighbours);
  void finish_inter(Macroblock& mb, MbInfo& info);
  std::int8_t picture_of(int list, int reference) const;
  Parts read_parts_p(Macroblock& mb, int type);
  Parts read_parts_b(Macroblock& mb, int type);
  void derive_direct(Macroblock& mb);
  void read_motion(const Parts& parts, bool halves);
  bool allows_transform_8x8(const Macroblock& mb, const Parts& parts) const;
  int read_reference(int list);
  void read_vectors(int list, const Part& part, bool halves);

  BitReader& bits_;
  const CavlcTables& tables_;
  const SliceHeader& slice_;
  const InterSlice& inter_;
  Picture& picture_;
  std::array<MotionWindow, 2> windows_;     // by list
  PicturePart part_ = PicturePart::kWhole;  // that the inter macroblock belongs to
  int qp_;                                  // of the macroblock before
};

}  // namespace moxdec::h264
