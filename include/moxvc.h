/** @file
 *  moxvc: video-coding primitives. This header brings in one header for each family of functions. */
#ifndef MOXVC_H
#define MOXVC_H

#include "moxvc/block_arithmetic.h"
#include "moxvc/block_metrics.h"
#include "moxvc/block_motion.h"
#include "moxvc/block_statistics.h"
#include "moxvc/dct.h"
#include "moxvc/h261.h"
#include "moxvc/h263_coefficients.h"
#include "moxvc/h263_filter.h"
#include "moxvc/h264_cavlc.h"
#include "moxvc/h264_cavlc_analysis.h"
#include "moxvc/h264_deblock.h"
#include "moxvc/h264_expansion.h"
#include "moxvc/h264_forward_transform.h"
#include "moxvc/h264_interpolation.h"
#include "moxvc/h264_intra.h"
#include "moxvc/h264_inverse_transform.h"
#include "moxvc/h264_reconstruct.h"
#include "moxvc/h264_reconstruct_high.h"
#include "moxvc/h264_weighting.h"
#include "moxvc/huffman.h"
#include "moxvc/mpeg12_block.h"
#include "moxvc/mpeg2_quantization.h"
#include "moxvc/mpeg4_coefficients.h"
#include "moxvc/mpeg4_quantization.h"
#include "moxvc/mpeg4_warp.h"
#include "moxvc/scan.h"
#include "moxvc/types.h"
#include "moxvc/version.h"

#endif
