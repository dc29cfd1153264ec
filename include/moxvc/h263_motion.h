/** @file
 *  H.263 bidirectional prediction of PB frames. */
#ifndef MOXVC_H263_MOTION_H
#define MOXVC_H263_MOTION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
