/** @file
 *  Noise filters: adaptive and smoothing. */
#ifndef MOXVC_DENOISE_H
#define MOXVC_DENOISE_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
