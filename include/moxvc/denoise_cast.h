/** @file
 *  Noise filters: CAST. */
#ifndef MOXVC_DENOISE_CAST_H
#define MOXVC_DENOISE_CAST_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
