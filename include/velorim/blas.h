/* Column-major vector and matrix routines with 64-bit integers; every argument by pointer. */
#ifndef VELORIM_BLAS_H
#define VELORIM_BLAS_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

/* Level one; ComplexReal32 data is pairs of float. */
mint vlb_isamax(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT;
mint vlb_idamax(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT;
float vlb_sasum(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT;
mreal vlb_dasum(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT;
void vlb_scopy(const mint* n, const float* x, const mint* incx, float* y, const mint* incy) VLM_NOEXCEPT;
void vlb_dcopy(const mint* n, const mreal* x, const mint* incx, mreal* y, const mint* incy) VLM_NOEXCEPT;
void vlb_ccopy(const mint* n, const float* x, const mint* incx, float* y, const mint* incy) VLM_NOEXCEPT;
void vlb_zcopy(const mint* n, const mcomplex* x, const mint* incx, mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;
float vlb_sdot(const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT;
mreal vlb_ddot(const mint* n, const mreal* x, const mint* incx, const mreal* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_cdotc(float* result, const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_cdotu(float* result, const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_zdotc(mcomplex* result, const mint* n, const mcomplex* x, const mint* incx, const mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;
void vlb_zdotu(mcomplex* result, const mint* n, const mcomplex* x, const mint* incx, const mcomplex* y,
               const mint* incy) VLM_NOEXCEPT;
float vlb_snrm2(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT;
mreal vlb_dnrm2(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT;
mreal vlb_dznrm2(const mint* n, const mcomplex* x, const mint* incx) VLM_NOEXCEPT;

/* Level two. */
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
void vlb_dger(const mint* m, const mint* n, const mreal* alpha, const mreal* x, const mint* incx,
              const mreal* y, const mint* incy, mreal* a, const mint* lda) VLM_NOEXCEPT;
void vlb_zgerc(const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* x, const mint* incx,
               const mcomplex* y, const mint* incy, mcomplex* a, const mint* lda) VLM_NOEXCEPT;
void vlb_zgeru(const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* x, const mint* incx,
               const mcomplex* y, const mint* incy, mcomplex* a, const mint* lda) VLM_NOEXCEPT;

/* Level three. */
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

/* Support routines. */
int32_t vlb_lsame(const char* a, const char* b) VLM_NOEXCEPT;
int32_t vlb_xerbla(const char* routine, const mint* parameter) VLM_NOEXCEPT;
void r_cnjg(float* result, const float* z) VLM_NOEXCEPT;
void d_cnjg(mcomplex* result, const mcomplex* z) VLM_NOEXCEPT;
mreal d_imag(const mcomplex* z) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
