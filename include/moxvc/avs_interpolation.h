/** @file
 *  AVS interpolation and weighting. */
#ifndef MOXVC_AVS_INTERPOLATION_H
#define MOXVC_AVS_INTERPOLATION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
