/** @file
 *  MPEG-4 texture coefficients.
 */
#ifndef MOXVC_MPEG4_COEFFICIENTS_H
#define MOXVC_MPEG4_COEFFICIENTS_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
