/* Column-major vector and matrix routines: a subset of the BLAS with 64-bit integers (Lawson et al., ACM TOMS 5, 1979; Dongarra et al.,
 * ACM TOMS 14, 1988, and 16, 1990). Each computes what the reference routine of the name behind the prefix computes, with its argument
 * order.
 *
 *  - Every argument is passed by pointer, sizes, increments, leading dimensions, letters and factors included. There are no hidden lengths.
 *  - Matrices are column-major: element (i, j), from 0, of A is a[i + j lda]. A transposition letter is N, T or C in either case; C is T in
 *    the real routines and the conjugate transpose in the complex ones.
 *  - A vector of n elements with increment inc has element i at x[i inc], or at x[(i - n + 1) inc] for a negative one.
 *  - ComplexReal32 data are pairs of float, real part first. A complex product rounds one of its two products before the sum and the other
 *    with it.
 *  - Nothing returns a status. The routines of levels two and three test their arguments in order; the first illegal one goes to
 *    vlb_xerbla with the routine's name, and nothing is touched. Level one has no tests: a size below 1 has nothing to do.
 *  - Results do not depend on alignment, place or threads.
 *  - Threads: any, on distinct results. The team (parallel.h) works on large products of the matrix-matrix routines, and on long vectors at
 *    increment 1 for the index of the largest magnitude, sums of magnitudes and Euclidean norms. */
#ifndef VELORIM_BLAS_H
#define VELORIM_BLAS_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

/* ---- Level one ---- */

/** One-based position of the first element of largest magnitude; 0 for n or incx below 1. A NaN exceeds nothing; in the first place
 *  nothing exceeds it.       {1, -3, 3} -> 2 */
mint vlb_isamax(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT;
mint vlb_idamax(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT;

/** Sum of magnitudes, in the order of the elements; 0 for n or incx below 1. */
float vlb_sasum(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT;
mreal vlb_dasum(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT;

/** y := x. */
void vlb_scopy(const mint* n, const float* x, const mint* incx, float* y, const mint* incy) VLM_NOEXCEPT;
void vlb_dcopy(const mint* n, const mreal* x, const mint* incx, mreal* y, const mint* incy) VLM_NOEXCEPT;
void vlb_ccopy(const mint* n, const float* x, const mint* incx, float* y, const mint* incy) VLM_NOEXCEPT;
void vlb_zcopy(const mint* n, const mcomplex* x, const mint* incx, mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;

/** Sum of x(i) y(i), in the order of the elements, each product rounded; 0 for n below 1. */
float vlb_sdot(const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT;
mreal vlb_ddot(const mint* n, const mreal* x, const mint* incx, const mreal* y,
               const mint* incy) VLM_NOEXCEPT;

/** The same of complex vectors, into *result; the c forms conjugate x. */
void vlb_cdotc(float* result, const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_cdotu(float* result, const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_zdotc(mcomplex* result, const mint* n, const mcomplex* x, const mint* incx, const mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_zdotu(mcomplex* result, const mint* n, const mcomplex* x, const mint* incx, const mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;

/** Euclidean norm by a running scale and the sum of squares over it, in the order of the elements: no overflow on the way. 0 for n or incx
 *  below 1. */
float vlb_snrm2(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT;
mreal vlb_dnrm2(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT;
mreal vlb_dznrm2(const mint* n, const mcomplex* x, const mint* incx) VLM_NOEXCEPT;

/* ---- Level two ---- */

/** y := alpha op(A) x + beta y, A of m by n. Not transposed, columns are added in order, and one whose x(j) is exactly 0 leaves no mark,
 *  whatever it holds; transposed, each element is a dot product in order. beta 0 does not read y.
 *  Illegal: 1 letter; 2 m below 0; 3 n below 0; 6 lda below max(1, m); 8 incx 0; 11 incy 0. */
void vlb_sgemv(const char* trans, const mint* m, const mint* n, const float* alpha, const float* a,
               const mint* lda, const float* x, const mint* incx, const float* beta, float* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_dgemv(const char* trans, const mint* m, const mint* n, const mreal* alpha, const mreal* a,
               const mint* lda, const mreal* x, const mint* incx, const mreal* beta, mreal* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_cgemv(const char* trans, const mint* m, const mint* n, const float* alpha, const float* a,
               const mint* lda, const float* x, const mint* incx, const float* beta, float* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_zgemv(const char* trans, const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* a,
               const mint* lda, const mcomplex* x, const mint* incx, const mcomplex* beta, mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;

/** A := alpha x y' + A, A of m by n; gerc conjugates y. A column whose y(j) is exactly 0 stays as it is.
 *  Illegal: 1 m below 0; 2 n below 0; 5 incx 0; 7 incy 0; 9 lda below max(1, m). */
void vlb_dger(const mint* m, const mint* n, const mreal* alpha, const mreal* x, const mint* incx,
              const mreal* y, const mint* incy, mreal* a, const mint* lda) VLM_NOEXCEPT;
void vlb_zgerc(const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* x, const mint* incx,
               const mcomplex* y, const mint* incy, mcomplex* a, const mint* lda) VLM_NOEXCEPT;
void vlb_zgeru(const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* x, const mint* incx,
               const mcomplex* y, const mint* incy, mcomplex* a, const mint* lda) VLM_NOEXCEPT;

/* ---- Level three ---- */

/** C := alpha op(A) op(B) + beta C, C of m by n, k the inner dimension.
 *  op(A) = A: C is scaled by beta (0 does not read it); each element then takes A(i, l) (alpha B(l, j)), l ascending, by fused
 *  multiply-adds. Where B(l, j) is exactly 0, column l of A leaves no mark on column j, whatever it holds.
 *  A transposed: each element is the sum of A(l, i) B(l, j), l ascending from 0, by fused multiply-adds; C takes alpha times it plus beta C.
 *  Complex: re takes a.re b.re, then -a.im b.im; im takes a.re b.im, then a.im b.re. alpha 1 leaves B as it is.
 *  So every element has one chain of roundings: the same bits for any blocking, any threads, any memory at hand. Working memory that cannot
 *  be had costs speed alone; small products need none.
 *  Illegal: 1, 2 letters; 3 m, 4 n, 5 k below 0; 8 lda, 10 ldb, 13 ldc below max(1, rows of the matrix as stored). */
void vlb_sgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const float* alpha, const float* a, const mint* lda, const float* b, const mint* ldb,
               const float* beta, float* c, const mint* ldc) VLM_NOEXCEPT;
void vlb_dgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const mreal* alpha, const mreal* a, const mint* lda, const mreal* b, const mint* ldb,
               const mreal* beta, mreal* c, const mint* ldc) VLM_NOEXCEPT;
void vlb_cgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const float* alpha, const float* a, const mint* lda, const float* b, const mint* ldb,
               const float* beta, float* c, const mint* ldc) VLM_NOEXCEPT;
void vlb_zgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const mcomplex* alpha, const mcomplex* a, const mint* lda, const mcomplex* b, const mint* ldb,
               const mcomplex* beta, mcomplex* c, const mint* ldc) VLM_NOEXCEPT;

/* ---- Support ---- */

/** 1 if two letters are the same but for their case (ASCII), else 0. */
int32_t vlb_lsame(const char* a, const char* b) VLM_NOEXCEPT;

/** Prints "** On entry to %6s, parameter number %2i had an illegal value" and a newline on standard output.       returns 0. */
int32_t vlb_xerbla(const char* routine, const mint* parameter) VLM_NOEXCEPT;

/** The conjugate, of single and double precision; result may be z. */
void r_cnjg(float* result, const float* z) VLM_NOEXCEPT;
void d_cnjg(mcomplex* result, const mcomplex* z) VLM_NOEXCEPT;
/** The imaginary part. */
mreal d_imag(const mcomplex* z) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
