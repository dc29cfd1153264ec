/** @file
 *  H.263 transform coefficients: reading, writing, quantisation.
 */
#ifndef MOXVC_H263_COEFFICIENTS_H
#define MOXVC_H263_COEFFICIENTS_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
