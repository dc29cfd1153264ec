/** @file
 *  Variances, deviations, sums of differences, edges. */
#ifndef MOXVC_BLOCK_STATISTICS_H
#define MOXVC_BLOCK_STATISTICS_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
