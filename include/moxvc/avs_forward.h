/** @file
 *  AVS forward transform with quantisation, and intra prediction for encoders. */
#ifndef MOXVC_AVS_FORWARD_H
#define MOXVC_AVS_FORWARD_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
