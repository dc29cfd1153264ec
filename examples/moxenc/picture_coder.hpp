/// Codes the macroblocks of one picture.
#pragma once

#include "moxenc/bit_writer.hpp"
#include "moxenc/macroblock_writer.hpp"
#include "moxenc/picture.hpp"

namespace moxenc {

struct PictureTask {
  const moxdec::Frame& source;     ///< from make_picture
  const moxdec::Frame& picture;    ///< receives the reconstruction, without margins
  const moxdec::Frame* reference;  ///< with margins; null for an I picture
  int qp;
};

/// Writes the slice data of a picture behind a slice header, and reconstructs it, filtered.
void code_picture(const PictureTask& task, CodingState& state, BitWriter& bits);

}  // namespace moxenc
