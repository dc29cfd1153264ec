/** @file
 *  MPEG-4 quantisation.
 */
#ifndef MOXVC_MPEG4_QUANTIZATION_H
#define MOXVC_MPEG4_QUANTIZATION_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
