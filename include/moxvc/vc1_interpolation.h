/** @file
 *  VC-1 interpolation. */
#ifndef MOXVC_VC1_INTERPOLATION_H
#define MOXVC_VC1_INTERPOLATION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
