/** @file
 *  H.261 transform coefficients and loop filter.
 */
#ifndef MOXVC_H261_H
#define MOXVC_H261_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
