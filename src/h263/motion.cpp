#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h263/motion_px.hpp"
#include "h263/motion_vec.hpp"
#include "moxvc/h263_motion.h"

using namespace mox;

MoxStatus moxiAddBackPredPB_H263_8u_C1R(const Mox8u* pForward, Mox32s forwardStep, const Mox8u* pMacroblock,
                                        Mox32s macroblockStep, Mox8u* pDst, Mox32s dstStep, Mox32s block,
                                        MoxiPoint vector) {
  if (any_null(pForward, pMacroblock, pDst)) return moxStsNullPointer;
  if (outside(block, 0, 5)) return moxStsOutOfRange;
  return active::add_backward_prediction(pForward, forwardStep, pMacroblock, macroblockStep, pDst, dstStep,
                                         BackwardBlock(block, vector));
}
