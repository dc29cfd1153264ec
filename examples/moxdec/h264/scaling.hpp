/// Scaling lists of the parameter sets, and the scales of coefficients that follow from them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "moxdec/h264/bit_reader.hpp"

namespace moxdec::h264 {

/// In scan order; lists of 4x4 blocks use the first 16 values.
using ScalingList = std::array<std::uint8_t, 64>;

/// Lists in their coded order: 4x4 of intra Y, U, V, of inter Y, U, V; 8x8 of intra Y, of inter Y.
inline constexpr int kLists4x4 = 6, kScalingLists = 8;
using ScalingLists = std::array<ScalingList, kScalingLists>;

/// The lists as a parameter set writes them: nothing where it leaves one out.
using CodedScalingLists = std::array<std::optional<ScalingList>, kScalingLists>;

/// Reads the 4x4 lists and the first `count_8x8` lists of 8x8 blocks; those of 4:4:4 chroma among them are read over.
CodedScalingLists parse_scaling_lists(BitReader& bits, int count_8x8);

/// What holds in the end, from the lists of the sequence and of the picture, each if there are any.
ScalingLists resolve_scaling_lists(const std::optional<CodedScalingLists>& sequence,
                                   const std::optional<CodedScalingLists>& picture);

/// The factors of coefficients, in raster order, as the library takes them.
class LevelScales {
 public:
  explicit LevelScales(const ScalingLists& lists);

  const Mox16s* of_4x4(bool inter, int plane, int qp) const {
    return scales_4x4_[inter ? 3 + plane : plane][qp % 6].data();
  }
  const Mox16s* of_8x8(bool inter, int qp) const { return scales_8x8_[inter][qp % 6].data(); }
  /// All lists of 4x4 blocks have only the value 16, as without any lists.
  bool is_flat_4x4() const { return flat_4x4_; }

 private:
  alignas(64) std::array<std::array<std::array<Mox16s, 64>, 6>, 2> scales_8x8_;
  std::array<std::array<std::array<Mox16s, 16>, 6>, kLists4x4> scales_4x4_;
  bool flat_4x4_;
};

}  // namespace moxdec::h264
