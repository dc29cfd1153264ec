/** @file
 *  Half-pel prediction: motion compensation with residual, and differences. */
#ifndef MOXVC_BLOCK_MOTION_H
#define MOXVC_BLOCK_MOTION_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
