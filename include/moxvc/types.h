/** @file
 *  Element types, geometry and status codes: what all functions of the library share.
 *
 *  Names. An exported name reads `moxi<Operation>[<WxH>][B][<variant>][_<standard>]_<types>[_<layout>]`. Element types:
 *  `8u 16u 16s 32u 32s` (width and sign), `1u` a bitstream position; one code means source and destination alike, two
 *  mean source then destination. Layout: `C1` one channel, `C2` two interleaved channels (NV12 chroma), `P1 P2 P3`
 *  separate planes, `I` in place, `R` a region with a step, `S` saturated, `D2` a contiguous two-dimensional array.
 *
 *  Steps. A step is the signed distance in bytes from the start of a row to the start of the next, for wider samples
 *  too; only H.264 functions on `Mox16u` planes count it in samples. Where a function does not test its step, it may be
 *  negative or zero.
 *
 *  Order of tests. Pointers in argument order (a pointer behind a pointer right after its holder), then sizes, steps
 *  and parameters, unless a family says otherwise. The first failing test gives the status, and after an error nothing
 *  has been written unless the function says so. Functions are reentrant: they use their arguments and constant tables.
 */
#ifndef MOXVC_TYPES_H
#define MOXVC_TYPES_H

#include <stdint.h>

/** @def MOX_BEGIN_DECLS
 *  Begins declarations that C and C++ share.
 *  @def MOX_END_DECLS
 *  Ends them. */
#ifdef __cplusplus
#define MOX_BEGIN_DECLS extern "C" {
#define MOX_END_DECLS }
#else
#define MOX_BEGIN_DECLS
#define MOX_END_DECLS
#endif

/** Marks an exported function. */
#define MOX_API __attribute__((visibility("default")))

typedef uint8_t Mox8u;   /**< unsigned 8-bit sample */
typedef uint16_t Mox16u; /**< unsigned 16-bit sample */
typedef int16_t Mox16s;  /**< signed 16-bit sample or coefficient */
typedef uint32_t Mox32u; /**< unsigned 32-bit value */
typedef int32_t Mox32s;  /**< signed 32-bit value */

/** Width and height in samples; passed by value. */
typedef struct MoxiSize {
  Mox32s width;  /**< columns */
  Mox32s height; /**< rows */
} MoxiSize;

/** A position in samples. */
typedef struct MoxiPoint {
  Mox32s x; /**< column, to the right */
  Mox32s y; /**< row, downwards */
} MoxiPoint;

/** A rectangle in samples. */
typedef struct MoxiRect {
  Mox32s x;      /**< first column */
  Mox32s y;      /**< first row */
  Mox32s width;  /**< columns */
  Mox32s height; /**< rows */
} MoxiRect;

/** A motion vector in half or quarter samples. */
typedef struct MoxiMotionVector {
  Mox16s x; /**< to the right */
  Mox16s y; /**< downwards */
} MoxiMotionVector;

/** Result of a function: 0 success, negative an error, positive a warning (the work was done). */
typedef enum MoxStatus {
  moxStsEdgeSubstituted = 11,   /**< warning: an intra block used mid-grey in place of an edge that the flags deny */
  moxStsOk = 0,                 /**< success */
  moxStsFailed = -1,            /**< unspecific failure; reserved */
  moxStsRegionTooSmall = -2,    /**< the region is smaller than the filter, or there is no such form */
  moxStsBadArg = -5,            /**< an argument has an illegal value */
  moxStsBadSize = -6,           /**< a size or region is illegal */
  moxStsNullPointer = -8,       /**< a required pointer is null */
  moxStsNoMemory = -9,          /**< an allocation failed */
  moxStsZeroDivisor = -10,      /**< a divisor is zero */
  moxStsOutOfRange = -11,       /**< a value lies outside its legal range */
  moxStsLevelOverflow = -13,    /**< a quantised level's magnitude exceeds 2063 */
  moxStsBadStep = -14,          /**< a row step is illegal */
  moxStsBadContext = -17,       /**< a state record does not carry the tag of its kind */
  moxStsBadInterpolation = -22, /**< the interpolation selector is neither 1 nor 2 */
  moxStsBadScaleFactor = -23,   /**< the down-scale factor is not 2, 4 or 8 */
  moxStsBadMask = -33,          /**< a filter mask selector is neither 33 nor 55 */
  moxStsBadBitstream = -74,     /**< a bit pattern is not a code of the table, or a code overruns its limit */
  moxStsEdgeUnavailable = -117, /**< the intra mode needs a neighbouring edge that the flags deny */
  moxStsBadCode = -191,         /**< an illegal coefficient code, or a coefficient index past the end of the block */
  moxStsBadQp = -192,           /**< the quantiser parameter is outside its range */
  moxStsBadBitOffset = -193     /**< a byte cursor's bit offset lies outside 0..7 */
} MoxStatus;

#endif
