/// A picture in work, and where the macroblocks of its packets lie.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "moxdec/frame.hpp"
#include "moxdec/mpeg4/motion.hpp"

namespace moxdec::mpeg4 {

/// Distances of a B picture from the references before and behind it.
struct Distances {
  std::int64_t from_past = 0;         // in ticks
  std::int64_t between = 0;           // of the references
  std::int64_t fields_from_past = 0;  // in fields
  std::int64_t fields_between = 0;
};

struct Picture {
  Layer layer;
  PictureHeader header;
  std::shared_ptr<Frame> frame;
  std::array<std::shared_ptr<const Frame>, 2> reference;  // by direction; null if missing
  std::vector<MbState>* states = nullptr;  // of the macroblocks; in a B picture those of the reference behind it
  Distances distances;                     // of a B picture

  int mb_width() const { return layer.mb_width(); }
  const Frame& reference_frame(Direction s) const {
    require(reference[s] != nullptr, "a picture that is predicted from is missing");
    return *reference[s];
  }
};

/// The macroblock in work.
struct Place {
  int address = 0;
  int x = 0, y = 0;  // column and row of macroblocks
  int first = 0;     // address of the first macroblock of the packet: none before it counts as a neighbour

  /// Whether the macroblock so many columns and rows away lies in the picture and, before this one, in the packet.
  bool has_neighbour(int dx, int dy, int mb_width) const {
    return x + dx >= 0 && x + dx < mb_width && address + dy * mb_width + dx >= first;
  }
};

/// A macroblock as the stream describes it, without its coefficients.
struct Macroblock {
  bool intra = false;
  int pattern = 0;  // bit 5 - i: block i is coded
  int quantiser = 0;
  bool ac_prediction = false;
  bool dc_codes = true;  // the DC of intra blocks has codes of its own
  bool field_transform = false;
  Motion motion;

  bool is_coded(int block) const { return pattern >> (5 - block) & 1; }
};

/// Of a packet whose macroblocks' elements are sorted into partitions.
struct PartitionedMacroblock {
  Macroblock mb;
  int code = 0;  // type and chroma pattern
  bool left_out = false;
  std::array<Mox16s, 6> dc{};  // levels, if they have codes of their own
};

}  // namespace moxdec::mpeg4
