#include "moxenc/picture_coder.hpp"

#include "moxenc/deblock.hpp"
#include "moxenc/macroblock_coder.hpp"

namespace moxenc {
void code_picture(const PictureTask& task, CodingState& state, BitWriter& bits) {
  constexpr int kHalfTheLevels = 6;
  const Lambda lambda(task.qp);
  MacroblockWriter writer(bits, state, task.reference != nullptr, task.qp);
  MacroblockCoder coder(task.reference);
  state.begin_picture();
  for (int y = 0; y < state.rows; ++y) {
    for (int x = 0; x < state.columns; ++x) {
      const Site site{x, y, macroblock_at(task.source, x, y), macroblock_at(task.picture, x, y), state, lambda};
      const Macroblock* mb = coder.code(site, task.qp, writer.last_qp());
      for (int qp = task.qp + kHalfTheLevels; !mb; qp += kHalfTheLevels) mb = coder.code(site, qp, writer.last_qp());
      writer.write(*mb);
    }
  }
  writer.finish();
  deblock(task.picture, state);
}

}  // namespace moxenc
