/** @file
 *  VC-1 quantisation. */
#ifndef MOXVC_VC1_QUANTIZATION_H
#define MOXVC_VC1_QUANTIZATION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
