/** @file
 *  Which build of the library is loaded. */
#ifndef MOXVC_VERSION_H
#define MOXVC_VERSION_H

#include "types.h"

MOX_BEGIN_DECLS

/** The version record; constant, owned by the library, valid while it is loaded. */
typedef struct MoxLibraryVersion {
  Mox32s major;          /**< 6 */
  Mox32s minor;          /**< 1 */
  Mox32s majorBuild;     /**< 137 */
  Mox32s build;          /**< 799 */
  char targetCpu[4];     /**< generation of the kernels: "e9", "px" or "v3", padded with zero bytes */
  const char* name;      /**< file name of the library, for example "libmoxvce9.so.6.1" */
  const char* version;   /**< "6.1 build 137.56" */
  const char* buildDate; /**< "Mar 17 2010" */
} MoxLibraryVersion;

/** The version record of the loaded library: the same pointer on every call, never null. */
MOX_API const MoxLibraryVersion* moxvcGetLibVersion(void);

MOX_END_DECLS

#endif
