/** @file
 *  MPEG-4 quarter-sample copies and overlapped block motion compensation. */
#ifndef MOXVC_MPEG4_MOTION_H
#define MOXVC_MPEG4_MOTION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
