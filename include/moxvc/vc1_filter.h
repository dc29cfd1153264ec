/** @file
 *  VC-1 deblocking, overlap smoothing and range mapping. */
#ifndef MOXVC_VC1_FILTER_H
#define MOXVC_VC1_FILTER_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
