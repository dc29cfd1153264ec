/** @file
 *  AVS deblocking. */
#ifndef MOXVC_AVS_DEBLOCK_H
#define MOXVC_AVS_DEBLOCK_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
