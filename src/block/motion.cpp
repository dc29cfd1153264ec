#include "moxvc/block_motion.h"

#include "block/motion_tables.hpp"
#include "frame/arguments.hpp"

using namespace mox;

namespace {

template <const auto& kTable, int kHeight>
MoxStatus mc(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep, Mox8u* pDst,
             Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  if (any_null(pSrcRef, pSrcResidual, pDst)) return moxStsNullPointer;
  return kTable[mc_index(mcType, roundControl)](pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep,
                                                kHeight);
}

template <const auto& kTable, int kHeight>
MoxStatus mc_pair(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep,
                  Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep,
                  Mox32u roundControl) {
  if (any_null(pSrcRefF, pSrcRefB, pSrcResidual, pDst)) return moxStsNullPointer;
  return kTable[mc_index(mcTypeF, mcTypeB, roundControl)](pSrcRefF, srcRefFStep, pSrcRefB, srcRefBStep, pSrcResidual,
                                                          srcResidualStep, pDst, dstStep, kHeight);
}

template <const auto& kTable, int kHeight>
MoxStatus mc_channels(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcU, const Mox16s* pSrcV,
                      Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  if (any_null(pSrcRef, pSrcU, pSrcV, pDst)) return moxStsNullPointer;
  return kTable[mc_index(mcType, roundControl)](pSrcRef, srcRefStep, pSrcU, pSrcV, srcUVStep, pDst, dstStep, kHeight);
}

template <const auto& kTable, int kHeight>
MoxStatus mc_channels_pair(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcU, const Mox16s* pSrcV,
                           Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  if (any_null(pSrcRefF, pSrcRefB, pSrcU, pSrcV, pDst)) return moxStsNullPointer;
  return kTable[mc_index(mcTypeF, mcTypeB, roundControl)](pSrcRefF, srcRefFStep, pSrcRefB, srcRefBStep, pSrcU, pSrcV,
                                                          srcUVStep, pDst, dstStep, kHeight);
}

template <const auto& kTable>
MoxStatus mc_small(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                   Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  if (any_null(pSrcRef, pSrcResidual, pDst)) return moxStsNullPointer;
  return kTable[mc_small_index(mcType)](pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep,
                                        roundControl);
}

template <const auto& kTable>
MoxStatus mc_small_pair(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                        Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                        Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  if (any_null(pSrcRefF, pSrcRefB, pSrcResidual, pDst)) return moxStsNullPointer;
  return kTable[pair_index(mcTypeF, mcTypeB)](pSrcRefF, srcRefFStep, pSrcRefB, srcRefBStep, pSrcResidual,
                                              srcResidualStep, pDst, dstStep, roundControl);
}

}  // namespace

MoxStatus moxiMC16x16_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                            Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC16xHFunctionTable_sse3, 16>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                          roundControl);
}

MoxStatus moxiMC16x8_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC16xHFunctionTable_sse3, 8>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                         roundControl);
}

MoxStatus moxiMC8x16_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC8xHFunctionTable_sse2, 16>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                         roundControl);
}

MoxStatus moxiMC8x8_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC8xHFunctionTable_sse2, 8>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                        roundControl);
}

MoxStatus moxiMC8x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC8xHFunctionTable_sse2, 4>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                        roundControl);
}

MoxStatus moxiMC4x8_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_small<MC4x8FnTbl>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType, roundControl);
}

MoxStatus moxiMC4x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_small<MC4x4FnTbl>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType, roundControl);
}

MoxStatus moxiMC4x2_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_small<MC4x2FnTbl>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType, roundControl);
}

MoxStatus moxiMC2x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_small<MC2x4FnTbl>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType, roundControl);
}

MoxStatus moxiMC2x2_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                          Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_small<MC2x2FnTbl>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType, roundControl);
}

MoxStatus moxiMC16x8UV_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                             Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC16xHUVFunctionTable_sse3, 8>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                           roundControl);
}

MoxStatus moxiMC16x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc<MC16xHUVFunctionTable_sse3, 4>(pSrcRef, srcRefStep, pSrcResidual, srcResidualStep, pDst, dstStep, mcType,
                                           roundControl);
}

MoxStatus moxiMC16x16B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                             Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                             Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC16xHBFunctionTable_sse3, 16>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                                pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC16x8B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                            Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                            Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC16xHBFunctionTable_sse3, 8>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                               pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC8x16B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                            Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                            Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC8xHBFunctionTable_sse2, 16>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                               pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC8x8B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC8xHBFunctionTable_sse2, 8>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                              pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC8x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC8xHBFunctionTable_sse2, 4>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                              pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC4x8B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_small_pair<MC4x8BFnTbl>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB, pSrcResidual,
                                    srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC4x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_small_pair<MC4x4BFnTbl>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB, pSrcResidual,
                                    srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC4x2B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_small_pair<MC4x2BFnTbl>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB, pSrcResidual,
                                    srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC2x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_small_pair<MC2x4BFnTbl>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB, pSrcResidual,
                                    srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC2x2B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                           Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                           Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_small_pair<MC2x2BFnTbl>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB, pSrcResidual,
                                    srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC16x8BUV_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                              Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                              Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC16xHUVBFunctionTable_sse3, 8>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                                 pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC16x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                            Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual, Mox32s srcResidualStep,
                            Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_pair<MC16xHUVBFunctionTable_sse3, 4>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep, mcTypeB,
                                                 pSrcResidual, srcResidualStep, pDst, dstStep, roundControl);
}

MoxStatus moxiMC8x8_16s8u_P2C2R(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcU, const Mox16s* pSrcV,
                                Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_channels<MC8xHFunctionNV12Table_p8y8, 8>(pSrcRef, srcRefStep, pSrcU, pSrcV, srcUVStep, pDst, dstStep,
                                                     mcType, roundControl);
}

MoxStatus moxiMC8x4_16s8u_P2C2R(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcU, const Mox16s* pSrcV,
                                Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType, Mox32u roundControl) {
  return mc_channels<MC8xHFunctionNV12Table_p8y8, 4>(pSrcRef, srcRefStep, pSrcU, pSrcV, srcUVStep, pDst, dstStep,
                                                     mcType, roundControl);
}

MoxStatus moxiMC8x8B_16s8u_P2C2R(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                 Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcU, const Mox16s* pSrcV,
                                 Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_channels_pair<MC8xHBFunctionNV12Table_p8y8, 8>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep,
                                                           mcTypeB, pSrcU, pSrcV, srcUVStep, pDst, dstStep,
                                                           roundControl);
}

MoxStatus moxiMC8x4B_16s8u_P2C2R(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                 Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcU, const Mox16s* pSrcV,
                                 Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl) {
  return mc_channels_pair<MC8xHBFunctionNV12Table_p8y8, 4>(pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB, srcRefBStep,
                                                           mcTypeB, pSrcU, pSrcV, srcUVStep, pDst, dstStep,
                                                           roundControl);
}
