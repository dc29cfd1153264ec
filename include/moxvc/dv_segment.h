/** @file
 *  DV video segments. */
#ifndef MOXVC_DV_SEGMENT_H
#define MOXVC_DV_SEGMENT_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
