/** @file
 *  8x8 discrete cosine transforms.
 */
#ifndef MOXVC_DCT_H
#define MOXVC_DCT_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
