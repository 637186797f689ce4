/* The types that every header of VelorimRTL uses.
 *
 * Conventions of the whole library:
 *  - Arrays are row-major. Dimensions, lengths, steps and positions are mint and count elements, never bytes;
 *    byte sizes are uint64_t. A position that a caller sees is one-based unless its comment says otherwise.
 *  - A result goes through a target argument. The caller owns what a call makes and gives it back with the
 *    matching delete.
 *  - Functions report by status, 0 for success (status.h); no C++ exception leaves the library but that of
 *    throwVelorimException (errors.h).
 *  - Every block that the library hands out comes from zalloc (memory.h) and is released with zfree, on any
 *    thread.
 *  - Constant tables and pure functions may be used on any thread at any time. */
#ifndef VELORIM_BASE_H
#define VELORIM_BASE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define VLM_NOEXCEPT noexcept
#define VLM_BEGIN_DECLS \
  extern "C" {          \
  _Pragma("GCC visibility push(default)")
#define VLM_END_DECLS           \
  _Pragma("GCC visibility pop") \
  }
#else
#define VLM_NOEXCEPT
#define VLM_BEGIN_DECLS
#define VLM_END_DECLS
#endif

/** Machine integer: dimensions, lengths, positions and the element of integer tensors. */
typedef int64_t mint;
/** Unsigned machine integer. */
typedef uint64_t umint;
/** Machine real: the element of real tensors. */
typedef double mreal;
/** Machine complex: the element of complex tensors, real part first. */
typedef struct {
  double re, im;
} mcomplex;

/** The array record; fields in array.h. An MTensor is the same record, seen through tensor type codes. */
typedef struct MNumericArray MNumericArray;
typedef MNumericArray MTensor;

/** Element type codes. 0 is no type. */
enum {
  MNumericArrayTypeInteger8 = 1,
  MNumericArrayTypeUnsignedInteger8 = 2,
  MNumericArrayTypeInteger16 = 3,
  MNumericArrayTypeUnsignedInteger16 = 4,
  MNumericArrayTypeInteger32 = 5,
  MNumericArrayTypeUnsignedInteger32 = 6,
  MNumericArrayTypeInteger64 = 7,
  MNumericArrayTypeUnsignedInteger64 = 8,
  MNumericArrayTypeReal32 = 9,
  MNumericArrayTypeReal64 = 10,
  MNumericArrayTypeComplexReal32 = 11,
  MNumericArrayTypeComplexReal64 = 12,
  MNumericArrayTypeReal16 = 13
};

/** Tensor type codes: mint, mreal and mcomplex elements. 1, the boolean type, maps like 2; 0 is no tensor
 *  view. */
enum { MTensorTypeBoolean = 1, MTensorTypeInteger = 2, MTensorTypeReal = 3, MTensorTypeComplex = 4 };

/** What an allocation does when it cannot be met; last argument of the allocating functions.
 *  FailFatal   the call does not return: the process ends through nomem (memory.h).
 *  FailNull    null or a status; passing the soft limit of the thread also counts as failure.
 *  FailReport  null or a status; passing the soft limit alone is no failure. */
enum { FailFatal = 0, FailNull = 1, FailReport = 2 };

#endif
