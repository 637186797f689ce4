/* Lets the test programs of the reference BLAS call the library: preloaded into them, it offers the reference's names and hands each
 * call on. The programs pass the lengths of character arguments behind the others, which C callees do not see, and bring a
 * procedure xerbla_ of their own, which hears of every illegal argument here. Routines that the library lacks stay those of the
 * system's BLAS. */
#include <velorim/blas.h>

/* The programs' own; its third argument is the length of the name. */
extern void xerbla_(const char* routine, const mint* parameter, size_t length);

/* Stands in for the library's: preloaded names come first. */
int32_t vlb_xerbla(const char* routine, const mint* parameter) {
  xerbla_(routine, parameter, 6);
  return 0;
}

#define VECTOR(result, name, type) \
  result name##_(const mint* n, const type* x, const mint* incx) { return vlb_##name(n, x, incx); }
VECTOR(mint, isamax, float)
VECTOR(mint, idamax, mreal)
VECTOR(float, sasum, float)
VECTOR(mreal, dasum, mreal)
VECTOR(float, snrm2, float)
VECTOR(mreal, dnrm2, mreal)
VECTOR(mreal, dznrm2, mcomplex)

#define COPY(name, type)                                                                    \
  void name##_(const mint* n, const type* x, const mint* incx, type* y, const mint* incy) { \
    vlb_##name(n, x, incx, y, incy);                                                        \
  }
COPY(scopy, float)
COPY(dcopy, mreal)
COPY(ccopy, float)
COPY(zcopy, mcomplex)

#define DOT(name, type)                                                                           \
  type name##_(const mint* n, const type* x, const mint* incx, const type* y, const mint* incy) { \
    return vlb_##name(n, x, incx, y, incy);                                                       \
  }
DOT(sdot, float)
DOT(ddot, mreal)

/* Complex results come back by value. */
#define COMPLEX_DOT(name, type, value)                                                             \
  value name##_(const mint* n, const type* x, const mint* incx, const type* y, const mint* incy) { \
    value result;                                                                                  \
    vlb_##name((type*)&result, n, x, incx, y, incy);                                               \
    return result;                                                                                 \
  }
COMPLEX_DOT(cdotc, float, float _Complex)
COMPLEX_DOT(cdotu, float, float _Complex)
COMPLEX_DOT(zdotc, mcomplex, double _Complex)
COMPLEX_DOT(zdotu, mcomplex, double _Complex)

#define GEMV(name, type)                                                                          \
  void name##_(const char* trans, const mint* m, const mint* n, const type* alpha, const type* a, \
               const mint* lda, const type* x, const mint* incx, const type* beta, type* y,       \
               const mint* incy) {                                                                \
    vlb_##name(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);                               \
  }
GEMV(sgemv, float)
GEMV(dgemv, mreal)
GEMV(cgemv, float)
GEMV(zgemv, mcomplex)

#define GER(name, type)                                                                          \
  void name##_(const mint* m, const mint* n, const type* alpha, const type* x, const mint* incx, \
               const type* y, const mint* incy, type* a, const mint* lda) {                      \
    vlb_##name(m, n, alpha, x, incx, y, incy, a, lda);                                           \
  }
GER(dger, mreal)
GER(zgerc, mcomplex)
GER(zgeru, mcomplex)

#define GEMM(name, type)                                                                            \
  void name##_(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k, \
               const type* alpha, const type* a, const mint* lda, const type* b, const mint* ldb,   \
               const type* beta, type* c, const mint* ldc) {                                        \
    vlb_##name(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);                       \
  }
GEMM(sgemm, float)
GEMM(dgemm, mreal)
GEMM(cgemm, float)
GEMM(zgemm, mcomplex)
