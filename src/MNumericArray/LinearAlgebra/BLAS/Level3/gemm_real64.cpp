#include "MNumericArray/LinearAlgebra/BLAS/Level3/gemm.h"

void vlb_dgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const mreal* alpha, const mreal* a, const mint* lda, const mreal* b, const mint* ldb,
               const mreal* beta, mreal* c, const mint* ldc) VLM_NOEXCEPT {
  vlm::blas::gemm<double, 1>("DGEMM ", transa, transb, *m, *n, *k, alpha, a, *lda, b, *ldb, beta, c, *ldc);
}
