/* Floating-point exceptions, the values that count as overflow, and the constants of the number formats.
 *
 * Flags. Invalid, division by zero and overflow count, together; underflow and inexact never do. They belong to the calling
 * thread; the library neither saves nor restores them around a call.
 * Exception values. A number counts as an exception value when it is a NaN or an infinity; a complex number when either part
 * does. Subnormal numbers do not count.
 * None of these functions fails or allocates, and the tests and scans raise no flag. */
#ifndef VELORIM_FLOATING_POINT_H
#define VELORIM_FLOATING_POINT_H

#include <velorim/base.h>

/** The limits of a real format, each value held exactly. */
typedef struct FloatLimits {
  mreal max;         /**< largest finite value */
  mreal min;         /**< smallest positive normal value */
  mreal denorm_min;  /**< smallest positive value */
  mreal lowest;      /**< most negative finite value, -max */
  mreal epsilon;     /**< distance from 1 to the next value */
  mint digits;       /**< bits of the significand with the hidden one: 53, 24, 11 */
  mint max_exponent; /**< largest binary exponent plus one: 1024, 128, 16 */
  mint min_exponent; /**< smallest binary exponent of a normal value plus one: -1021, -125, -13 */
} FloatLimits;

VLM_BEGIN_DECLS

/** Plus infinity. */
extern const mreal dInfinity;
/** Minus infinity, the marker of machine precision in the precision field of an array (array.h); no number of digits. */
extern const mreal MachinePrecision;
/** Plus infinity. */
extern const mreal MachineOverflow;
/** Base-2 logarithm of 10. */
extern const mreal log2ten;
/** Natural logarithm of 10. */
extern const mreal logten;
/** Natural logarithm of 2. */
extern const mreal logtwo;

/** Tolerances of comparison, in bits of the significand; a host may store to them while no other thread is in the library.
 *  Initially 7, 1 and 1. */
extern mreal EqualTolerance;
extern mreal SameQTolerance;
extern mreal HashTolerance;

/* ---- Flags of the calling thread ---- */

/** Clears the three flags that count, no others. returns  0, or what feclearexcept answers. */
int32_t clear_fp_environment(void) VLM_NOEXCEPT;
/** returns  1 if any of the three flags is raised, else 0. */
int32_t test_fp_environment(void) VLM_NOEXCEPT;

/* ---- Tests of one complex number. Threads: any. ---- */

/** returns  1 if re + i im counts as an exception value, else 0. */
int32_t cTESTFPOV(mreal re, mreal im) VLM_NOEXCEPT;
/** returns  1 if the magnitude of either part is below 2^-1022, zero included, else 0. */
int32_t MComplexUnderflowQ(mreal re, mreal im) VLM_NOEXCEPT;
/** returns  1 if either part is subnormal, else 0: as MComplexUnderflowQ, but zero does not count. */
int32_t MComplexUnderflow0Q(mreal re, mreal im) VLM_NOEXCEPT;

/* ---- Scans. 1 if any element counts as an exception value, else 0; 0 for an empty run. Runs of 128 KiB of elements and more
 *      go in chunks of 64 KiB on the thread team, as the settings of parallel.h allow; every scan ends soon after the first
 *      hit. Threads: any, while nothing writes the data. ---- */

/** Over an array; 0 for NULL and for element types other than 9 to 13. */
int32_t MNumericArray_fpexceptionQ(const MNumericArray* array) VLM_NOEXCEPT;
/** The same for a tensor. */
int32_t TensorOverflowQ(const MTensor* tensor) VLM_NOEXCEPT;
/** Over count elements of an element type at data, stride elements apart. A negative stride walks down to data: the elements
 *  are data[(1 - count) * stride], ..., data[-stride], data[0]. data is aligned for its type, and not looked at if count is
 *  below 1 or type is not one of 9 to 13 (0 then). */
int32_t MNumericArrayData_fpexceptionQ(int32_t type, mint count, const void* data, mint stride) VLM_NOEXCEPT;
/** Over count adjacent reals. */
int32_t MRealArrayOverflowQ(const mreal* data, mint count) VLM_NOEXCEPT;
/** Over count adjacent complex numbers. */
int32_t MComplexArrayOverflowQ(const mcomplex* data, mint count) VLM_NOEXCEPT;

/** Replaces, in place, each NaN, plus infinity and minus infinity by its replacement; complex numbers part by part. Every
 *  other element keeps its bits. For Real32, ComplexReal32 and Real16 a replacement beyond the finite range of the type
 *  becomes the nearest end of that range, any other is rounded to the type; for Real64 and ComplexReal64 it is stored as
 *  given. A NaN may replace. Does nothing for NULL and element types other than 9 to 13. On the team as the scans are.
 *  Threads: any, on distinct arrays. */
void MNumericArray_fpexception_replace(MNumericArray* array, mreal nanValue, mreal plusInfinity,
                                       mreal minusInfinity) VLM_NOEXCEPT;

/* ---- Limits. Threads: any. ---- */

/** Limits of element type 9 (Real32), 10 (Real64) or 13 (Real16). returns  0 with *limits filled; 1 for any other type or
 *  limits NULL, nothing stored. */
int32_t MNumericArray_getFloatLimits(FloatLimits* limits, int32_t type) VLM_NOEXCEPT;
/** A tolerance in bits, limited to what comparisons take: -1 if bits is negative, 54 if it is above 54, else bits. */
mreal BoundMachineTolerance(mreal bits) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
