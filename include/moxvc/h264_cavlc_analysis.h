/** @file
 *  H.264 CAVLC encoding: what a bit writer needs of a block.
 */
#ifndef MOXVC_H264_CAVLC_ANALYSIS_H
#define MOXVC_H264_CAVLC_ANALYSIS_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
