/** @file
 *  Deinterlacing. */
#ifndef MOXVC_DEINTERLACE_H
#define MOXVC_DEINTERLACE_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
