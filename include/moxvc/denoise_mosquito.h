/** @file
 *  Noise filters: mosquito noise. */
#ifndef MOXVC_DENOISE_MOSQUITO_H
#define MOXVC_DENOISE_MOSQUITO_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
