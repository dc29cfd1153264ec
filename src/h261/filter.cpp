#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h261/filter_px.hpp"
#include "h261/filter_vec.hpp"
#include "moxvc/h261.h"

using namespace mox;

MoxStatus moxiFilter8x8_H261_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::filter_8x8(pSrc, srcStep, pDst, dstStep);
}
