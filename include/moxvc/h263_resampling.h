/** @file
 *  H.263 reference picture resampling, and spatial interpolation by two. */
#ifndef MOXVC_H263_RESAMPLING_H
#define MOXVC_H263_RESAMPLING_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
