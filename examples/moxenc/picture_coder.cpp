#include "moxenc/picture_coder.hpp"

#include "moxenc/deblock.hpp"
#include "moxenc/macroblock_coder.hpp"

namespace moxenc {

void code_picture(const PictureTask& task, CodingState& state, BitWriter& bits) {
  const Lambda lambda(task.qp);
  MacroblockWriter writer(bits, state, task.reference != nullptr, task.qp);
  MacroblockCoder coder(task.reference, task.qp);
  state.begin_picture();
  for (int y = 0; y < state.rows; ++y) {
    for (int x = 0; x < state.columns; ++x) {
      const Site site{x, y, macroblock_at(task.source, x, y), macroblock_at(task.picture, x, y), state, lambda};
      writer.write(coder.code(site));
    }
  }
  writer.finish();
  deblock(task.picture, state);
}

}  // namespace moxenc
