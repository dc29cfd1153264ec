/** @file
 *  MPEG-4 sprites and global motion.
 */
#ifndef MOXVC_MPEG4_WARP_H
#define MOXVC_MPEG4_WARP_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_END_DECLS

#endif
