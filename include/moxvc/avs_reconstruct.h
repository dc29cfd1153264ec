/** @file
 *  AVS macroblock reconstruction. */
#ifndef MOXVC_AVS_RECONSTRUCT_H
#define MOXVC_AVS_RECONSTRUCT_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
