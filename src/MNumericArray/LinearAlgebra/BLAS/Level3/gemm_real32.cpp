#include "MNumericArray/LinearAlgebra/BLAS/Level3/gemm.h"

void vlb_sgemm(const char* transa, const char* transb, const mint* m, const mint* n, const mint* k,
               const float* alpha, const float* a, const mint* lda, const float* b, const mint* ldb,
               const float* beta, float* c, const mint* ldc) VLM_NOEXCEPT {
  vlm::blas::gemm<float, 1>("SGEMM ", transa, transb, *m, *n, *k, alpha, a, *lda, b, *ldb, beta, c, *ldc);
}
