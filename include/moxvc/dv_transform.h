/** @file
 *  DV dequantisation and inverse transforms. */
#ifndef MOXVC_DV_TRANSFORM_H
#define MOXVC_DV_TRANSFORM_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
