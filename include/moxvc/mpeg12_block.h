/** @file
 *  MPEG-1/2 DCT coefficients: block decoding and run-level encoding.
 */
#ifndef MOXVC_MPEG12_BLOCK_H
#define MOXVC_MPEG12_BLOCK_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
