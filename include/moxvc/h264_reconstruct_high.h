/** @file
 *  H.264 macroblock reconstruction of high profiles.
 */
#ifndef MOXVC_H264_RECONSTRUCT_HIGH_H
#define MOXVC_H264_RECONSTRUCT_HIGH_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
