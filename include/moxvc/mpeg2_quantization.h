/** @file
 *  MPEG-2 quantisation.
 */
#ifndef MOXVC_MPEG2_QUANTIZATION_H
#define MOXVC_MPEG2_QUANTIZATION_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
