#include "MNumericArray/LinearAlgebra/BLAS/Level3/gemm.h"

void vlb_zgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const mcomplex* alpha, const mcomplex* a, const mint* lda, const mcomplex* b, const mint* ldb,
               const mcomplex* beta, mcomplex* c, const mint* ldc) VLM_NOEXCEPT {
  vlm::blas::gemm<double, 2>("ZGEMM ", transa, transb, *m, *n, *k, reinterpret_cast<const double*>(alpha),
                             reinterpret_cast<const double*>(a), *lda, reinterpret_cast<const double*>(b),
                             *ldb, reinterpret_cast<const double*>(beta), reinterpret_cast<double*>(c), *ldc);
}
