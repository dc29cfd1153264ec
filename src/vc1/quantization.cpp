#include "moxvc/vc1_quantization.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "vc1/quantization_px.hpp"
#include "vc1/quantization_vec.hpp"

using namespace mox;

namespace {

bool bad_double_quant(Mox32s doubleQuant) {
  return outside(doubleQuant, px::kVc1LeastDoubleQuant, px::kVc1MostDoubleQuant);
}
bool bad_size(MoxiSize size) {
  const auto bad = [](Mox32s side) { return side != 4 && side != 8; };
  return bad(size.height) || bad(size.width);
}

}  // namespace

MoxStatus moxiQuantIntraUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (bad_double_quant(doubleQuant)) return moxStsOutOfRange;
  return active::moxiQuantIntraUniform_table8x8[active::vc1_form(doubleQuant)](pSrcDst, srcDstStep, doubleQuant);
}

MoxStatus moxiQuantIntraNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (bad_double_quant(doubleQuant)) return moxStsOutOfRange;
  return active::moxiQuantIntraNonuniform_table8x8[active::vc1_form(doubleQuant)](pSrcDst, srcDstStep, doubleQuant);
}

MoxStatus moxiQuantInterUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant, MoxiSize roiSize) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (bad_double_quant(doubleQuant)) return moxStsOutOfRange;
  if (bad_size(roiSize)) return moxStsBadSize;
  return active::moxiQuantInterUniform_tableNxN[active::vc1_quant_index(roiSize, doubleQuant)](pSrcDst, srcDstStep,
                                                                                               doubleQuant);
}

MoxStatus moxiQuantInterNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                MoxiSize roiSize) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (bad_double_quant(doubleQuant)) return moxStsOutOfRange;
  if (bad_size(roiSize)) return moxStsBadSize;
  return active::moxiQuantInterNonuniform_tableNxN[active::vc1_quant_index(roiSize, doubleQuant)](pSrcDst, srcDstStep,
                                                                                                  doubleQuant);
}

MoxStatus moxiQuantInvIntraUniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                               Mox32s doubleQuant, MoxiSize* pDstSizeNZ) {
  if (any_null(pSrc, pDst, pDstSizeNZ)) return moxStsNullPointer;
  return active::vc1_dequantize<8, 8, px::Vc1Steps::kUniform, px::Vc1Block::kIntra>(pSrc, srcStep, pDst, dstStep,
                                                                                    doubleQuant, pDstSizeNZ);
}
MoxStatus moxiQuantInvIntraUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                MoxiSize* pDstSizeNZ) {
  return moxiQuantInvIntraUniform_VC1_16s_C1R(pSrcDst, srcDstStep, pSrcDst, srcDstStep, doubleQuant, pDstSizeNZ);
}

MoxStatus moxiQuantInvIntraNonuniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                  Mox32s doubleQuant, MoxiSize* pDstSizeNZ) {
  if (any_null(pSrc, pDst, pDstSizeNZ)) return moxStsNullPointer;
  return active::vc1_dequantize<8, 8, px::Vc1Steps::kNonuniform, px::Vc1Block::kIntra>(pSrc, srcStep, pDst, dstStep,
                                                                                       doubleQuant, pDstSizeNZ);
}
MoxStatus moxiQuantInvIntraNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                   MoxiSize* pDstSizeNZ) {
  return moxiQuantInvIntraNonuniform_VC1_16s_C1R(pSrcDst, srcDstStep, pSrcDst, srcDstStep, doubleQuant, pDstSizeNZ);
}

MoxStatus moxiQuantInvInterUniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                               Mox32s doubleQuant, MoxiSize roiSize, MoxiSize* pDstSizeNZ) {
  if (any_null(pSrc, pDst, pDstSizeNZ)) return moxStsNullPointer;
  if (bad_size(roiSize)) return moxStsBadSize;
  return active::moxiQuantInterInvUniform_tableNxN[active::vc1_quant_inv_index(roiSize)](pSrc, srcStep, pDst, dstStep,
                                                                                         doubleQuant, pDstSizeNZ);
}
MoxStatus moxiQuantInvInterUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                MoxiSize roiSize, MoxiSize* pDstSizeNZ) {
  return moxiQuantInvInterUniform_VC1_16s_C1R(pSrcDst, srcDstStep, pSrcDst, srcDstStep, doubleQuant, roiSize,
                                              pDstSizeNZ);
}

MoxStatus moxiQuantInvInterNonuniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                  Mox32s doubleQuant, MoxiSize roiSize, MoxiSize* pDstSizeNZ) {
  if (any_null(pSrc, pDst, pDstSizeNZ)) return moxStsNullPointer;
  if (bad_size(roiSize)) return moxStsBadSize;
  return active::moxiQuantInterInvNonuniform_tableNxN[active::vc1_quant_inv_index(roiSize)](
      pSrc, srcStep, pDst, dstStep, doubleQuant, pDstSizeNZ);
}
MoxStatus moxiQuantInvInterNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                   MoxiSize roiSize, MoxiSize* pDstSizeNZ) {
  return moxiQuantInvInterNonuniform_VC1_16s_C1R(pSrcDst, srcDstStep, pSrcDst, srcDstStep, doubleQuant, roiSize,
                                                 pDstSizeNZ);
}
