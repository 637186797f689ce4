/* Norms of strided vectors: plain, weighted, and scaled by a tolerance for each element.
 *
 * The order p chooses the norm of the magnitudes v(0) to v(n - 1); the magnitude of a complex element is hypot(re, im).
 *   p                       norm
 *   VectorNormInfinity      the largest v(i); NaNs are passed over
 *   1                       sum of the v(i)
 *   2                       square root of the sum of the v(i)^2
 *   any other, 0 and        the 1/p-th power of the sum of the v(i)^p
 *   negative ones too
 * Orders other than 1 and infinity are accumulated as dnrm2 of the reference BLAS does (Lawson et al., ACM TOMS 5, 1979), whatever
 * the order: a running scale, the largest magnitude so far, starts at 0, a sum at 1; each v that is not 0 gives
 *   v above the scale       t = scale / v, sum := sum t^p + 1, scale := v
 *   otherwise               t = v / scale, sum := sum + t^p
 * and the norm is scale sum^(1/p). Nothing overflows on the way. Powers of order are products (of t, t^2, t^3 by two bits of |p|
 * at a time above 8, pow from 2^25 on), 1 over them for negative p. Order 0 is defined for zeros only: a first element that is not
 * 0 raises FE_INVALID and the norm is NaN.
 *
 *  - Vectors are n elements with a stride in elements; a complex element counts as one. A count below 1 is an empty vector, and its
 *    pointer may be NULL. No bounds are tested. The plain norms start at the far end for a negative stride, at x[(1 - n) stride],
 *    as the reference BLAS does; the others read x[i stride] whatever the stride. Second vectors (weights, tolerances) have stride
 *    1.
 *  - Above 32 elements with a stride of 1 or more, plain norms of orders 1, 2 and infinity come from blas.h: vlb_dasum, vlb_dnrm2,
 *    vlb_idamax and their Real32 sisters; of order 2 for ComplexReal64 from vlb_dznrm2, which sums real and imaginary parts one by
 *    one. So a NaN in the first place is the infinity norm of a real vector of more than 32 elements, and is passed over in a
 *    shorter one.
 *  - Sums are made in the order of the elements. Results do not depend on alignment, place or threads.
 *  - Statuses: 0, or a code of status.h, and then *result is as it was:
 *      ArrayStatusArithmetic    under MACHFUNC_CHECK_FP (machine_functions.h): a result that is NaN or infinite. Without the bit
 *                               it is stored. The plain infinity norm of Real64 and Real32 vectors is not tested.
 *      ArrayStatusNullArgument  a NULL result, or a NULL vector of 1 element or more
 *  - Threads: any, on distinct results. Long vectors at stride 1 use the team (parallel.h) for orders 1, 2 and infinity of reals
 *    and order 2 of ComplexReal64. */
#ifndef VELORIM_NORMS_H
#define VELORIM_NORMS_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/** The order of the infinity norm: the largest mint. */
#define VectorNormInfinity INT64_MAX

/** The norm of order p of x.       p = 2, {3, -4} -> 5;  an empty vector -> 0 */
int32_t machfunc_d_vectornorm(mreal* result, mint p, mint n, const mreal* x, mint stride,
                              uint32_t flags) VLM_NOEXCEPT;
int32_t machfunc_c_vectornorm(mreal* result, mint p, mint n, const mcomplex* x, mint stride,
                              uint32_t flags) VLM_NOEXCEPT;

/** weights[i] = 1 / (a |s(i)| + b): what turns errors into multiples of a tolerance relative (a) and absolute (b) to s. Under
 *  MACHFUNC_CHECK_FP a weight that is NaN or infinite gives ArrayStatusArithmetic; those before it are written, it and those
 *  behind are not. */
int32_t machfunc_d_vectornormweights(mreal* weights, mint n, const mreal* s, mint stride, uint32_t flags,
                                     mreal a, mreal b) VLM_NOEXCEPT;
int32_t machfunc_c_vectornormweights(mreal* weights, mint n, const mcomplex* s, mint stride, uint32_t flags,
                                     mreal a, mreal b) VLM_NOEXCEPT;

/** The norm of order p of the terms |x(i)| w[i]. n stands before p here, unlike in the other calls.
 *  mean other than 0: sums are divided by n before the root (not the infinity norm), which for an empty vector gives NaN in place
 *  of 0. The result is tested in every order; the infinity norm of an empty vector is 0. */
int32_t machfunc_d_weightedvectornorm(mreal* result, mint n, mint p, const mreal* x, mint stride,
                                      const mreal* w, int32_t mean, uint32_t flags) VLM_NOEXCEPT;
int32_t machfunc_c_weightedvectornorm(mreal* result, mint n, mint p, const mcomplex* x, mint stride,
                                      const mreal* w, int32_t mean, uint32_t flags) VLM_NOEXCEPT;

/** The same of the terms |x(i)| / (a |s[i]| + b). */
int32_t machfunc_d_scaledvectornorm(mreal* result, mint p, mint n, const mreal* x, mint stride,
                                    const mreal* s, int32_t mean, uint32_t flags, mreal a,
                                    mreal b) VLM_NOEXCEPT;
int32_t machfunc_c_scaledvectornorm(mreal* result, mint p, mint n, const mcomplex* x, mint stride,
                                    const mcomplex* s, int32_t mean, uint32_t flags, mreal a,
                                    mreal b) VLM_NOEXCEPT;

/** The norm of the flattenedLength elements of an array of any rank and type, from its data at the stride. The elements read have
 *  to lie within the data: strides 1 and -1 do, 0 reads one element over and over.
 *  *result is an element of the array's type, or of the component type for a complex array.
 *   - Integers have orders 1 and infinity. Infinity: ArrayStatusArithmetic if the largest magnitude is that of the most negative
 *     value, whatever the flags. 1: with MACHFUNC_CHECK_INTEGER ArrayStatusArithmetic if a sum on the way leaves the type; without
 *     it sums wrap.
 *   - Real64, Real32, ComplexReal64: the plain norm in the type's precision, as above. ComplexReal32: the same in single
 *     precision, by the magnitudes at every length.
 *   - Real16: every operation is rounded to binary16, at every length; the test of the result holds for infinity too. A signalling
 *     NaN raises FE_INVALID and sets errno to EDOM.
 *  returns ArrayStatusBadNormOrder for an element type outside 1 to 13 or an order that integers do not have. */
int32_t MNumericArray_vector_norm(void* result, mint p, const MNumericArray* array, mint stride,
                                  uint32_t flags) VLM_NOEXCEPT;
/** The same. */
int32_t MTensor_vector_norm(void* result, mint p, const MTensor* array, mint stride,
                            uint32_t flags) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
