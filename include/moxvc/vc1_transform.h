/** @file
 *  VC-1 transforms, and the Hadamard transform with its sum. */
#ifndef MOXVC_VC1_TRANSFORM_H
#define MOXVC_VC1_TRANSFORM_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
