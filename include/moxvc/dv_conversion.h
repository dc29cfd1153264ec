/** @file
 *  DV conversion to packed 4:2:2. */
#ifndef MOXVC_DV_CONVERSION_H
#define MOXVC_DV_CONVERSION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
