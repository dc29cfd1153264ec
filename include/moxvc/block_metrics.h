/** @file
 *  Distances between blocks: SAD, SSD, SATD, several candidates. */
#ifndef MOXVC_BLOCK_METRICS_H
#define MOXVC_BLOCK_METRICS_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
