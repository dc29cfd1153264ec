/** @file
 *  H.263 deblocking and block-boundary filters.
 */
#ifndef MOXVC_H263_FILTER_H
#define MOXVC_H263_FILTER_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
