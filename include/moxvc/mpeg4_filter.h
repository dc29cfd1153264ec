/** @file
 *  MPEG-4 post filters: deblocking and deringing. */
#ifndef MOXVC_MPEG4_FILTER_H
#define MOXVC_MPEG4_FILTER_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
