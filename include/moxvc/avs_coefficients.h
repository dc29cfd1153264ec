/** @file
 *  AVS block coefficients. */
#ifndef MOXVC_AVS_COEFFICIENTS_H
#define MOXVC_AVS_COEFFICIENTS_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
