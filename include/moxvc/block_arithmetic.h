/** @file
 *  Copying, adding, subtracting and averaging blocks. */
#ifndef MOXVC_BLOCK_ARITHMETIC_H
#define MOXVC_BLOCK_ARITHMETIC_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
