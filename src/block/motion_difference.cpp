#include "block/motion_difference_tables.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_motion.h"

using namespace mox;

namespace {

template <const auto& kTable>
MoxStatus get_diff(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep, Mox16s* pDstDiff,
                   Mox32s dstDiffStep, Mox16s* pDstPredictor, Mox32s dstPredictorStep, Mox32s mcType,
                   Mox32u roundControl) {
  if (any_null(pSrcCur, pSrcRef, pDstDiff)) return moxStsNullPointer;
  return kTable[diff_index(mcType, pDstPredictor != nullptr)](
      pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep, pDstPredictor, dstPredictorStep, roundControl);
}

template <const auto& kTable>
MoxStatus get_diff_pair(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                        Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiff,
                        Mox32s dstDiffStep, Mox32u roundControl) {
  if (any_null(pSrcCur, pSrcRefF, pSrcRefB, pDstDiff)) return moxStsNullPointer;
  return kTable[pair_index(mcTypeF, mcTypeB)](pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, pSrcRefB, srcRefBStep,
                                              pDstDiff, dstDiffStep, roundControl);
}

template <const auto& kTable>
MoxStatus get_diff_channels(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                            Mox16s* pDstDiffU, Mox32s dstDiffUStep, Mox16s* pDstDiffV, Mox32s dstDiffVStep,
                            Mox32s mcType, Mox32u roundControl) {
  if (any_null(pSrcCur, pSrcRef, pDstDiffU, pDstDiffV)) return moxStsNullPointer;
  return kTable[half_pel_index(mcType)](pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiffU, dstDiffUStep, pDstDiffV,
                                        dstDiffVStep, roundControl);
}

template <const auto& kTable>
MoxStatus get_diff_channels_pair(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                 Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                 Mox16s* pDstDiffU, Mox32s dstDiffUStep, Mox16s* pDstDiffV, Mox32s dstDiffVStep,
                                 Mox32u roundControl) {
  if (any_null(pSrcCur, pSrcRefF, pSrcRefB, pDstDiffU, pDstDiffV)) return moxStsNullPointer;
  return kTable[pair_index(mcTypeF, mcTypeB)](pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, pSrcRefB, srcRefBStep,
                                              pDstDiffU, dstDiffUStep, pDstDiffV, dstDiffVStep, roundControl);
}

}  // namespace

MoxStatus moxiGetDiff16x16_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                    Mox16s* pDstDiff, Mox32s dstDiffStep, Mox16s* pDstPredictor,
                                    Mox32s dstPredictorStep, Mox32s mcType, Mox32u roundControl) {
  return get_diff<GetDiff16x16FnTbl_sse2>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep,
                                          pDstPredictor, dstPredictorStep, mcType, roundControl);
}

MoxStatus moxiGetDiff16x8_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                   Mox16s* pDstDiff, Mox32s dstDiffStep, Mox16s* pDstPredictor, Mox32s dstPredictorStep,
                                   Mox32s mcType, Mox32u roundControl) {
  return get_diff<GetDiff16x8FnTbl_sse2>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep, pDstPredictor,
                                         dstPredictorStep, mcType, roundControl);
}

MoxStatus moxiGetDiff8x16_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                   Mox16s* pDstDiff, Mox32s dstDiffStep, Mox16s* pDstPredictor, Mox32s dstPredictorStep,
                                   Mox32s mcType, Mox32u roundControl) {
  return get_diff<GetDiff8x16FnTbl_sse2>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep, pDstPredictor,
                                         dstPredictorStep, mcType, roundControl);
}

MoxStatus moxiGetDiff8x8_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                  Mox16s* pDstDiff, Mox32s dstDiffStep, Mox16s* pDstPredictor, Mox32s dstPredictorStep,
                                  Mox32s mcType, Mox32u roundControl) {
  return get_diff<GetDiff8x8FnTbl_sse2>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep, pDstPredictor,
                                        dstPredictorStep, mcType, roundControl);
}

MoxStatus moxiGetDiff8x4_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                  Mox16s* pDstDiff, Mox32s dstDiffStep, Mox16s* pDstPredictor, Mox32s dstPredictorStep,
                                  Mox32s mcType, Mox32u roundControl) {
  return get_diff<GetDiff8x4FnTbl_sse2>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep, pDstPredictor,
                                        dstPredictorStep, mcType, roundControl);
}

MoxStatus moxiGetDiff4x4_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                  Mox16s* pDstDiff, Mox32s dstDiffStep) {
  if (any_null(pSrcCur, pSrcRef, pDstDiff)) return moxStsNullPointer;
  return active::get_diff_4x4(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiff, dstDiffStep);
}

MoxStatus moxiGetDiff16x16B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                     Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                     Mox16s* pDstDiff, Mox32s dstDiffStep, Mox32u roundControl) {
  return get_diff_pair<GetDiff16x16BFnTbl_sse2>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB,
                                                srcRefBStep, mcTypeB, pDstDiff, dstDiffStep, roundControl);
}

MoxStatus moxiGetDiff16x8B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                    Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                    Mox16s* pDstDiff, Mox32s dstDiffStep, Mox32u roundControl) {
  return get_diff_pair<GetDiff16x8BFnTbl_sse2>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB,
                                               srcRefBStep, mcTypeB, pDstDiff, dstDiffStep, roundControl);
}

MoxStatus moxiGetDiff8x16B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                    Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                    Mox16s* pDstDiff, Mox32s dstDiffStep, Mox32u roundControl) {
  return get_diff_pair<GetDiff8x16BFnTbl_sse2>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB,
                                               srcRefBStep, mcTypeB, pDstDiff, dstDiffStep, roundControl);
}

MoxStatus moxiGetDiff8x8B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                   Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                   Mox16s* pDstDiff, Mox32s dstDiffStep, Mox32u roundControl) {
  return get_diff_pair<GetDiff8x8BFnTbl_sse2>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB,
                                              srcRefBStep, mcTypeB, pDstDiff, dstDiffStep, roundControl);
}

MoxStatus moxiGetDiff8x4B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                   Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                   Mox16s* pDstDiff, Mox32s dstDiffStep, Mox32u roundControl) {
  return get_diff_pair<GetDiff8x4BFnTbl_sse2>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF, pSrcRefB,
                                              srcRefBStep, mcTypeB, pDstDiff, dstDiffStep, roundControl);
}

MoxStatus moxiGetDiff8x8_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                    Mox16s* pDstDiffU, Mox32s dstDiffUStep, Mox16s* pDstDiffV, Mox32s dstDiffVStep,
                                    Mox32s mcType, Mox32u roundControl) {
  return get_diff_channels<GetDiff8x8FnTblNV12_sse41>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiffU, dstDiffUStep,
                                                      pDstDiffV, dstDiffVStep, mcType, roundControl);
}

MoxStatus moxiGetDiff8x4_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef, Mox32s srcRefStep,
                                    Mox16s* pDstDiffU, Mox32s dstDiffUStep, Mox16s* pDstDiffV, Mox32s dstDiffVStep,
                                    Mox32s mcType, Mox32u roundControl) {
  return get_diff_channels<GetDiff8x4FnTblNV12_sse41>(pSrcCur, srcCurStep, pSrcRef, srcRefStep, pDstDiffU, dstDiffUStep,
                                                      pDstDiffV, dstDiffVStep, mcType, roundControl);
}

MoxStatus moxiGetDiff8x8B_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                     Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                     Mox16s* pDstDiffU, Mox32s dstDiffUStep, Mox16s* pDstDiffV, Mox32s dstDiffVStep,
                                     Mox32u roundControl) {
  return get_diff_channels_pair<GetDiff8x8BFnTblNV12_sse41>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF,
                                                            pSrcRefB, srcRefBStep, mcTypeB, pDstDiffU, dstDiffUStep,
                                                            pDstDiffV, dstDiffVStep, roundControl);
}

MoxStatus moxiGetDiff8x4B_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF, Mox32s srcRefFStep,
                                     Mox32s mcTypeF, const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB,
                                     Mox16s* pDstDiffU, Mox32s dstDiffUStep, Mox16s* pDstDiffV, Mox32s dstDiffVStep,
                                     Mox32u roundControl) {
  return get_diff_channels_pair<GetDiff8x4BFnTblNV12_sse41>(pSrcCur, srcCurStep, pSrcRefF, srcRefFStep, mcTypeF,
                                                            pSrcRefB, srcRefBStep, mcTypeB, pDstDiffU, dstDiffUStep,
                                                            pDstDiffV, dstDiffVStep, roundControl);
}
