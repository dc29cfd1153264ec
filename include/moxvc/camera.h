/** @file
 *  Camera path: scaling, colour conversion and rotation. */
#ifndef MOXVC_CAMERA_H
#define MOXVC_CAMERA_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
