/** @file
 *  H.264 forward transforms and quantisation.
 */
#ifndef MOXVC_H264_FORWARD_TRANSFORM_H
#define MOXVC_H264_FORWARD_TRANSFORM_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
